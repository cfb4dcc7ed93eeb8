#include "jobs/glfh/glfh_import.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <string>

#include "support/program_run.h"
#include "support/test_database.h"

namespace {

class GlfhImportTest : public DatabaseTest {
 protected:
  // Runs the job in `dir` and returns what it printed after the connection
  // line, which names this test's own database.
  std::string RunJob(const std::string& dir, const std::string& errors = "") {
    WriteIni(dir);
    ProgramRun run = RunProgram(dir, {"-org", "GLFH", "-type", "patient", "-year", "2012"});
    EXPECT_EQ(run.exit_code, 0);
    EXPECT_EQ(run.errors, errors);
    const std::string connected = Connected();
    EXPECT_EQ(run.output.substr(0, connected.size()), connected);
    return run.output.substr(std::min(connected.size(), run.output.size()));
  }
};

TEST_F(GlfhImportTest, SampleRegister) {
  std::string dir = MakeTempDir();
  CopySamples("samples/glfh", dir);
  ExpectMatchesFile(RunJob(dir), "jobs/glfh/expected/glfh_patients.log");
  // Line feeds kept from the line ends are shown as <LF>; the import time is left out.
  ExpectMatchesFile(
      Dump({{"patient",
             "patient_id,name,species,status,admission_date,final_date,expected_release_date,away_from_date,"
             "away_to_date,age,ageIn,sex,flags,microchip,species_group,location,"
             "presenter_name,replace(presenter_phone1,char(10),'<LF>'),presenter_country,presenter_state,"
             "presenter_district,presenter_county,presenter_transporter,"
             "found_name,replace(found_phone1,char(10),'<LF>'),found_country,found_state,found_district,"
             "found_county"},
            {"record_entry", "patient_id,replace(notes,char(10),'<LF>'),who,weight,keel,location,amountFed,special"}}),
      "jobs/glfh/expected/glfh_patients.rows");

  // The import notes were written now (their dates are left out of the rows above).
  EXPECT_EQ(Value("select count(*) from record_entry where date < now() - interval 1 day"), "0");
}

// Lines after a Ctrl-Z are not imported, as the old system's text mode
// would have it; the log stays the same and stderr tells the operator.
TEST_F(GlfhImportTest, CtrlZInTheMiddleOfTheRegister) {
  std::string dir = MakeTempDir();
  CopySamples("samples/glfh", dir);
  std::string path = dir + "/GLFH_Patients.txt";
  std::string whole = ReadFile(path);
  WriteFile(path, whole + "\x1a" + "999\tForgotten Falcon\r\n");
  std::string log = RunJob(dir, "Note: './GLFH_Patients.txt' ends at a Ctrl-Z (byte 0x1A) on line " +
                                    std::to_string(std::count(whole.begin(), whole.end(), '\n') + 1) +
                                    "; the 22 bytes after it were not read\n");
  EXPECT_EQ(log, ReadFile(CORVANA_SOURCE_DIR "/tests/jobs/glfh/expected/glfh_patients.log"));
}

// An operator watching on a terminal sees a progress line on stderr, drawn
// in place and cleared before the job ends; the log on stdout is the same
// byte for byte, and a log on a file or a pipe gets no progress at all.
TEST_F(GlfhImportTest, ProgressOnATerminalOnly) {
  std::string dir = MakeTempDir();
  CopySamples("samples/glfh", dir);
  WriteIni(dir);
  ProgramRun watched = RunProgramOnTerminal(dir, {"-org", "GLFH", "-type", "patient", "-year", "2012"});
  EXPECT_EQ(watched.exit_code, 0);
  std::size_t progress = watched.errors.find("\rReading './GLFH_Patients.txt': ");
  ASSERT_NE(progress, std::string::npos) << watched.errors;
  std::size_t summary = watched.errors.find("== Summary of GLFH - patient - 2012");
  ASSERT_NE(summary, std::string::npos) << watched.errors;
  EXPECT_LT(progress, summary);
  EXPECT_EQ(watched.errors.substr(summary - 4, 4), "\r\x1b[K");  // cleared before the summary
  const std::string connected = Connected();
  ASSERT_NE(watched.output.find(connected), std::string::npos);
  EXPECT_EQ(watched.output.substr(watched.output.find(connected) + connected.size()),
            ReadFile(CORVANA_SOURCE_DIR "/tests/jobs/glfh/expected/glfh_patients.log"));

  Exec("delete from patient; delete from record_entry");
  ProgramRun piped = RunProgram(dir, {"-org", "GLFH", "-type", "patient", "-year", "2012", "-again"});
  EXPECT_EQ(piped.errors, "");
  EXPECT_EQ(piped.output.substr(piped.output.find(connected)), watched.output.substr(watched.output.find(connected)));
}

TEST_F(GlfhImportTest, MissingRegister) {
  EXPECT_EQ(RunJob(MakeTempDir()),
            "GLFH - patient - 2012\n"
            "Loading patient data from './GLFH_Patients.txt'\n"
            "Unable to open './GLFH_Patients.txt'\n");
  EXPECT_EQ(Value("select count(*) from patient"), "0");
}

}  // namespace
