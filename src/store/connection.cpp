#include "store/connection.h"

#include <errmsg.h>

#include <algorithm>
#include <cctype>
#include <chrono>
#include <cstdio>
#include <cstring>
#include <thread>

#include "store/server_warnings.h"
#include "util/progress.h"
#include "util/strings.h"

namespace {

MYSQL g_connection;
ConnectOptions g_options;
// Why the last statement failed: our own reason when it was refused before
// sending, else the server's or the library's words at the time it failed
// (the waiting below runs other calls that would overwrite the library's).
std::string g_failure;
std::string g_last_error;
std::string g_statement;  // reused so a run does not allocate per statement
std::string g_sql_mode_notice;
// Set when the server stayed away past the limit: from then on statements
// fail at once, as they would without waiting, until one gets through.
bool g_gave_up_waiting = false;
unsigned g_connections = 0;

StatementTally g_tally;
// What the last statement without a result set changed and created, kept so
// that a SHOW WARNINGS sent after it does not change the answers.
unsigned long long g_affected_rows = 0;
long long g_insert_id = 0;

WriteObserver* g_observer = nullptr;
bool g_in_transaction = false;
void (*g_transaction_lost)(const char* why) = nullptr;
// Tables a transactional run has found to be InnoDB (a handful: no index).
std::vector<std::string> g_transactional_tables;

bool Prepare(const char* statement, std::initializer_list<SqlArg> args, SqlTexts texts) {
  g_failure.clear();
  std::string reason;
  if (FormatSql(g_statement, reason, statement, args, texts)) return true;
  g_failure = "Statement not sent: " + reason;
  ++g_tally.failed;
  return false;
}

// The next word of `text` from `at` on, lower-cased, without backquotes; `at`
// moves past it.
std::string NextWord(const std::string& text, std::size_t& at) {
  while (at < text.size() && std::isspace(static_cast<unsigned char>(text[at]))) ++at;
  std::string word;
  while (at < text.size() && !std::isspace(static_cast<unsigned char>(text[at])) && text[at] != '(') {
    if (text[at] != '`') word.push_back(static_cast<char>(std::tolower(static_cast<unsigned char>(text[at]))));
    ++at;
  }
  return word;
}

// Adds what a successful statement wrote to its table's counts.
void CountRows(const std::string& statement) {
  std::size_t at = 0;
  std::string verb = NextWord(statement, at);
  std::string table = NextWord(statement, at);
  if ((verb == "insert" || verb == "replace") && table == "into") table = NextWord(statement, at);
  if (verb == "delete" && table == "from") table = NextWord(statement, at);
  if (verb != "insert" && verb != "replace" && verb != "update" && verb != "delete") return;
  my_ulonglong affected = mysql_affected_rows(&g_connection);
  if (affected == static_cast<my_ulonglong>(-1)) return;
  TableTally* tally = nullptr;
  for (TableTally& known : g_tally.tables) {  // a handful of tables: no index needed
    if (known.table == table) tally = &known;
  }
  if (tally == nullptr) tally = &g_tally.tables.emplace_back(TableTally{table});
  if (verb == "update") {
    tally->updated += affected;
  } else if (verb == "delete") {
    tally->deleted += affected;
  } else {
    tally->inserted += affected;
  }
}

// The library's errors for a statement that never reached the server: the
// link was found gone before sending and could not be made again.
bool NeverReachedServer(unsigned error) {
  return error == CR_SERVER_GONE_ERROR || error == CR_CONN_HOST_ERROR || error == CR_CONNECTION_ERROR ||
         error == CR_SERVER_LOST_EXTENDED;
}

// Waits for the server to answer again, pinging (which reconnects, with the
// session's sql_mode and database) after pauses that grow from a tenth of a
// second to two seconds, for at most the configured limit. Returns true
// when it is back.
bool WaitForServer(const char* why) {
  using Clock = std::chrono::steady_clock;
  if (g_gave_up_waiting || g_options.reconnect_seconds <= 0) return false;
  const auto start = Clock::now();
  const auto limit = std::chrono::seconds(g_options.reconnect_seconds);
  std::fflush(stdout);  // keeps the notices in place among the log lines on a terminal
  ProgressHide();
  std::fprintf(stderr, "Lost the database server (%s); waiting up to %d s for it to come back\n", why,
               g_options.reconnect_seconds);
  auto pause = std::chrono::milliseconds(100);
  while (Clock::now() - start < limit) {
    auto left = std::chrono::duration_cast<std::chrono::milliseconds>(limit - (Clock::now() - start));
    std::this_thread::sleep_for(std::min(pause, left));
    pause = std::min(pause * 2, std::chrono::milliseconds(2000));
    if (mysql_ping(&g_connection) == 0) {
      double waited = std::chrono::duration<double>(Clock::now() - start).count();
      std::fprintf(stderr, "The database server is back after %.1f s; going on\n", waited);
      return true;
    }
  }
  std::fprintf(stderr, "The database server did not come back within %d s; statements fail until it does\n",
               g_options.reconnect_seconds);
  g_gave_up_waiting = true;
  return false;
}

bool ConnectionDropped(unsigned error) { return NeverReachedServer(error) || error == CR_SERVER_LOST; }

// Sends `sql`. When the server has gone away, waits for it (so that the
// job's next statement finds it back) and sends again a statement that never
// reached it; one whose outcome is unknown (the link dropped while it ran) is
// sent again only when it is `idempotent` (a read). Inside the run's
// transaction nothing is waited for: the transaction is gone with the link.
// `counted` statements are the job's own (tally, progress). Returns the
// library's result of the last attempt.
int SendText(const std::string& sql, bool idempotent, bool counted) {
  for (;;) {
    if (counted) {
      ++g_tally.sent;
      ProgressStatement();
    }
    int result = mysql_real_query(&g_connection, sql.data(), sql.size());
    if (result == 0) {
      g_gave_up_waiting = false;
      if (mysql_field_count(&g_connection) == 0) {
        my_ulonglong affected = mysql_affected_rows(&g_connection);
        g_affected_rows = affected == static_cast<my_ulonglong>(-1) ? 0 : affected;
        g_insert_id = static_cast<long long>(mysql_insert_id(&g_connection));
      }
      return 0;
    }
    unsigned error = mysql_errno(&g_connection);
    g_failure = mysql_error(&g_connection);
    if (g_in_transaction && ConnectionDropped(error) && g_transaction_lost != nullptr) {
      g_in_transaction = false;
      g_transaction_lost(g_failure.c_str());
    }
    bool never_reached = NeverReachedServer(error);
    bool back = !g_in_transaction && ConnectionDropped(error) && WaitForServer(g_failure.c_str());
    if (!back || !(never_reached || idempotent)) {
      if (counted) ++g_tally.failed;
      return result;
    }
  }
}

// Whether a transactional run may write `table`: only an InnoDB table rolls
// back. Checked once per table.
bool MayWriteInTransaction(const std::string& table) {
  for (const std::string& known : g_transactional_tables) {
    if (known == table) return true;
  }
  std::string refused = FirstNonTransactionalTable({table});
  if (!refused.empty()) {
    g_failure = "Statement not sent: table " + refused + " cannot be rolled back";
    return false;
  }
  g_transactional_tables.push_back(table);
  return true;
}

// Sends the prepared statement of the job, past the run's guards: inside the
// run's transaction, a statement that would end it or write a table that
// cannot roll back is refused; the write observer sees every write.
int Send(bool idempotent) {
  StatementParts parts;
  bool writes = false;
  if (g_in_transaction || g_observer != nullptr) {
    parts = SplitStatement(g_statement);
    writes = !parts.table.empty();
    std::string why;
    if (g_in_transaction && CommitsImplicitly(parts, g_statement)) {
      why = "Statement not sent: it would end the run's transaction";
    } else if (g_in_transaction && writes && !MayWriteInTransaction(parts.table)) {
      why = g_failure;
    } else if (writes && g_observer != nullptr && !g_observer->BeforeWrite(parts, why)) {
      if (why.empty()) why = "Statement not sent: the journal could not record it";
    }
    if (!why.empty()) {
      g_failure = why;
      ++g_tally.failed;
      return 1;
    }
  }
  int result = SendText(g_statement, idempotent, true);
  if (result != 0) return result;
  CountRows(g_statement);
  if (writes && g_observer != nullptr) {
    my_ulonglong affected = mysql_affected_rows(&g_connection);
    g_observer->AfterWrite(parts, affected == static_cast<my_ulonglong>(-1) ? 0 : affected,
                           static_cast<long long>(mysql_insert_id(&g_connection)));
  }
  if (unsigned warnings = mysql_warning_count(&g_connection)) HearServerWarnings(g_statement, warnings);
  return 0;
}

// True when `mode` holds a flag that `permissive` does not: a stricter mode.
bool HasModesBeyond(std::string_view mode, std::string_view permissive) {
  std::string known = "," + std::string(permissive) + ",";
  while (!mode.empty()) {
    std::size_t comma = mode.find(',');
    std::string_view flag = mode.substr(0, comma);
    if (!flag.empty() && known.find("," + std::string(flag) + ",") == std::string::npos) return true;
    mode = comma == std::string_view::npos ? std::string_view() : mode.substr(comma + 1);
  }
  return false;
}

// Sets the session's mode and registers it as the command the library runs
// on every reconnect. The init command is added only once the mode is known
// to be accepted: a failing init command would make every reconnect fail.
void UseCorvanaSqlMode() {
  g_sql_mode_notice.clear();
  std::string set_mode = std::string("SET SESSION sql_mode='") + kCorvanaSqlMode + "'";
  if (mysql_real_query(&g_connection, set_mode.data(), set_mode.size()) != 0) {
    g_sql_mode_notice = std::string("Could not set the session's sql_mode to '") + kCorvanaSqlMode +
                        "': " + mysql_error(&g_connection) + "; rows with no date or an over-long text may be refused";
    return;
  }
  mysql_options(&g_connection, MYSQL_INIT_COMMAND, set_mode.c_str());

  const char* query = "SELECT @@GLOBAL.sql_mode";
  if (mysql_real_query(&g_connection, query, std::strlen(query)) != 0) return;
  MYSQL_RES* result = mysql_store_result(&g_connection);
  if (result == nullptr) return;
  MYSQL_ROW row = mysql_fetch_row(result);
  std::string server_mode = row != nullptr && row[0] != nullptr ? row[0] : "";
  mysql_free_result(result);
  if (HasModesBeyond(server_mode, kCorvanaSqlMode)) {
    g_sql_mode_notice = "The server's sql_mode is '" + server_mode + "'; this run uses '" + kCorvanaSqlMode +
                        "', as the Corvana server does";
  }
}

// TLS as the mode asks: "preferred" when the server offers it, "required"
// or no connection, "verify" also checks the certificate against the CA file
// and its name against the server's.
void SetTls(const ConnectOptions& options) {
  // Asks for TLS whenever the server offers it (the library's "enforce"
  // option only switches this on; "required" is checked after connecting).
  my_bool use_tls = 1;
  mysql_options(&g_connection, MYSQL_OPT_SSL_ENFORCE, &use_tls);
  if (!options.ssl_ca.empty()) mysql_options(&g_connection, MYSQL_OPT_SSL_CA, options.ssl_ca.c_str());
  my_bool verify = options.ssl_mode == SslMode::kVerify;
  mysql_options(&g_connection, MYSQL_OPT_SSL_VERIFY_SERVER_CERT, &verify);
}

}  // namespace

