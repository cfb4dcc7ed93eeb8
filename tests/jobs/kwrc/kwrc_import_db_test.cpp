#include "jobs/kwrc/kwrc_import.h"

#include <gtest/gtest.h>

#include <array>
#include <string>

#include "support/program_run.h"
#include "support/scratch_server.h"
#include "support/test_database.h"

namespace {

class KwrcImportTest : public DatabaseTest {
 protected:
  // Runs the sample year (saved as `encoding`, when given); its log from the
  // job line on and every row it wrote must match the expected files.
  // Returns what it printed on stderr.
  std::string RunSampleYear(const SavedAs* encoding = nullptr);

  std::string summary_;  // what the last run summed up on stderr
};

std::string KwrcImportTest::RunSampleYear(const SavedAs* encoding) {
  std::string dir = MakeTempDir();
  CopySamples("samples/kwrc", dir);
  if (encoding != nullptr) {
    WriteFile(dir + "/KWRC_2012.txt", SaveAs(ReadFile(dir + "/KWRC_2012.txt"), *encoding));
  }
  WriteIni(dir);
  Exec(ReadFile(dir + "/settings.sql"));

  ProgramRun run = RunProgram(dir, {"-org", "KWRC", "-type", "patient", "-year", "2012"});
  EXPECT_EQ(run.exit_code, 0);
  summary_ = run.summary;
  const std::string connected = Connected();
  EXPECT_EQ(run.output.substr(0, connected.size()), connected);
  ExpectMatchesFile(run.output.substr(connected.size()), "jobs/kwrc/expected/kwrc_2012.log");
  ExpectMatchesFile(
      Dump({{"patient",
             "patient_id,species,admission_date,final_date,status,band,injury_cause,age,ageIn,sex,flags,"
             "expected_release_date,found_addr,found_district,found_city,found_state,found_country,found_hx,"
             "presenter_country"},
            {"problems", "patient_id,description,resolved,initial_date"},
            {"record_entry", "patient_id,notes,date,who,weight,keel,location,amountFed,special"},
            {"releases",
             "record_entry_id,patient_id,date,how_age,how_sex,band_number,id_type,tracker_type,pub_priv,"
             "location,city,state,country"},
            {"transfers", "record_entry_id,patient_id,date,name,reason,country"}}),
      "jobs/kwrc/expected/kwrc_2012.rows");
  return run.errors;
}

TEST_F(KwrcImportTest, SampleYear) {
  EXPECT_EQ(RunSampleYear(), "");
  EXPECT_EQ(summary_.substr(0, summary_.find("Wall time")),
            "== Summary of KWRC - patient - 2012\n"
            "Rows written:\n"
            "  patient                      18 inserted       36 updated\n"
            "  problems                     31 inserted\n"
            "  record_entry                 18 inserted\n"
            "  releases                      8 inserted\n"
            "  transfers                     1 inserted\n"
            "Statements: 150 sent, 0 failed\n"
            "Log lines reporting an error or a warning: 6\n");
  // The counts are the rows the run left in the tables (the settings row was seeded).
  for (const char* table : {"patient", "problems", "record_entry", "releases", "transfers"}) {
    std::string line = summary_.substr(summary_.find(std::string("  ") + table + " "));
    EXPECT_EQ(std::stoul(line.substr(26, 9)), std::stoul(Value(std::string("select count(*) from ") + table)))
        << table;
  }
}

// A stock server starts strict; the run sets the Corvana server's permissive
// mode for its session, so the same sample gives the same log and rows, and
// the operator is told on stderr that the server's own mode differs.
using KwrcImportOnStockServerTest = OnStockServer<KwrcImportTest>;

TEST_F(KwrcImportOnStockServerTest, SampleYearGivesTheSameLogAndRows) {
  ASSERT_NE(Value("select @@global.sql_mode").find("STRICT_TRANS_TABLES"), std::string::npos);
  EXPECT_EQ(RunSampleYear(),
            "The server's sql_mode is "
            "'STRICT_TRANS_TABLES,NO_ZERO_IN_DATE,NO_ZERO_DATE,ERROR_FOR_DIVISION_BY_ZERO,NO_AUTO_CREATE_USER,"
            "NO_ENGINE_SUBSTITUTION'; this run uses 'NO_ENGINE_SUBSTITUTION', as the Corvana server does\n");
}

// Saved as Unicode text (either byte order) or with a UTF-8 mark, the year
// gives the same log and rows as saved as ANSI text.
class KwrcSavedAsTest : public KwrcImportTest, public testing::WithParamInterface<SavedAs> {};

TEST_P(KwrcSavedAsTest, SampleYearGivesTheSameLogAndRows) {
  SavedAs encoding = GetParam();
  std::string notes = RunSampleYear(&encoding);
  EXPECT_EQ(notes.find("Unicode text") != std::string::npos, encoding != SavedAs::kUtf8Mark) << notes;
}

INSTANTIATE_TEST_SUITE_P(Encodings, KwrcSavedAsTest,
                         testing::Values(SavedAs::kUtf16LittleEndian, SavedAs::kUtf16BigEndian,
                                         SavedAs::kUtf8Mark));

TEST_F(KwrcImportTest, SplitKwrcAddress) {
  const std::array<const char*, 5> cases[] = {  // address, street, city, district, province
      {"Chaoyang Park, Chaoyang District", "Chaoyang Park", "Beijing", "Chaoyang", "Beijing"},
      {"Wenquan Town, Hebei Province", "Wenquan Town", "", "", "Hebei"},
      {"KWRC", "KWRC", "", "Haidan", "Beijing"},
      {"Summer Palace north gate", "Summer Palace north gate", "", "", ""},
      {"Haidian District", "", "Beijing", "Haidian", "Beijing"},
      {"Town, Changping District, Hebei Province", "Town", "Beijing", "Changping", "Beijing"},
      {"Gate, western district", "Gate, western district", "", "", ""},
  };
  testing::internal::CaptureStdout();
  for (const auto& c : cases) {
    Text<64> street{};
    Text<32> city{}, district{}, province{}, country{};
    SplitKwrcAddress(c[0], street, city, district, province, country);
    EXPECT_EQ((std::vector<std::string>{street.c_str(), city.c_str(), district.c_str(), province.c_str()}),
              (std::vector<std::string>{c[1], c[2], c[3], c[4]})) << c[0];
    EXPECT_EQ(country, "CHINA");
  }
  std::string printed = testing::internal::GetCapturedStdout();
  EXPECT_NE(printed.find("Addr: 'Wenquan Town', District: '', Province: 'Hebei'\n"), std::string::npos);
}

// Only an empty line is passed over: a line of tabs has no field, and is
// reported as the short line it is.
TEST_F(KwrcImportTest, LineOfTabsIsReportedEmptyLineIsNot) {
  std::string dir = MakeTempDir();
  WriteIni(dir);
  WriteFile(dir + "/KWRC_2012.txt", "header\r\n\r\n\t\t\t\r\n");
  ProgramRun run = RunProgram(dir, {"-org", "KWRC", "-type", "patient", "-year", "2012"});
  EXPECT_EQ(run.output.substr(Connected().size()),
            "KWRC - patient - 2012\nLoading KWRC data for 2012...\n\n"
            "\tERROR - only 0 of 14 fields for '', line skipped\nImported 0 records\n");
}

}  // namespace
