// The loss report of whole runs: what the jobs cut, read in part or the
// server could not store is listed on stderr and in the file beside the
// journal, with its table, column, record and values, and nothing of it
// reaches the log on stdout.
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
    std::vector<std::string> lines;  // its lines after the header
  };

  // Runs the program in `dir` and reads the loss report it named.
  Report Run(const std::string& dir, const Args& args) {
    Report report{RunProgram(dir, args), "", {}};
    EXPECT_EQ(report.run.output.find("Loss report"), std::string::npos) << "the report stays off stdout";
    std::smatch named;
    if (std::regex_search(report.run.summary, named, std::regex("\nThe whole list: (\\S+)\n"))) {
      report.file = named[1];
      std::string content = ReadFile(dir + "/" + report.file);
      std::size_t line_end = content.find('\n');
      EXPECT_EQ(content.substr(0, line_end), "table\tcolumn\trecord\twhat\tas exported\tas stored");
      for (std::size_t at = line_end + 1; at < content.size();) {
        std::size_t end = content.find('\n', at);
        report.lines.push_back(content.substr(at, end - at));
        at = end + 1;
      }
    }
    return report;
  }

  // The sample folder `samples` copied into a new directory with its SQL seeds loaded.
  std::string Samples(const std::string& samples, const std::vector<std::string>& seeds = {}) {
    std::string dir = MakeTempDir();
    CopySamples(samples, dir);
    WriteIni(dir);
    for (const std::string& seed : seeds) Exec(ReadFile(dir + "/" + seed));
    return dir;
  }

  // The report's line for `table`, `column` and `as_exported`, with the
  // record shown as "<record>" when it names `record` (a case number, which
  // an input line may name too), and as "*" when `record` is "" (the export
  // row, where the reader names it); "" when there is no such line. A
  // `table` "*" takes the line of any table and column.
  static std::string Entry(const Report& report, const std::string& table, const std::string& column,
                           const std::string& as_exported, const std::string& record) {
    for (const std::string& line : report.lines) {
      std::vector<std::string> cells;
      for (std::size_t at = 0;;) {
        std::size_t tab = line.find('\t', at);
        cells.push_back(line.substr(at, tab - at));
        if (tab == std::string::npos) break;
        at = tab + 1;
      }
      if (cells.size() != 6 || cells[4] != as_exported) continue;
      if (table != "*" && (cells[0] != table || cells[1] != column)) continue;
      if (record.empty()) {
        cells[2] = "*";
      } else if (cells[2].find(record) != std::string::npos) {
        cells[2] = "<record>";
      }
      return cells[0] + "|" + cells[1] + "|" + cells[2] + "|" + cells[3] + "|" + cells[4] + "|" + cells[5];
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

// The aquarium's exports: a county longer than its field, tank sizes written
// with a thousands comma, a date with a two-digit year read in 1915.
TEST_F(LossReportRunTest, AquariumExports) {
  std::string dir = Samples("samples/csaq_ff");
  std::string habitats = ReadFile(dir + "/Habitats.xml");
  const std::string tank = "<Tank_x0020_Size_x0020__x0028_gallons_x0029_>";
  habitats.replace(habitats.find(tank) + tank.size(), 6, "1,500");
  std::size_t second = habitats.find(tank, habitats.find(tank) + 1);
  habitats.replace(second + tank.size(), 4, "1,250.50");
  WriteFile(dir + "/Habitats.xml", habitats);
  for (const char* type : {"species", "habitats"}) {
    Report report = Run(dir, {"-org", "CSAQ_FF", "-type", type, "-year", "2016"});
    EXPECT_EQ(report.run.exit_code, 0);
    if (std::string(type) == "habitats") {
      // The habitats are all read before any is written: a size is claimed
      // by its column when the value written is not ambiguous, else it is
      // named by the export's field.
      for (const char* size : {"1,500", "1,250.50"}) {
        std::string entry = Entry(report, "*", "", size, "");
        EXPECT_TRUE(entry == std::string("location|volume|*|read in part|") + size + "|1.0" ||
                    entry == std::string("|Tank Size (gallons)|*|read in part|") + size + "|1")
            << entry;
      }
    }
  }
  Report patients = Run(dir, {"-org", "CSAQ_FF", "-type", "patient", "-year", "2016"});
  for (const char* column : {"found_county", "presenter_county"}) {
    EXPECT_EQ(Entry(patients, "patient", column, "New Hanover County", ""),
              std::string("patient|") + column + "|*|cut|New Hanover County|New Hanover Cou");
  }
  EXPECT_EQ(Entry(patients, "patient", "admission_date", "7/4/15", "1915-00001"),
            "patient|admission_date|<record>|two-digit year|7/4/15|1915-07-04");
  Report water = Run(dir, {"-org", "CSAQ_FF", "-type", "water_chemistry", "-year", "2016"});
  EXPECT_EQ(Entry(water, "water_quality", "date", "3/2/15", ""), "water_quality|date|*|two-digit year|3/2/15|1915-03-02");
}

// The zoo's exports: an identifier's text longer than its attribute, and
// dates that are no dates, which the server zeroes.
TEST_F(LossReportRunTest, ZooExports) {
  std::string dir = Samples("samples/csaq_pks", {"species.sql"});
  Run(dir, {"-org", "CSAQ_PKS", "-type", "habitats", "-year", "2015"});
  Report report = Run(dir, {"-org", "CSAQ_PKS", "-type", "patient", "-year", "2015"});
  EXPECT_EQ(report.run.exit_code, 0);
  const std::string tag = "Tag: Right front flipper, Inconel, applied at intake";
  EXPECT_EQ(Entry(report, "attributes", "name", tag, ""), "attributes|name|*|cut|" + tag + "|" + tag.substr(0, 31));
  EXPECT_EQ(Entry(report, "patient", "admission_date", "sometime in May", "0000-00002"),
            "patient|admission_date|<record>|cut|sometime in May|sometime i");
  EXPECT_EQ(Entry(report, "patient", "admission_date", "unknown", "0000-00003"),
            "patient|admission_date|<record>|cut|unknown|(cut by the server)");
  // The dates of exported date-times lose only their time of day: no loss.
  for (const std::string& line : report.lines) EXPECT_EQ(line.find("T00:00:00"), std::string::npos) << line;
}

// A run that lost nothing says so in one line and keeps no file; a dry run
// reports what the real run then reports, and both logs are the sample's.
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
  Report real = Run(kwrc, args);
  EXPECT_EQ(real.run.exit_code, 0);
  EXPECT_NE(real.file, dry.file);
  EXPECT_NE(dry.file.find("-dry-run.losses.tsv"), std::string::npos) << dry.file;
  EXPECT_EQ(dry.lines, real.lines);
  EXPECT_FALSE(real.lines.empty());
  auto report_of = [](const ProgramRun& run) {
    std::string text = run.summary.substr(run.summary.find("\nLoss report: "));
    return text.substr(0, text.find("The whole list: "));
  };
  EXPECT_EQ(report_of(dry.run), report_of(real.run));
  const std::string connected = Connected();
  ExpectMatchesFile(dry.run.output.substr(connected.size()), "jobs/kwrc/expected/kwrc_2012.log");
  ExpectMatchesFile(real.run.output.substr(connected.size()), "jobs/kwrc/expected/kwrc_2012.log");
}

}  // namespace