int ConnectDatabase(const char* server, const char* database, const char* user, const char* password, int port,
                    const ConnectOptions& options) {
  g_options = options;
  g_gave_up_waiting = false;
  mysql_init(&g_connection);
  my_bool reconnect = 1;
  mysql_options(&g_connection, MYSQL_OPT_RECONNECT, &reconnect);
  // The source files and the Corvana database are latin1, byte for byte. This
  // client library would otherwise speak utf8mb4 and the server would turn
  // every byte above 127 into '?'.
  mysql_options(&g_connection, MYSQL_SET_CHARSET_NAME, "latin1");
  // A server host that does not answer must not hold each reconnect attempt
  // for the system's two-minute default.
  unsigned int connect_timeout = 10;
  mysql_options(&g_connection, MYSQL_OPT_CONNECT_TIMEOUT, &connect_timeout);
  SetTls(options);
  if (mysql_real_connect(&g_connection, server, user, password, nullptr,
                         static_cast<unsigned int>(port), nullptr, 0) == nullptr) {
    g_failure = mysql_error(&g_connection);
    // Frees what the library allocated for the options; the run ends here anyway.
    mysql_close(&g_connection);
    return 1;
  }
  // This client library enforces TLS only together with verification; a
  // server without TLS is therefore refused here, before any statement.
  if (options.ssl_mode == SslMode::kRequired && mysql_get_ssl_cipher(&g_connection) == nullptr) {
    g_failure = "SslMode=required, but the server does not offer TLS";
    mysql_close(&g_connection);
    return 1;
  }
  if (mysql_select_db(&g_connection, database) != 0) {
    g_failure = mysql_error(&g_connection);
    mysql_close(&g_connection);
    return 1;
  }
  UseCorvanaSqlMode();
  ++g_connections;
  return 0;
}

