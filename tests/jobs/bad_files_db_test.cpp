// Every job on every kind of broken input file an operator's old system might
// hand over, one file broken at a time (the others are the samples): each run
// ends cleanly with a message or skipped lines, never a crash, a hang or a
// sanitizer report (RunProgram fails the test on those). And a broken
// configuration file ends with the connection message.
#include <gtest/gtest.h>
#include <sys/stat.h>

#include <algorithm>
#include <filesystem>
#include <string>
#include <vector>

#include "support/program_run.h"
#include "support/sample_jobs.h"
#include "support/test_database.h"

namespace {

namespace fs = std::filesystem;

enum class Damage {
  kEmpty,
  kHeaderOnly,      // the first line alone
  kBinaryJunk,
  kNulBytes,        // the sample with a NUL after every tenth byte
  kCrLineEnds,      // old Mac line ends only
  kHugeLine,        // a 3 MB line after the first
  kTabsOnly,        // a line of nothing but tabs after the first
  kTruncated,       // the first half of the file
  kDeepNesting,     // 200,000 nested elements inside the document element
  kLongAttributes,  // an element with over-long attribute names and values
  kDirectory,       // a directory where the file should be
  kUnreadable,      // the file there, but not readable by the program
};

const char* Name(Damage damage) {
  constexpr const char* kNames[] = {"empty", "header only", "binary junk", "NUL bytes", "CR line ends",
                                    "3 MB line", "tabs only", "truncated", "200,000 nested elements",
                                    "long attributes", "a directory", "unreadable"};
  return kNames[static_cast<int>(damage)];
}

// After the first line (an XML file's declaration, a text file's header).
std::string InsertAfterFirstLine(const std::string& content, const std::string& insert) {
  std::size_t end = content.find('\n');
  end = end == std::string::npos ? content.size() : end + 1;
  return content.substr(0, end) + insert + content.substr(end);
}

// After the opening tag of the document element: the first line holding a
// tag that is no declaration.
std::string InsertInsideDocument(const std::string& content, const std::string& insert) {
  std::size_t at = 0;
  while (at < content.size()) {
    std::size_t open = content.find('<', at);
    if (open == std::string::npos || open + 1 >= content.size()) break;
    std::size_t close = content.find('>', open);
    if (close == std::string::npos) break;
    if (content[open + 1] != '?' && content[open + 1] != '!') return content.substr(0, close + 1) + insert + content.substr(close + 1);
    at = close + 1;
  }
  return content + insert;
}

std::string Damaged(const std::string& sample, Damage damage) {
  switch (damage) {
    case Damage::kEmpty:
      return "";
    case Damage::kHeaderOnly:
      return sample.substr(0, sample.find('\n') == std::string::npos ? sample.size() : sample.find('\n') + 1);
    case Damage::kBinaryJunk: {
      std::string junk(65536, '\0');
      unsigned state = 12345;
      for (char& c : junk) {
        state = state * 1103515245u + 12345u;
        c = static_cast<char>(state >> 16);
      }
      return junk;
    }
    case Damage::kNulBytes: {
      std::string out;
      for (std::size_t i = 0; i < sample.size(); ++i) {
        out += sample[i];
        if (i % 10 == 9) out += '\0';
      }
      return out;
    }
    case Damage::kCrLineEnds: {
      std::string out;
      for (std::size_t i = 0; i < sample.size(); ++i) {
        if (sample[i] == '\r' && i + 1 < sample.size() && sample[i + 1] == '\n') continue;
        out += sample[i] == '\n' ? '\r' : sample[i];
      }
      return out;
    }
    case Damage::kHugeLine: {
      std::string line;
      while (line.size() < 3 * 1024 * 1024) line += "Lorem ipsum\t'dolor\"\t";
      return InsertAfterFirstLine(sample, line + "\r\n");
    }
    case Damage::kTabsOnly:
      return InsertAfterFirstLine(sample, std::string(300, '\t') + "\r\n");
    case Damage::kTruncated:
      return sample.substr(0, sample.size() / 2);
    case Damage::kDeepNesting: {
      std::string open, close;
      for (int i = 0; i < 200000; ++i) {
        open += "<a>";
        close += "</a>";
      }
      return InsertInsideDocument(sample, open + close);
    }
    case Damage::kLongAttributes:
      return InsertInsideDocument(sample, "<Row " + std::string(5000, 'n') + "=\"" + std::string(100000, 'v') +
                                              "\" a=\"" + std::string(300, 'w') + "\"><ID>1</ID></Row>\r\n");
    case Damage::kDirectory:
    case Damage::kUnreadable:
      return sample;
  }
  return sample;
}

class BadFilesTest : public DatabaseTest, public testing::WithParamInterface<SampleJob> {
 protected:
  // Runs the job once with `file` damaged, restores the file, and returns what it printed.
  void RunDamaged(const SampleJob& job, const std::string& file, Damage damage);

