#include "store/connection.h"

#include <errmsg.h>

#include <algorithm>
#include <cctype>
#include <chrono>
#include <cstdlib>
#include <functional>
#include <cstdio>
#include <cstring>
#include <cstdint>
#include <thread>
#include <unordered_map>
#include <unordered_set>

#include "store/server_warnings.h"
#include "util/log_watch.h"
#include "util/loss_report.h"
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
unsigned g_generation = 0;  // see StoreGeneration

StatementTally g_tally;

WriteObserver* g_observer = nullptr;
bool g_in_transaction = false;
void (*g_transaction_lost)(const char* why) = nullptr;
// Tables a transactional run has found to be InnoDB (a handful: no index).
std::vector<std::string> g_transactional_tables;

// What the last statement answered, kept so that a statement the store sends
// for itself afterwards (SHOW WARNINGS, a journal's read) does not change it,
// and so that a statement waiting in a batch can answer at once.
long long g_last_insert_id = 0;
unsigned long long g_last_affected = 0;

// Batched writes, inside the run's transaction only (see RunInPasses).
//
// Writes wait in a batch and go to the server several at a time, in one
// multi-statement request; the job goes on at once with the answer the
// server will give (success, and the key of an insert predicted from the
// table's last key). A statement whose answer the job needs (a read, an
// insert into a table whose next key is not known yet) is sent with the
// batch at once and its answer awaited. When the server answers otherwise
// than predicted, the job goes through its work again from the start: what
// the server has confirmed is answered from the record of this run (nothing
// is sent twice, the log is not shown twice), and the job goes live again
// where the server's answer differed, now knowing it.
struct TablePrediction {
  bool known = false;      // the table's next key is known
  long long next = 0;      // the key the next insert gets; 0: the table gives none
  long long confirmed = 0;  // `next` as of the last confirmed statement
};

struct Queued {
  StatementParts parts;
  std::size_t ordinal = 0;
  std::size_t begin = 0;  // the statement's text in the batch
  std::size_t size = 0;
  bool writes = false;
  bool awaited = false;  // the job waits for its answer: the last of its batch
  bool predicted = false;  // an insert whose key was predicted
  long long predicted_id = 0;
  std::uint32_t shape = 0;
  MYSQL_RES* cached = nullptr;  // a read answered from an earlier one: not sent
  std::size_t writes_before = 0;  // writes queued before it
  std::size_t record = 0;  // the loss report's record when it was queued (Batching::records)
};

// A read's result kept for the rest of the run, and when it was read: the
// same read answers alike until the run writes one of the tables it names
// (the transaction reads from one snapshot, so only the run's own writes
// change what it sees).
struct KeptRead {
  MYSQL_RES* result = nullptr;
  std::size_t writes_before = 0;
};

struct Failure {
  int code = 0;
  std::string message;
};

struct Batching {
  bool on = false;
  std::string text;  // the batch's statements, separated by ';'
  std::vector<Queued> queued;
  std::vector<std::string> records;  // the loss report's records of the batch, each once
  std::unordered_map<std::string, TablePrediction> tables;
  long long increment = 1;  // the server's auto_increment_increment
  std::size_t max_bytes = 1 << 20;
  // The record of this run's confirmed statements, by ordinal: the shape of
  // each statement's text (to see that the job repeats itself), the key it
  // gave, how those that failed failed and what reads returned.
  std::vector<std::uint32_t> shapes;
  std::vector<long long> keys;
  std::unordered_map<std::size_t, Failure> failures;
  std::unordered_map<std::size_t, MYSQL_RES*> reads;
  std::vector<MYSQL_RES*> results;  // every result kept, freed at the end
  std::unordered_map<std::string, KeptRead> kept_reads;  // by statement text
  std::size_t writes = 0;  // writes queued so far
  std::unordered_map<std::string, std::size_t> last_write;  // by table: `writes` after its last write
  std::unordered_set<std::size_t> awaited_ordinals;  // answered otherwise than predicted before
  std::size_t ordinal = 0;  // the next statement's, in this pass
  std::size_t shown_upto = 0;  // statements confirmed when the log was last let through
  std::size_t losses_shown = 0;  // loss report entries at that time
  MYSQL_RES* read = nullptr;  // the result of the read just answered
  int passes = 1;
  bool one_at_a_time = false;  // after too many passes: every statement awaited
};

