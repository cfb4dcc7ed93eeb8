#include "util/read_losses.h"

#include <algorithm>
#include <charconv>
#include <cstdio>
#include <utility>

namespace {

InputLine* g_current = nullptr;
std::vector<LossEntry>* g_watch = nullptr;

// How much of a line an entry shows: enough to find it in the file.
constexpr std::size_t kShownCharacters = 120;

void Report(LossEntry entry) {
  if (g_watch != nullptr) g_watch->push_back(entry);
  ReportLoss(std::move(entry));
}

std::string FileOf(const char* file) { return file != nullptr ? file : ""; }

std::string RecordOf(const char* file, long long number) { return FileOf(file) + " line " + std::to_string(number); }

// The cells of `text` as "[first][][third]": an empty cell shows as "[]"
// and no tab reaches the report, whose own columns are tab-separated. At
// most kShownCharacters of the text, then "...".
std::string ShowCells(std::string_view text) {
  while (!text.empty() && (text.back() == '\n' || text.back() == '\r')) text.remove_suffix(1);
  const bool cut = text.size() > kShownCharacters;
  if (cut) text = text.substr(0, kShownCharacters);
  std::string shown = "[";
  for (char c : text) {
    if (c == '\t') {
      shown += "][";
    } else if (c == '\n' || c == '\r') {
      shown += ' ';
    } else {
      shown += c;
    }
  }
  shown += cut ? "..." : "]";
  return shown;
}

std::string ColumnList(const std::vector<int>& columns) {
  std::string list = columns.size() == 1 ? "column " : "columns ";
  for (std::size_t i = 0; i < columns.size(); ++i) {
    if (i > 0) list += ", ";
    list += std::to_string(columns[i]);
  }
  return list;
}

bool IsBlank(char c) { return c == ' ' || c == '\t' || c == '\r' || c == '\n'; }

// The column (from 1) of a cell that opens a quoted text which some later
// cell closes: a tab inside the quotes split it. 0 when there is none.
int QuotedTextWithTab(std::string_view text) {
  int column = 1;
  std::size_t start = 0;
  int open_column = 0;
  while (start <= text.size()) {
    std::size_t end = std::min(text.find('\t', start), text.size());
    std::string_view cell = text.substr(start, end - start);
    while (!cell.empty() && IsBlank(cell.back())) cell.remove_suffix(1);
    while (!cell.empty() && IsBlank(cell.front())) cell.remove_prefix(1);
    const bool opens = !cell.empty() && cell.front() == '"';
    const bool closes = !cell.empty() && cell.back() == '"' && !(opens && cell.size() == 1);
    if (open_column > 0 && closes) return open_column;
    if (opens && !(cell.size() > 1 && closes)) open_column = column;
    if (end == text.size()) break;
    start = end + 1;
    ++column;
  }
  return 0;
}

}  // namespace

void SetCurrentInputLine(InputLine* line) { g_current = line; }

void DropCurrentInputLine(const InputLine* line) {
  if (g_current == line) g_current = nullptr;
}

InputLine* InputLineOf(std::string_view text) {
  if (g_current == nullptr || g_current->text == nullptr || g_current->text != text.data()) return nullptr;
  return g_current;
}

std::string_view ReportedFileName(std::string_view path) {
  if (path.size() > 2 && path[0] == '.' && (path[1] == '/' || path[1] == '\\')) path.remove_prefix(2);
  return path;
}

void ReportEmptyCells(InputLine& line, std::string_view text, std::size_t field_start) {
  if (line.cells_reported) return;
  field_start = std::min(field_start, text.size());
  std::vector<int> empty;
  int column = 1;
  std::size_t cell_start = 0;
  for (std::size_t i = 0; i < field_start; ++i) {
    if (text[i] != '\t') continue;
    if (i == cell_start) empty.push_back(column);
    ++column;
    cell_start = i + 1;
  }
  if (empty.empty()) return;
  line.cells_reported = true;
  // Show the line through the last field taken.
  std::size_t shown_end = text.find('\t', field_start);
  std::string as_stored;
  if (empty.size() == 1) {
    as_stored = "column " + std::to_string(empty[0] + 1) + " read as column " + std::to_string(empty[0]) +
                ", and every later cell one column to the left";
  } else {
    as_stored = "every cell after an empty one read one more column to the left (" + std::to_string(empty.size()) +
                " in all)";
  }
  Report({FileOf(line.file), ColumnList(empty),
          RecordOf(line.file, line.number), "empty cell", ShowCells(text.substr(0, shown_end)), as_stored});
}

void ReportExtraFields(InputLine& line, std::string_view text, std::size_t unread) {
  if (line.fields_reported || unread >= text.size()) return;
  std::size_t first = unread;
  while (first < text.size() && IsBlank(text[first])) ++first;
  if (first == text.size()) return;  // only empty cells and the line end are left
  line.fields_reported = true;
  const int column = 1 + static_cast<int>(std::count(text.begin(), text.begin() + first, '\t'));
  std::string as_stored = "not read";
  if (int quoted = QuotedTextWithTab(text); quoted > 0) {
    as_stored += ": the quoted text of column " + std::to_string(quoted) +
                 " holds a tab, so the cells after it were read one column to the right";
  }
  Report({FileOf(line.file), "column " + std::to_string(column),
          RecordOf(line.file, line.number), "extra fields", ShowCells(text.substr(first)), as_stored});
}

void ReportLineInPieces(const char* file, long long number, unsigned long long length, long long pieces,
                        std::size_t piece_size) {
  Report({FileOf(file), "line", RecordOf(file, number),
          "line read in pieces", std::to_string(length) + " characters",
          "read as " + std::to_string(pieces) + " lines of at most " + std::to_string(piece_size) + " characters"});
}

void ReportCharactersNotHeld(const InputLine& line, int column, unsigned code_point, std::size_t count) {
  char shown[32];
  if (code_point == 0) {
    std::snprintf(shown, sizeof shown, "a character beyond U+FFFF");
  } else {
    std::snprintf(shown, sizeof shown, "U+%04X", code_point);
  }
  std::string as_exported = shown;
  if (count > 1) as_exported += " and " + std::to_string(count - 1) + " more";
  Report({FileOf(line.file), "column " + std::to_string(column), RecordOf(line.file, line.number),
          "character not held", as_exported, count > 1 ? "? each" : "?"});
}

ExportRows::ExportRows(const char* file)
    : record_(std::string(ReportedFileName(file != nullptr ? file : "")) + " row "), prefix_(record_.size()) {}

ExportRows::~ExportRows() {
  if (record_.size() > prefix_ && LossRecord() == record_) SetLossRecord("");
}

void ExportRows::Name(long long row) {
  char digits[24];
  auto [end, error] = std::to_chars(digits, digits + sizeof digits, row);
  record_.resize(prefix_);
  record_.append(digits, end);
  SetLossRecord(record_);
}

void WatchReadLosses(std::vector<LossEntry>* entries) { g_watch = entries; }
