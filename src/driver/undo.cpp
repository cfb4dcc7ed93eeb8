#include "driver/undo.h"

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <ctime>
#include <map>
#include <unordered_map>
#include <unordered_set>
#include <vector>

#include "store/connection.h"
#include "store/journal.h"
#include "util/platform.h"

namespace {

// What the journal says of one table.
struct UndoTable {
  std::string name;
  std::string key;  // "" when the table has no single-column key
  long long top = 0;
  std::vector<std::string> columns;
  std::vector<std::string> inserted;  // keys, in the order the run wrote them
  unsigned long long unknown_inserts = 0;  // inserts whose key the server did not give back
  // Rows from before the run, as they were before its first change.
  std::vector<std::string> changed;  // keys in order
  std::unordered_map<std::string, JournalRecord> before;  // key -> values
  std::unordered_map<std::string, std::string> left;  // key -> checksum as the run left the row ("" gone)
  unsigned long long deleted = 0;
  unsigned long long put_back = 0;
};

std::string NowText() {
  std::time_t now = std::time(nullptr);
  std::tm local{};
  LocalTime(now, &local);
  char text[32];
  std::strftime(text, sizeof text, "%Y-%m-%d %H:%M:%S", &local);
  return text;
}

std::string Literal(const std::string& value) { return SqlLiteral(value, value == kJournalNull); }

// "k1,k2,..." as SQL literals for keys[first, last).
std::string KeyList(const std::vector<std::string>& keys, std::size_t first, std::size_t last) {
  std::string list;
  for (std::size_t i = first; i < last; ++i) list += (i > first ? "," : "") + Literal(keys[i]);
  return list;
}

// The current checksum of each of `keys` (absent rows are missing from the map).
bool CurrentChecksums(const UndoTable& table, const std::vector<std::string>& keys,
                      std::unordered_map<std::string, std::string>& now) {
  for (std::size_t first = 0; first < keys.size(); first += 500) {
    std::size_t last = std::min(first + 500, keys.size());
    SqlResult rows = QueryDirect("select " + QuoteName(table.key) + ", " + RowChecksumSql(table.columns) + " from " +
                                 QuoteName(table.name) + " where " + QuoteName(table.key) + " in (" +
                                 KeyList(keys, first, last) + ")");
    if (!rows) return false;
    while (MYSQL_ROW row = rows.NextRow()) {
      if (row[0] != nullptr) now[row[0]] = row[1] != nullptr ? row[1] : "";
    }
  }
  return true;
}

bool LoadJournal(const std::vector<JournalRecord>& records, std::vector<UndoTable>& tables, std::string& server,
                 std::string& database, bool& ended, std::string& undone) {
  auto find = [&](const std::string& name) -> UndoTable* {
    for (UndoTable& table : tables) {
      if (table.name == name) return &table;
    }
    return nullptr;
  };
  for (const JournalRecord& record : records) {
    const std::string& kind = record[0];
    if (kind == "server" && record.size() > 1) server = record[1];
    if (kind == "database" && record.size() > 1) database = record[1];
    if (kind == "end") ended = record.size() > 1 && record[1] == "completed";
    if (kind == "undone" && record.size() > 1) undone = record[1];
    if (record.size() < 3) continue;
    if (kind == "table" && find(record[1]) == nullptr) {
      UndoTable& table = tables.emplace_back();
      table.name = record[1];
      table.key = record[2];
      table.top = record.size() > 3 ? std::atoll(record[3].c_str()) : 0;
      continue;
    }
    UndoTable* table = find(record[1]);
    if (table == nullptr) continue;
    const std::string& key = record[2];
    if (kind == "columns") {
      table->columns.assign(record.begin() + 2, record.end());
    } else if (kind == "+") {
      if (key.empty()) {
        ++table->unknown_inserts;
      } else {
        table->inserted.push_back(key);
      }
    } else if ((kind == "~" || kind == "-") && table->before.count(key) == 0 &&
               record.size() == table->columns.size() + 3) {
      // (A shorter one was cut by an interrupt before its statement was sent.)
      table->changed.push_back(key);
      table->before[key] = JournalRecord(record.begin() + 3, record.end());
    } else if (kind == "=" && record.size() > 3) {
      table->left[key] = record[3];
    }
  }
  return true;
}

// Rows that are not as the run left them, one line each; `unchecked` counts
// the rows the journal has no record of how the run left them (a killed run).
bool FindChangedRows(std::vector<UndoTable>& tables, std::vector<std::string>& changed_rows,
                     unsigned long long& unchecked) {
  for (UndoTable& table : tables) {
    if (table.key.empty()) {
      if (!table.changed.empty()) {
        changed_rows.push_back(table.name + ": " + std::to_string(table.changed.size()) +
                               " changed rows without a key cannot be put back");
      }
      continue;
    }
    std::vector<std::string> keys;
    for (const std::string& key : table.inserted) keys.push_back(key);
    for (const std::string& key : table.changed) keys.push_back(key);
    std::unordered_map<std::string, std::string> now;
    if (!CurrentChecksums(table, keys, now)) return false;
    for (const std::string& key : keys) {
      auto left = table.left.find(key);
      if (left == table.left.end()) {
        ++unchecked;
        continue;
      }
      auto current = now.find(key);
      std::string state = current == now.end() ? "" : current->second;
      if (state == left->second) continue;
      const char* what = left->second.empty() ? "is back since the run" :
                         current == now.end() ? "was deleted since the run" : "was changed since the run";
      changed_rows.push_back(table.name + " " + table.key + "=" + key + " " + what);
    }
    if (table.unknown_inserts > 0) {
      changed_rows.push_back(table.name + ": " + std::to_string(table.unknown_inserts) +
                             " inserted rows whose key the journal does not hold cannot be deleted");
    }
  }
  return true;
}

// A run that was killed may have sent one insert whose key never reached the
// journal: it is the row just above the highest key the journal knows of
// its table. Returns false when the database cannot be read.
bool FindInsertUnderWay(std::vector<UndoTable>& tables, std::vector<std::pair<UndoTable*, std::string>>& found) {
  for (UndoTable& table : tables) {
    if (table.key.empty()) continue;
    long long highest = table.top;
    for (const std::string& key : table.inserted) highest = std::max(highest, std::atoll(key.c_str()));
    SqlResult rows = QueryDirect("select " + QuoteName(table.key) + " from " + QuoteName(table.name) + " where " +
                                 QuoteName(table.key) + " > " + std::to_string(highest) + " order by 1 limit 10");
    if (!rows) return false;
    while (MYSQL_ROW row = rows.NextRow()) {
      if (row[0] != nullptr) found.emplace_back(&table, row[0]);
    }
  }
  return true;
}

void UndoLost(const char* why) {
  std::fprintf(stderr, "The connection to the database server was lost (%s): nothing was undone\n", why);
  std::exit(kExitNothingWritten);
}

// Puts back the rows of `table` and deletes the rows the run inserted.
bool Reverse(UndoTable& table) {
  const std::string name = QuoteName(table.name);
  const std::string key = QuoteName(table.key);
  for (std::size_t first = 0; first < table.inserted.size(); first += 500) {
    std::size_t last = std::min(first + 500, table.inserted.size());
    if (ExecuteDirect("delete from " + name + " where " + key + " in (" + KeyList(table.inserted, first, last) +
                      ")") != 0) {
      return false;
    }
    table.deleted += AffectedRows();
  }
  std::unordered_map<std::string, std::string> now;
  if (!CurrentChecksums(table, table.changed, now)) return false;
  for (const std::string& row_key : table.changed) {
    const JournalRecord& values = table.before[row_key];
    std::string sql;
    if (now.count(row_key) > 0) {
      sql = "update " + name + " set ";
      for (std::size_t i = 0; i < values.size(); ++i) {
        sql += (i > 0 ? "," : "") + QuoteName(table.columns[i]) + "=" + Literal(values[i]);
      }
      sql += " where " + key + "=" + Literal(row_key);
    } else {
      sql = "insert into " + name + " (";
      for (std::size_t i = 0; i < values.size(); ++i) sql += (i > 0 ? "," : "") + QuoteName(table.columns[i]);
      sql += ") values (";
      for (std::size_t i = 0; i < values.size(); ++i) sql += (i > 0 ? "," : "") + Literal(values[i]);
      sql += ")";
    }
    if (ExecuteDirect(sql) != 0) return false;
    ++table.put_back;
  }
  return true;
}

}  // namespace

