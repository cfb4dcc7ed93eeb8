// The program as an operator runs it: usage, configuration, connection and
// which job a pair of organisation code and data type selects.
#include <gtest/gtest.h>

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
  std::string Connected() const { return "\n\nCorvanaDataImporter version 1.0 connected successfully to '" +
                                         server_.host + ":" + database_ + "'\n"; }
  std::string dir_;
};

TEST_F(ImporterTest, InvalidOptionsPrintUsageAndConnectNowhere) {
  std::string empty_dir = MakeTempDir();
  ProgramRun run = RunProgram(empty_dir, {});
  EXPECT_EQ(run.exit_code, 1);
  EXPECT_EQ(run.output, kUsage);
  EXPECT_EQ(ReadFile(empty_dir + "/CorvanaDataImporter.ini"), "");  // not even the configuration is read

  run = RunProgram(dir_, {"-org", "KWRC", "-type", "x", "-year"});
  EXPECT_EQ(run.exit_code, 1);
  EXPECT_EQ(run.output, kUsage);
}

TEST_F(ImporterTest, ConnectionFailures) {
  std::string empty_dir = MakeTempDir();
  ProgramRun run = RunProgram(empty_dir, {"-org", "HWC", "-type", "x", "-year", "2012"});
  EXPECT_EQ(run.exit_code, 1);
  EXPECT_EQ(run.output, "Can't connect to '' on ':3306' as user ''!\n");
  EXPECT_EQ(ReadFile(empty_dir + "/CorvanaDataImporter.ini"), "\n");  // created for the operator to fill

  WriteFile(dir_ + "/CorvanaDataImporter.ini", "[MYSQL]\nServer=" + server_.host + "\nPort=" +
                                                   std::to_string(server_.port) + "\nDatabase=" + database_ +
                                                   "\nUsername=" + server_.user + "\nPassword=wrong\n");
  run = RunProgram(dir_, {"-org", "HWC", "-type", "x", "-year", "2012"});
  EXPECT_EQ(run.exit_code, 1);
  EXPECT_EQ(run.output, "Can't connect to '" + database_ + "' on '" + server_.host + ":" +
                            std::to_string(server_.port) + "' as user '" + server_.user + "'!\n");
}

TEST_F(ImporterTest, JobSelection) {
  struct Case {
    std::vector<std::string> args;
    std::string log_after_job_line;
  };
  const Case cases[] = {
      {{"-org", "HWC", "-type", "fixTransfers", "-year", "2012"}, ""},
      {{"-org", "CSAQ_FF", "-type", "Patient", "-year", "2012"}, ""},
      {{"-org", "Nobody", "-type", "patient", "-year", "2012"}, ""},
      {{"-org", "KWRC", "-type", "species", "-year", "2013"}, "Unable to open 'KWRC_2013.txt'!"},
      {{"-org", "KWRC", "-type", "fixTransfers", "-year", "2013"}, "Unable to open 'KWRC_2013.txt'!"},
      {{"-org", "Nobody", "-type", "FIXTRANSFERS", "-year", "0"}, "Updated 0 transfer records\n"},
      {{"-type", "fixtransfers", "-org", "", "-year", "0"}, "Updated 0 transfer records\n"},
  };
  for (const Case& c : cases) {
    ProgramRun run = RunProgram(dir_, c.args);
    EXPECT_EQ(run.exit_code, 0) << c.args[1] << " " << c.args[3];
    std::string org = c.args[0] == "-org" ? c.args[1] : c.args[3];
    std::string type = c.args[0] == "-org" ? c.args[3] : c.args[1];
    EXPECT_EQ(run.output, Connected() + org + " - " + type + " - " + c.args[5] + "\n" + c.log_after_job_line)
        << org << " " << type;
  }
}

}  // namespace
