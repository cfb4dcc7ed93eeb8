#include "util/loss_report.h"

#include <gtest/gtest.h>

#include <cstdio>
#include <fstream>
#include <sstream>
#include <string>
#include <vector>

#include "store/sql.h"
#include "util/dates.h"
#include "util/strings.h"
#include "util/text.h"

namespace {

// Every test starts and ends with an empty report.
class LossReportTest : public testing::Test {
 protected:
  void SetUp() override { Clear(); }
  void TearDown() override { Clear(); }
  static void Clear() {
    FlushReadsInPart();
    ForgetLossesAfter(0);
    SetLossRecord("");
  }
  // The entries as "table|column|record|what|as exported|as stored".
  static std::vector<std::string> Entries() {
    FlushReadsInPart();
    std::vector<std::string> lines;
    for (std::size_t i = 0; i < LossCount(); ++i) {
      const LossEntry& e = LossAt(i);
      lines.push_back(e.table + "|" + e.column + "|" + e.record + "|" + e.what + "|" + e.as_exported + "|" +
                      e.as_stored);
    }
    return lines;
  }
};

struct Patient {
  Text<16> county;
  Text<8> zip;
};

TEST_F(LossReportTest, TextRemembersWhatWasCutAndTheStoreNamesTheColumn) {
  Patient p = {};
  p.county = "New Hanover County";
  p.zip = "28401";
  EXPECT_EQ(p.county, "New Hanover Cou");
  EXPECT_TRUE(p.county.cut);
  EXPECT_FALSE(p.zip.cut);
  EXPECT_EQ(CutTextGiven(p.county.view()), "New Hanover County");

  // A copy of the record, and a copy into a narrower field, still know.
  Patient copy = p;
  Text<6> shorter{};
  shorter = p.county;
  EXPECT_EQ(shorter, "New H");
  EXPECT_EQ(CutTextGiven(shorter.view()), "New Hanover County");

  std::string sql;
  std::string error;
  SetLossRecord("Habitats.xml row 3");
  ASSERT_TRUE(FormatSql(sql, error, "insert into patient(found_zip,found_county) values('%s','%s');",
                        {copy.zip, copy.county}, SqlTexts::kEscape));
  // In a WHERE clause, or in a read, the value is not stored: nothing to report.
  ASSERT_TRUE(FormatSql(sql, error, "update location set name='%s' where name='%s';", {shorter, p.county}));
  ASSERT_TRUE(FormatSql(sql, error, "select id from patient where found_county='%s'", {p.county}));
  EXPECT_EQ(Entries(), (std::vector<std::string>{
                           "patient|found_county|Habitats.xml row 3|cut|New Hanover County|New Hanover Cou",
                           "location|name|Habitats.xml row 3|cut|New Hanover County|New H"}));

  // Assigned again, or cleared, the field no longer counts as cut.
  p.county = "Brunswick";
  EXPECT_FALSE(p.county.cut);
  p.county.Format("%s County, North Carolina", "Brunswick");
  EXPECT_TRUE(p.county.cut);
  EXPECT_EQ(CutTextGiven(p.county.view()), "Brunswick County, North Carolina");
  p = {};
  EXPECT_FALSE(p.county.cut);
}

TEST_F(LossReportTest, NumberReadersTellWhatTheyLeftOut) {
  struct Case {
    const char* text;
    NumberRest rest;
    double value;
    const char* what;  // "" for no loss
  };
  const Case cases[] = {
      {"1500", NumberRest::kNothing, 1500, ""},
      {"  42.5 \r\n", NumberRest::kNothing, 42.5, ""},
      {"", NumberRest::kNothing, 0, ""},
      {"   ", NumberRest::kNothing, 0, ""},
      {"1,500", NumberRest::kNothing, 1, "read in part"},
      {"1,250.50", NumberRest::kNothing, 1, "read in part"},
      {"12 approx", NumberRest::kNothing, 12, "read in part"},
      {"n/a", NumberRest::kNothing, 0, "not a number"},
      {"12 kg", NumberRest::kUnit, 12, ""},
      {"30cm", NumberRest::kUnit, 30, ""},
      {"1,200 g", NumberRest::kUnit, 1, "read in part"},
      {"5 lb 3 oz", NumberRest::kUnit, 5, "read in part"},
      {"12 kg", NumberRest::kNothing, 12, "read in part"},
  };
  for (const Case& c : cases) {
    Clear();
    EXPECT_EQ(ReadNumber(c.text, c.rest), c.value) << c.text;
    std::vector<std::string> entries = Entries();
    ASSERT_EQ(entries.size(), *c.what != '\0' ? 1u : 0u) << c.text;
    if (!entries.empty()) {
      EXPECT_EQ(entries[0], std::string("|||") + c.what + "|" + c.text + "|" + std::to_string(static_cast<int>(c.value)));
    }
  }
  Clear();
  EXPECT_EQ(ReadInteger("3 males"), 3);
  EXPECT_EQ(ReadInteger("12.5"), 12);
  EXPECT_EQ(ReadInteger(" 7 "), 7);
  EXPECT_EQ(Entries(), (std::vector<std::string>{"|||read in part|3 males|3", "|||read in part|12.5|12"}));
}

TEST_F(LossReportTest, TheStoreNamesTheColumnOfAValueReadInPart) {
  SetLossRecord("Habitats.xml row 2");
  float volume = static_cast<float>(ReadNumber("1,250.50"));
  int count = ReadInteger("3 males");
  std::string sql;
  std::string error;
  // An integer column does not claim the decimal read, nor a decimal column the integer.
  ASSERT_TRUE(FormatSql(sql, error, "insert into location(id,volume,count) values(%d,%.2f,%d);", {1, volume, count}));
  EXPECT_EQ(Entries(), (std::vector<std::string>{"location|volume|Habitats.xml row 2|read in part|1,250.50|1.00",
                                                 "location|count|Habitats.xml row 2|read in part|3 males|3"}));
  // What no write claims is reported when the next record begins, without a column.
  Clear();
  SetLossRecord("line 4");
  ReadNumber("9 feet");
  SetLossRecord("line 5");
  EXPECT_EQ(Entries(), (std::vector<std::string>{"||line 4|read in part|9 feet|9"}));
}

TEST_F(LossReportTest, DateReadersTellOfShortYearsAndWords) {
  struct Case {
    const char* text;
    bool slash;  // ParseSlashDate, else ParseExportDate
    const char* date;
    const char* what;
  };
  const Case cases[] = {
      {"3/4/2011", true, "2011-03-04", ""},
      {"25/12/2010 10:15", true, "2010-12-25", ""},
      {"3/4/11", true, "2011-03-04", "two-digit year"},
      {"3/4/2011 approx", true, "2011-03-04", "read in part"},
      {"3/4/2015", false, "2015-03-04", ""},
      {"3/4/2015 0:00:00", false, "2015-03-04", ""},
      {"3/4/15", false, "1915-03-04", "two-digit year"},
      {"3/4/09", false, "2009-03-04", "two-digit year"},
      {"3/4/2015 or so", false, "2015-03-04", "read in part"},
      {"3/4/2015/2016", false, "2015-03-04", "read in part"},
      {"2014-05-12T00:00:00", false, "2014-05-12", ""},
  };
  for (const Case& c : cases) {
    Clear();
    Text<11> date{};
    char text[64];
    std::snprintf(text, sizeof text, "%s", c.text);
    ASSERT_EQ(c.slash ? ParseSlashDate(text, date) : ParseExportDate(text, date), 0) << c.text;
    EXPECT_EQ(date, c.date);
    std::vector<std::string> expected;
    if (*c.what != '\0') expected.push_back(std::string("|||") + c.what + "|" + c.text + "|" + c.date);
    EXPECT_EQ(Entries(), expected) << c.text;
  }
}

TEST_F(LossReportTest, SummaryAndFile) {
  EXPECT_EQ(LossSummary(""), "Loss report: every value landed as it stood in the input\n");
  for (int i = 1; i <= 4; ++i) {
    ReportLoss({"patient", "notes", "line " + std::to_string(i), "cut", std::string(300, 'a' + i) + "\tend",
                std::string(255, 'a' + i)});
  }
  ReportLoss({"patient", "notes", "line 1", "cut", std::string(300, 'b') + "\tend", std::string(255, 'b')});  // again
  ReportLoss({"location", "volume", "Habitats.xml row 2", "read in part", "1,500", "1.00"});
  EXPECT_EQ(DistinctLossCount(), 5u);
  std::string summary = LossSummary("./CorvanaDataImporter-journal/x.losses.tsv");
  EXPECT_EQ(summary.substr(0, summary.find('\n')),
            "Loss report: 5 values did not land as they stood in the input (as exported -> as stored):");
  // Long values are shortened in their middle, a tab shown as \t.
  EXPECT_NE(summary.find("\n  patient.notes: 4 cut\n    \"" + std::string(28, 'b') + "..." + std::string(23, 'b') +
                         "\\tend\" -> \"" + std::string(28, 'b') + "..." + std::string(28, 'b') + "\"  (line 1)\n"),
            std::string::npos)
      << summary;
  EXPECT_EQ(summary.find("eeeee"), std::string::npos) << "only the first three examples";
  EXPECT_NE(summary.find("\n  location.volume: 1 read in part\n    \"1,500\" -> \"1.00\"  (Habitats.xml row 2)\n"),
            std::string::npos);
  EXPECT_NE(summary.find("The whole list: ./CorvanaDataImporter-journal/x.losses.tsv\n"), std::string::npos);

  std::string path = testing::TempDir() + "losses.tsv";
  ASSERT_TRUE(WriteLossFile(path));
  std::ifstream in(path, std::ios::binary);
  std::stringstream content;
  content << in.rdbuf();
  std::vector<std::string> lines;
  for (std::string line; std::getline(content, line);) lines.push_back(line);
  ASSERT_EQ(lines.size(), 6u);
  EXPECT_EQ(lines[0], "table\tcolumn\trecord\twhat\tas exported\tas stored");
  EXPECT_EQ(lines[1], "patient\tnotes\tline 1\tcut\t" + std::string(300, 'b') + "\\tend\t" + std::string(255, 'b'));
  EXPECT_EQ(lines[5], "location\tvolume\tHabitats.xml row 2\tread in part\t1,500\t1.00");
  std::remove(path.c_str());
  EXPECT_FALSE(WriteLossFile(testing::TempDir() + "no/such/folder/losses.tsv"));
}

}  // namespace
