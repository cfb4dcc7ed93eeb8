// Runs the repairs on a test database: as an operator does (the program and
// its whole log), or in this process (result and log) for the failure cases.
#pragma once

#include <gtest/gtest.h>

#include <filesystem>
#include <string>

#include "support/program_run.h"
#include "support/test_database.h"

inline std::string ReplaceAll(std::string text, const std::string& from, const std::string& to) {
  for (auto at = text.find(from); at != std::string::npos; at = text.find(from, at + to.size())) {
    text.replace(at, from.size(), to);
  }
  return text;
}

struct JobOutput {
  int result;
  std::string log;
};

class RepairTest : public DatabaseTest {
 protected:
  void TearDown() override {
    if (!dir_.empty()) std::filesystem::remove_all(dir_);
    DatabaseTest::TearDown();
  }

  void LoadSeed() { Exec(ReadFile(std::string(CORVANA_SOURCE_DIR) + "/samples/repairs/seed.sql")); }

  // The log, with this test's server and database as "SERVER:DATABASE".
  std::string Run(const std::string& type, const std::string& org = "REPAIR") {
    if (dir_.empty()) WriteIni(dir_ = MakeTempDir());
    ProgramRun run = RunProgram(dir_, {"-org", org, "-type", type, "-year", "0"});
    EXPECT_EQ(run.exit_code, 0) << run.output;
    return ReplaceAll(run.output, server_.host + ":" + database_, "SERVER:DATABASE");
  }

  template <typename Job>
  static JobOutput RunHere(Job job) {
    testing::internal::CaptureStdout();
    int result = job();
    return {result, testing::internal::GetCapturedStdout()};
  }

  // Makes the server refuse `event` ("insert", "update") on `table`.
  void Refuse(const std::string& event, const std::string& table) {
    Exec("drop trigger if exists refuse; create trigger refuse before " + event + " on " + table +
         " for each row signal sqlstate '45000' set message_text='Refused for the test'");
  }

  std::string dir_;
};
