#include "store/journal.h"

#include <algorithm>
#include <cctype>
#include <cstring>

#include "util/platform.h"
#include "util/strings.h"

namespace {

void AppendEscaped(std::string& out, std::string_view field) {
  for (char c : field) {
    switch (c) {
      case '\\': out += "\\\\"; break;
      case '\t': out += "\\t"; break;
      case '\n': out += "\\n"; break;
      case '\r': out += "\\r"; break;
      default: out.push_back(c);
    }
  }
}

std::string Unescape(std::string_view field) {
  std::string out;
  for (std::size_t i = 0; i < field.size(); ++i) {
    if (field[i] != '\\' || i + 1 == field.size()) {
      out.push_back(field[i]);
      continue;
    }
    char next = field[++i];
    switch (next) {
      case 't': out.push_back('\t'); break;
      case 'n': out.push_back('\n'); break;
      case 'r': out.push_back('\r'); break;
      case 'N': out += kJournalNull; break;
      default: out.push_back(next);
    }
  }
  return out;
}

// A row value as a journal field: NULL as \N.
void AppendValue(std::string& out, const char* value, unsigned long length) {
  if (value == nullptr) {
    out += "\\N";
  } else {
    AppendEscaped(out, std::string_view(value, length));
  }
}

// How the server compares a text in the default (case-insensitive, trailing
// blanks ignored) collations, for plain ASCII texts; false when the text is
// not plain ASCII, whose folding we do not try to follow.
bool Fold(std::string_view text, std::string& folded) {
  folded.clear();
  for (char c : text) {
    auto byte = static_cast<unsigned char>(c);
    if (byte >= 0x80 || byte < 0x20) return false;
    folded.push_back(static_cast<char>(std::tolower(byte)));
  }
  while (!folded.empty() && folded.back() == ' ') folded.pop_back();
  return true;
}

// A condition of the form `column = literal`: the column and the literal
// (a quoted text without quotes or backslashes inside, or an integer).
bool SimpleEquality(const std::string& where, std::string& column, std::string& value, bool& quoted) {
  std::size_t i = 0;
  auto skip_blanks = [&] {
    while (i < where.size() && std::isspace(static_cast<unsigned char>(where[i]))) ++i;
  };
  skip_blanks();
  bool backquoted = i < where.size() && where[i] == '`';
  if (backquoted) ++i;
  std::size_t start = i;
  while (i < where.size() && (std::isalnum(static_cast<unsigned char>(where[i])) || where[i] == '_')) ++i;
  column = where.substr(start, i - start);
  if (column.empty()) return false;
  if (backquoted) {
    if (i >= where.size() || where[i] != '`') return false;
    ++i;
  }
  skip_blanks();
  if (i >= where.size() || where[i] != '=') return false;
  ++i;
  skip_blanks();
  quoted = i < where.size() && where[i] == '\'';
  if (quoted) {
    std::size_t close = where.find('\'', i + 1);
    if (close == std::string::npos) return false;
    value = where.substr(i + 1, close - i - 1);
    if (value.find('\\') != std::string::npos) return false;
    i = close + 1;
  } else {
    start = i;
    if (i < where.size() && where[i] == '-') ++i;
    while (i < where.size() && std::isdigit(static_cast<unsigned char>(where[i]))) ++i;
    value = where.substr(start, i - start);
    if (value.empty() || value == "-") return false;
  }
  skip_blanks();
  return i == where.size();
}

std::string KeyOf(MYSQL_ROW row, unsigned long* lengths, unsigned count, int key_index) {
  std::string key;
  if (key_index >= 0) {
    AppendValue(key, row[key_index], lengths[key_index]);
    return key;
  }
  for (unsigned i = 0; i < count; ++i) {
    if (i > 0) key.push_back('\t');
    AppendValue(key, row[i], lengths[i]);
  }
  return key;
}

}  // namespace

