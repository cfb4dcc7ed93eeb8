#include "jobs/csaq_pks/pks_census.h"

#include <gtest/gtest.h>

#include <string>
#include <utility>
#include <vector>

namespace {

using Fields = std::vector<std::pair<const char*, const char*>>;

// Hangs a census record with these fields under `table`.
void AddRecord(XmlDocument& document, XmlNode* table, const Fields& fields) {
  XmlNode* record = XmlNewNode(document, "CensusCounts");
  for (const auto& [name, text] : fields) {
    XmlNode* field = XmlNewNode(document, name);
    XmlSetText(field, text);
    XmlAppendChild(record, field);
  }
  XmlAppendChild(table, record);
}

// The first record of a Local_ID counts; a missing count is 0, a missing date fails with a message, an
// unpadded one is cut at its 'T' like any other.
TEST(PksCensusTest, InitialCounts) {
  XmlDocument document;
  ASSERT_EQ(XmlCreateRoot(document), 0);
  XmlNode* table = XmlNewNode(document, "dataroot");
  XmlAppendChild(XmlRoot(document), table);
  AddRecord(document, table, {{"CensusDate", "2012-01-01T00:00:00"}, {"Male", "9"}});  // no Local_ID
  AddRecord(document, table, {{"Local_ID", "G1"}, {"CensusDate", "2012-03-10T00:00:00"}, {"Male", "4"},
                              {"Other", "3"}});
  AddRecord(document, table, {{"Local_ID", "G1"}, {"CensusDate", "2013-01-01T00:00:00"}, {"Male", "1"}});
  AddRecord(document, table, {{"Local_ID", "G2"}, {"Male", "5"}});
  AddRecord(document, table, {{"Local_ID", "G3"}, {"CensusDate", "2012-03-10"}, {"Female", "one"}});
  AddRecord(document, table, {{"Local_ID", "G4"}, {"CensusDate", "2012-3-1T00:00:00"}, {"Other", "6"}});
  InitialCensus census;
  census.Index(XmlFirstChild(table));

  struct Case {
    const char* local_id;
    bool read;
    const char* counts;  // date male female other
    const char* printed;
  };
  const Case cases[] = {
      {"G1", true, "2012-03-10 4 0 3", ""},
      {"G2", false, "", "\tERROR - census date missing for 'G2'\n"},
      {"G3", false, "", "\tERROR - census count Female 'one' is no number for 'G3'\n"},
      {"G4", true, "2012-3-1 0 0 6", ""},  // the server reads the date
      {"G9", false, "", ""},
  };
  for (const Case& c : cases) {
    InitialCounts counts{};
    testing::internal::CaptureStdout();
    EXPECT_EQ(census.Read(c.local_id, counts), c.read) << c.local_id;
    EXPECT_EQ(testing::internal::GetCapturedStdout(), c.printed) << c.local_id;
    if (c.read) {
      EXPECT_EQ(std::string(counts.date.view()) + " " + std::to_string(counts.male) + " " +
                    std::to_string(counts.female) + " " + std::to_string(counts.other),
                c.counts);
    }
  }
}

TEST(PksCensusTest, SettleCountType) {
  struct Case {
    const char* type;
    const char* method;
    int change;
    const char* settled;
    const char* printed;
  };
  const Case cases[] = {
      {"", "Actual Count", 0, "", ""},  // the samples pin the other types and messages
      {"Close Out", "Actual Count", -1, "Death", ""},
      {"Released to wild", "Estimate", -1, "", "\tERROR: Unknown count type 'Released to wild'\n"},
  };
  for (const Case& c : cases) {
    CensusCount count{};
    count.local_id = "G1";
    count.census_date = "2013-05-05T00:00:00";
    count.type = c.type;
    count.method = c.method;
    count.male = 2;
    count.female = 1;
    count.change = c.change;
    testing::internal::CaptureStdout();
    SettleCountType(count);
    EXPECT_EQ(testing::internal::GetCapturedStdout(), c.printed) << c.type;
    EXPECT_EQ(count.type, c.settled) << c.type;
  }
}

}  // namespace