int UndoRun(const std::string& path, bool force, const ConnectionTarget& target) {
  std::fflush(stdout);
  std::vector<JournalRecord> records;
  if (!ReadJournal(path, records)) {
    std::fprintf(stderr, "Cannot read the journal '%s'\n", path.c_str());
    return kExitRefused;
  }
  std::vector<UndoTable> tables;
  std::string server, database, undone;
  bool ended = false;
  if (!LoadJournal(records, tables, server, database, ended, undone)) {
    std::fprintf(stderr, "The journal '%s' is damaged: a row does not match its table's columns\n", path.c_str());
    return kExitRefused;
  }
  if (server != target.server || database != target.database) {
    std::fprintf(stderr, "Refused: the journal is of a run against %s, database %s; the configuration names %s, "
                 "database %s\n", server.c_str(), database.c_str(), target.server.c_str(), target.database.c_str());
    return kExitRefused;
  }
  if (!undone.empty()) {
    std::fprintf(stderr, "Refused: this run was already undone (%s)\n", undone.c_str());
    return kExitRefused;
  }
  std::vector<std::string> changed_rows;
  unsigned long long unchecked = 0;
  std::vector<std::pair<UndoTable*, std::string>> under_way;
  if (!FindChangedRows(tables, changed_rows, unchecked) || (!ended && !FindInsertUnderWay(tables, under_way))) {
    std::fprintf(stderr, "Cannot read the rows of the run: %s\nNothing was undone\n", LastDbError());
    return kExitRefused;
  }
  if (under_way.size() == 1) {
    std::fprintf(stderr, "The run was killed while it wrote a row: %s %s=%s, the only row above the run's, "
                 "is taken for it\n", under_way[0].first->name.c_str(), under_way[0].first->key.c_str(),
                 under_way[0].second.c_str());
    under_way[0].first->inserted.push_back(under_way[0].second);
  } else {
    for (const auto& [table, key] : under_way) {
      changed_rows.push_back(table->name + " " + table->key + "=" + key +
                             " was written after the run's last recorded row, by the run or by someone else");
    }
  }
  if (!ended) {
    std::fprintf(stderr, "The run did not complete (killed, interrupted or rolled back); it is undone from the rows "
                 "its journal holds\n");
  }
  if (unchecked > 0) {
    std::fprintf(stderr, "%llu rows cannot be checked: the run ended before it recorded how it left them\n",
                 unchecked);
  }
  if (!changed_rows.empty()) {
    for (const std::string& line : changed_rows) std::fprintf(stderr, "  %s\n", line.c_str());
    if (!force) {
      std::fprintf(stderr, "Refused: %zu rows are not as the run left them; nothing was undone (-force undoes "
                   "the run anyway)\n", changed_rows.size());
      return kExitRefused;
    }
    std::fprintf(stderr, "-force: undoing anyway\n");
  }
  SetTransactionLostHandler(UndoLost);
  if (BeginRunTransaction() != 0) {
    std::fprintf(stderr, "The server did not open a transaction: %s\nNothing was undone\n", LastDbError());
    return kExitRefused;
  }
  // Later tables hang on earlier ones (record entries on patients): the
  // reverse order of the run.
  for (auto table = tables.rbegin(); table != tables.rend(); ++table) {
    if (table->key.empty()) continue;
    if (!Reverse(*table)) {
      std::string why = LastDbError();
      EndRunTransaction(false);
      std::fprintf(stderr, "Undo failed on table %s: %s\nNothing was undone\n", table->name.c_str(), why.c_str());
      return kExitRefused;
    }
  }
  if (EndRunTransaction(true) != 0) {
    std::fprintf(stderr, "The commit failed: %s\nNothing was undone\n", LastDbError());
    return kExitRefused;
  }
  if (!AppendJournalRecord(path, {"undone", NowText(), force && !changed_rows.empty() ? "forced" : ""})) {
    std::fprintf(stderr, "Warning: the run was undone, but the journal could not be marked as undone\n");
  }
  std::fprintf(stderr, "== Undo of %s\n", path.c_str());
  for (const UndoTable& table : tables) {
    std::fprintf(stderr, "  %-22s %8llu deleted %8llu put back\n", table.name.c_str(), table.deleted, table.put_back);
  }
  return 0;
}