bool ReadJournal(const std::string& path, std::vector<JournalRecord>& records, bool head_only) {
  records.clear();
  std::FILE* file = std::fopen(path.c_str(), "rb");
  if (file == nullptr) return false;
  std::string line;
  int c;
  auto flush_line = [&] {
    JournalRecord record;
    std::size_t start = 0;
    for (;;) {
      std::size_t tab = line.find('\t', start);
      record.push_back(Unescape(std::string_view(line).substr(start, tab - start)));
      if (tab == std::string::npos) break;
      start = tab + 1;
    }
    if (!line.empty() && line[0] != '#') records.push_back(record);
    line.clear();
  };
  while ((c = GetByteUnlocked(file)) != EOF) {
    if (c == '\n') {
      flush_line();
      if (head_only && !records.empty() && records.back()[0] == "start") break;
    } else {
      line.push_back(static_cast<char>(c));
    }
  }
  // A last line without its line end was cut by a kill: it is not whole.
  std::fclose(file);
  return true;
}

bool AppendJournalRecord(const std::string& path, const JournalRecord& record) {
  std::FILE* file = std::fopen(path.c_str(), "ab");
  if (file == nullptr) return false;
  std::string line;
  for (std::size_t i = 0; i < record.size(); ++i) {
    if (i > 0) line.push_back('\t');
    AppendEscaped(line, record[i]);
  }
  line.push_back('\n');
  bool ok = std::fwrite(line.data(), 1, line.size(), file) == line.size();
  return std::fclose(file) == 0 && ok;
}

std::string QuoteName(const std::string& name) {
  std::string quoted = "`";
  for (char c : name) {
    quoted.push_back(c);
    if (c == '`') quoted.push_back('`');
  }
  return quoted + "`";
}

std::string RowChecksumSql(const std::vector<std::string>& columns) {
  // 0x1f between columns and 0x00 for NULL keep ("a","bc") apart from ("ab","c").
  std::string sql = "md5(concat_ws(0x1f";
  for (const std::string& column : columns) sql += ",ifnull(" + QuoteName(column) + ",0x00)";
  return sql + "))";
}

std::string SqlLiteral(const std::string& value, bool is_null) {
  if (is_null) return "NULL";
  return "'" + EscapeSqlText(value) + "'";
}

RunJournal::~RunJournal() {
  if (file_ != nullptr) std::fclose(file_);
}

bool RunJournal::Create(const std::string& path) {
  file_ = std::fopen(path.c_str(), "wbx");
  return file_ != nullptr;
}

void RunJournal::Record(const JournalRecord& record) {
  if (file_ == nullptr) return;
  line_.clear();
  for (std::size_t i = 0; i < record.size(); ++i) {
    if (i > 0) line_.push_back('\t');
    AppendEscaped(line_, record[i]);
  }
  line_.push_back('\n');
  std::fwrite(line_.data(), 1, line_.size(), file_);
  std::fflush(file_);
}

RunJournal::Table* RunJournal::Find(const std::string& name) {
  for (Table& table : tables_) {
    if (table.name == name) return &table;
  }
  return nullptr;
}

void RunJournal::ReadColumnsAhead(const std::vector<std::string>& tables) {
  if (tables.empty()) return;
  std::string in;
  for (const std::string& table : tables) in += (in.empty() ? "'" : ",'") + EscapeSqlText(table) + "'";
  SqlResult columns = QueryDirect(
      "select table_name, column_name, column_key, data_type from information_schema.columns where table_schema = "
      "database() and table_name in (" + in + ") order by table_name, ordinal_position");
  while (MYSQL_ROW row = columns.NextRow()) {
    if (row[0] == nullptr) continue;
    columns_ahead_[row[0]].push_back(
        {row[1] != nullptr ? row[1] : "", row[2] != nullptr ? row[2] : "", row[3] != nullptr ? row[3] : ""});
  }
}