Batching g_batch;

// Frees what the batched run kept (the results of its reads) and forgets it.
void ReleaseBatch() {
  for (MYSQL_RES* result : g_batch.results) mysql_free_result(result);
  g_batch = Batching{};
}


// Passes after which every statement is awaited: a run with many statements
// the server refuses must never be slower than one sent at a time.
constexpr int kMaxPasses = 4;
constexpr std::size_t kMaxBatchStatements = 1000;

// Thrown through the job when the server answered otherwise than predicted;
// RunInPasses catches it and runs the job again.
struct PassAbandoned {};

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
std::string NextWord(std::string_view text, std::size_t& at) {
  while (at < text.size() && std::isspace(static_cast<unsigned char>(text[at]))) ++at;
  std::string word;
  while (at < text.size() && !std::isspace(static_cast<unsigned char>(text[at])) && text[at] != '(') {
    if (text[at] != '`') word.push_back(static_cast<char>(std::tolower(static_cast<unsigned char>(text[at]))));
    ++at;
  }
  return word;
}

// Adds what a successful statement wrote to its table's counts.
void CountRows(std::string_view statement, unsigned long long affected) {
  std::size_t at = 0;
  std::string verb = NextWord(statement, at);
  std::string table = NextWord(statement, at);
  if ((verb == "insert" || verb == "replace") && table == "into") table = NextWord(statement, at);
  if (verb == "delete" && table == "from") table = NextWord(statement, at);
  if (verb != "insert" && verb != "replace" && verb != "update" && verb != "delete") return;
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
      return 0;
    }
    unsigned error = mysql_errno(&g_connection);
    g_failure = mysql_error(&g_connection);
    if (g_in_transaction && ConnectionDropped(error) && g_transaction_lost != nullptr) {
      g_in_transaction = false;
      ReleaseBatch();  // the handler ends the program
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

unsigned long long AffectedNow() {
  my_ulonglong affected = mysql_affected_rows(&g_connection);
  return affected == static_cast<my_ulonglong>(-1) ? 0 : affected;
}

int SendBatched(const StatementParts& parts, bool writes);
void Flush();

// The server's warnings for a batched write (SHOW WARNINGS rows: level,
// code, message): the loss report takes them.
void HeardWarnings(std::string_view statement, SqlResult& warnings, const std::string& record) {
  ReportServerWarnings(std::string(statement), warnings, &record);
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
    if (g_batch.on && g_batch.ordinal < g_batch.shapes.size()) return SendBatched(parts, writes);
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
      // Refused here the same way on every pass: it takes its place in the
      // run's record like any statement.
      if (g_batch.on) {
        Flush();
        g_batch.shapes.push_back(0);
        g_batch.keys.push_back(0);
        g_batch.failures[g_batch.ordinal] = Failure{1, why};
        ++g_batch.ordinal;
      }
      return 1;
    }
    if (g_batch.on) return SendBatched(parts, writes);
  }
  int result = SendText(g_statement, idempotent, true);
  if (result != 0) return result;
  if (mysql_field_count(&g_connection) == 0) {
    g_last_insert_id = static_cast<long long>(mysql_insert_id(&g_connection));
    g_last_affected = AffectedNow();
  }
  CountRows(g_statement, g_last_affected);
  if (writes && g_observer != nullptr) g_observer->AfterWrite(parts, g_last_affected, g_last_insert_id);
  if (unsigned warnings = mysql_warning_count(&g_connection)) HearServerWarnings(g_statement, warnings);
  return 0;
}

// ---- Batched writes ---------------------------------------------------------

// The shape of a statement's text: its bytes without digits, so that a time
// stamp taken anew on a second pass does not count as another statement.
std::uint32_t ShapeOf(std::string_view statement) {
  std::uint32_t hash = 2166136261u;
  for (char c : statement) {
    if (c >= '0' && c <= '9') continue;
    hash = (hash ^ static_cast<unsigned char>(c)) * 16777619u;
  }
  return hash == 0 ? 1 : hash;  // 0 marks a statement refused before sending
}