  std::string dir_;
};

void BadFilesTest::RunDamaged(const SampleJob& job, const std::string& file, Damage damage) {
  SCOPED_TRACE(std::string(job.name) + ": " + file + ", " + Name(damage));
  if (*job.reset != '\0') Exec(job.reset);
  fs::path path = fs::path(dir_) / file;
  std::string sample = ReadFile(path.string());
  ProgramRun run;
  if (damage == Damage::kDirectory) {
    fs::remove(path);
    fs::create_directory(path);
    run = RunProgram(dir_, job.args);
    fs::remove(path);
  } else if (damage == Damage::kUnreadable) {
    // Everything else stays open to the unprivileged user (the files an
    // earlier run wrote as root too).
    for (const auto& entry : fs::recursive_directory_iterator(dir_)) chmod(entry.path().c_str(), 0777);
    chmod(path.c_str(), 0);
    run = RunProgramUnprivileged(dir_, job.args);
  } else {
    WriteFile(path.string(), Damaged(sample, damage));
    run = RunProgram(dir_, job.args);
  }
  WriteFile(path.string(), sample);
  chmod(path.c_str(), 0644);

  // The job ran (1 would be a failed connection), said which job it was, and
  // said something about the file it could not use.
  EXPECT_EQ(run.exit_code, 0);
  std::string job_line = job.args[1] + " - " + job.args[3] + " - " + job.args[5] + "\n";
  EXPECT_NE(run.output.find(job_line), std::string::npos) << run.output;
  std::string log = run.output.substr(std::min(run.output.size(), run.output.find(job_line) + job_line.size()));
  if (damage == Damage::kDirectory || damage == Damage::kUnreadable) {
    bool said = log.find("Unable") != std::string::npos || log.find("ERROR") != std::string::npos;
    EXPECT_TRUE(said) << "nothing says the file could not be read:\n" << log << run.errors;
  }
}

TEST_P(BadFilesTest, EndsCleanlyOnEveryBrokenFile) {
  const SampleJob& job = GetParam();
  dir_ = MakeTempDir();
  CopySamples(job.samples, dir_);
  WriteIni(dir_);
  for (const std::string& sql : job.seed_sql) Exec(ReadFile(dir_ + "/" + sql));
  for (const Args& args : job.before) ASSERT_EQ(RunProgram(dir_, args).exit_code, 0);

  const Damage text_damages[] = {Damage::kEmpty,    Damage::kHeaderOnly, Damage::kBinaryJunk,
                                 Damage::kNulBytes, Damage::kCrLineEnds, Damage::kHugeLine,
                                 Damage::kTabsOnly, Damage::kDirectory,  Damage::kUnreadable};
  const Damage xml_damages[] = {Damage::kTruncated, Damage::kDeepNesting, Damage::kLongAttributes};
  for (const std::string& file : job.files) {
    for (Damage damage : text_damages) RunDamaged(job, file, damage);
    if (file.ends_with(".xml")) {
      for (Damage damage : xml_damages) RunDamaged(job, file, damage);
    }
  }
}

INSTANTIATE_TEST_SUITE_P(Jobs, BadFilesTest, testing::ValuesIn(kSampleJobs),
                         [](const testing::TestParamInfo<SampleJob>& job) { return std::string(job.param.name); });

// The configuration file broken: binary junk, a huge line, no [MYSQL]
// section. The run stops with the connection message (exit 1), or, when the
// settings it needs are still there, connects.
class BadConfigurationTest : public DatabaseTest {};

TEST_F(BadConfigurationTest, EndsWithTheConnectionMessage) {
  std::string dir = MakeTempDir();
  WriteIni(dir);
  std::string good = ReadFile(dir + "/CorvanaDataImporter.ini");
  std::string huge(3 * 1024 * 1024, 'x');
  struct Case {
    const char* name;
    std::string content;
    int exit_code;
  };
  const Case cases[] = {
      {"binary junk", Damaged("", Damage::kBinaryJunk), 1},
      {"NUL bytes", Damaged(good, Damage::kNulBytes), 1},
      {"no section", good.substr(good.find('\n') + 1), 1},
      {"section name only", "[MYSQL", 1},
      {"a huge line first", "Server=" + huge + "\r\n" + good, 0},
      {"a huge section name", "[" + huge + "]\r\n" + good, 0},
      {"a huge value", good + "Password=" + huge + "\r\n", 0},
      {"a huge key", good + huge + "=1\r\n", 0},
      {"CR line ends", Damaged(good, Damage::kCrLineEnds), 1},
  };
  for (const Case& c : cases) {
    WriteFile(dir + "/CorvanaDataImporter.ini", c.content);
    ProgramRun run = RunProgram(dir, {"-org", "HWC", "-type", "patient", "-year", "2012"});
    EXPECT_EQ(run.exit_code, c.exit_code) << c.name;
    if (c.exit_code == 1) {
      EXPECT_EQ(run.output.rfind("Can't connect to '", 0), 0u) << c.name << ": " << run.output;
    }
  }
  fs::remove(dir + "/CorvanaDataImporter.ini");
  fs::create_directory(dir + "/CorvanaDataImporter.ini");
  ProgramRun run = RunProgram(dir, {"-org", "HWC", "-type", "patient", "-year", "2012"});
  EXPECT_EQ(run.exit_code, 1);
  EXPECT_EQ(run.output.rfind("Can't connect to '", 0), 0u) << run.output;
}

}  // namespace
