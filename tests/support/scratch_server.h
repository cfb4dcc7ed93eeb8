// A private MariaDB server of a test's own, for what the shared test server
// must not see: a different global sql_mode, or a server that goes away in
// the middle of a job. It is started through scripts/db.sh in a temporary
// directory on a free loopback port, and stopped and removed again when the
// object goes.
#pragma once

#include <mysql.h>

#include <string>

#include "support/test_database.h"

class ScratchServer {
 public:
  // `sql_mode` becomes the server's global mode (the default of its
  // sessions); `server_args` are further server options, separated by blanks.
  explicit ScratchServer(std::string sql_mode, std::string server_args = "");
  ~ScratchServer();
  ScratchServer(const ScratchServer&) = delete;
  ScratchServer& operator=(const ScratchServer&) = delete;

  // Starts the server (initialising its data directory the first time).
  // Returns true when it answers; the script's output is in `log()`.
  bool Start();

  // Shuts the server down and waits for it to end.
  void Stop();

  // Kills the server at once (SIGKILL), as a crash or a power cut would, and
  // waits for the process to be gone.
  void Kill();

  // Where the server listens, with the shared server's user and password.
  TestServer server() const;

  const std::string& log() const { return log_; }

 private:
  bool Script(const std::string& command);
  bool AnswersOverTcp();

  std::string dir_;
  int port_;
  std::string sql_mode_;
  std::string server_args_;
  std::string log_;  // what the scripts printed, and why a start failed
  std::string last_error_;  // of the last connection attempt
};

// The global sql_mode a stock MariaDB or MySQL server starts with, and the
// zero-date checks that some add.
constexpr const char* kStockSqlMode =
    "STRICT_TRANS_TABLES,ERROR_FOR_DIVISION_BY_ZERO,NO_AUTO_CREATE_USER,NO_ENGINE_SUBSTITUTION,NO_ZERO_DATE,"
    "NO_ZERO_IN_DATE";

// Runs the tests of `Fixture` (a DatabaseTest) each in a fresh database on a
// stock, strict server that the test suite starts for itself.
template <typename Fixture>
class OnStockServer : public Fixture {
 protected:
  static void SetUpTestSuite() {
    stock_ = new ScratchServer(kStockSqlMode);
    started_ = stock_->Start();
  }
  static void TearDownTestSuite() {
    delete stock_;
    stock_ = nullptr;
  }
  void SetUp() override {
    ASSERT_TRUE(started_) << stock_->log();
    this->SetUpOn(stock_->server());
  }
  static inline ScratchServer* stock_ = nullptr;
  static inline bool started_ = false;
};
