#include "support/test_database.h"

#include <unistd.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <sstream>

#include "store/connection.h"

namespace {

std::string Env(const char* name, const char* fallback) {
  const char* value = std::getenv(name);
  return value != nullptr && *value != '\0' ? value : fallback;
}

MYSQL* Connect(const TestServer& server, const char* database) {
  MYSQL* connection = mysql_init(nullptr);
  mysql_options(connection, MYSQL_SET_CHARSET_NAME, "latin1");
  my_bool use_tls = 1;  // whenever the server offers it
  mysql_options(connection, MYSQL_OPT_SSL_ENFORCE, &use_tls);
  if (mysql_real_connect(connection, server.host.c_str(), server.user.c_str(), server.password.c_str(), database,
                         static_cast<unsigned>(server.port), nullptr, CLIENT_MULTI_STATEMENTS) == nullptr) {
    std::string error = mysql_error(connection);
    mysql_close(connection);
    ADD_FAILURE() << "Cannot reach the test server at " << server.host << ":" << server.port << " as "
                  << server.user << " (start it with scripts/db.sh start): " << error;
    return nullptr;
  }
  return connection;
}

// Runs one or more statements, draining every result.
bool RunAll(MYSQL* connection, const std::string& sql, std::string& error) {
  if (mysql_real_query(connection, sql.data(), sql.size()) != 0) {
    error = mysql_error(connection);
    return false;
  }
  int status = 0;
  do {
    if (MYSQL_RES* result = mysql_store_result(connection)) mysql_free_result(result);
    status = mysql_next_result(connection);
    if (status > 0) {
      error = mysql_error(connection);
      return false;
    }
  } while (status == 0);
  return true;
}

int g_database_number = 0;

}  // namespace

TestServer TestServer::FromEnvironment() {
  return {Env("CORVANA_DB_HOST", "127.0.0.1"), std::atoi(Env("CORVANA_DB_PORT", "3399").c_str()),
          Env("CORVANA_DB_USER", "corvana"), Env("CORVANA_DB_PASSWORD", "corvana")};
}

void DatabaseTest::SetUp() { SetUpOn(TestServer::FromEnvironment()); }

void DatabaseTest::SetUpOn(const TestServer& server) {
  server_ = server;
  database_ = "corvana_test_" + std::to_string(getpid()) + "_" + std::to_string(++g_database_number);
  inspector_ = Connect(server_, nullptr);
  ASSERT_NE(inspector_, nullptr);
  Exec("drop database if exists " + database_ + "; create database " + database_ + "; use " + database_);
  Exec(ReadFile(std::string(CORVANA_SOURCE_DIR) + "/db/schema.sql"));
  ASSERT_EQ(ConnectDatabase(server_.host.c_str(), database_.c_str(), server_.user.c_str(),
                            server_.password.c_str(), server_.port),
            0)
      << LastDbError();
}

void DatabaseTest::TearDown() {
  CloseDatabase();
  if (inspector_ != nullptr) {
    std::string error;
    RunAll(inspector_, "drop database if exists " + database_, error);
    mysql_close(inspector_);
    inspector_ = nullptr;
  }
}

void DatabaseTest::ReconnectInspector() {
  if (inspector_ != nullptr) mysql_close(inspector_);
  inspector_ = Connect(server_, database_.c_str());
}

void DatabaseTest::Exec(const std::string& sql) {
  ASSERT_NE(inspector_, nullptr);
  std::string error;
  ASSERT_TRUE(RunAll(inspector_, sql, error)) << error << "\nin: " << sql.substr(0, 300);
}

std::vector<std::string> DatabaseTest::Rows(const std::string& sql) {
  std::vector<std::string> rows;
  if (inspector_ == nullptr) return rows;
  if (mysql_real_query(inspector_, sql.data(), sql.size()) != 0) {
    ADD_FAILURE() << mysql_error(inspector_) << "\nin: " << sql;
    return rows;
  }
  MYSQL_RES* result = mysql_store_result(inspector_);
  if (result == nullptr) return rows;
  unsigned columns = mysql_num_fields(result);
  while (MYSQL_ROW row = mysql_fetch_row(result)) {
    unsigned long* lengths = mysql_fetch_lengths(result);
    std::string line;
    for (unsigned i = 0; i < columns; ++i) {
      if (i > 0) line += '|';
      line += row[i] != nullptr ? std::string(row[i], lengths[i]) : "NULL";
    }
    rows.push_back(line);
  }
  mysql_free_result(result);
  return rows;
}

std::string DatabaseTest::Value(const std::string& sql) {
  std::vector<std::string> rows = Rows(sql);
  return rows.empty() ? "" : rows.front().substr(0, rows.front().find('|'));
}

std::string DatabaseTest::Dump(const std::vector<std::pair<std::string, std::string>>& tables) {
  std::string dump;
  for (const auto& [table, columns] : tables) {
    for (const std::string& row : Rows("select " + columns + " from " + table + " order by id")) {
      dump += table + ": " + row + "\n";
    }
  }
  return dump;
}

void DatabaseTest::WriteIni(const std::string& dir) { WriteIni(dir, server_.port); }

void DatabaseTest::WriteIni(const std::string& dir, int port) {
  WriteFile(dir + "/CorvanaDataImporter.ini", "[MYSQL]\r\nServer=" + server_.host + "\r\nPort=" +
                                                  std::to_string(port) + "\r\nDatabase=" + database_ +
                                                  "\r\nUsername=" + server_.user + "\r\nPassword=" +
                                                  server_.password + "\r\n");
}

std::string ReadFile(const std::string& path) {
  std::ifstream in(path, std::ios::binary);
  std::ostringstream content;
  content << in.rdbuf();
  return content.str();
}

void WriteFile(const std::string& path, const std::string& content) {
  std::ofstream out(path, std::ios::binary);
  out << content;
}

std::string MakeTempDir() {
  std::string pattern = (std::filesystem::temp_directory_path() / "corvana_XXXXXX").string();
  char* made = mkdtemp(pattern.data());
  return made != nullptr ? std::string(made) : std::string();
}

std::string ShellQuote(const std::string& word) {
  std::string quoted = "'";
  for (char c : word) quoted += c == '\'' ? std::string("'\\''") : std::string(1, c);
  return quoted + "'";
}