unsigned ConnectionCount() { return g_connections; }

const char* ConnectionCipher() {
  const char* cipher = mysql_get_ssl_cipher(&g_connection);
  return cipher != nullptr ? cipher : "";
}

const std::string& SqlModeNotice() { return g_sql_mode_notice; }

int CloseDatabase() {
  mysql_close(&g_connection);
  return 0;
}

const char* LastDbError() {
  g_last_error = g_failure;
  return g_last_error.c_str();
}

char* EscapeSql(char* text) {
  std::string source(text);
  mysql_real_escape_string(&g_connection, text, source.c_str(), source.size());
  return text;
}

std::string EscapeSqlText(std::string_view text) {
  std::string escaped(text.size() * 2 + 1, '\0');
  unsigned long n = mysql_real_escape_string(&g_connection, escaped.data(), text.data(), text.size());
  escaped.resize(n);
  return escaped;
}

namespace {

int Execute(const char* statement, std::initializer_list<SqlArg> args, SqlTexts texts) {
  if (!Prepare(statement, args, texts)) return 1;
  return Send(false);
}

SqlResult Query(const char* statement, std::initializer_list<SqlArg> args, SqlTexts texts) {
  if (!Prepare(statement, args, texts)) return SqlResult();
  if (Send(true) != 0) return SqlResult();
  MYSQL_RES* result = mysql_store_result(&g_connection);
  if (result == nullptr && mysql_errno(&g_connection) != 0) g_failure = mysql_error(&g_connection);
  return SqlResult(result);
}

int FirstInt(SqlResult& result, int fallback) {
  MYSQL_ROW row = result.NextRow();
  return row != nullptr && row[0] != nullptr ? ToInt(row[0]) : fallback;
}

}  // namespace

