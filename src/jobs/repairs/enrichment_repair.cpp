#include "jobs/repairs/enrichment_repair.h"

#include <cstdio>
#include <iterator>
#include <string>
#include <string_view>

#include "jobs/repairs/repair_columns.h"
#include "store/connection.h"
#include "util/progress.h"

namespace {

// Old `type` bit that marks the new type 'T'; without it the type is 'E'.
constexpr int32_t kTypeTBit = 1;

struct KindWord {
  int32_t bit;
  const char* word;
};

// The other old `type` bits, in the order their words are appended to `what`.
constexpr KindWord kKindWords[] = {
    {2, "Visual"}, {4, "Auditory"}, {8, "Olfactory"}, {16, "Physical"},
    {32, "Social"}, {64, "Tactile"}, {128, "Diet"},
};

struct LevelBit {
  int32_t bit;
  int32_t level;
};

// Old `interactionLevel` bits, highest first: the first one set decides.
constexpr LevelBit kLevelBits[] = {{8, 3}, {4, 2}, {2, 1}};

struct ColumnUpdate {
  const char* statement;
  const char* column_words;  // how the failure message names the column
};

// Sent in this order; the first failure ends the row.
constexpr ColumnUpdate kColumnUpdates[] = {
    {"update enrichment set type=%d where id=%d;", "type"},
    {"update enrichment set what='%s' where id=%d;", "what"},
    {"update enrichment set interactionTime='%s' where id=%d;", "interaction time"},
    {"update enrichment set comments='%s' where id=%d;", "comments"},
    {"update enrichment set interactionLevel=%d where id=%d;", "interaction level"},
};

// What the columns hold, in characters (latin1: one byte each). The record
// that reads a row has fields exactly this wide.
constexpr std::size_t kWhatWidth = decltype(EnrichmentRecord::what)::kCapacity;
constexpr std::size_t kInteractionTimeWidth = decltype(EnrichmentRecord::interactionTime)::kCapacity;
constexpr std::size_t kCommentsWidth = decltype(EnrichmentRecord::comments)::kCapacity;

void TrimRight(std::string& text) {
  text.erase(text.find_last_not_of(" \t\n\v\f\r") + 1);
}

int32_t NewInteractionLevel(int32_t old_level) {
  for (const LevelBit& level : kLevelBits) {
    if ((old_level & level.bit) != 0) return level.level;
  }
  return 0;
}

// The stored lengths of the texts a row rewrites, in bytes (0 for null).
struct StoredLengths {
  std::size_t what;
  std::size_t interactionTime;
  std::size_t comments;
};

// Reports `id` when a text it rewrites was not read whole (it holds a NUL
// byte, or its column is wider than the record's field), so that writing it
// back would cut it; false when all of them were read whole.
bool ReportNotReadWhole(int id, const EnrichmentRecord& old, const StoredLengths& stored) {
  const struct {
    std::size_t read;
    std::size_t stored;
    const char* column_words;
  } texts[] = {{old.what.size(), stored.what, "what"},
               {old.interactionTime.size(), stored.interactionTime, "interaction time"},
               {old.comments.size(), stored.comments, "comments"}};
  for (const auto& text : texts) {
    if (text.read == text.stored) continue;
    std::printf("\tERROR: Unable to fix record %d: its %s could not be read whole\n", id, text.column_words);
    return true;
  }
  return false;
}

// The first new text that its column cannot hold, reported with `id`; false
// when all of them fit.
bool ReportTooWide(int id, const EnrichmentRewrite& fix) {
  const struct {
    const std::string& text;
    std::size_t width;
    const char* column_words;
  } texts[] = {{fix.what, kWhatWidth, "what"},
               {fix.interactionTime, kInteractionTimeWidth, "interaction time"},
               {fix.comments, kCommentsWidth, "comments"}};
  for (const auto& text : texts) {
    if (text.text.size() <= text.width) continue;
    std::printf("\tERROR: Unable to fix record %d: the new %s has %zu characters, its column holds %zu\n", id,
                text.column_words, text.text.size(), text.width);
    return true;
  }
  return false;
}

// Sends the row's updates in order, each text escaped once. Returns true
// when all of them succeeded.
bool WriteRewrite(int id, const EnrichmentRewrite& fix) {
  const std::string what = EscapeSqlText(fix.what);
  const std::string interaction_time = EscapeSqlText(fix.interactionTime);
  const std::string comments = EscapeSqlText(fix.comments);
  const SqlArg values[] = {fix.type, what, interaction_time, comments, fix.interactionLevel};
  static_assert(std::size(values) == std::size(kColumnUpdates));
  for (std::size_t i = 0; i < std::size(kColumnUpdates); ++i) {
    if (ExecuteSql(kColumnUpdates[i].statement, {values[i], id}) != 0) {
      std::printf("\nERROR: Unable to update %s for %d\n", kColumnUpdates[i].column_words, id);
      return false;
    }
  }
  return true;
}

}  // namespace

EnrichmentRewrite RewriteEnrichment(const EnrichmentRecord& old) {
  EnrichmentRewrite fix{};
  fix.type = (old.type & kTypeTBit) != 0 ? 'T' : 'E';

  fix.what = old.what.view();
  for (const KindWord& kind : kKindWords) {
    if ((old.type & kind.bit) == 0) continue;
    if (!fix.what.empty()) fix.what += ' ';
    fix.what += kind.word;
  }

  fix.interactionTime = old.interactionTime.view();
  TrimRight(fix.interactionTime);
  if (!old.overallTime.empty()) {
    if (!fix.interactionTime.empty()) fix.interactionTime += ". ";
    fix.interactionTime += "Overall time: ";
    fix.interactionTime += old.overallTime.view();
  }

  fix.comments = old.comments.view();
  if (!old.behavior.empty()) {
    fix.comments += '\n';
    fix.comments += old.behavior.view();
  }

  fix.interactionLevel = NewInteractionLevel(old.interactionLevel);
  return fix;
}

int fixEnrichmentRecords() {
  std::printf("Fixing enrichment records\n");
  int fixed = 0;
  // With the stored lengths of the texts it rewrites, to tell a text read
  // whole from one cut short.
  SqlResult result =
      QuerySql("select id,length(what),length(interactionTime),length(comments) from enrichment;", {});
  if (result) {
    ProgressLoop progress("Fixing the enrichment records", result.size());
    while (MYSQL_ROW row = result.NextRow()) {
      progress.Step();
      int id = ColumnInt(row[0]);
      const StoredLengths stored = {static_cast<std::size_t>(ColumnInt(row[1])),
                                    static_cast<std::size_t>(ColumnInt(row[2])),
                                    static_cast<std::size_t>(ColumnInt(row[3]))};
      EnrichmentRecord old{};
      if (GetEnrichment(id, old) != 0) {
        std::printf("\tERROR: Unable to read record %d\n", id);
        continue;
      }
      if (ReportNotReadWhole(id, old, stored)) continue;
      const EnrichmentRewrite fix = RewriteEnrichment(old);
      if (ReportTooWide(id, fix)) continue;
      if (WriteRewrite(id, fix)) ++fixed;
    }
  }
  std::printf("Fixed %d enrichment records\n", fixed);
  return 0;
}
