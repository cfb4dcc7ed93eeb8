#include "store/written_losses.h"

#include "store/written_columns.h"
#include "util/loss_report.h"
#include "util/text.h"

namespace {

// "2012-04-03T00:00:00" kept as "2012-04-03": a date field takes the date of
// an exported date and time on purpose, and the date columns hold no time.
bool OnlyTimeOfDayCut(std::string_view given, std::string_view kept) {
  if (kept.size() != 10 || kept[4] != '-' || kept[7] != '-' || given.size() <= kept.size()) return false;
  if (given[10] != 'T' && given[10] != ' ') return false;
  for (char c : given.substr(11)) {
    if ((c < '0' || c > '9') && c != ':' && c != '.' && c != '+' && c != '-' && c != 'Z') return false;
  }
  return true;
}

// True when another value of the statement that goes to a column is the
// same as `value`: a read that gave it could be either, so the report does
// not guess (an export's "1,500" read as 1 next to an order of 1).
bool WrittenTwice(const std::vector<FormattedValue>& values, const FormattedValue& value,
                  const WrittenColumns& written) {
  const SqlArg& arg = *value.arg;
  for (const FormattedValue& other : values) {
    const SqlArg& b = *other.arg;
    if (&other == &value || b.kind != arg.kind || ColumnAt(written, other.format_offset).empty()) continue;
    bool same = arg.kind == SqlArg::Kind::kInteger ? b.integer == arg.integer
                : arg.kind == SqlArg::Kind::kReal  ? static_cast<float>(b.real) == static_cast<float>(arg.real)
                                                   : b.text == arg.text;
    if (same) return true;
  }
  return false;
}

}  // namespace

std::string RecordOfStatement(const std::string& statement) {
  if (!LossRecord().empty()) return LossRecord();
  return RecordInStatement(statement);
}

std::string RecordInStatement(const std::string& statement) {
  std::string case_number;
  if (ValueOfColumn(statement, "patient_id", 0, case_number)) return case_number;
  // The finder's statements name the patient in their condition.
  constexpr std::string_view kWhere = " where patient_id='";
  std::size_t at = statement.rfind(kWhere);
  if (at == std::string::npos) return "";
  at += kWhere.size();
  std::size_t end = statement.find('\'', at);
  return end == std::string::npos ? "" : statement.substr(at, end - at);
}

void ReportWrittenLosses(const char* format, const std::string& statement, const std::vector<FormattedValue>& values) {
  WrittenColumns written = SplitWrittenColumns(format);
  if (written.rows.empty()) return;
  std::string table;
  std::string record;
  for (const FormattedValue& value : values) {
    std::string column = ColumnAt(written, value.format_offset);
    if (column.empty()) continue;
    if (table.empty()) {
      table = SplitStatement(statement).table;
      record = RecordOfStatement(statement);
    }
    const SqlArg& arg = *value.arg;
    if (arg.cut) {
      std::string given = CutTextGiven(arg.text);
      // A field filled in place after it was cut no longer holds what was cut.
      if (!given.empty() && !OnlyTimeOfDayCut(given, arg.text)) {
        ReportLoss({table, column, record, "cut", given, std::string(arg.text)});
      }
    }
    if (!AnyReadInPart() || WrittenTwice(values, value, written)) continue;
    std::string as_stored = statement.substr(value.begin, value.end - value.begin);
    switch (arg.kind) {
      case SqlArg::Kind::kInteger:
        ClaimReadInPart(WrittenKind::kInteger, static_cast<double>(arg.integer), "", table, column, as_stored, record);
        break;
      case SqlArg::Kind::kReal:
        ClaimReadInPart(WrittenKind::kDecimal, arg.real, "", table, column, as_stored, record);
        break;
      case SqlArg::Kind::kText:
        ClaimReadInPart(WrittenKind::kText, 0, arg.text, table, column, std::string(arg.text), record);
        break;
      case SqlArg::Kind::kChar:
        break;
    }
  }
}
