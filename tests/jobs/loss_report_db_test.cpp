// The loss report of whole runs: what the jobs cut, read in part or the
// server could not store is listed on stderr and in the file beside the
// journal, and nothing of it reaches the log on stdout.
#include <gtest/gtest.h>

#include <filesystem>
#include <regex>
#include <string>
#include <vector>

#include "support/program_run.h"
#include "support/test_database.h"

namespace {

using Args = std::vector<std::string>;

class LossReportRunTest : public DatabaseTest {
 protected:
  struct Report {
    ProgramRun run;
    std::string file;                // the file stderr named, "" for none
    std::vector<std::string> lines;  // its lines after the header, tabs shown as '|'
  };

  Report Run(const std::string& dir, const Args& args) {
    Report report{RunProgram(dir, args), "", {}};
    EXPECT_EQ(report.run.output.find("Loss report"), std::string::npos) << "the report stays off stdout";
    std::smatch named;
    if (std::regex_search(report.run.summary, named, std::regex("\nThe whole list: (\\S+)\n"))) {
      report.file = named[1];
      std::string content = std::regex_replace(ReadFile(dir + "/" + report.file), std::regex("\t"), "|");
      for (std::size_t at = 0, end; at < content.size(); at = end + 1) {
        report.lines.push_back(content.substr(at, (end = content.find('\n', at)) - at));
      }
      EXPECT_EQ(report.lines.at(0), "table|column|record|what|as exported|as stored");
      report.lines.erase(report.lines.begin());
    }
    return report;
  }

  // The sample folder copied into a new directory with its SQL seeds loaded.
  std::string Samples(const std::string& samples, const std::vector<std::string>& seeds = {}) {
    std::string dir = MakeTempDir();
    CopySamples(samples, dir);
    WriteIni(dir);
    for (const std::string& seed : seeds) Exec(ReadFile(dir + "/" + seed));
    return dir;
  }

