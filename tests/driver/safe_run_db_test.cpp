// The options of a safe migration, run as an operator runs them: a dry run
// changes nothing and logs what a real run logs, an atomic run that is killed
// or loses its server leaves nothing, a journal undoes its run, and the same
// import is not made twice by accident.
#include <fcntl.h>
#include <gtest/gtest.h>
#include <signal.h>
#include <sys/wait.h>
#include <unistd.h>

#include <chrono>
#include <filesystem>
#include <string>
#include <thread>

#include "driver/dispatch.h"
#include "support/program_run.h"
#include "support/sample_jobs.h"
#include "support/scratch_server.h"
#include "support/test_database.h"
#include "util/strings.h"

namespace {

const Args kKwrc = Job("KWRC", "patient", "2012");

Args With(Args args, const std::string& option) {
  args.push_back(option);
  return args;
}

// A KWRC year of `cases` released birds: long enough to be stopped part-way.
std::string KwrcYear(int cases) {
  std::string file = "Case\tSpecies\tAdmitted\tBand\tAge\tSex\tFound\tHistory\tOutcome\tFinal\tPlace\tSummary\t"
                     "Problems\tCause\r\n";
  for (int n = 30000; n < 30000 + cases; ++n) {
    file += std::to_string(n) +
            "\tEUSP\t5/12/2012\tUNK\tAdult\tM\t\"Beihai Park\"\tFound in a park\tRelease\t6/1/2012\t"
            "\"Beihai Park\"\t\"Rested and flew well\"\t\"Emaciation; Trauma\"\tUnknown\r\n";
  }
  return file;
}

// The journals of `dir`, in the order ls gives them.
std::vector<std::string> Journals(const std::string& dir) {
  std::vector<std::string> paths;
  std::error_code error;
  for (const auto& entry : std::filesystem::directory_iterator(dir + "/CorvanaDataImporter-journal", error)) {
    paths.push_back(entry.path().string());
  }
  std::sort(paths.begin(), paths.end());
  return paths;
}

int CountLines(const std::string& text, const std::string& prefix) {
  int count = 0;
  for (std::size_t at = 0; (at = text.find("\n" + prefix, at)) != std::string::npos; ++at) ++count;
  return count;
}

class SafeRunTest : public DatabaseTest {
 protected:
  void SetUp() override {
    DatabaseTest::SetUp();
    dir_ = MakeTempDir();
    WriteIni(dir_);
  }

  // A checksum of every table of the database, one "table|checksum" each.
  std::vector<std::string> Checksums() {
    std::string tables;
    for (const std::string& table : Rows("show tables")) tables += (tables.empty() ? "" : ",") + table;
    return Rows("checksum table " + tables);
  }

  // Starts the program in `dir_` without waiting; its stderr goes to
  // dir_/stderr. Returns its process id.
  pid_t Start(const Args& args) {
    pid_t pid = fork();
    if (pid == 0) {
      if (chdir(dir_.c_str()) != 0) _exit(127);
      int out = open("/dev/null", O_WRONLY);
      int err = open("stderr", O_WRONLY | O_CREAT | O_TRUNC, 0644);
      dup2(out, 1);
      dup2(err, 2);
      std::vector<const char*> argv = {CORVANA_BINARY};
      for (const std::string& arg : args) argv.push_back(arg.c_str());
      argv.push_back(nullptr);
      execv(CORVANA_BINARY, const_cast<char* const*>(argv.data()));
      _exit(127);
    }
    return pid;
  }

  // Waits until the journal of the run just started (the one beyond the
  // `earlier` journals) holds `rows` inserted rows.
  void WaitForJournalRows(int rows, std::size_t earlier) {
    for (int waited = 0; waited < 6000; ++waited) {
      std::vector<std::string> journals = Journals(dir_);
      if (journals.size() > earlier && CountLines(ReadFile(journals.back()), "+\t") >= rows) return;
      std::this_thread::sleep_for(std::chrono::milliseconds(10));
    }
    FAIL() << "the run never journalled " << rows << " rows";
  }

  static int Wait(pid_t pid) {
    int status = 0;
    waitpid(pid, &status, 0);
    return WIFEXITED(status) ? WEXITSTATUS(status) : -WTERMSIG(status);
  }

