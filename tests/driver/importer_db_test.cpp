// The program as an operator runs it: usage, configuration, connection and
// which job a pair of organisation code and data type selects.
#include <gtest/gtest.h>

#include <array>
#include <string>

#include "support/program_run.h"
#include "support/test_database.h"

namespace {

const std::string kUsage =
    "Unable to correclty parse command-line arguments!\n"
    "Usage: CorvanaDataImporter -org ORGNAME -year 2011 -type DATA_TYPE\n";

class ImporterTest : public DatabaseTest {
 protected:
  void SetUp() override {
    DatabaseTest::SetUp();
    dir_ = MakeTempDir();
    WriteIni(dir_);
  }
  std::string dir_;
};

TEST_F(ImporterTest, UsageAndConnectionFailures) {
  std::string empty_dir = MakeTempDir();
  ProgramRun run = RunProgram(empty_dir, {});
  EXPECT_EQ(run.exit_code, 1);
  EXPECT_EQ(run.output, kUsage);
  EXPECT_EQ(ReadFile(empty_dir + "/CorvanaDataImporter.ini"), "");  // not even the configuration is read

  run = RunProgram(empty_dir, {"-org", "HWC", "-type", "x", "-year", "2012"});
  EXPECT_EQ(run.exit_code, 1);
  EXPECT_EQ(run.output, "Can't connect to '' on ':3306' as user ''!\n");
  EXPECT_EQ(ReadFile(empty_dir + "/CorvanaDataImporter.ini"), "\n");  // created for the operator to fill
  // A wrong password, a database that is not there, a server that is not
  // there: the connection message, exit code 1, and the reason on stderr.
  const std::string ini = ReadFile(dir_ + "/CorvanaDataImporter.ini");
  auto with = [&](const std::string& key, const std::string& value) {
    std::size_t start = ini.find(key + "=");
    return ini.substr(0, start) + key + "=" + value + ini.substr(ini.find("\r\n", start));
  };
  const struct {
    std::string ini;
    std::string database, port, reason;
  } failures[] = {
      {with("Password", "wrong"), database_, std::to_string(server_.port), "Access denied"},
      {with("Database", "no_such_database"), "no_such_database", std::to_string(server_.port), "Unknown database"},
      {with("Port", "1"), database_, "1", "Can't connect"},
  };
  for (const auto& failure : failures) {
    WriteFile(dir_ + "/CorvanaDataImporter.ini", failure.ini);
    run = RunProgram(dir_, {"-org", "HWC", "-type", "x", "-year", "2012"});
    EXPECT_EQ(run.exit_code, 1);
    EXPECT_EQ(run.output, "Can't connect to '" + failure.database + "' on '" + server_.host + ":" + failure.port +
                              "' as user '" + server_.user + "'!\n");
    EXPECT_EQ(run.errors.rfind("The server said: ", 0), 0u) << run.errors;
    EXPECT_NE(run.errors.find(failure.reason), std::string::npos) << run.errors;
    EXPECT_EQ(run.summary, "");  // no job ran
  }
}

TEST_F(ImporterTest, JobSelection) {
  const std::array<const char*, 4> cases[] = {  // organisation, data type, year, log after the job line
      {"HWC", "fixTransfers", "2012", ""},
      {"CSAQ_FF", "Patient", "2012", ""},
      {"Nobody", "patient", "2012", ""},
      {"KWRC", "species", "2013", "Unable to open 'KWRC_2013.txt'!"},
      {"KWRC", "fixTransfers", "2013", "Unable to open 'KWRC_2013.txt'!"},
      {"Nobody", "FIXTRANSFERS", "0", "Updated 0 transfer records\n"},
      {"", "fixtransfers", "0", "Updated 0 transfer records\n"},
  };
  for (const auto& [org, type, year, log] : cases) {
    ProgramRun run = RunProgram(dir_, {"-org", org, "-type", type, "-year", year});
    EXPECT_EQ(run.exit_code, 0) << org << " " << type;
    EXPECT_EQ(run.output, Connected() + org + " - " + type + " - " + year + "\n" + log) << org << " " << type;
  }
}

// A table missing from the database (an old or partly loaded schema) fails
// each statement that writes it: every row it should have held is named in
// the log, every other row is written as usual, and the run ends with 0.
TEST_F(ImporterTest, TableMissingFromTheSchema) {
  struct Case {
    const char* table;
    const char* reported;  // the log line that names each row not written
    int rows;              // rows of that table in a complete run
    int imported;          // cases counted as imported (a case without its release is not)
  };
  const Case cases[] = {
      {"problems", "Unable to create problem record for '", 31, 18},
      {"releases", "Error creating release record for patient id '", 8, 10},
  };
  std::string expected = ReadFile(std::string(CORVANA_SOURCE_DIR) + "/tests/jobs/kwrc/expected/kwrc_2012.log");
  for (const Case& c : cases) {
    TearDown();  // a fresh database for each case
    SetUp();
    CopySamples("samples/kwrc", dir_);
    Exec(ReadFile(dir_ + "/settings.sql"));
    Exec(std::string("drop table ") + c.table);
    ProgramRun run = RunProgram(dir_, {"-org", "KWRC", "-type", "patient", "-year", "2012"});
    EXPECT_EQ(run.exit_code, 0) << c.table;
    ASSERT_EQ(run.output.substr(0, Connected().size()), Connected());
    std::string rest;
    int reported = 0;
    std::size_t start = Connected().size();
    while (start < run.output.size()) {
      std::size_t end = run.output.find('\n', start);
      end = end == std::string::npos ? run.output.size() : end + 1;
      std::string line = run.output.substr(start, end - start);
      if (line.rfind(c.reported, 0) == 0) ++reported;
      else rest += line;
      start = end;
    }
    EXPECT_EQ(reported, c.rows) << c.table;
    std::string imported = "Imported " + std::to_string(c.imported) + " records\n";
    EXPECT_EQ(rest, expected.substr(0, expected.rfind("Imported ")) + imported) << c.table;
    EXPECT_NE(run.summary.find("Statements: "), std::string::npos);
  }
}

}  // namespace
