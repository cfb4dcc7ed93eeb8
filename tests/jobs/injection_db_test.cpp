// Hostile texts in every field of every job's input: quotes, backslashes, a
// statement of its own, printf directives, NUL bytes, bytes above 127 and
// 10,000-character texts. Every text is escaped once, in its statement: it
// lands as it was written and fails no statement; and no row that was in the
// database before the run (seeded by a normal run of the samples) changes.
#include <gtest/gtest.h>

#include <algorithm>
#include <regex>
#include <string>
#include <vector>

#include "support/program_run.h"
#include "support/sample_jobs.h"
#include "support/test_database.h"

namespace {

// The texts put into each field in turn. The first carries the marker that
// shows an escaped field kept its quotes and backslash.
const std::string kMarker = "\xe9O'Brien \"Bud\" \\%s%n";
// What survives of the marker in a field that is cut short or split at blanks.
const std::string kKeptQuote = "O'Brien";
const std::string kHostile[] = {
    kMarker + "'; drop table patient; -- \xfc\xff",
    std::string("Mid\0dle\\'", 10),
    "\"'; drop table patient; -- " + std::string(10000, 'A') + "\\",
};

// Every data line of a tab-delimited file with one field replaced by
// `hostile`: line i replaces field i modulo the line's field count, so that
// the fields take turns and each line keeps its own case number unless that
// is the field replaced. The first line (a header, mostly) stays.
std::string HostileLines(const std::string& content, const std::string& hostile) {
  std::string out;
  std::size_t start = 0;
  for (std::size_t i = 0; start < content.size(); ++i) {
    std::size_t end = content.find('\n', start);
    end = end == std::string::npos ? content.size() : end + 1;
    std::string line = content.substr(start, end - start);
    start = end;
    if (i == 0) {
      out += line;
      continue;
    }
    std::size_t fields = 1 + static_cast<std::size_t>(std::count(line.begin(), line.end(), '\t'));
    std::size_t field = (i - 1) % fields;
    std::size_t from = 0;
    for (std::size_t k = 0; k < field; ++k) from = line.find('\t', from) + 1;
    std::size_t to = std::min(line.find('\t', from), line.find_first_of("\r\n", from));
    if (to == std::string::npos) to = line.size();
    out += line.substr(0, from) + hostile + line.substr(to);
  }
  return out;
}

// Every row of an XML export (each element below the document element) with
// one field, a child element's text or an attribute's value, replaced by
// `hostile`, the fields taking turns as above (an attribute gets its double
// quotes as backquotes, which would end the value early).
std::string HostileRows(const std::string& content, const std::string& text) {
  static const std::regex kRow(R"(<([A-Za-z_][\w.:-]*)((?:\s[^<>]*)?)(/>|>[\s\S]*?</\1>))");
  static const std::regex kField(R"~(<([A-Za-z_][\w.:-]*)>([^<]*)</\1>|\s([A-Za-z_][\w.:-]*)="([^"]*)")~");
  std::size_t declaration = content.find("?>");
  std::size_t document = content.find('<', declaration == std::string::npos ? 0 : declaration);
  while (document != std::string::npos && content.compare(document, 4, "<!--") == 0) {
    document = content.find('<', content.find("-->", document));
  }
  document = content.find('>', document);
  if (document == std::string::npos) return content;
  std::string out = content.substr(0, document + 1);
  std::string rest = content.substr(document + 1);
  std::size_t i = 0;
  for (std::smatch row; std::regex_search(rest, row, kRow); ++i) {
    out += row.prefix().str();
    std::string element = row.str(0);
    std::vector<std::pair<std::size_t, std::size_t>> values;  // position and length of each field's value
    for (auto it = std::sregex_iterator(element.begin(), element.end(), kField); it != std::sregex_iterator(); ++it) {
      int group = (*it)[2].matched ? 2 : 4;
      values.push_back({static_cast<std::size_t>(it->position(group)), static_cast<std::size_t>(it->length(group))});
    }
    if (!values.empty()) {
      auto [at, length] = values[i % values.size()];
      std::string hostile = text;
      if (element[at - 1] == '"') std::replace(hostile.begin(), hostile.end(), '"', '`');
      element = element.substr(0, at) + hostile + element.substr(at + length);
    }
    out += element;
    rest = row.suffix().str();
  }
  return out + rest;
}

class InjectionTest : public DatabaseTest, public testing::WithParamInterface<SampleJob> {
 protected:
  // Every row of every table, each as "table: columns".
  std::vector<std::string> AllRows() {
    std::vector<std::string> rows;
    for (const std::string& table : Rows("show tables")) {
      for (const std::string& row : Rows("select * from `" + table + "`")) rows.push_back(table + ": " + row);
    }
    std::sort(rows.begin(), rows.end());
    return rows;
  }
};

// Every job escapes every text it stores, so the rotation of fields lands the
// marker's quotes whole somewhere, except in the jobs where every field it
// reaches is a key, a looked-up name or tag, or a text that loses its first
// apostrophe by rule (the zoo's enclosure names).
bool StoresMarkerWhole(const std::string& name) {
  for (const char* job : {"CSAQ_FF_patient", "CSAQ_FF_vital_stats", "CSAQ_FF_invert_species_groups",
                          "CSAQ_PKS_habitats"}) {
    if (name == job) return false;
  }
  return true;
}

TEST_P(InjectionTest, HostileTextsChangeNoOtherRow) {
  const SampleJob& job = GetParam();
  std::string dir = MakeTempDir();
  CopySamples(job.samples, dir);
  WriteIni(dir);
  for (const std::string& sql : job.seed_sql) Exec(ReadFile(dir + "/" + sql));
  for (const Args& args : job.before) ASSERT_EQ(RunProgram(dir, args).exit_code, 0);
  // Patients, problems, entries, releases and transfers to protect: a normal
  // run of another centre's sample, whose case numbers the job does not
  // reuse (the zoo-records patient import needs an empty patient table).
  if (std::string(job.reset) != "delete from patient") {
    std::string seed = MakeTempDir();
    bool kwrc = job.args[1] == "KWRC";
    CopySamples(kwrc ? "samples/glfh" : "samples/kwrc", seed);
    WriteIni(seed);
    if (!kwrc) Exec(ReadFile(seed + "/settings.sql"));
    ASSERT_EQ(RunProgram(seed, kwrc ? Job("GLFH", "patient", "2012") : Job("KWRC", "patient", "2012")).exit_code, 0);
  }
  // A job that corrects the rows it finds has made its corrections once.
  if (job.args[3] == "invert_species_groups" || job.args[3] == "taxonomy") {
    ASSERT_EQ(RunProgram(dir, job.args).exit_code, 0);
  }
  std::vector<std::string> before = AllRows();
  ASSERT_FALSE(before.empty());

  // One run per hostile text, the one with the marker first (later runs
  // repeat rows, which may then be refused as duplicates).
  std::vector<std::string> samples;
  for (const std::string& file : job.files) samples.push_back(ReadFile(dir + "/" + file));
  for (const std::string& hostile : kHostile) {
    SCOPED_TRACE(hostile.substr(0, 40));
    if (*job.reset != '\0') Exec(job.reset);  // the rows of the run before, which the job must not find
    for (std::size_t f = 0; f < job.files.size(); ++f) {
      const std::string& file = job.files[f];
      WriteFile(dir + "/" + file,
                file.ends_with(".xml") ? HostileRows(samples[f], hostile) : HostileLines(samples[f], hostile));
    }
    ProgramRun run = RunProgram(dir, job.args);
    EXPECT_EQ(run.exit_code, 0);
    EXPECT_NE(run.summary.find("Statements: "), std::string::npos) << run.errors;
    // Every text is escaped, so the first run fails no statement for its quotes.
    if (&hostile == &kHostile[0]) {
      EXPECT_NE(run.summary.find(" sent, 0 failed"), std::string::npos) << run.summary << run.output.substr(0, 3000);
    }
    // Quotes and backslash of an escaped field arrive whole.
    if (&hostile == &kHostile[0] && StoresMarkerWhole(job.name)) {
      std::size_t whole = 0;
      for (const std::string& row : AllRows()) whole += row.find(kKeptQuote) != std::string::npos;
      EXPECT_GT(whole, 0u) << "no row holds the hostile text as written\n" << run.output.substr(0, 3000);
    }
  }

  // Every row that was there is there unchanged, and no table went missing;
  // except a row that a line names to be corrected (the taxonomy repair), which
  // now holds that line's hostile text.
  std::vector<std::string> after = AllRows();
  std::vector<std::string> lost;
  std::set_difference(before.begin(), before.end(), after.begin(), after.end(), std::back_inserter(lost));
  for (const std::string& row : lost) {
    std::string key = row.substr(0, row.find('|') + 1);  // "table: id|"
    auto now = std::lower_bound(after.begin(), after.end(), key);
    bool corrected = now != after.end() && now->starts_with(key) &&
                     (now->find(kKeptQuote) != std::string::npos || now->find("drop table") != std::string::npos ||
                      now->find("|Mid|") != std::string::npos);
    EXPECT_TRUE(corrected) << "changed or gone: " << row.substr(0, 300);
  }
}

INSTANTIATE_TEST_SUITE_P(Jobs, InjectionTest, testing::ValuesIn(kSampleJobs),
                         [](const testing::TestParamInfo<SampleJob>& job) { return std::string(job.param.name); });

}  // namespace
