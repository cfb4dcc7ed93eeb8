// The one process-wide database connection, and the way every statement of
// the program reaches the server.
//
// Single-threaded by design: the connection, the last-error text and the
// escape work area belong to the one thread of the run.
#pragma once

#include <mysql.h>

#include <cstddef>
#include <functional>
#include <initializer_list>
#include <string>
#include <string_view>
#include <vector>

#include "store/sql.h"
#include "util/text.h"

// How the connection is made and kept, beyond server, port and credentials.
enum class SslMode {
  kPreferred,  // TLS whenever the server offers it, plain otherwise
  kRequired,   // TLS or no connection
  kVerify,     // TLS, the server's certificate checked against ssl_ca and its name against the server's
};

struct ConnectOptions {
  // How long a statement waits for a server that went away (a restart)
  // before it fails; 0 fails at once.
  int reconnect_seconds = 60;
  SslMode ssl_mode = SslMode::kPreferred;
  std::string ssl_ca;  // CA certificate file; empty for none
};

// Connects to `server`:`port` as `user` (no default database, reconnecting by
// itself when the link drops), selects `database` and sets the session's
// sql_mode (see kCorvanaSqlMode). Returns 0 when connected, 1 on failure,
// also when the TLS mode refuses the connection (the half-made connection is
// closed again; LastDbError says why); a mode that cannot be set is no
// failure, SqlModeNotice() says so.
int ConnectDatabase(const char* server, const char* database, const char* user, const char* password, int port,
                    const ConnectOptions& options = {});

// How many connections ConnectDatabase has opened in this process: lets a
// store operation that keeps rows it read know when they belong to an
// earlier connection (another database).
unsigned ConnectionCount();

// Changes with every connection and every new pass of a batched run (see
// RunInPasses): a store operation that keeps rows it read reads them again
// when it changes.
unsigned StoreGeneration();

// The TLS cipher of the connection, or "" when it is not encrypted.
const char* ConnectionCipher();

// The session sql_mode of the Corvana application's own server: no strict
// modes and no zero-date checks, so "0000-00-00" means "no date" and an
// over-long text is cut by the server. ConnectDatabase sets it right after
// connecting and again on every reconnect, because a stock server starts
// strict and would refuse such rows.
constexpr const char* kCorvanaSqlMode = "NO_ENGINE_SUBSTITUTION";

// After a successful ConnectDatabase: one line for the operator when the
// session could not be given kCorvanaSqlMode, or when the server's own mode
// differs from it (and this run therefore overrides it); empty otherwise.
const std::string& SqlModeNotice();

// Closes the connection. Returns 0.
int CloseDatabase();

// Why the last statement failed: the server's message, or our own when the
// statement was refused before sending. Valid until the next call.
const char* LastDbError();

// Escapes `text` in place for use inside a single-quoted SQL literal (quote,
// double quote, backslash, line breaks, NUL and Ctrl-Z get a backslash). The
// buffer must have room for twice the text's length plus one. Needs an open
// connection. Returns `text`.
char* EscapeSql(char* text);

// Escapes a copy of `text` into a growing string; no size limit applies, so
// nothing of the text is ever cut. What the jobs use for record entry notes.
std::string EscapeSqlText(std::string_view text);

// Selects the statement calls below that escape every text of the statement
// as it is formatted (SqlTexts::kEscape): ExecuteSql(kEscapeTexts, "...", {...}).
// The row operations of the store and the jobs' own statements use them, so
// a text taken from an input is escaped exactly once, in the statement, and
// never cut by its escaped form; only an argument marked AlreadyEscaped is
// sent as it is. The calls without it send texts as given (for callers that
// escape their texts themselves).
struct EscapeTexts {};
inline constexpr EscapeTexts kEscapeTexts{};

// Formats `statement` with `args` (see FormatSql) and sends it. Returns 0 on
// success; the library's non-zero code when the server refused it; 1 when it
// was refused before sending (LastDbError says why).
//
// When the server has gone away (a restart), the statement waits for it, with
// a notice on stderr, up to ConnectOptions::reconnect_seconds: a statement
// that never reached the server is then sent again; one whose outcome is
// unknown because the link dropped while it ran fails, so that the job
// reports it rather than risk writing a row twice. Once the limit has passed
// without the server, statements fail at once until one gets through.
int ExecuteSql(const char* statement, std::initializer_list<SqlArg> args);
int ExecuteSql(EscapeTexts, const char* statement, std::initializer_list<SqlArg> args);

// Every statement that writes a table, as the store sends it: the journal
// of a run watches them through this interface.
class WriteObserver {
 public:
  virtual ~WriteObserver() = default;
  // Called before the statement is sent. Returning false refuses it (it is
  // not sent and fails with `why`). It may read the database (QueryDirect).
  virtual bool BeforeWrite(const StatementParts& parts, std::string& why) = 0;
  // Called right after the server accepted it, with the rows it changed and
  // the key it created (0 for none). It must not send anything, so that
  // LastInsertId() still answers for the statement.
  virtual void AfterWrite(const StatementParts& parts, unsigned long long affected, long long insert_id) = 0;
};

// Watches every write from now on (nullptr stops watching). The observer
// must outlive the watching.
void SetWriteObserver(WriteObserver* observer);

