#include "util/loss_report.h"

#include <cstdio>
#include <map>
#include <set>
#include <tuple>
#include <utility>
#include <vector>

namespace {

// A reader's finding that waits for the store to name its column.
struct ReadInPart {
  LossEntry entry;  // table, column and as_stored still empty
  WrittenKind kind = WrittenKind::kText;
  double number = 0;
  std::string text;  // what the reader gave, for a text
};

struct LossReport {
  std::vector<LossEntry> entries;
  std::string record;
  bool quiet = false;
  std::vector<ReadInPart> waiting;
  bool written_since_read = false;  // see NoteStatementWhileReadsWait
};

LossReport g_report;

// More waiting reads than a record gives are older records' values that no
// write claimed: the oldest is reported as it is.
constexpr std::size_t kMostWaiting = 16;

void Wait(ReadInPart read) {
  if (g_report.quiet) return;
  if (g_report.written_since_read) FlushReadsInPart();
  read.entry.record = g_report.record;
  if (g_report.waiting.size() >= kMostWaiting) {
    g_report.entries.push_back(std::move(g_report.waiting.front().entry));
    g_report.waiting.erase(g_report.waiting.begin());
  }
  g_report.waiting.push_back(std::move(read));
}

}  // namespace

void ReportLoss(LossEntry entry) {
  if (g_report.quiet) return;
  if (entry.record.empty()) entry.record = g_report.record;
  g_report.entries.push_back(std::move(entry));
}

void SetLossRecord(std::string_view record) {
  if (record == g_report.record) return;
  FlushReadsInPart();
  g_report.record.assign(record);
}

const std::string& LossRecord() { return g_report.record; }

std::size_t LossCount() { return g_report.entries.size(); }

const LossEntry& LossAt(std::size_t index) { return g_report.entries.at(index); }

void ForgetLossesAfter(std::size_t count) {
  // Reads still waiting came after them too: the job reads them again.
  g_report.waiting.clear();
  g_report.written_since_read = false;
  if (count < g_report.entries.size()) g_report.entries.resize(count);
}

void SetLossQuiet(bool quiet) { g_report.quiet = quiet; }

void NoteNumberReadInPart(std::string_view what, std::string_view as_exported, double value, bool integer,
                          std::string_view source) {
  ReadInPart read;
  read.entry.column = source;
  read.entry.what = what;
  read.entry.as_exported = as_exported;
  char text[64];
  std::snprintf(text, sizeof text, "%.15g", value);
  read.entry.as_stored = text;  // until a write says how it was stored
  read.kind = integer ? WrittenKind::kInteger : WrittenKind::kDecimal;
  read.number = value;
  Wait(std::move(read));
}

void NoteTextReadInPart(std::string_view what, std::string_view as_exported, std::string_view as_read) {
  ReadInPart read;
  read.entry.what = what;
  read.entry.as_exported = as_exported;
  read.entry.as_stored = as_read;
  read.text = as_read;
  Wait(std::move(read));
}

bool AnyReadInPart() { return !g_report.waiting.empty(); }

void NoteStatementWhileReadsWait() { g_report.written_since_read = true; }

bool ClaimReadInPart(WrittenKind kind, double number, std::string_view text, std::string_view table,
                     std::string_view column, std::string_view as_stored, std::string_view record) {
  for (auto read = g_report.waiting.begin(); read != g_report.waiting.end(); ++read) {
    if (read->kind != kind) continue;
    // The jobs keep most measures as float: the value written is the value
    // read at float precision.
    bool same = kind == WrittenKind::kText      ? read->text == text
                : kind == WrittenKind::kDecimal ? static_cast<float>(read->number) == static_cast<float>(number)
                                                : read->number == number;
    if (!same) continue;
    LossEntry entry = std::move(read->entry);
    g_report.waiting.erase(read);
    entry.table = table;  // the column written replaces the input's name
    entry.column = column;
    entry.as_stored = as_stored;
    if (entry.record.empty()) entry.record = record;
    if (!g_report.quiet) g_report.entries.push_back(std::move(entry));
    return true;
  }
  return false;
}

void FlushReadsInPart() {
  for (ReadInPart& read : g_report.waiting) {
    if (!g_report.quiet) g_report.entries.push_back(std::move(read.entry));
  }
  g_report.waiting.clear();
  g_report.written_since_read = false;
}

