#include "util/loss_report.h"

#include <gtest/gtest.h>

#include <cstdio>
#include <string>
#include <vector>

#include "store/sql.h"
#include "support/losses.h"
#include "support/test_database.h"
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
  static std::vector<std::string> Entries() {
    FlushReadsInPart();
    return ReportedLosses();
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
  // A copy of the record, and a copy into a narrower field, still know.
  Patient copy = p;
  Text<6> shorter{};
  shorter = p.county;
  EXPECT_EQ(CutTextGiven(shorter.view()), "New Hanover County");

  std::string sql;
  std::string error;
  SetLossRecord("Habitats.xml row 3");
  ASSERT_TRUE(FormatSql(sql, error, "insert into patient(found_zip,found_county) values('%s','%s');",
                        {copy.zip, copy.county}, SqlTexts::kEscape));
  // Values in a WHERE clause or a read are not stored: nothing to report.
  ASSERT_TRUE(FormatSql(sql, error, "update location set name='%s' where name='%s';", {shorter, p.county}));
  ASSERT_TRUE(FormatSql(sql, error, "select id from patient where found_county='%s'", {p.county}));
  EXPECT_EQ(Entries(), (std::vector<std::string>{
                           "patient|found_county|Habitats.xml row 3|cut|New Hanover County|New Hanover Cou",
                           "location|name|Habitats.xml row 3|cut|New Hanover County|New H"}));

  // Assigned again, or cleared, the field no longer counts as cut.
  p.county = "Brunswick";
  EXPECT_FALSE(p.county.cut);
  p.county.Format("%s County, North Carolina", "Brunswick");
  EXPECT_EQ(CutTextGiven(p.county.view()), "Brunswick County, North Carolina");
  p = {};
  EXPECT_FALSE(p.county.cut);
}

// Numbers and dates read in part: the value read, and the entry ("" for none).
// (Two-digit years of the 2000s and 1900s are checked by the runs of the jobs.)
TEST_F(LossReportTest, ReadersTellWhatTheyLeftOut) {
  enum Reader { kNumber, kNumberWithUnit, kInteger, kSlashDate, kExportDate };
  struct Case {
    Reader reader;
    const char* text;
    const char* read;
    const char* what;
  };
  const Case cases[] = {
      {kNumber, "  42.5 \r\n", "42.5", ""},
      {kNumber, "   ", "0", ""},
      {kNumber, "1,250.50", "1", "read in part"},
      {kNumber, "n/a", "0", "not a number"},
      {kNumber, "12 kg", "12", "read in part"},
      {kNumberWithUnit, "12 kg", "12", ""},
      {kNumberWithUnit, "5 lb 3 oz", "5", "read in part"},
      {kInteger, " 7 ", "7", ""},
      {kInteger, "12.5", "12", "read in part"},
      {kSlashDate, "25/12/2010 10:15", "2010-12-25", ""},
      {kSlashDate, "3/4/2011 approx", "2011-03-04", "read in part"},
      {kExportDate, "3/4/2015 0:00:00", "2015-03-04", ""},
      {kExportDate, "2014-05-12T00:00:00", "2014-05-12", ""},
      {kExportDate, "3/4/09", "2009-03-04", "two-digit year"},
      {kExportDate, "3/4/2015/2016", "2015-03-04", "read in part"},
  };
  for (const Case& c : cases) {
    Clear();
    std::string read;
    if (c.reader <= kInteger) {
      char number[32];
      std::snprintf(number, sizeof number, "%g",
                    c.reader == kInteger ? ReadInteger(c.text)
                                         : ReadNumber(c.text, c.reader == kNumber ? NumberRest::kNothing
                                                                                   : NumberRest::kUnit));
      read = number;
    } else {
      Text<11> date{};
      char text[64];
      std::snprintf(text, sizeof text, "%s", c.text);
      ASSERT_EQ(c.reader == kSlashDate ? ParseSlashDate(text, date) : ParseExportDate(text, date), 0) << c.text;
      read = date.view();
    }
    EXPECT_EQ(read, c.read) << c.text;
    std::vector<std::string> expected;
    if (*c.what != '\0') expected.push_back(std::string("|||") + c.what + "|" + c.text + "|" + c.read);
    EXPECT_EQ(Entries(), expected) << c.text;
  }
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

  std::string path = MakeTempDir() + "/losses.tsv";
  ASSERT_TRUE(WriteLossFile(path));
  std::string file = ReadFile(path);
  std::vector<std::string> lines;
  for (std::size_t at = 0, end; at < file.size(); at = end + 1) {
    lines.push_back(file.substr(at, (end = file.find('\n', at)) - at));
  }
  ASSERT_EQ(lines.size(), 6u);
  EXPECT_EQ(lines[0], "table\tcolumn\trecord\twhat\tas exported\tas stored");
  EXPECT_EQ(lines[1], "patient\tnotes\tline 1\tcut\t" + std::string(300, 'b') + "\\tend\t" + std::string(255, 'b'));
  EXPECT_EQ(lines[5], "location\tvolume\tHabitats.xml row 2\tread in part\t1,500\t1.00");
  EXPECT_FALSE(WriteLossFile(path + "/no/such/folder/losses.tsv"));
}

}  // namespace
