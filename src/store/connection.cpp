#include "store/connection.h"

#include <cstring>

#include "util/strings.h"

namespace {

MYSQL g_connection;
// Our own reason when a statement was refused before it was sent; empty when
// the last failure, if any, was the server's.
std::string g_refusal;
std::string g_last_error;
std::string g_statement;  // reused so a run does not allocate per statement

bool Prepare(const char* statement, std::initializer_list<SqlArg> args) {
  g_refusal.clear();
  std::string reason;
  if (FormatSql(g_statement, reason, statement, args)) return true;
  g_refusal = "Statement not sent: " + reason;
  return false;
}

}  // namespace

int ConnectDatabase(const char* server, const char* database, const char* user,
                    const char* password, int port) {
  mysql_init(&g_connection);
  my_bool reconnect = 1;
  mysql_options(&g_connection, MYSQL_OPT_RECONNECT, &reconnect);
  // The source files and the Corvana database are latin1, byte for byte. This
  // client library would otherwise speak utf8mb4 and the server would turn
  // every byte above 127 into '?'.
  mysql_options(&g_connection, MYSQL_SET_CHARSET_NAME, "latin1");
  if (mysql_real_connect(&g_connection, server, user, password, nullptr,
                         static_cast<unsigned int>(port), nullptr, 0) == nullptr) {
    // Frees what the library allocated for the options; the run ends here anyway.
    mysql_close(&g_connection);
    return 1;
  }
  if (mysql_select_db(&g_connection, database) != 0) {
    mysql_close(&g_connection);
    return 1;
  }
  return 0;
}

int CloseDatabase() {
  mysql_close(&g_connection);
  return 0;
}

const char* LastDbError() {
  g_last_error = g_refusal.empty() ? mysql_error(&g_connection) : g_refusal;
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

int ExecuteSql(const char* statement, std::initializer_list<SqlArg> args) {
  if (!Prepare(statement, args)) return 1;
  return mysql_real_query(&g_connection, g_statement.data(), g_statement.size());
}

long long LastInsertId() { return static_cast<long long>(mysql_insert_id(&g_connection)); }

SqlResult QuerySql(const char* statement, std::initializer_list<SqlArg> args) {
  if (!Prepare(statement, args)) return SqlResult();
  if (mysql_real_query(&g_connection, g_statement.data(), g_statement.size()) != 0) return SqlResult();
  return SqlResult(mysql_store_result(&g_connection));
}

int QueryInt(const char* statement, std::initializer_list<SqlArg> args, int fallback) {
  SqlResult result = QuerySql(statement, args);
  MYSQL_ROW row = result.NextRow();
  return row != nullptr && row[0] != nullptr ? ToInt(row[0]) : fallback;
}

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
