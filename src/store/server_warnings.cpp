#include "store/server_warnings.h"

#include <cstdio>
#include <cstdlib>
#include <cctype>
#include <cstring>
#include <string_view>
#include <unordered_map>
#include <unordered_set>
#include <vector>

#include "store/sql.h"
#include "store/written_columns.h"
#include "store/written_losses.h"
#include "util/loss_report.h"

namespace {

// The server's words for what happened to a value, and what it kept instead
// (when the message itself does not say).
struct WarningKind {
  const char* words;  // the message starts with these
  const char* what;
  const char* as_stored;
};

constexpr WarningKind kWarningKinds[] = {
    {"Data truncated", "cut", "(cut by the server)"},
    {"Data too long", "cut", "(cut by the server)"},
    {"Out of range value", "out of range", "(the column's limit)"},
    {"Incorrect date value", "not a date", "0000-00-00"},
    {"Incorrect datetime value", "not a date", "0000-00-00 00:00:00"},
    {"Incorrect time value", "not a date", "00:00:00"},
    {"Incorrect string value", "character not held", "(with '?' for it)"},
    {"Incorrect integer value", "zeroed", "0"},
    {"Incorrect decimal value", "zeroed", "0"},
    {"Incorrect double value", "zeroed", "0"},
    {"Column", "zeroed", "(the column's default)"},  // "Column 'x' cannot be null"
};

// The column a message names: "... for column 'x' at row 1", "... for
// column `db`.`t`.`x` at row 1", "Column 'x' cannot be null".
std::string ColumnOfMessage(std::string_view message) {
  std::size_t at = message.rfind("column ");
  if (at == std::string_view::npos) at = message.find("Column ");
  if (at == std::string_view::npos) return "";
  std::string_view rest = message.substr(at + 7);
  std::size_t end = rest.find(" at row");
  if (end == std::string_view::npos) end = rest.find(' ');
  rest = rest.substr(0, end);
  std::size_t dot = rest.rfind('.');
  if (dot != std::string_view::npos) rest = rest.substr(dot + 1);
  std::string column;
  for (char c : rest) {
    if (c != '\'' && c != '`') column.push_back(c);
  }
  return column;
}

// The row a message names ("at row 3" is the statement's third), 1 when none.
std::size_t RowOfMessage(std::string_view message) {
  std::size_t at = message.rfind(" at row ");
  if (at == std::string_view::npos) return 1;
  long row = std::strtol(std::string(message.substr(at + 8)).c_str(), nullptr, 10);
  return row > 0 ? static_cast<std::size_t>(row) : 1;
}

bool IsDigit(char c) { return c >= '0' && c <= '9'; }

// "Data truncated" is what this server says for a text cut to its column,
// for a date it could not store (kept as 0000-00-00) and for a number
// followed by other text (kept as the number); the value sent tells which.
void ClassifyTruncation(const std::string& sent, std::string& what, std::string& as_stored) {
  std::size_t at = 0;
  while (at < sent.size() && sent[at] == ' ') ++at;
  std::size_t digits = at;
  while (at < sent.size() && IsDigit(sent[at])) ++at;
  if (at == digits) return;
  if (at < sent.size() && (sent[at] == '-' || sent[at] == '/') && at - digits <= 4 && at + 1 < sent.size() &&
      IsDigit(sent[at + 1])) {
    what = "not a date";
    as_stored = "0000-00-00";
    return;
  }
  char* end = nullptr;
  double number = std::strtod(sent.c_str(), &end);
  if (end != sent.c_str()) {
    what = "read in part";
    char text[64];
    std::snprintf(text, sizeof text, "%.15g", number);
    as_stored = text;
  }
}

// The columns of `table` (lower case) for which the server warns about an
// empty text, which the application sends for "no date" or "no number":
// dates, times and numbers.
std::unordered_set<std::string> ColumnsWarningOnEmpty(const std::string& table) {
  std::unordered_set<std::string> columns;
  SqlResult result = QueryDirect(
      "select lower(column_name) from information_schema.columns where table_schema = database() and "
      "table_name = '" + EscapeSqlText(table) + "' and data_type in ('date','datetime','timestamp','time','year',"
      "'tinyint','smallint','mediumint','int','bigint','decimal','float','double','bit')");
  while (MYSQL_ROW row = result.NextRow()) {
    if (row[0] != nullptr) columns.insert(row[0]);
  }
  return columns;
}

// How many warnings the empty texts of `statement` give (one each that goes
// to a column of `zeroing`): when the server gave no more, they are all it
// said, and none of them is a loss.
unsigned EmptyValuesWarned(const std::string& statement, const std::unordered_set<std::string>& zeroing) {
  WrittenColumns written = SplitWrittenColumns(statement);
  unsigned count = 0;
  for (const std::vector<WrittenColumns::Span>& row : written.rows) {
    for (std::size_t i = 0; i < row.size() && i < written.columns.size(); ++i) {
      std::string_view value(statement.data() + row[i].begin, row[i].end - row[i].begin);
      if (value != "''" && value != "\"\"") continue;
      std::string column = written.columns[i];
      for (char& c : column) c = static_cast<char>(std::tolower(static_cast<unsigned char>(c)));
      if (zeroing.count(column) != 0) ++count;
    }
  }
  return count;
}

}  // namespace

void ReportServerWarnings(const std::string& statement, SqlResult& warnings, const std::string* record_when_sent) {
  std::string table = SplitStatement(statement).table;
  std::string record = record_when_sent == nullptr  ? RecordOfStatement(statement)
                       : record_when_sent->empty() ? RecordInStatement(statement)
                                                   : *record_when_sent;
  while (MYSQL_ROW row = warnings.NextRow()) {
    if (warnings.FieldCount() < 3) return;
    std::string_view level = warnings.ColumnBytes(row, 0);
    std::string_view message = warnings.ColumnBytes(row, 2);
    if (level == "Note") continue;
    std::string column = ColumnOfMessage(message);
    std::string what(message);
    std::string as_stored;
    for (const WarningKind& kind : kWarningKinds) {
      if (message.substr(0, std::strlen(kind.words)) == kind.words) {
        what = kind.what;
        as_stored = kind.as_stored;
        break;
      }
    }
    std::string sent;
    bool named = !column.empty() && ValueOfColumn(statement, column, RowOfMessage(message) - 1, sent);
    // An empty text for a date or number is the application's "none": the
    // zero the server keeps for it loses nothing.
    if (named && sent.empty()) continue;
    if (what == "cut" && message.substr(0, 14) == "Data truncated") ClassifyTruncation(sent, what, as_stored);
    ReportLoss({table, column, record, what, sent, as_stored});
  }
}

void HearServerWarnings(const std::string& statement, unsigned warning_count) {
  std::string table = SplitStatement(statement).table;
  if (table.empty()) return;
  // Known once per table and connection (after the first warnings were
  // read: any other statement would clear them).
  static std::unordered_map<std::string, std::unordered_set<std::string>> zeroing_by_table;
  static unsigned connection = 0;
  if (connection != ConnectionCount()) {
    zeroing_by_table.clear();
    connection = ConnectionCount();
  }
  auto known = zeroing_by_table.find(table);
  if (known != zeroing_by_table.end() && warning_count == EmptyValuesWarned(statement, known->second)) return;
  SqlResult warnings = QueryDirect("SHOW WARNINGS");
  ReportServerWarnings(statement, warnings);
  if (known == zeroing_by_table.end()) zeroing_by_table.emplace(table, ColumnsWarningOnEmpty(table));
}
