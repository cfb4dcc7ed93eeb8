// The program run through the delaying proxy writes exactly what it writes
// directly, and each statement's round trip takes the proxy's delay: what
// scripts/bench.sh --rtt relies on to measure a distant server.
#include <gtest/gtest.h>

#include <chrono>
#include <cstdlib>
#include <string>
#include <vector>

#include "support/delay_proxy.h"
#include "support/program_run.h"
#include "support/test_database.h"

namespace {

class DelayProxyRunTest : public DatabaseTest {
 protected:
  struct Run {
    ProgramRun program;
    std::string rows;
    double seconds;
  };

  // The KWRC sample year in a fresh database, reached on `port`.
  Run RunSampleYear(int port, const std::vector<std::string>& options) {
    Exec("drop database " + database_ + "; create database " + database_ + "; use " + database_);
    Exec(ReadFile(std::string(CORVANA_SOURCE_DIR) + "/db/schema.sql"));
    std::string dir = MakeTempDir();
    CopySamples("samples/kwrc", dir);
    Exec(ReadFile(dir + "/settings.sql"));
    WriteIni(dir, port);
    std::vector<std::string> args{"-org", "KWRC", "-type", "patient", "-year", "2012"};
    args.insert(args.end(), options.begin(), options.end());
    auto start = std::chrono::steady_clock::now();
    ProgramRun program = RunProgram(dir, args);
    double seconds = std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
    EXPECT_EQ(program.exit_code, 0) << program.errors;
    // Keys included: the same rows under the same ids.
    return {program,
            Dump({{"patient", "*"}, {"problems", "*"}, {"record_entry", "*"}, {"releases", "*"}, {"transfers", "*"}}),
            seconds};
  }
};

// "Statements: N sent" of a run's summary.
int StatementsSent(const std::string& summary) {
  std::size_t at = summary.find("Statements: ");
  return at == std::string::npos ? 0 : std::atoi(summary.c_str() + at + 12);
}

TEST_F(DelayProxyRunTest, SampleYearThroughTheProxyGivesTheSameLogAndRowsOneDelayPerStatementLater) {
  constexpr int kDelayMs = 4;
  DelayProxy proxy(server_, kDelayMs);
  ASSERT_NE(proxy.port(), 0);
  for (const std::vector<std::string>& options : {std::vector<std::string>{}, {"-atomic"}}) {
    std::string mode = options.empty() ? "plain" : "-atomic";
    Run direct = RunSampleYear(server_.port, options);
    Run delayed = RunSampleYear(proxy.port(), options);
    EXPECT_EQ(delayed.program.output, direct.program.output) << mode;
    EXPECT_EQ(delayed.rows, direct.rows) << mode;
    int statements = StatementsSent(delayed.program.summary);
    EXPECT_EQ(statements, StatementsSent(direct.program.summary)) << mode;
    EXPECT_GT(statements, 100) << mode << delayed.program.summary;
    // A plain run waits for every statement's answer. (An -atomic run need
    // not, once it sends its writes in batches.)
    if (options.empty()) {
      EXPECT_GE(delayed.seconds, statements * kDelayMs / 1000.0) << mode;
    }
  }
}

}  // namespace
