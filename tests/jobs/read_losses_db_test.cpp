// The lines of the text exports that are read otherwise than they look: the
// jobs read them exactly as before (same log, same rows) and the loss report
// names the file, the line and the column of each.
#include "util/read_losses.h"

#include <gtest/gtest.h>
#include <unistd.h>

#include <string>
#include <vector>

#include "driver/dispatch.h"
#include "support/losses.h"
#include "support/program_run.h"
#include "support/sample_jobs.h"
#include "support/test_database.h"

namespace {

class ReadLossesTest : public DatabaseTest {
 protected:
  // Runs the job in `dir` in this process, as the program would after its
  // banner; returns its log. What the readers report is in `entries_`.
  std::string RunJob(const std::string& dir, const Args& args) {
    RunOptions options{};
    options.year = std::stoi(args[5]);
    if (args.size() > 7) options.region = args[7].c_str();
    char here[4096];
    EXPECT_NE(getcwd(here, sizeof here), nullptr);
    EXPECT_EQ(chdir(dir.c_str()), 0);
    WatchReadLosses(&entries_);
    testing::internal::CaptureStdout();
    RunSelectedJob(args[1].c_str(), args[3].c_str(), options);
    std::string log = testing::internal::GetCapturedStdout();
    WatchReadLosses(nullptr);
    EXPECT_EQ(chdir(here), 0);
    return log;
  }

  std::vector<std::string> Entries() const {
    std::vector<std::string> shown;
    for (const LossEntry& e : entries_) shown.push_back(ShowLoss(e));
    return shown;
  }

  std::vector<LossEntry> entries_;
};

std::string Replace(std::string text, const std::string& from, const std::string& to) {
  std::size_t at = text.find(from);
  if (at != std::string::npos) text.replace(at, from.size(), to);
  return text;
}

// The sample's line 21 lacks its band and is skipped for it.
const std::string kKwrcEmptyBand =
    "KWRC_2012.txt|column 4|KWRC_2012.txt line 21|empty cell|[12020][EUKE][5/2/2012][][Adult][M][\"Haidian, "
    "Haidian District\"][Found on a windowsill][Release][5/30/2012][\"Summer Palace, Haidian...|column 5 read as "
    "column 4, and every later cell one column to the left";

// A tab inside a quoted history moves the last cell (the cause) off the end
// of the fourteen the job reads.
TEST_F(ReadLossesTest, KwrcLineWithATabInsideAQuotedText) {
  std::string dir = MakeTempDir();
  CopySamples("samples/kwrc", dir);
  Exec(ReadFile(dir + "/settings.sql"));
  std::string plain = RunJob(dir, Job("KWRC", "patient", "2012"));
  entries_.clear();
  Exec("delete from releases; delete from transfers; delete from problems; delete from record_entry; "
       "delete from patient");

  const std::string path = dir + "/KWRC_2012.txt";
  WriteFile(path, Replace(ReadFile(path), "\"Found on the ground under", "\"Found on the ground\tunder"));
  // The cells after the tab read one column to the right, as they always were.
  std::string shifted = Replace(plain,
                                "12001\nAddr: 'Chaoyang Park', District: 'Chaoyang', Province: 'Beijing'\n"
                                "Addr: 'Baiwangshan', District: 'Haidian', Province: 'Beijing'\n",
                                "12001\nInvalid final date 'Release' - '012001'\n");
  EXPECT_EQ(RunJob(dir, Job("KWRC", "patient", "2012")), Replace(shifted, "Imported 18", "Imported 17"));
  EXPECT_EQ(Entries(), (std::vector<std::string>{
                           "KWRC_2012.txt|column 15|KWRC_2012.txt line 2|extra fields|[Orphaned]|not read: the "
                           "quoted text of column 8 holds a tab, so the cells after it were read one column to "
                           "the right",
                           kKwrcEmptyBand}));
}

// Lines longer than the job reads at once: each piece went through the job
// as a line of its own, as before; the report gives the whole line's length.
TEST_F(ReadLossesTest, DswcLinesReadInPieces) {
  std::string dir = MakeTempDir();
  CopySamples("samples/dswc", dir);
  RunJob(dir, Job("DsWC", "species", "2011"));
  entries_.clear();

  // An admission of 1,048 characters: the cut falls inside the phone.
  const std::string admissions = dir + "/2011Admissions.txt";
  std::string text = ReadFile(admissions);
  const std::string admission =
      "0999\tGreat Horned Owl\t1/14/2011\tDana\tWhitcomb\t4410 N Camino Escondido\tTucson\t85718\tSunrise & Swan\t"
      "Hit by car\tWing fracture\t1/14/2011\tEuthanasia\t520-555-0112\tBrought in\tAdult";
  const std::string padded = Replace(admission, "Hit by car", "Hit by car" + std::string(1048 - admission.size(), '.'));
  ASSERT_EQ(padded.size(), 1048u);
  WriteFile(admissions, text + padded + "\r\n");
  const std::string log = RunJob(dir, Job("DsWC", "patient", "2011"));
  EXPECT_NE(log.find("\tERROR - only 3 of 13 fields for '2011-0555', line skipped\nImported 48 patients\n"),
            std::string::npos)
      << log;
  EXPECT_EQ(Rows("select found_phone1 from patient where patient_id='2011-0999'"), (std::vector<std::string>{"520-"}));
  EXPECT_EQ(Entries(), (std::vector<std::string>{"2011Admissions.txt|line|2011Admissions.txt line 55|line read in "
                                                 "pieces|1048 characters|read as 2 lines of at most 1023 characters"}));
}

// Of all the samples' lines, only the two with an empty cell (both skipped
// for a missing field) are read otherwise than they look.
TEST_F(ReadLossesTest, SamplesReportOnlyTheirEmptyCells) {
  const std::vector<std::string> kTaxonomyEmptyGenus = {
      "MissingTaxonomy.txt|column 8|MissingTaxonomy.txt line 6|empty cell|[Eastern hellbender][Cryptobranchus "
      "alleganiensis][Animalia][Chordata][Amphibia][Caudata][Cryptobranchidae][][alleganiensis]|column 9 read as "
      "column 8, and every later cell one column to the left"};
  for (const SampleJob& job : kSampleJobs) {
    SCOPED_TRACE(job.name);
    TearDown();
    SetUp();
    std::string dir = MakeTempDir();
    CopySamples(job.samples, dir);
    for (const std::string& sql : job.seed_sql) Exec(ReadFile(dir + "/" + sql));
    for (const Args& before : job.before) RunJob(dir, before);
    RunJob(dir, job.args);
    const std::string name = job.name;
    EXPECT_EQ(Entries(), name == "KWRC"                ? std::vector<std::string>{kKwrcEmptyBand}
                         : name == "CSAQ_PKS_taxonomy" ? kTaxonomyEmptyGenus
                                                       : std::vector<std::string>{});
    entries_.clear();
  }
}

}  // namespace
