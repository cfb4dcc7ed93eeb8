// The journal of a run: a plain-text file that names what the run read and
// holds every row it wrote, so that the run can be recognised (no second
// import of the same files) and reversed (undo).
//
// One record per line, its fields separated by tabs; inside a field a
// backslash, tab, line feed and carriage return are written \\, \t, \n and
// \r, and a NULL column is \N. The first field names the record:
//
//   journal  1                            format version
//   server   HOST:PORT
//   database NAME
//   job      ORG TYPE YEAR REGION
//   options  the safety options of the run ("-atomic", "-again")
//   file     NAME SIZE SHA256             one per input file
//   start    TIME                         local time, "YYYY-MM-DD HH:MM:SS"
//   table    TABLE KEY TOP                the table's key column ("" when it has
//                                         no single-column key) and its highest
//                                         key when the run first wrote it
//   columns  TABLE COLUMN...              the table's columns, in order
//   +        TABLE KEY                    a row the run inserted
//   ~        TABLE KEY VALUE...           a row as it was before the run changed
//                                         it (the whole row, in column order)
//   -        TABLE KEY [VALUE...]         a row as it was before the run deleted
//                                         it (no values when an earlier ~ has them)
//   =        TABLE KEY CHECKSUM           how the run left a row it wrote
//                                         (empty checksum: the row is gone)
//   end      HOW [TIME]                   "completed", "interrupted", "lost connection, ...
//   undone   TIME [forced]
//
// For a table without a single-column key, KEY is the empty text and the
// values stand for the row. Every record is flushed as it is written, and a
// row's before-image is written before the statement that changes it is
// sent, so a run killed at any moment leaves a journal covering every row
// that landed except, at most, the one insert that was under way (see
// `table` TOP: undo looks for it above the highest known key).
#pragma once

#include <cstdio>
#include <deque>
#include <string>
#include <unordered_map>
#include <unordered_set>
#include <vector>

#include "store/connection.h"

// One line of a journal: its fields, unescaped.
using JournalRecord = std::vector<std::string>;

// Reads every record of the journal at `path` (with `head_only`, those up
// to the "start" record: what names the run). Returns false when it cannot
// be read.
bool ReadJournal(const std::string& path, std::vector<JournalRecord>& records, bool head_only = false);

// Appends one record to the journal at `path` (for "undone"). Returns false
// when the file cannot be written.
bool AppendJournalRecord(const std::string& path, const JournalRecord& record);

// The same row checksum the journal's "=" records hold, as an SQL expression
// over `columns` of a table (a server-side MD5, so that no row travels).
std::string RowChecksumSql(const std::vector<std::string>& columns);

// `name` quoted as an SQL identifier.
std::string QuoteName(const std::string& name);

// A value read from a row as an SQL literal (NULL, or a quoted, escaped text).
std::string SqlLiteral(const std::string& value, bool is_null);
// A NULL column as ReadJournal gives it (the file holds \N).
inline const std::string kJournalNull("\0null\0", 6);

class RunJournal : public WriteObserver {
 public:
  RunJournal() = default;
  ~RunJournal() override;
  RunJournal(const RunJournal&) = delete;
  RunJournal& operator=(const RunJournal&) = delete;

  // Creates the journal file at `path` (which must not exist). Returns false
  // when it cannot be created.
  bool Create(const std::string& path);

  // Writes one record and flushes it.
  void Record(const JournalRecord& record);

  // Reads the columns of every table in `tables` at once (one statement
  // instead of one per table when the run first writes it). Optional.
  void ReadColumnsAhead(const std::vector<std::string>& tables);

  bool BeforeWrite(const StatementParts& parts, std::string& why) override;
  void AfterWrite(const StatementParts& parts, unsigned long long affected, long long insert_id) override;

  // Records how the run left every row it wrote ("=") and then how the run
  // ended ("end").
  void Finish(const std::string& how, const std::string& time);

  // Records only the end, without reading the database (it is gone).
  void FinishWithoutRows(const std::string& how, const std::string& time);

  // The file's descriptor, for a signal handler's last record; -1 when closed.
  int FileDescriptor() const { return file_ != nullptr ? fileno(file_) : -1; }

 private:
  struct Table {
    std::string name;
    std::vector<std::string> columns;
    int key_index = -1;        // the single-column key among the columns; -1 when none
    bool numeric_key = false;  // an integer key: rows above `top` are new
    long long top = 0;         // the highest key when the run first wrote the table
    std::vector<long long> inserted;              // keys of the run's own rows, ascending
    std::unordered_set<std::string> before_kept;  // keys whose before-image is recorded
    std::vector<std::string> before_order;        // the same keys in order, for the "=" records
    // Per column: the values (folded as the server compares them) that rows
    // from before the run hold; a statement on a value none of them holds
    // changes only the run's own rows. Empty when not known.
    std::unordered_map<std::string, std::unordered_set<std::string>> old_values;
    std::unordered_set<std::string> unfoldable;   // columns whose old values cannot be folded safely
  };

  Table* Find(const std::string& name);
  Table* Register(const std::string& name, std::string& why);
  bool NeedsBeforeImage(Table& table, const StatementParts& parts);
  void RecordChecksums(Table& table);

  std::FILE* file_ = nullptr;
  std::string line_;  // reused per record
  std::deque<Table> tables_;  // a handful: no index; stable addresses
  std::vector<std::string> missing_;  // tables the database does not hold
  // ReadColumnsAhead's rows (column, key, type) by table name.
  std::unordered_map<std::string, std::vector<std::vector<std::string>>> columns_ahead_;
};