int ExecuteSql(const char* statement, std::initializer_list<SqlArg> args) {
  return Execute(statement, args, SqlTexts::kAsGiven);
}

int ExecuteSql(EscapeTexts, const char* statement, std::initializer_list<SqlArg> args) {
  return Execute(statement, args, SqlTexts::kEscape);
}

const StatementTally& Tally() { return g_tally; }

long long LastInsertId() { return g_insert_id; }

SqlResult QuerySql(const char* statement, std::initializer_list<SqlArg> args) {
  return Query(statement, args, SqlTexts::kAsGiven);
}

SqlResult QuerySql(EscapeTexts, const char* statement, std::initializer_list<SqlArg> args) {
  return Query(statement, args, SqlTexts::kEscape);
}

int QueryInt(const char* statement, std::initializer_list<SqlArg> args, int fallback) {
  SqlResult result = Query(statement, args, SqlTexts::kAsGiven);
  return FirstInt(result, fallback);
}

int QueryInt(EscapeTexts, const char* statement, std::initializer_list<SqlArg> args, int fallback) {
  SqlResult result = Query(statement, args, SqlTexts::kEscape);
  return FirstInt(result, fallback);
}

void SetWriteObserver(WriteObserver* observer) { g_observer = observer; }

void SetTransactionLostHandler(void (*handler)(const char* why)) { g_transaction_lost = handler; }

