// Test access to the local MariaDB started by scripts/db.sh: a fresh database
// per test, loaded from db/schema.sql, with the program's connection open on
// it, and a second connection the test uses to seed and inspect rows.
#pragma once

#include <gtest/gtest.h>
#include <mysql.h>

#include <string>
#include <vector>

// Where the test server listens: CORVANA_DB_HOST, CORVANA_DB_PORT,
// CORVANA_DB_USER, CORVANA_DB_PASSWORD, defaulting to scripts/db.sh's values.
struct TestServer {
  std::string host;
  int port;
  std::string user;
  std::string password;
  static TestServer FromEnvironment();
};

class DatabaseTest : public ::testing::Test {
 protected:
  // A fresh database on the shared test server.
  void SetUp() override;
  void TearDown() override;

  // The same on `server` (a ScratchServer's): what SetUp does, for fixtures
  // that need a server of their own.
  void SetUpOn(const TestServer& server);

  // Opens the inspection connection again, after its server was restarted.
  void ReconnectInspector();

  // Runs statements (several may be separated by ';') on the inspection
  // connection; fails the test when the server refuses them.
  void Exec(const std::string& sql);

  // The rows of a query, each as its columns joined by '|' (NULL for null).
  std::vector<std::string> Rows(const std::string& sql);

  // The first column of the first row, or "" when there is none.
  std::string Value(const std::string& sql);

  // The whole content of the named tables, one "table: columns" line per row
  // in id order, with the given column list for each table.
  std::string Dump(const std::vector<std::pair<std::string, std::string>>& tables);

  // Writes a CorvanaDataImporter.ini for this database into `dir`.
  void WriteIni(const std::string& dir);
  // The same with another port on the server's host: a DelayProxy's, so that
  // the program reaches this database through it.
  void WriteIni(const std::string& dir, int port);

  // The banner a run on this database prints before the job's title.
  std::string Connected() const {
    return "\n\nCorvanaDataImporter version 1.0 connected successfully to '" + server_.host + ":" + database_ + "'\n";
  }

  TestServer server_;
  std::string database_;
  MYSQL* inspector_ = nullptr;
};

// Reads a whole file ("" when it is missing).
std::string ReadFile(const std::string& path);
void WriteFile(const std::string& path, const std::string& content);

// A fresh empty directory under the system's temporary directory.
std::string MakeTempDir();

// `word` as one word of a shell command.
std::string ShellQuote(const std::string& word);