  std::string dir_;
};

// Every sample job, and a repair: the dry run logs byte for byte what the
// real run then logs, leaves every table as it was, and writes only tables
// its job declares (which the dry and atomic runs check before writing).
class DryRunTest : public SafeRunTest, public ::testing::WithParamInterface<SampleJob> {};

TEST_P(DryRunTest, LogsLikeARealRunAndChangesNothing) {
  const SampleJob& job = GetParam();
  CopySamples(job.samples, dir_);
  for (const std::string& seed : job.seed_sql) Exec(ReadFile(dir_ + "/" + seed));
  for (const Args& before : job.before) ASSERT_EQ(RunProgram(dir_, before).exit_code, 0);
  const std::vector<std::string> before = Checksums();

  ProgramRun dry = RunProgram(dir_, With(job.args, "-dry-run"));
  EXPECT_EQ(dry.exit_code, 0) << dry.errors;
  EXPECT_EQ(dry.journal, "");
  EXPECT_NE(dry.summary.find("Dry run: nothing was written"), std::string::npos) << dry.summary;
  EXPECT_EQ(Checksums(), before);

  ProgramRun real = RunProgram(dir_, job.args);
  EXPECT_EQ(real.exit_code, 0);
  EXPECT_EQ(dry.output, real.output);
  EXPECT_NE(real.journal, "");

  JobDescription described;
  RunOptions options{2016, {}};
  ASSERT_TRUE(DescribeSelectedJob(job.args[1].c_str(), job.args[3].c_str(), options, described));
  std::size_t rows = real.summary.find("Rows written:\n");
  std::size_t end = real.summary.find("Statements:");
  for (std::size_t at = rows; rows != std::string::npos && (at = real.summary.find("\n  ", at)) < end; ++at) {
    std::string table = real.summary.substr(at + 3, real.summary.find(' ', at + 3) - at - 3);
    bool declared = false;
    for (const std::string& name : described.tables) declared = declared || EqualsNoCase(name.c_str(), table.c_str());
    EXPECT_TRUE(declared) << job.name << " writes " << table << ", which its dispatch row does not name";
  }
}

INSTANTIATE_TEST_SUITE_P(Samples, DryRunTest, ::testing::ValuesIn(kSampleJobs),
                         [](const auto& param) { return std::string(param.param.name); });

TEST_F(SafeRunTest, DryRunOfARepairAndRefusals) {
  Exec("insert into record_entry (id,notes) values (1,'" + std::string(85, 'x') + " tail')");
  const std::vector<std::string> before = Checksums();
  const Args repair = {"-org", "x", "-type", "fixLineLengths", "-year", "0"};
  ProgramRun dry = RunProgram(dir_, With(repair, "-dry-run"));
  EXPECT_EQ(Checksums(), before);
  ProgramRun real = RunProgram(dir_, repair);
  EXPECT_EQ(dry.output, real.output);
  EXPECT_NE(Checksums(), before);

  // A table that cannot roll back is named, and nothing runs.
  Exec("alter table transfers engine=MyISAM");
  WriteFile(dir_ + "/KWRC_2012.txt", KwrcYear(3));
  for (const char* option : {"-dry-run", "-atomic"}) {
    ProgramRun refused = RunProgram(dir_, With(kKwrc, option));
    EXPECT_EQ(refused.exit_code, 2);
    EXPECT_NE(refused.errors.find("table transfers (MyISAM) cannot roll back"), std::string::npos) << refused.errors;
    EXPECT_EQ(Value("select count(*) from patient"), "0");
  }
}

// SIGKILL part-way through an atomic run, and a server killed under one:
// the server rolls everything back.
TEST_F(SafeRunTest, AtomicRunKilledLeavesNoRow) {
  WriteFile(dir_ + "/KWRC_2012.txt", KwrcYear(3000));
  const std::vector<std::string> before = Checksums();
  pid_t pid = Start(With(kKwrc, "-atomic"));
  WaitForJournalRows(300, 0);
  kill(pid, SIGKILL);
  EXPECT_EQ(Wait(pid), -SIGKILL);
  EXPECT_EQ(Checksums(), before);
}

class ServerKillTest : public SafeRunTest {
 protected:
  void SetUp() override {
    ASSERT_TRUE(server_under_test_.Start()) << server_under_test_.log();
    SetUpOn(server_under_test_.server());
    dir_ = MakeTempDir();
    WriteIni(dir_);
  }
  ScratchServer server_under_test_{"NO_ENGINE_SUBSTITUTION"};
};

TEST_F(ServerKillTest, AtomicRunLosingItsServerStopsAndLeavesNoRow) {
  WriteFile(dir_ + "/KWRC_2012.txt", KwrcYear(3000));
  const std::vector<std::string> before = Checksums();
  pid_t pid = Start(With(kKwrc, "-atomic"));
  WaitForJournalRows(300, 0);
  server_under_test_.Kill();
  EXPECT_EQ(Wait(pid), 3) << ReadFile(dir_ + "/stderr");  // at once: no waiting for the server
  EXPECT_NE(ReadFile(dir_ + "/stderr").find("nothing of this run was written"), std::string::npos)
      << ReadFile(dir_ + "/stderr");
  ASSERT_TRUE(server_under_test_.Start()) << server_under_test_.log();
  ReconnectInspector();
  EXPECT_EQ(Checksums(), before);
}

// The journal of a complete run and of a run killed part-way, of an import
// and of a repair, undoes the run to the checksums taken before it.
TEST_F(SafeRunTest, UndoRestoresEveryTable) {
  // Texts with what the journal must escape: tab, backslash, line ends.
  Exec("insert into record_entry (id,patient_id,notes,who) values (1,7,'" + std::string(85, 'x') + " one','NA'),(2,7,'" +
       std::string(90, 'y') + " two\\ttab \\\\ back\\r\\nnext','NA'),(3,7,'short','')");
  Exec("insert into transfers (id,name) values (1,' - Otter Creek'),(2,'Pine Hollow')");
  const struct {
    const char* name;
    Args args;
    int cases;    // of the KWRC file
    int kill_at;  // journalled rows after which the run is stopped; 0 lets it end
    int signal_number;
  } runs[] = {
      {"import", kKwrc, 20, 0, 0},
      {"repair", {"-org", "x", "-type", "fixLineLengths", "-year", "0"}, 0, 0, 0},
      {"other repair", {"-org", "x", "-type", "fixTransfers", "-year", "0"}, 0, 0, 0},
      {"killed import", kKwrc, 3000, 200, SIGKILL},
      {"interrupted import", kKwrc, 3000, 100, SIGINT},
  };
  for (const auto& run : runs) {
    SCOPED_TRACE(run.name);
    if (run.cases > 0) WriteFile(dir_ + "/KWRC_2012.txt", KwrcYear(run.cases));
    const std::vector<std::string> before = Checksums();
    std::string journal;
    if (run.kill_at == 0) {
      ProgramRun done = RunProgram(dir_, With(run.args, "-again"));
      ASSERT_EQ(done.exit_code, 0) << done.errors;
      journal = done.journal;
    } else {
      std::size_t earlier = Journals(dir_).size();
      pid_t pid = Start(With(run.args, "-again"));
      WaitForJournalRows(run.kill_at, earlier);
      kill(pid, run.signal_number);
      EXPECT_EQ(Wait(pid), -run.signal_number);
      journal = Journals(dir_).back();
      EXPECT_EQ(ReadFile(journal).find("\nend\tinterrupted\n") != std::string::npos, run.signal_number == SIGINT);
    }
    EXPECT_NE(Checksums(), before);
    ProgramRun undo = RunProgram(dir_, {"-undo", journal});
    EXPECT_EQ(undo.exit_code, 0) << undo.errors;
    EXPECT_EQ(Checksums(), before);
    EXPECT_NE(ReadFile(journal).find("\nundone\t"), std::string::npos);
    // A journal is undone once.
    EXPECT_EQ(RunProgram(dir_, {"-undo", journal}).exit_code, 2);
  }
}

TEST_F(SafeRunTest, SecondImportGuardAndChangedRows) {
  WriteFile(dir_ + "/KWRC_2012.txt", KwrcYear(5));
  const std::vector<std::string> empty = Checksums();
  ProgramRun first = RunProgram(dir_, kKwrc);
  ASSERT_EQ(first.exit_code, 0);
  ProgramRun second = RunProgram(dir_, kKwrc);
  EXPECT_EQ(second.exit_code, 2);
  EXPECT_NE(second.errors.find(first.journal.substr(first.journal.rfind('/') + 1)), std::string::npos)
      << second.errors;
  EXPECT_EQ(Value("select count(*) from patient"), "5");
  // Another year's file, or a changed file, is another import.
  WriteFile(dir_ + "/KWRC_2012.txt", KwrcYear(6));
  ProgramRun changed_file = RunProgram(dir_, kKwrc);
  EXPECT_EQ(changed_file.exit_code, 0);
  WriteFile(dir_ + "/KWRC_2012.txt", KwrcYear(5));
  ProgramRun again = RunProgram(dir_, With(kKwrc, "-again"));
  EXPECT_EQ(again.exit_code, 0);
  EXPECT_EQ(Value("select count(*) from patient"), "16");

  // A keeper edits a row of the last run: its undo is refused and changes
  // nothing; -force undoes it anyway.
  std::string edited = Value("select max(id) from patient");
  Exec("update patient set name='Pip' where id=" + edited);
  ProgramRun refused = RunProgram(dir_, {"-undo", again.journal});
  EXPECT_EQ(refused.exit_code, 2);
  EXPECT_NE(refused.errors.find("patient id=" + edited + " was changed since the run"), std::string::npos)
      << refused.errors;
  EXPECT_EQ(Value("select count(*) from patient"), "16");
  EXPECT_EQ(RunProgram(dir_, {"-undo", again.journal, "-force"}).exit_code, 0);
  EXPECT_EQ(RunProgram(dir_, {"-undo", changed_file.journal}).exit_code, 0);
  EXPECT_EQ(RunProgram(dir_, {"-undo", first.journal}).exit_code, 0);
  EXPECT_EQ(Checksums(), empty);
  // Once undone, the same import is allowed again.
  EXPECT_EQ(RunProgram(dir_, kKwrc).exit_code, 0);
  EXPECT_EQ(Value("select count(*) from patient"), "5");
}

}  // namespace