bool IsPlainInsert(const StatementParts& parts, std::string_view statement) {
  if (parts.verb != "insert") return false;
  // Keys that cannot be told in advance: an insert that may not insert, may
  // update instead, or inserts several rows.
  std::string lower = LowerAscii(statement.substr(0, std::min<std::size_t>(statement.size(), 64)));
  if (lower.find("ignore") != std::string::npos) return false;
  std::string tail = LowerAscii(statement.substr(statement.size() > 200 ? statement.size() - 200 : 0));
  if (tail.find("duplicate key") != std::string::npos) return false;
  std::size_t values = LowerAscii(statement).find(" select ");
  return values == std::string::npos && statement.find("),(") == std::string::npos &&
         statement.find("), (") == std::string::npos;
}

void ForgetBatch() {
  g_batch.text.clear();
  g_batch.queued.clear();
  g_batch.records.clear();
  for (auto& [name, table] : g_batch.tables) table.next = table.confirmed;
}

// Ends the pass: the server's answer differed from the prediction. The log
// and the loss report forget what the pass produced past what is confirmed.
[[noreturn]] void AbandonPass(const std::string& why) {
  ForgetBatch();
  ++g_batch.passes;
  if (g_batch.passes >= kMaxPasses && !g_batch.one_at_a_time) {
    g_batch.one_at_a_time = true;
  }
  std::fflush(stdout);
  ProgressHide();
  std::fprintf(stderr, "Note: %s; going through the job again (pass %d), %s\n", why.c_str(), g_batch.passes,
               g_batch.one_at_a_time ? "now sending one statement at a time"
                                     : "nothing the server has confirmed is sent twice");
  RestartLog();
  ForgetLossesAfter(g_batch.losses_shown);
  throw PassAbandoned{};
}

void DropLostTransaction(unsigned error) {
  if (ConnectionDropped(error) && g_transaction_lost != nullptr) {
    g_in_transaction = false;
    ReleaseBatch();  // the handler ends the program
    g_transaction_lost(g_failure.c_str());
  }
}

// What the server answered for one statement of a batch.
struct Answer {
  bool failed = false;
  int code = 0;
  std::string message;
  unsigned long long affected = 0;
  long long insert_id = 0;
  MYSQL_RES* result = nullptr;
  bool kept = false;  // the result belongs to the run's kept reads
  unsigned warning_count = 0;
  MYSQL_RES* warnings = nullptr;  // SHOW WARNINGS after a write
};

void FreeAnswers(std::vector<Answer>& answers, std::size_t from) {
  for (std::size_t i = from; i < answers.size(); ++i) {
    if (answers[i].result != nullptr && !answers[i].kept) mysql_free_result(answers[i].result);
    if (answers[i].warnings != nullptr) mysql_free_result(answers[i].warnings);
    answers[i].result = nullptr;
    answers[i].warnings = nullptr;
  }
}

