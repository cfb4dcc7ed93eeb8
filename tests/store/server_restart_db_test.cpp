// A migration that runs for an hour meets a server restart. The statements
// sent while the server is away wait for it; at most the statement in flight
// when it went is lost, and that case is named in the log.
#include <gtest/gtest.h>

#include <chrono>
#include <functional>
#include <map>
#include <set>
#include <string>
#include <thread>

#include "support/program_run.h"
#include "support/scratch_server.h"
#include "support/test_database.h"

namespace {

constexpr int kFirstCase = 30000;

// A KWRC year of `cases` released birds, each some nine statements.
std::string KwrcYear(int cases) {
  std::string file = "Case\tSpecies\tAdmitted\tBand\tAge\tSex\tFound\tHistory\tOutcome\tFinal\tPlace\tSummary\t"
                     "Problems\tCause\r\n";
  for (int n = kFirstCase; n < kFirstCase + cases; ++n) {
    file += std::to_string(n) +
            "\tEUSP\t5/12/2012\tUNK\tAdult\tM\t\"Beihai Park, Xicheng District\"\tFound in a park\tRelease\t"
            "6/1/2012\t\"Beihai Park, Xicheng District\"\t\"Rested and flew well\"\t\"Emaciation; Trauma\"\tUnknown\r\n";
  }
  return file;
}

class ServerRestartTest : public DatabaseTest {
 protected:
  void SetUp() override {
    ASSERT_TRUE(server_under_test_.Start()) << server_under_test_.log();
    SetUpOn(server_under_test_.server());
    dir_ = MakeTempDir();
    WriteIni(dir_);
  }

  // Runs the job on `cases` cases in the background; `while_running` acts on
  // the server meanwhile. Returns the run.
  ProgramRun RunWhile(int cases, const std::function<void()>& while_running) {
    WriteFile(dir_ + "/KWRC_2012.txt", KwrcYear(cases));
    ProgramRun run{};
    std::thread job([&] { run = RunProgram(dir_, {"-org", "KWRC", "-type", "patient", "-year", "2012"}); });
    while_running();
    job.join();
    return run;
  }

  // Waits until the job has written at least `patients` patients.
  void WaitForPatients(int patients) {
    for (int waited = 0; waited < 6000; ++waited) {
      if (std::stoi("0" + Value("select count(*) from patient")) >= patients) return;
      std::this_thread::sleep_for(std::chrono::milliseconds(10));
    }
    FAIL() << "the job never wrote " << patients << " patients";
  }

  // The cases whose lines in the log carry a message (every case line is
  // printed, and its messages follow it).
  static std::set<std::string> ReportedCases(const std::string& log) {
    std::set<std::string> reported;
    std::string current;
    std::size_t start = 0;
    while (start < log.size()) {
      std::size_t end = log.find('\n', start);
      std::string line = log.substr(start, end - start);
      start = end == std::string::npos ? log.size() : end + 1;
      if (line.rfind("Imported ", 0) == 0) break;  // the count ends the log
      if (line.size() == 5 && line.find_first_not_of("0123456789") == std::string::npos) {
        current = "0" + line;
      } else if (!current.empty() && line.rfind("Addr: ", 0) != 0) {
        reported.insert(current);
      }
    }
    return reported;
  }

  // The cases of the file that are neither written whole nor reported.
  int LostSilently(int cases, const std::set<std::string>& reported) {
    std::set<std::string> complete = CompleteCases();
    int lost = 0;
    for (int n = kFirstCase; n < kFirstCase + cases; ++n) {
      std::string id = "0" + std::to_string(n);
      if (complete.count(id) == 0 && reported.count(id) == 0) ++lost;
    }
    return lost;
  }

  // Cases with every row written: the patient and its release.
  std::set<std::string> CompleteCases() {
    std::set<std::string> complete;
    for (const std::string& row : Rows("select p.patient_id from patient p join releases r on r.patient_id="
                                       "p.patient_id group by p.patient_id")) {
      complete.insert(row);
    }
    return complete;
  }

  ScratchServer server_under_test_{"NO_ENGINE_SUBSTITUTION"};
  std::string dir_;
};

TEST_F(ServerRestartTest, StatementsWaitForTheServerAndAtMostTheOneInFlightIsLost) {
  const int cases = 3000;
  ProgramRun run = RunWhile(cases, [&] {
    WaitForPatients(300);
    server_under_test_.Kill();
    std::this_thread::sleep_for(std::chrono::seconds(2));
    ASSERT_TRUE(server_under_test_.Start()) << server_under_test_.log();
    ReconnectInspector();
  });
  EXPECT_EQ(run.exit_code, 0);
  EXPECT_NE(run.errors.find("Lost the database server"), std::string::npos) << run.errors;
  EXPECT_NE(run.errors.find("The database server is back after"), std::string::npos) << run.errors;

  std::set<std::string> reported = ReportedCases(run.output);
  std::set<std::string> complete = CompleteCases();
  EXPECT_EQ(LostSilently(cases, reported), 0);
  // The statement in flight when the server went is the only one lost.
  EXPECT_LE(reported.size(), 1u) << run.errors;
  EXPECT_GE(complete.size(), static_cast<std::size_t>(cases - 1));
  bool counted = run.output.find("Imported " + std::to_string(cases) + " records\n") != std::string::npos ||
                 run.output.find("Imported " + std::to_string(cases - 1) + " records\n") != std::string::npos;
  EXPECT_TRUE(counted);
}

// Past the limit the server is given up: every later statement fails at once
// and is reported, and the run ends instead of hanging.
TEST_F(ServerRestartTest, AServerThatStaysAwayIsGivenUpAfterTheLimit) {
  WriteFile(dir_ + "/CorvanaDataImporter.ini",
            ReadFile(dir_ + "/CorvanaDataImporter.ini") + "ReconnectSeconds=1\r\n");
  const int cases = 1500;
  auto start = std::chrono::steady_clock::now();
  ProgramRun run = RunWhile(cases, [&] {
    WaitForPatients(100);
    server_under_test_.Kill();
  });
  double seconds = std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
  EXPECT_EQ(run.exit_code, 0);
  EXPECT_LT(seconds, 30);
  EXPECT_NE(run.errors.find("did not come back within 1 s"), std::string::npos) << run.errors;
  // The cases after the server went are each reported.
  std::set<std::string> reported = ReportedCases(run.output);
  EXPECT_GT(reported.size(), 0u);
  EXPECT_NE(reported.count("0" + std::to_string(kFirstCase + cases - 1)), 0u);
  ASSERT_TRUE(server_under_test_.Start()) << server_under_test_.log();
  ReconnectInspector();
  EXPECT_EQ(LostSilently(cases, reported), 0);
}

}  // namespace
