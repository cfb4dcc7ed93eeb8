// Atomic runs send their writes in batches; what lands and what is logged
// must be exactly what a run sending one statement at a time gives, also
// when the server refuses statements half-way or another program takes the
// keys the run expected.
#include <gtest/gtest.h>
#include <mysql.h>

#include <algorithm>
#include <atomic>
#include <filesystem>
#include <ctime>
#include <regex>
#include <string>
#include <thread>

#include "support/delay_proxy.h"
#include "support/program_run.h"
#include "support/sample_jobs.h"
#include "support/test_database.h"

namespace {

Args With(Args args, const std::string& option) {
  args.push_back(option);
  return args;
}

// The log without the banner, which names the server's port.
std::string Log(const ProgramRun& run) {
  std::size_t title = run.output.find(" - ");
  return title == std::string::npos ? run.output : run.output.substr(run.output.rfind('\n', title) + 1);
}

// The number after `label` in the run's summary ("Statements: ", "Wall time: ").
double SummaryNumber(const ProgramRun& run, const std::string& label) {
  std::size_t at = run.summary.find(label);
  return at == std::string::npos ? 0 : std::stod(run.summary.substr(at + label.size()));
}

// The loss report of the last run in `dir` ("" when it kept none).
std::string LastLossReport(const std::string& dir) {
  std::string last;
  std::error_code error;
  for (const auto& entry : std::filesystem::directory_iterator(dir + "/CorvanaDataImporter-journal", error)) {
    if (entry.path().string().ends_with(".losses.tsv")) last = std::max(last, entry.path().string());
  }
  return last.empty() ? "" : ReadFile(last);
}

class BatchedRunTest : public DatabaseTest {
 protected:
  void SetUp() override {
    DatabaseTest::SetUp();
    dir_ = MakeTempDir();
    WriteIni(dir_);
  }

  // Every row of every table, keys included, in key order; the time stamps
  // a run takes from the clock read "<now>".
  std::string AllRows() {
    char today[16];
    std::time_t now = std::time(nullptr);
    std::strftime(today, sizeof today, "%Y-%m-%d", std::localtime(&now));
    const std::regex stamp(std::string(today) + " [0-9:]{8}");
    std::string all;
    for (const std::string& table : Rows("show tables")) {
      for (const std::string& row : Rows("select * from `" + table + "` order by 1")) {
        all += table + ": " + std::regex_replace(row, stamp, "<now>") + "\n";
      }
    }
    return all;
  }

  // Empties every table, their keys starting again at 1.
  void EmptyAllTables() {
    for (const std::string& table : Rows("show tables")) Exec("truncate table `" + table + "`");
  }

  // A KWRC year of 400 birds, each with two problems and a release.
  void KwrcYear() {
    std::string file = "Case\tSpecies\tAdmitted\tBand\tAge\tSex\tFound\tHistory\tOutcome\tFinal\tPlace\t"
                       "Summary\tProblems\tCause\r\n";
    for (int n = 30000; n < 30400; ++n) {
      file += std::to_string(n) +
              "\tEUSP\t5/12/2012\tUNK\tAdult\tM\t\"Beihai Park\"\tFound in a park\tRelease\t6/1/2012\t"
              "\"Beihai Park\"\t\"Rested and flew well\"\t\"Emaciation; Trauma\"\tUnknown\r\n";
    }
    WriteFile(dir_ + "/KWRC_2012.txt", file);
    Exec(ReadFile(std::string(CORVANA_SOURCE_DIR) + "/samples/kwrc/settings.sql"));
  }

  // Runs `job` on its samples after its seeds and the jobs it needs first;
  // the job itself through `port` when that is not 0.
  ProgramRun RunSample(const SampleJob& job, const Args& args, int port = 0) {
    for (const std::string& seed : job.seed_sql) Exec(ReadFile(dir_ + "/" + seed));
    WriteIni(dir_);
    for (const Args& before : job.before) EXPECT_EQ(RunProgram(dir_, With(before, "-again")).exit_code, 0);
    if (port != 0) WriteIni(dir_, port);
    return RunProgram(dir_, args);
  }