// Takes the confirmed answer of `queued` into the run: counts, journal, the
// record for later passes, the table's next key.
void Confirm(const Queued& queued, Answer& answer) {
  std::string_view text(g_batch.text.data() + queued.begin, queued.size);
  ++g_tally.sent;
  g_batch.shapes.push_back(queued.shape);
  g_batch.keys.push_back(answer.insert_id);
  g_last_insert_id = answer.insert_id;
  g_last_affected = answer.affected;
  if (answer.failed) {
    ++g_tally.failed;
    g_failure = answer.message;
    g_batch.failures[queued.ordinal] = Failure{answer.code, answer.message};
    if (queued.writes) g_batch.tables[queued.parts.table].known = false;  // a refused insert may use up a key
    return;
  }
  CountRows(text, answer.affected);
  if (queued.writes && g_observer != nullptr) g_observer->AfterWrite(queued.parts, answer.affected, answer.insert_id);
  if (answer.warning_count > 0 && answer.warnings != nullptr) {
    SqlResult warnings(answer.warnings, false);
    HeardWarnings(text, warnings, g_batch.records[queued.record]);
  }
  if (queued.parts.verb == "insert" || queued.parts.verb == "replace") {
    TablePrediction& table = g_batch.tables[queued.parts.table];
    if (queued.parts.verb == "insert" && IsPlainInsert(queued.parts, text)) {
      long long after = answer.insert_id > 0 ? answer.insert_id + g_batch.increment : 0;
      table.confirmed = after;
      if (!queued.predicted) table.next = after;  // learnt: it was the last of its batch
      table.known = true;
    } else {
      table.known = false;
    }
  }
  if (answer.result != nullptr) {
    g_batch.reads[queued.ordinal] = answer.result;
    g_batch.read = answer.result;
    if (!answer.kept) {
      g_batch.results.push_back(answer.result);
      g_batch.kept_reads[std::string(text)] = KeptRead{answer.result, queued.writes_before};
    }
    answer.result = nullptr;
  }
}

// Sends the batch and waits for its answers. Returns when the server
// answered as predicted (the awaited statement's answer is then the last
// one's); abandons the pass otherwise.
void Flush() {
  if (g_batch.queued.empty()) return;
  std::vector<Answer> answers;  // answers[0] the savepoint's, then one per statement sent
  answers.reserve(g_batch.queued.size() + 1);
  if (!g_batch.text.empty()) {
    std::string request = "SAVEPOINT corvana_batch;" + g_batch.text;
    int status = mysql_real_query(&g_connection, request.data(), request.size());
    for (;;) {
      Answer& answer = answers.emplace_back();
      if (status != 0) {
        answer.failed = true;
        answer.code = static_cast<int>(mysql_errno(&g_connection));
        answer.message = mysql_error(&g_connection);
        g_failure = answer.message;
        break;
      }
      answer.result = mysql_store_result(&g_connection);
      answer.affected = AffectedNow();
      answer.insert_id = static_cast<long long>(mysql_insert_id(&g_connection));
      answer.warning_count = mysql_warning_count(&g_connection);
      status = mysql_next_result(&g_connection);
      if (status < 0) break;
    }
    if (answers.back().failed && ConnectionDropped(static_cast<unsigned>(answers.back().code))) {
      FreeAnswers(answers, 0);  // the handler ends the program
      DropLostTransaction(static_cast<unsigned>(answers.back().code));
    }
    if (answers.front().failed) {
      std::string why = "the server refused to mark the batch (" + answers.front().message + ")";
      FreeAnswers(answers, 0);
      AbandonPass(why);
    }
  } else {
    answers.emplace_back();
  }
  // Kept reads take their answer in their place among those of the server.
  std::vector<Answer> server = std::move(answers);
  answers.clear();
  answers.push_back(std::move(server.front()));
  std::size_t next = 1;
  for (const Queued& queued : g_batch.queued) {
    if (queued.cached != nullptr) {
      Answer kept;
      kept.result = queued.cached;
      kept.kept = true;
      answers.push_back(std::move(kept));
    } else if (next < server.size()) {
      answers.push_back(std::move(server[next++]));
      // A refused write's request ends there, without its warnings.
      if (queued.writes && !answers.back().failed && next < server.size()) {
        answers.back().warnings = server[next].result;
        server[next++].result = nullptr;
      }
    } else {
      break;
    }
  }
  FreeAnswers(server, next);
  std::size_t answered = answers.size() - 1;
  std::size_t confirmed = 0;
  std::string anomaly;
  bool roll_back = false;
  for (; confirmed < g_batch.queued.size() && confirmed < answered; ++confirmed) {
    const Queued& queued = g_batch.queued[confirmed];
    const Answer& answer = answers[confirmed + 1];
    if (answer.failed && !queued.awaited) {
      anomaly = "statement " + std::to_string(queued.ordinal + 1) + " of the job was refused (" + answer.message + ")";
      break;
    }
    if (!answer.failed && queued.predicted && answer.insert_id != queued.predicted_id) {
      anomaly = "the server gave a row of " + queued.parts.table + " the key " + std::to_string(answer.insert_id) +
                " where " + std::to_string(queued.predicted_id) + " was expected (another program is writing it)";
      roll_back = true;
      break;
    }
  }
  bool unanswered = anomaly.empty() && confirmed < g_batch.queued.size();
  if (unanswered) anomaly = "the server did not answer every statement";
  if (roll_back) {
    FreeAnswers(answers, 0);
    g_batch.awaited_ordinals.insert(g_batch.queued[confirmed].ordinal);
    for (const Queued& queued : g_batch.queued) {
      if (queued.parts.verb == "insert") g_batch.tables[queued.parts.table].known = false;
    }
    // Keys the batch used are gone with it; the tables' keys are learnt again.
    if (mysql_query(&g_connection, "ROLLBACK TO SAVEPOINT corvana_batch") != 0) {
      g_failure = mysql_error(&g_connection);
      DropLostTransaction(mysql_errno(&g_connection));
    }
    AbandonPass(anomaly);
  }
  std::size_t take = anomaly.empty() || unanswered ? confirmed : confirmed + 1;  // with the refused one
  for (std::size_t i = 0; i < take; ++i) Confirm(g_batch.queued[i], answers[i + 1]);
  FreeAnswers(answers, 0);
  if (!anomaly.empty()) {
    g_batch.awaited_ordinals.insert(g_batch.queued[confirmed].ordinal);
    AbandonPass(anomaly);
  }
  g_batch.text.clear();
  g_batch.queued.clear();
  g_batch.records.clear();
  // Everything printed so far follows statements the server has confirmed.
  ReleaseLog();
  g_batch.shown_upto = g_batch.shapes.size();
  g_batch.losses_shown = LossCount();
}

