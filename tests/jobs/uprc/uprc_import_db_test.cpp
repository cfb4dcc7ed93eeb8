#include "jobs/uprc/uprc_import.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <string>

#include "support/program_run.h"
#include "support/test_database.h"

namespace {

class UprcImportTest : public DatabaseTest {
 protected:
  // Runs the job for `year` in `dir` and returns what it printed after the
  // connection line, which names this test's own database.
  std::string RunJob(const std::string& dir, const std::string& year) {
    WriteIni(dir);
    ProgramRun run = RunProgram(dir, {"-org", "UPRC", "-type", "patient", "-year", year});
    EXPECT_EQ(run.exit_code, 0);
    const std::string connected = Connected();
    EXPECT_EQ(run.output.substr(0, connected.size()), connected);
    return run.output.substr(std::min(connected.size(), run.output.size()));
  }
};

TEST_F(UprcImportTest, SampleYear) {
  std::string dir = MakeTempDir();
  CopySamples("samples/uprc", dir);
  ExpectMatchesFile(RunJob(dir, "2012"), "jobs/uprc/expected/uprc_2012.log");
  // The import notes carry the time of the run, so only the dates of the
  // disposition entries (notes empty) are kept.
  ExpectMatchesFile(
      Dump({{"patient",
             "patient_id,name,species,status,location,flags,admission_date,final_date,expected_release_date,"
             "away_from_date,away_to_date,age,ageIn,sex,species_group,found_state,found_country,found_district,"
             "found_county,presenter_state,presenter_country,presenter_district,presenter_county,"
             "presenter_transporter"},
            {"problems", "patient_id,description,resolved,initial_date"},
            {"record_entry",
             "patient_id,replace(notes,char(10),'<LF>'),if(notes='',date,'<now>'),who,weight,keel,location,"
             "amountFed,special"},
            {"transfers", "record_entry_id,patient_id,date,name,addr,city,state,zip,county,permit,reason,country"},
            {"releases",
             "record_entry_id,patient_id,date,location,city,state,country,id_type,tracker_type,band_number,"
             "how_age,how_sex,pub_priv"}}),
      "jobs/uprc/expected/uprc_2012.rows");

  // The import notes were written now (their dates are left out of the rows above).
  EXPECT_EQ(Value("select count(*) from record_entry where notes<>'' and date < now() - interval 1 day"), "0");
}

TEST_F(UprcImportTest, MissingYear) {
  EXPECT_EQ(RunJob(MakeTempDir(), "2013"),
            "UPRC - patient - 2013\n"
            "Loading patient data from './UPRC 2013.txt'\n"
            "Unable to open './UPRC 2013.txt'\n");
}

// A row of blanks and tabs goes through the job and is reported like any bad
// row; only an empty line is passed over.
TEST_F(UprcImportTest, BlankRowIsReportedEmptyLineIsNot) {
  std::string dir = MakeTempDir();
  WriteFile(dir + "/UPRC 2012.txt", "header\r\n\r\n \t \t \t \t \t \t \t \t \t \r\n \r\n");
  EXPECT_EQ(RunJob(dir, "2012"),
            "UPRC - patient - 2012\n"
            "Loading patient data from './UPRC 2012.txt'\n"
            "\tERROR - Invalid admission date ' ' - ' '\n"
            "\tERROR - Invalid final date ' ' - ' '\n"
            "\tERROR - only 1 of 10 fields for '', line skipped\n"
            "Imported 0 patients\n");
}

}  // namespace