RunJournal::Table* RunJournal::Register(const std::string& name, std::string& why) {
  if (Table* known = Find(name)) return known;
  for (const std::string& missing : missing_) {
    if (missing == name) return nullptr;
  }
  std::vector<std::vector<std::string>> rows;
  auto ahead = columns_ahead_.find(name);
  if (ahead != columns_ahead_.end()) {
    rows = std::move(ahead->second);
    columns_ahead_.erase(ahead);
  } else {
    SqlResult columns = QueryDirect(
        "select column_name, column_key, data_type from information_schema.columns where table_schema = database() "
        "and table_name = '" + EscapeSqlText(name) + "' order by ordinal_position");
    if (!columns) {
      why = std::string("Statement not sent: the journal could not read the columns of ") + name + ": " + LastDbError();
      return nullptr;
    }
    while (MYSQL_ROW row = columns.NextRow()) {
      rows.push_back({row[0] != nullptr ? row[0] : "", row[1] != nullptr ? row[1] : "", row[2] != nullptr ? row[2] : ""});
    }
  }
  Table table;
  table.name = name;
  int keys = 0;
  bool numeric = false;
  for (const std::vector<std::string>& row : rows) {
    table.columns.push_back(row[0]);
    if (row[1] == "PRI") {
      ++keys;
      table.key_index = static_cast<int>(table.columns.size()) - 1;
      numeric = row[2].find("int") != std::string::npos;
    }
  }
  if (table.columns.empty()) {
    missing_.push_back(name);  // its statements fail on their own
    return nullptr;
  }
  if (keys != 1) table.key_index = -1;
  table.numeric_key = table.key_index >= 0 && numeric;
  if (table.numeric_key) {
    SqlResult top = QueryDirect("select max(" + QuoteName(table.columns[table.key_index]) + ") from " + QuoteName(name));
    MYSQL_ROW row = top.NextRow();
    if (!top) {
      why = std::string("Statement not sent: the journal could not read the keys of ") + name + ": " + LastDbError();
      return nullptr;
    }
    table.top = row != nullptr && row[0] != nullptr ? std::atoll(row[0]) : 0;
  }
  Record({"table", name, table.key_index >= 0 ? table.columns[table.key_index] : "", std::to_string(table.top)});
  JournalRecord column_record = {"columns", name};
  column_record.insert(column_record.end(), table.columns.begin(), table.columns.end());
  Record(column_record);
  tables_.push_back(std::move(table));
  return &tables_.back();
}

// Whether an UPDATE or DELETE may touch a row from before the run. Rows the
// run inserted need no before-image (undo deletes them), and most updates of
// an import are of those: naming them by key above the table's top, or by a
// value no older row holds, spares the read.
bool RunJournal::NeedsBeforeImage(Table& table, const StatementParts& parts) {
  if (!table.numeric_key) return true;
  std::string column;
  std::string value;
  bool quoted = false;
  if (!SimpleEquality(parts.where, column, value, quoted)) return true;
  const std::string& key = table.columns[table.key_index];
  if (!quoted && EqualsNoCase(column.c_str(), key.c_str())) return std::atoll(value.c_str()) <= table.top;
  if (!quoted) return true;
  std::string folded;
  if (!Fold(value, folded)) return true;
  auto known = table.old_values.find(column);
  if (known == table.old_values.end()) {
    if (table.unfoldable.count(column) > 0) return true;
    SqlResult values = QueryDirect("select distinct " + QuoteName(column) + " from " + QuoteName(table.name) +
                                   " where " + QuoteName(key) + " <= " + std::to_string(table.top));
    if (!values) return true;
    std::unordered_set<std::string> set;
    std::string folded_old;
    while (MYSQL_ROW row = values.NextRow()) {
      if (row[0] == nullptr) continue;
      if (!Fold(std::string_view(row[0], values.Lengths()[0]), folded_old)) {
        table.unfoldable.insert(column);
        return true;
      }
      set.insert(folded_old);
    }
    known = table.old_values.emplace(column, std::move(set)).first;
  }
  return known->second.count(folded) > 0;
}