  std::string dir_;
};

class BatchedSampleTest : public BatchedRunTest, public ::testing::WithParamInterface<SampleJob> {};

// Every sample job: an atomic run against a server a few milliseconds away
// logs and writes (keys included) what a plain run on loopback does.
TEST_P(BatchedSampleTest, AtomicRunWritesAndLogsWhatAPlainRunDoes) {
  const SampleJob& job = GetParam();
  CopySamples(job.samples, dir_);
  ProgramRun plain = RunSample(job, job.args);
  ASSERT_EQ(plain.exit_code, 0) << plain.errors;
  const std::string plain_rows = AllRows();
  const std::string plain_losses = LastLossReport(dir_);

  EmptyAllTables();
  DelayProxy distant(server_, 3);
  ProgramRun atomic = RunSample(job, With(With(job.args, "-atomic"), "-again"), distant.port());
  ASSERT_EQ(atomic.exit_code, 0) << atomic.errors;
  EXPECT_EQ(Log(atomic), Log(plain));
  EXPECT_EQ(AllRows(), plain_rows);
  EXPECT_EQ(LastLossReport(dir_), plain_losses);
  EXPECT_EQ(atomic.summary.substr(0, atomic.summary.find("Wall time")),
            plain.summary.substr(0, plain.summary.find("Wall time")));
}

INSTANTIATE_TEST_SUITE_P(Samples, BatchedSampleTest, ::testing::ValuesIn(kSampleJobs),
                         [](const auto& param) { return std::string(param.param.name); });

const SampleJob& Kwrc() { return kSampleJobs[0]; }

// A trigger refuses some of the KWRC sample's problems: the atomic run goes
// through the job again for each, and ends with the plain run's log and
// rows; with many refusals it sends one statement at a time after a few
// passes, still with the same outcome.
TEST_F(BatchedRunTest, RefusedStatementsGiveThePlainRunsLogAndRows) {
  // The problems the trigger refuses, and what stderr says then.
  const std::pair<const char*, const char*> cases[] = {{"description = 'Head trauma'", "pass 2"},
                                                       {"patient_id % 3 = 0", "now sending one statement at a time"}};
  CopySamples(Kwrc().samples, dir_);
  for (const auto& [refused, notice] : cases) {
    SCOPED_TRACE(refused);
    Exec(std::string("drop trigger if exists refuse_some; create trigger refuse_some before insert on problems for "
                     "each row begin if new.") +
         refused + " then signal sqlstate '45000' set message_text = 'refused by the test'; end if; end");
    EmptyAllTables();
    ProgramRun plain = RunSample(Kwrc(), With(Kwrc().args, "-again"));
    ASSERT_NE(plain.output.find("Unable to create problem record"), std::string::npos) << plain.output;
    const std::string plain_rows = AllRows();

    EmptyAllTables();
    ProgramRun atomic = RunSample(Kwrc(), With(With(Kwrc().args, "-atomic"), "-again"));
    EXPECT_EQ(atomic.exit_code, 0);
    EXPECT_EQ(Log(atomic), Log(plain));
    EXPECT_EQ(AllRows(), plain_rows);
    EXPECT_NE(atomic.errors.find(notice), std::string::npos) << atomic.errors;
    EXPECT_NE(atomic.errors.find("refused by the test"), std::string::npos) << atomic.errors;
  }
}

// Another program inserts patients while an atomic run imports: its keys are
// not those the run predicted, yet every problem, entry and release lands on
// its own bird, and every row of the other program is there.
TEST_F(BatchedRunTest, AnotherWriterNeverMovesARowToAnotherAnimal) {
  KwrcYear();
  const std::string by_case =
      "select p.patient_id, t.what from patient p join ("
      " select patient_id, concat('problem ', description) what from problems"
      " union all select patient_id, concat('entry ', left(notes, 60)) from record_entry"
      " union all select patient_id, concat('release ', date) from releases) t on t.patient_id = p.id"
      " order by 1, 2";
  ProgramRun plain = RunProgram(dir_, Kwrc().args);
  ASSERT_EQ(plain.exit_code, 0);
  const std::vector<std::string> expected = Rows(by_case);

  EmptyAllTables();
  KwrcYear();
  std::atomic<bool> stop{false};
  std::atomic<int> inserted{0};
  std::thread other([&] {
    MYSQL* connection = mysql_init(nullptr);
    if (mysql_real_connect(connection, server_.host.c_str(), server_.user.c_str(), server_.password.c_str(),
                           database_.c_str(), static_cast<unsigned>(server_.port), nullptr, 0) == nullptr) {
      return;
    }
    while (!stop) {
      std::string sql = "insert into patient (patient_id, name) values ('OTHER-" + std::to_string(inserted) + "', '')";
      if (mysql_query(connection, sql.c_str()) == 0) ++inserted;
      std::this_thread::sleep_for(std::chrono::milliseconds(2));
    }
    mysql_close(connection);
  });
  DelayProxy distant(server_, 2);
  WriteIni(dir_, distant.port());
  ProgramRun atomic = RunProgram(dir_, With(With(Kwrc().args, "-atomic"), "-again"));
  stop = true;
  other.join();
  ASSERT_EQ(atomic.exit_code, 0) << atomic.errors;
  EXPECT_EQ(Log(atomic), Log(plain)) << atomic.errors;
  EXPECT_EQ(Rows(by_case), expected);
  EXPECT_EQ(Value("select count(*) from patient where patient_id like 'OTHER-%'"), std::to_string(inserted.load()));
  EXPECT_GT(inserted.load(), 0);
}

// At 20 ms per round trip, a year of 400 birds (some 3,600 statements, 72 s
// of waiting one at a time) takes a few seconds even in a sanitizer build on
// a busy machine.
TEST_F(BatchedRunTest, ADistantServerCostsFewRoundTrips) {
  KwrcYear();
  DelayProxy distant(server_, 20);
  WriteIni(dir_, distant.port());
  ProgramRun atomic = RunProgram(dir_, With(Kwrc().args, "-atomic"));
  ASSERT_EQ(atomic.exit_code, 0) << atomic.errors;
  const double statements = SummaryNumber(atomic, "Statements: ");
  EXPECT_GT(statements, 2000);
  EXPECT_LT(SummaryNumber(atomic, "Wall time: "), statements * 0.020 / 8) << atomic.summary;
}

}  // namespace