// Opens the one transaction that holds the rest of the run (a dry run or an
// atomic run). From then on the connection is not made again when it drops
// (a new session would write outside the transaction and the server has
// already rolled it back), and a statement that would end the transaction
// by itself (DDL, LOCK TABLES, COMMIT, ...) or write a table that is not
// transactional is refused. Returns 0, or 1 when the server refused (see
// LastDbError).
//
// `batched`: the job's writes wait and go to the server several at a time
// (one round trip for many statements: what a distant server wants), and the
// job runs through RunInPasses. The stdout log and the rows are those of a
// run that sends one statement at a time. Nothing changes when stdout cannot
// be held back (see HoldLog) or the server does not take multi-statement
// requests: statements then go one at a time.
int BeginRunTransaction(bool batched = false);

// True while the run's writes are batched.
bool BatchingWrites();

// Runs `job` once; in a batched run, again from the start as often as the
// server answers otherwise than the store predicted (a statement refused, a
// key another program took): what the server confirmed is answered from the
// record of the run and neither sent nor logged twice, so that the job sees
// every answer a one-statement-at-a-time run would have seen. Says why on
// stderr. After a few passes every statement is awaited. When it returns,
// every statement is confirmed and the whole log shown.
void RunInPasses(const std::function<void()>& job);

// Commits (`commit`) or rolls back the run's transaction. Returns 0, or 1
// when the server did not confirm it (see LastDbError).
int EndRunTransaction(bool commit);

// Called, instead of waiting for the server, when the connection drops while
// the run's transaction is open: everything the run wrote is gone, so the
// handler ends the run. `why` is the library's message.
void SetTransactionLostHandler(void (*handler)(const char* why));

// The first of `tables` (that the database holds) whose engine cannot roll
// back (anything but InnoDB), as "name (engine)"; "" when all can. Missing
// tables are not reported: their statements fail anyway.
std::string FirstNonTransactionalTable(const std::vector<std::string>& tables);

// Sends `sql` as it is, outside the run's statement counts, and takes its
// whole result (an empty SqlResult on failure or for no result set). For the
// store's own reads (the journal's before-images, undo); it waits for a lost
// server like QuerySql.
class SqlResult;
SqlResult QueryDirect(const std::string& sql);

// The same for a statement without a result. Returns 0 on success.
int ExecuteDirect(const std::string& sql);

// The rows the last statement changed (in a batched run, once the server
// has answered for every statement before).
unsigned long long AffectedRows();

// What the statements of this run did: how many were sent and how many
// failed (refused before sending included), and per table the rows that the
// successful ones inserted, updated and deleted (as the server counted them).
struct TableTally {
  std::string table;
  unsigned long long inserted = 0;
  unsigned long long updated = 0;
  unsigned long long deleted = 0;
};

struct StatementTally {
  unsigned long long sent = 0;
  unsigned long long failed = 0;
  std::vector<TableTally> tables;  // in the order the run first wrote them
};

const StatementTally& Tally();

// The automatic key of the row the last insert created.
long long LastInsertId();

// The whole result of a SELECT, freed when the object goes.
class SqlResult {
 public:
  SqlResult() = default;
  // `owned`: freed when the object goes; a result the store keeps for itself
  // is lent (and read again from its first row).
  explicit SqlResult(MYSQL_RES* result, bool owned = true) : result_(result), owned_(owned) {
    if (result_ != nullptr && !owned_) mysql_data_seek(result_, 0);
  }
  ~SqlResult();
  SqlResult(SqlResult&& other) noexcept : result_(other.result_), owned_(other.owned_) { other.result_ = nullptr; }
  SqlResult& operator=(SqlResult&& other) noexcept;
  SqlResult(const SqlResult&) = delete;
  SqlResult& operator=(const SqlResult&) = delete;

  // False when the statement failed or returned no result set.
  explicit operator bool() const { return result_ != nullptr; }

  // The next row, or nullptr when there is none. Columns that are null come
  // back as nullptr.
  MYSQL_ROW NextRow();

  // Column `index` of `row`, the row NextRow returned last, with all its
  // bytes (a NUL byte inside the text included); empty for a null column.
  std::string_view ColumnBytes(MYSQL_ROW row, unsigned index) const;

  // The columns: how many, their names, and the byte lengths of the row
  // NextRow() returned last (texts may hold zero bytes).
  unsigned FieldCount() const { return result_ != nullptr ? mysql_num_fields(result_) : 0; }
  const char* FieldName(unsigned i) const { return mysql_fetch_fields(result_)[i].name; }
  unsigned long* Lengths() const { return mysql_fetch_lengths(result_); }

  // How many rows the result holds (0 for none).
  unsigned long long size() const { return result_ != nullptr ? mysql_num_rows(result_) : 0; }

 private:
  MYSQL_RES* result_ = nullptr;
  bool owned_ = true;
};

// Formats and sends a SELECT and takes its whole result. An empty SqlResult
// means failure (LastDbError says why) or no result set. Waits for a server
// that went away like ExecuteSql, and being a read, is sent again also when
// the link dropped while it ran.
SqlResult QuerySql(const char* statement, std::initializer_list<SqlArg> args);
SqlResult QuerySql(EscapeTexts, const char* statement, std::initializer_list<SqlArg> args);

// Formats and sends a SELECT and reads the first column of its first row as
// an integer (atoi rules); `fallback` when the statement fails, there is no
// row or the column is null.
int QueryInt(const char* statement, std::initializer_list<SqlArg> args, int fallback);
int QueryInt(EscapeTexts, const char* statement, std::initializer_list<SqlArg> args, int fallback);

// Copies a column into `field`, a null column as the empty text.
template <std::size_t N>
void CopyColumn(Text<N>& field, const char* column) {
  field = column != nullptr ? column : "";
}