  // The report's line of `table` ("*" for any) and `column` whose value was
  // `as_exported`, its record shown as "<record>" when it holds `record`, or
  // as "*" when `record` is "" (an export row, named by the reader).
  static std::string Entry(const Report& report, const std::string& table, const std::string& column,
                           const std::string& as_exported, const std::string& record) {
    const std::regex cells("([^|]*)\\|([^|]*)\\|([^|]*)\\|([^|]*)\\|(.*)\\|([^|]*)");
    for (const std::string& line : report.lines) {
      std::smatch c;
      if (!std::regex_match(line, c, cells) || c[5] != as_exported) continue;
      if (table != "*" && (c[1] != table || c[2] != column)) continue;
      std::string shown = record.empty() ? "*" : c[3].str().find(record) != std::string::npos ? "<record>" : c[3].str();
      return c[1].str() + "|" + c[2].str() + "|" + shown + "|" + c[4].str() + "|" + c[5].str() + "|" + c[6].str();
    }
    return "";
  }
};

// A KWRC line with a cause longer than its field, a two-digit year and a
// final date the server cannot store.
TEST_F(LossReportRunTest, KwrcLine) {
  std::string dir = Samples("samples/kwrc", {"settings.sql"});
  std::string sample = ReadFile(dir + "/KWRC_2012.txt");
  const std::string cause = "Collision with a glass-walled bus shelter on Chang'an Avenue";
  WriteFile(dir + "/KWRC_2012.txt",
            sample.substr(0, sample.find('\n') + 1) +
                "12099\tEUKE\t3/2/12\tUNK\tAdult\tU\tKWRC\tFound at the gate\tRelease\t2/30/2012\tN/A\tHealthy\tNone\t" +
                cause + "\r\n");
  Report report = Run(dir, {"-org", "KWRC", "-type", "patient", "-year", "2012"});
  EXPECT_EQ(report.run.exit_code, 0);
  EXPECT_EQ(Entry(report, "patient", "injury_cause", cause, "KWRC_2012.txt line 2"),
            "patient|injury_cause|<record>|cut|" + cause + "|" + cause.substr(0, 31));
  EXPECT_EQ(Entry(report, "patient", "admission_date", "3/2/12", "KWRC_2012.txt line 2"),
            "patient|admission_date|<record>|two-digit year|3/2/12|2012-03-02");
  EXPECT_EQ(Entry(report, "patient", "final_date", "2012-02-30", "KWRC_2012.txt line 2"),
            "patient|final_date|<record>|not a date|2012-02-30|0000-00-00");
  EXPECT_EQ(Value("select final_date from patient where patient_id like '%12099'"), "0000-00-00");
  EXPECT_NE(report.run.summary.find("\n  patient.injury_cause: 1 cut\n    \"" + cause + "\" -> \""),
            std::string::npos)
      << report.run.summary;
}

// The aquarium's exports: tank sizes with a thousands comma, a county longer
// than its field, dates with a two-digit year read in 1915.
TEST_F(LossReportRunTest, AquariumExports) {
  std::string dir = Samples("samples/csaq_ff");
  std::string habitats = ReadFile(dir + "/Habitats.xml");
  const std::string tank = "<Tank_x0020_Size_x0020__x0028_gallons_x0029_>";
  habitats.replace(habitats.find(tank) + tank.size(), 6, "1,500");
  habitats.replace(habitats.find(tank, habitats.find(tank) + 1) + tank.size(), 4, "1,250.50");
  WriteFile(dir + "/Habitats.xml", habitats);
  Run(dir, {"-org", "CSAQ_FF", "-type", "species", "-year", "2016"});
  Report report = Run(dir, {"-org", "CSAQ_FF", "-type", "habitats", "-year", "2016"});
  EXPECT_EQ(report.run.exit_code, 0);
  // Habitats are all read before any is written: a size is claimed by its
  // column when the value written is not ambiguous, else named by the field.
  for (const char* size : {"1,500", "1,250.50"}) {
    std::string entry = Entry(report, "*", "", size, "");
    EXPECT_TRUE(entry == std::string("location|volume|*|read in part|") + size + "|1.0" ||
                entry == std::string("|Tank Size (gallons)|*|read in part|") + size + "|1")
        << entry;
  }
  Report patients = Run(dir, {"-org", "CSAQ_FF", "-type", "patient", "-year", "2016"});
  for (const char* column : {"found_county", "presenter_county"}) {
    EXPECT_EQ(Entry(patients, "patient", column, "New Hanover County", ""),
              std::string("patient|") + column + "|*|cut|New Hanover County|New Hanover Cou");
  }
  EXPECT_EQ(Entry(patients, "patient", "admission_date", "7/4/15", "1915-00001"),
            "patient|admission_date|<record>|two-digit year|7/4/15|1915-07-04");
}

// A run that lost nothing says so in one line and keeps no file; a dry run
// reports what the real run then reports.
TEST_F(LossReportRunTest, CleanRunAndDryRun) {
  std::string dir = Samples("samples/csaq_ff");
  Report clean = Run(dir, {"-org", "CSAQ_FF", "-type", "species", "-year", "2016"});
  EXPECT_EQ(clean.file, "");
  EXPECT_NE(clean.run.summary.find("\nLoss report: every value landed as it stood in the input\n"), std::string::npos)
      << clean.run.summary;
  for (const auto& entry : std::filesystem::directory_iterator(dir + "/CorvanaDataImporter-journal")) {
    EXPECT_NE(entry.path().extension(), ".tsv") << entry.path();
  }

  std::string kwrc = Samples("samples/kwrc", {"settings.sql"});
  const Args args = {"-org", "KWRC", "-type", "patient", "-year", "2012"};
  Args dry_args = args;
  dry_args.push_back("-dry-run");
  Report dry = Run(kwrc, dry_args);
  EXPECT_EQ(dry.run.exit_code, 0);
  EXPECT_EQ(Value("select count(*) from patient"), "0");
  ExpectMatchesFile(dry.run.output.substr(Connected().size()), "jobs/kwrc/expected/kwrc_2012.log");
  Report real = Run(kwrc, args);
  EXPECT_EQ(real.run.exit_code, 0);
  EXPECT_NE(real.file, dry.file);
  EXPECT_NE(dry.file.find("-dry-run.losses.tsv"), std::string::npos) << dry.file;
  EXPECT_FALSE(real.lines.empty());
  EXPECT_EQ(dry.lines, real.lines);
  auto report_of = [](const ProgramRun& run) {
    std::string text = run.summary.substr(run.summary.find("\nLoss report: "));
    return text.substr(0, text.find("The whole list: "));
  };
  EXPECT_EQ(report_of(dry.run), report_of(real.run));
}

}  // namespace