// The statement as it goes into a batch: without a trailing ';' or blanks.
std::string_view BatchText(std::string_view statement) {
  while (!statement.empty() &&
         (statement.back() == ';' || std::isspace(static_cast<unsigned char>(statement.back())))) {
    statement.remove_suffix(1);
  }
  return statement;
}

// Answers a statement the server has already confirmed in an earlier pass.
int Replay(std::string_view statement) {
  std::size_t ordinal = g_batch.ordinal++;
  if (g_batch.shapes[ordinal] != 0 && g_batch.shapes[ordinal] != ShapeOf(BatchText(statement))) {
    // Never expected: the job did not repeat its statements. Going on would
    // mix two runs; nothing of this one is kept.
    ExecuteDirect("ROLLBACK");
    g_in_transaction = false;
    ReleaseBatch();
    g_failure = "the job did not send the same statements when it went through its work again; rolled back";
    if (g_transaction_lost != nullptr) g_transaction_lost(g_failure.c_str());
    return 1;
  }
  if (ordinal + 1 >= g_batch.shown_upto) SetLossQuiet(false);
  g_last_insert_id = g_batch.keys[ordinal];
  g_last_affected = 0;
  auto read = g_batch.reads.find(ordinal);
  g_batch.read = read != g_batch.reads.end() ? read->second : nullptr;
  if (g_batch.read != nullptr) mysql_data_seek(g_batch.read, 0);
  auto failure = g_batch.failures.find(ordinal);
  if (failure == g_batch.failures.end()) return 0;
  g_failure = failure->second.message;
  return failure->second.code;
}

// Whether `text` names `word` outside its quoted values, as a whole name.
bool NamesWord(std::string_view text, std::string_view word) {
  auto part_of_name = [](char c) { return std::isalnum(static_cast<unsigned char>(c)) || c == '_'; };
  auto lower = [](char c) { return std::tolower(static_cast<unsigned char>(c)); };
  for (std::size_t at = 0; at < text.size();) {
    if (text[at] == '\'' || text[at] == '"') {
      at = SkipQuoted(text, at);
      continue;
    }
    if (at == 0 || !part_of_name(text[at - 1])) {
      std::size_t i = 0;
      while (i < word.size() && at + i < text.size() && lower(text[at + i]) == lower(word[i])) ++i;
      if (i == word.size() && (at + i == text.size() || !part_of_name(text[at + i]))) return true;
    }
    ++at;
  }
  return false;
}