int BeginRunTransaction() {
  // A reconnect would carry on outside the transaction, in autocommit.
  my_bool reconnect = 0;
  mysql_options(&g_connection, MYSQL_OPT_RECONNECT, &reconnect);
  if (ExecuteDirect("START TRANSACTION") != 0) return 1;
  g_in_transaction = true;
  return 0;
}

int EndRunTransaction(bool commit) {
  if (!g_in_transaction) return 1;
  int result = ExecuteDirect(commit ? "COMMIT" : "ROLLBACK");
  g_in_transaction = false;
  return result;
}

std::string FirstNonTransactionalTable(const std::vector<std::string>& tables) {
  if (tables.empty()) return "";
  std::string sql =
      "select table_name, engine from information_schema.tables where table_schema = database() and "
      "table_name in (";
  for (std::size_t i = 0; i < tables.size(); ++i) {
    sql += (i > 0 ? ",'" : "'") + EscapeSqlText(tables[i]) + "'";
  }
  sql += ")";
  SqlResult result = QueryDirect(sql);
  while (MYSQL_ROW row = result.NextRow()) {
    std::string engine = row[1] != nullptr ? row[1] : "";
    if (!EqualsNoCase(engine.c_str(), "InnoDB")) {
      return std::string(row[0] != nullptr ? row[0] : "") + " (" + (engine.empty() ? "a view" : engine) + ")";
    }
  }
  return "";
}

SqlResult QueryDirect(const std::string& sql) {
  g_failure.clear();
  if (SendText(sql, true, false) != 0) return SqlResult();
  MYSQL_RES* result = mysql_store_result(&g_connection);
  if (result == nullptr && mysql_errno(&g_connection) != 0) g_failure = mysql_error(&g_connection);
  return SqlResult(result);
}

int ExecuteDirect(const std::string& sql) {
  g_failure.clear();
  return SendText(sql, false, false);
}

unsigned long long AffectedRows() { return g_affected_rows; }

SqlResult::~SqlResult() {
  if (result_ != nullptr) mysql_free_result(result_);
}

SqlResult& SqlResult::operator=(SqlResult&& other) noexcept {
  if (this != &other) {
    if (result_ != nullptr) mysql_free_result(result_);
    result_ = other.result_;
    other.result_ = nullptr;
  }
  return *this;
}

MYSQL_ROW SqlResult::NextRow() { return result_ != nullptr ? mysql_fetch_row(result_) : nullptr; }

std::string_view SqlResult::ColumnBytes(MYSQL_ROW row, unsigned index) const {
  if (result_ == nullptr || row == nullptr || row[index] == nullptr) return {};
  const unsigned long* lengths = mysql_fetch_lengths(result_);
  return lengths != nullptr ? std::string_view(row[index], lengths[index]) : std::string_view(row[index]);
}
