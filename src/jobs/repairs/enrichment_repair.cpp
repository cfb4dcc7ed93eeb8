#include "jobs/repairs/enrichment_repair.h"

#include <cstdio>
#include <iterator>
#include <string>
#include <string_view>

#include "jobs/repairs/repair_columns.h"
#include "store/connection.h"
#include "util/strings.h"
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

template <std::size_t N>
void Append(Text<N>& text, std::string_view more) {
  std::string joined(text.view());
  joined += more;
  text = joined;
}

int32_t NewInteractionLevel(int32_t old_level) {
  for (const LevelBit& level : kLevelBits) {
    if ((old_level & level.bit) != 0) return level.level;
  }
  return 0;
}

// Sends the row's updates in order. `fix.comments` must be escaped already.
// Returns true when all of them succeeded.
bool WriteRewrite(int id, const EnrichmentRewrite& fix) {
  const SqlArg values[] = {fix.type, fix.what, fix.interactionTime, fix.comments, fix.interactionLevel};
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

  fix.what = old.what;
  for (const KindWord& kind : kKindWords) {
    if ((old.type & kind.bit) == 0) continue;
    if (!fix.what.empty()) Append(fix.what, " ");
    Append(fix.what, kind.word);
  }

  fix.interactionTime = old.interactionTime;
  TrimRight(fix.interactionTime.data());
  if (!old.overallTime.empty()) {
    if (!fix.interactionTime.empty()) Append(fix.interactionTime, ". ");
    Append(fix.interactionTime, "Overall time: ");
    Append(fix.interactionTime, old.overallTime.view());
  }

  fix.comments = old.comments;
  if (!old.behavior.empty()) {
    Append(fix.comments, "\n");
    Append(fix.comments, old.behavior.view());
  }

  fix.interactionLevel = NewInteractionLevel(old.interactionLevel);
  return fix;
}

int fixEnrichmentRecords() {
  std::printf("Fixing enrichment records\n");
  int fixed = 0;
  SqlResult result = QuerySql("select id from enrichment;", {});
  if (result) {
    ProgressLoop progress("Fixing the enrichment records", result.size());
    while (MYSQL_ROW row = result.NextRow()) {
      progress.Step();
      int id = ColumnInt(row[0]);
      EnrichmentRecord old{};
      if (GetEnrichment(id, old) != 0) {
        std::printf("\tERROR: Unable to read record %d\n", id);
        continue;
      }
      EnrichmentRewrite fix = RewriteEnrichment(old);
      EscapeSql(fix.comments);
      if (WriteRewrite(id, fix)) ++fixed;
    }
  }
  std::printf("Fixed %d enrichment records\n", fixed);
  return 0;
}