// The result of the same read earlier in the run, when no write since then
// went to a table it names; nullptr otherwise.
MYSQL_RES* KeptAnswer(std::string_view text) {
  auto kept = g_batch.kept_reads.find(std::string(text));
  if (kept == g_batch.kept_reads.end()) return nullptr;
  for (const auto& [table, last] : g_batch.last_write) {  // the tables the run writes: a handful
    if (last > kept->second.writes_before && NamesWord(text, table)) return nullptr;
  }
  return kept->second.result;
}

int SendBatched(const StatementParts& parts, bool writes) {
  if (g_batch.ordinal < g_batch.shapes.size()) return Replay(g_statement);
  if (g_statement.size() + g_batch.text.size() + 1 > g_batch.max_bytes) Flush();
  Queued queued;
  queued.parts = parts;
  queued.writes = writes;
  queued.ordinal = g_batch.ordinal++;
  std::string_view text = BatchText(g_statement);
  queued.shape = ShapeOf(text);
  queued.writes_before = g_batch.writes;
  if (g_batch.records.empty() || g_batch.records.back() != LossRecord()) g_batch.records.push_back(LossRecord());
  queued.record = g_batch.records.size() - 1;
  if (writes) {
    ++g_batch.writes;
    g_batch.last_write[parts.table] = g_batch.writes;
  } else if (MYSQL_RES* kept = KeptAnswer(text); kept != nullptr) {
    // Answered at once, in its place among the statements waiting.
    queued.cached = kept;
    queued.shape = ShapeOf(text);
    g_batch.queued.push_back(std::move(queued));
    g_batch.read = kept;
    g_last_insert_id = 0;
    g_last_affected = 0;
    return 0;
  }
  queued.awaited = !writes || g_batch.one_at_a_time || g_batch.awaited_ordinals.count(queued.ordinal) > 0;
  if (!queued.awaited && parts.verb == "insert") {
    TablePrediction& table = g_batch.tables[parts.table];
    if (table.known && IsPlainInsert(parts, text)) {
      queued.predicted = true;
      queued.predicted_id = table.next;
      if (table.next != 0) table.next += g_batch.increment;
    } else {
      queued.awaited = true;  // its key is learnt from the server's answer
    }
  } else if (!queued.awaited && parts.verb == "replace") {
    queued.awaited = true;
  }
  if (!g_batch.text.empty()) g_batch.text += ';';
  queued.begin = g_batch.text.size();
  queued.size = text.size();
  g_batch.text.append(text);
  // The server's warnings belong to the statement just before: asked for
  // each write in the same request, since by the time the answers are read
  // the server has gone on.
  if (writes) g_batch.text += ";SHOW WARNINGS";
  bool awaited = queued.awaited;
  g_last_insert_id = queued.predicted ? queued.predicted_id : 0;
  g_last_affected = 0;
  g_batch.read = nullptr;
  g_batch.queued.push_back(std::move(queued));
  ProgressStatement();
  if (awaited || g_batch.queued.size() >= kMaxBatchStatements) Flush();
  if (!awaited) return 0;
  auto failure = g_batch.failures.find(g_batch.ordinal - 1);
  if (failure == g_batch.failures.end()) return 0;
  g_failure = failure->second.message;
  return failure->second.code;
}

// Sends what waits, before a statement of the store's own.
void FlushBeforeDirect() {
  if (g_batch.on && g_batch.ordinal >= g_batch.shapes.size()) Flush();
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
  ++g_generation;
  return 0;
}

unsigned ConnectionCount() { return g_connections; }

unsigned StoreGeneration() { return g_generation; }

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
  // A batched run keeps every read's result for its later passes.
  if (g_batch.on) return SqlResult(g_batch.read, false);
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

long long LastInsertId() { return g_last_insert_id; }

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