namespace {

// The entries in the order reported, each once.
std::vector<const LossEntry*> DistinctEntries() {
  std::set<std::tuple<const std::string&, const std::string&, const std::string&, const std::string&,
                      const std::string&, const std::string&>>
      seen;
  std::vector<const LossEntry*> distinct;
  for (const LossEntry& e : g_report.entries) {
    if (seen.emplace(e.table, e.column, e.record, e.what, e.as_exported, e.as_stored).second) distinct.push_back(&e);
  }
  return distinct;
}

// A value on one line of stderr: control bytes shown as escapes, a long
// text shortened in its middle.
std::string Shown(const std::string& value) {
  std::string shown;
  for (char c : value) {
    if (c == '\n') {
      shown += "\\n";
    } else if (c == '\t') {
      shown += "\\t";
    } else if (static_cast<unsigned char>(c) < 0x20) {
      shown += '?';
    } else {
      shown.push_back(c);
    }
  }
  constexpr std::size_t kLongest = 60;
  if (shown.size() > kLongest) shown = shown.substr(0, kLongest / 2 - 2) + "..." + shown.substr(shown.size() - (kLongest / 2 - 2));
  return "\"" + shown + "\"";
}

std::string ForFile(const std::string& value) {
  std::string escaped;
  for (char c : value) {
    switch (c) {
      case '\t': escaped += "\\t"; break;
      case '\n': escaped += "\\n"; break;
      case '\r': escaped += "\\r"; break;
      case '\\': escaped += "\\\\"; break;
      default: escaped.push_back(c); break;
    }
  }
  return escaped;
}

}  // namespace

std::size_t DistinctLossCount() { return DistinctEntries().size(); }

std::string LossSummary(const std::string& file) {
  std::vector<const LossEntry*> entries = DistinctEntries();
  if (entries.empty()) return "Loss report: every value landed as it stood in the input\n";
  struct Group {
    std::string place;  // "table.column"
    std::vector<const LossEntry*> entries;
    std::vector<std::pair<std::string, std::size_t>> kinds;  // what, how many
  };
  std::vector<Group> groups;  // in the order first seen; a handful, so no index
  for (const LossEntry* e : entries) {
    std::string place = (e->table.empty() ? std::string("(input)") : e->table) +
                        (e->column.empty() ? "" : "." + e->column);
    Group* group = nullptr;
    for (Group& known : groups) {
      if (known.place == place) group = &known;
    }
    if (group == nullptr) group = &groups.emplace_back(Group{place, {}, {}});
    group->entries.push_back(e);
    bool counted = false;
    for (auto& kind : group->kinds) {
      if (kind.first == e->what) {
        ++kind.second;
        counted = true;
      }
    }
    if (!counted) group->kinds.emplace_back(e->what, 1);
  }
  std::string summary = "Loss report: " +
                        (entries.size() == 1 ? std::string("1 value did not land as it stood")
                                             : std::to_string(entries.size()) + " values did not land as they stood") +
                        " in the input (as exported -> as stored):\n";
  for (const Group& group : groups) {
    summary += "  " + group.place + ": ";
    for (std::size_t i = 0; i < group.kinds.size(); ++i) {
      summary += (i > 0 ? ", " : "") + std::to_string(group.kinds[i].second) + " " + group.kinds[i].first;
    }
    summary += "\n";
    for (std::size_t i = 0; i < group.entries.size() && i < 3; ++i) {
      const LossEntry& e = *group.entries[i];
      summary += "    " + Shown(e.as_exported) + " -> " + Shown(e.as_stored) +
                 (e.record.empty() ? "" : "  (" + e.record + ")") + "\n";
    }
  }
  if (!file.empty()) summary += "The whole list: " + file + "\n";
  return summary;
}

bool WriteLossFile(const std::string& path) {
  std::FILE* file = std::fopen(path.c_str(), "wb");
  if (file == nullptr) return false;
  std::string text = "table\tcolumn\trecord\twhat\tas exported\tas stored\n";
  for (const LossEntry* e : DistinctEntries()) {
    text += ForFile(e->table) + '\t' + ForFile(e->column) + '\t' + ForFile(e->record) + '\t' + ForFile(e->what) +
            '\t' + ForFile(e->as_exported) + '\t' + ForFile(e->as_stored) + '\n';
  }
  bool written = std::fwrite(text.data(), 1, text.size(), file) == text.size();
  return std::fclose(file) == 0 && written;
}
