// Runs the repairs on a test database: as an operator does (the program and
// its whole log), or in this process (result and log) for the failure cases.
#pragma once

#include <gtest/gtest.h>

#include <filesystem>
#include <string>
#include <utility>

#include "support/program_run.h"
#include "support/test_database.h"

inline std::string ReplaceAll(std::string s, const std::string& from, const std::string& to) {
  for (auto at = s.find(from); at != s.npos; at = s.find(from, at + to.size())) s.replace(at, from.size(), to);
  return s;
}

class RepairTest : public DatabaseTest {
 protected:
  void LoadSeed() { Exec(ReadFile(std::string(CORVANA_SOURCE_DIR) + "/samples/repairs/seed.sql")); }

  // The log, with this test's server and database as "SERVER:DATABASE".
  std::string Run(const std::string& type, const std::string& org = "REPAIR") {
    const std::string dir = MakeTempDir();
    WriteIni(dir);
    ProgramRun run = RunProgram(dir, {"-org", org, "-type", type, "-year", "0"});
    std::filesystem::remove_all(dir);
    EXPECT_EQ(run.exit_code, 0) << run.output;
    return ReplaceAll(run.output, server_.host + ":" + database_, "SERVER:DATABASE");
  }

  // The job's result and what it printed, run in this process.
  static std::pair<int, std::string> RunHere(int (*job)()) {
    testing::internal::CaptureStdout();
    int result = job();
    return {result, testing::internal::GetCapturedStdout()};
  }

  // Makes the server refuse `event` ("insert", "update") on `table`.
  void Refuse(const std::string& event, const std::string& table) {
    Exec("create trigger refuse before " + event + " on " + table +
         " for each row signal sqlstate '45000' set message_text='Refused for the test'");
  }
};