bool RunJournal::BeforeWrite(const StatementParts& parts, std::string& why) {
  Table* table = Register(parts.table, why);
  if (table == nullptr) return why.empty();
  if (parts.verb != "update" && parts.verb != "delete") return true;
  if (!NeedsBeforeImage(*table, parts)) return true;
  std::string select = "select * from " + QuoteName(table->name);
  std::string where = parts.where.empty() ? "" : "(" + parts.where + ")";
  if (table->numeric_key) {
    if (!where.empty()) where += " and ";
    where += QuoteName(table->columns[table->key_index]) + " <= " + std::to_string(table->top);
  }
  if (!where.empty()) select += " where " + where;
  SqlResult rows = QueryDirect(select);
  if (!rows) {
    why = std::string("Statement not sent: the journal could not read the rows it changes: ") + LastDbError();
    return false;
  }
  const bool deleting = parts.verb == "delete";
  unsigned count = rows.FieldCount();
  while (MYSQL_ROW row = rows.NextRow()) {
    unsigned long* lengths = rows.Lengths();
    std::string key = KeyOf(row, lengths, count, table->key_index);
    bool known = table->before_kept.count(key) > 0;
    if (known && !deleting) continue;
    line_.clear();
    line_ += deleting ? "-\t" : "~\t";
    AppendEscaped(line_, table->name);
    line_ += '\t';
    if (table->key_index >= 0) line_ += key;  // already escaped
    if (!known) {
      for (unsigned i = 0; i < count; ++i) {
        line_ += '\t';
        AppendValue(line_, row[i], lengths[i]);
      }
      table->before_kept.insert(key);
      table->before_order.push_back(key);
    }
    line_ += '\n';
    std::fwrite(line_.data(), 1, line_.size(), file_);
  }
  std::fflush(file_);
  return true;
}

void RunJournal::AfterWrite(const StatementParts& parts, unsigned long long affected, long long insert_id) {
  if (parts.verb != "insert" && parts.verb != "replace") return;
  Table* table = Find(parts.table);
  if (table == nullptr || affected == 0) return;
  if (!table->numeric_key || insert_id <= 0) {
    Record({"+", table->name, ""});  // a key the server did not give back: undo says so
    return;
  }
  // A multi-row insert numbers its rows from the first one's key on.
  for (unsigned long long i = 0; i < affected; ++i) {
    long long key = insert_id + static_cast<long long>(i);
    Record({"+", table->name, std::to_string(key)});
    if (table->inserted.empty() || table->inserted.back() < key) table->inserted.push_back(key);
  }
}

void RunJournal::RecordChecksums(Table& table) {
  if (table.key_index < 0) return;  // rows without a key cannot be looked up one by one
  const std::string key = QuoteName(table.columns[table.key_index]);
  const std::string checksum = RowChecksumSql(table.columns);
  const std::string from = " from " + QuoteName(table.name) + " where ";
  auto record_rows = [&](const std::string& condition, auto&& wanted, std::unordered_set<std::string>& seen) {
    SqlResult rows = QueryDirect("select " + key + ", " + checksum + from + condition);
    while (MYSQL_ROW row = rows.NextRow()) {
      if (row[0] == nullptr || !wanted(row[0])) continue;
      seen.insert(row[0]);
      Record({"=", table.name, row[0], row[1] != nullptr ? row[1] : ""});
    }
  };
  // The run's own rows: ranges of keys, mostly one after the other.
  std::unordered_set<std::string> seen;
  const std::vector<long long>& own = table.inserted;
  for (std::size_t first = 0; first < own.size();) {
    std::size_t last = first;
    while (last + 1 < own.size() && last - first < 999 && own[last + 1] - own[first] < 4000) ++last;
    record_rows(
        key + " between " + std::to_string(own[first]) + " and " + std::to_string(own[last]),
        [&](const char* value) { return std::binary_search(own.begin(), own.end(), std::atoll(value)); }, seen);
    first = last + 1;
  }
  for (long long gone : own) {
    if (seen.count(std::to_string(gone)) == 0) Record({"=", table.name, std::to_string(gone), ""});
  }
  // Rows from before the run that it changed or deleted.
  for (std::size_t first = 0; first < table.before_order.size(); first += 500) {
    std::string list;
    std::size_t last = std::min(first + 500, table.before_order.size());
    for (std::size_t i = first; i < last; ++i) {
      if (i > first) list += ",";
      list += SqlLiteral(table.before_order[i], false);
    }
    record_rows(key + " in (" + list + ")", [](const char*) { return true; }, seen);
  }
  for (const std::string& changed : table.before_order) {
    if (seen.count(changed) == 0) Record({"=", table.name, changed, ""});
  }
}

void RunJournal::Finish(const std::string& how, const std::string& time) {
  for (Table& table : tables_) RecordChecksums(table);
  FinishWithoutRows(how, time);
}

void RunJournal::FinishWithoutRows(const std::string& how, const std::string& time) {
  Record({"end", how, time});
  if (file_ != nullptr) std::fclose(file_);
  file_ = nullptr;
}