namespace {

// Batches are sent as multi-statement requests: switched on for the run's
// transaction only, with what the predictions need from the server.
bool StartBatching() {
  SqlResult settings = QueryDirect("select @@auto_increment_increment, @@max_allowed_packet");
  MYSQL_ROW row = settings.NextRow();
  if (row == nullptr || row[0] == nullptr || row[1] == nullptr) return false;
  if (!HoldLog()) return false;  // the log could not wait for the server
  if (mysql_set_server_option(&g_connection, MYSQL_OPTION_MULTI_STATEMENTS_ON) != 0) {
    EndLogHold();
    return false;
  }
  g_batch = Batching{};
  g_batch.on = true;
  g_batch.increment = std::max<long long>(1, std::atoll(row[0]));
  // Room for the savepoint and the packet's own bytes.
  long long packet = std::atoll(row[1]) - 4096;
  g_batch.max_bytes = static_cast<std::size_t>(std::clamp<long long>(packet, 16 * 1024, 1 << 20));
  return true;
}

void StopBatching() {
  if (!g_batch.on) return;
  g_batch.on = false;
  mysql_set_server_option(&g_connection, MYSQL_OPTION_MULTI_STATEMENTS_OFF);
  ReleaseBatch();
  EndLogHold();
  SetLossQuiet(false);
}

}  // namespace

int BeginRunTransaction(bool batched) {
  // A reconnect would carry on outside the transaction, in autocommit.
  my_bool reconnect = 0;
  mysql_options(&g_connection, MYSQL_OPT_RECONNECT, &reconnect);
  if (ExecuteDirect("START TRANSACTION") != 0) return 1;
  g_in_transaction = true;
  if (batched) StartBatching();
  return 0;
}

bool BatchingWrites() { return g_batch.on; }

void RunInPasses(const std::function<void()>& job) {
  if (!g_batch.on) {
    job();
    return;
  }
  for (bool first = true;; first = false) {
    g_batch.ordinal = 0;
    if (!first) ++g_generation;
    SetLossQuiet(g_batch.shown_upto > 0);
    try {
      job();
      Flush();
      break;
    } catch (const PassAbandoned&) {
      // The next pass answers what the server confirmed from the record.
    }
  }
  // Every statement is confirmed and the log shown: the rest of the run
  // (the commit, the journal's end) sends one statement at a time.
  StopBatching();
}

int EndRunTransaction(bool commit) {
  if (!g_in_transaction) return 1;
  if (g_batch.on) {
    // Not through RunInPasses (a caller of the store's own): nothing may be
    // abandoned now, so what waits is sent as it is.
    if (commit) {
      try {
        Flush();
      } catch (const PassAbandoned&) {
        StopBatching();
        ExecuteDirect("ROLLBACK");
        g_in_transaction = false;
        g_failure = "a batched statement was refused";
        return 1;
      }
    }
    StopBatching();
  }
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
    // Known now: a transactional run need not ask again at the first write.
    std::string name = row[0] != nullptr ? row[0] : "";
    if (std::find(g_transactional_tables.begin(), g_transactional_tables.end(), name) == g_transactional_tables.end()) {
      g_transactional_tables.push_back(name);
    }
  }
  return "";
}

SqlResult QueryDirect(const std::string& sql) {
  FlushBeforeDirect();
  g_failure.clear();
  if (SendText(sql, true, false) != 0) return SqlResult();
  MYSQL_RES* result = mysql_store_result(&g_connection);
  if (result == nullptr && mysql_errno(&g_connection) != 0) g_failure = mysql_error(&g_connection);
  return SqlResult(result);
}

int ExecuteDirect(const std::string& sql) {
  FlushBeforeDirect();
  g_failure.clear();
  int result = SendText(sql, false, false);
  if (result == 0) g_last_affected = AffectedNow();
  return result;
}

unsigned long long AffectedRows() {
  FlushBeforeDirect();
  return g_last_affected;
}

SqlResult::~SqlResult() {
  if (result_ != nullptr && owned_) mysql_free_result(result_);
}

SqlResult& SqlResult::operator=(SqlResult&& other) noexcept {
  if (this != &other) {
    if (result_ != nullptr && owned_) mysql_free_result(result_);
    result_ = other.result_;
    owned_ = other.owned_;
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
