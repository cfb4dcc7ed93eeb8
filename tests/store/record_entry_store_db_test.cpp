#include "store/record_entry_store.h"

#include <gtest/gtest.h>

#include <string>

#include "store/connection.h"
#include "support/test_database.h"

namespace {

using RecordEntryStoreTest = DatabaseTest;

TEST_F(RecordEntryStoreTest, RecordEntries) {
  int id = InsertRecordEntry(12, "Admitted\nthin", "2012-03-04 12:00:00", "NA", 2.5f, 1.5f, "NA", '0');
  ASSERT_GT(id, 0) << LastDbError();
  ASSERT_EQ(InsertRecordEntry(12, "", "2012-03-05 12:00:00", "Dr. Vega", 0, 0, "ICU", '\0'), id + 1);
  EXPECT_EQ(Rows("select patient_id,notes,date,who,weight,keel,location,amountFed,special from record_entry"),
            (std::vector<std::string>{"12|Admitted\nthin|2012-03-04 12:00:00|NA|2.5|1.5|NA|-1|0",
                                      "12||2012-03-05 12:00:00|Dr. Vega|0|0|ICU|-1|"}));
  EXPECT_EQ(InsertRecordEntry(12, "the finder's note", "2012-03-05 12:00:00", "NA", 0, 0, "NA", '0'), -1);

  std::string long_note(100000, 'n');
  EXPECT_GT(InsertRecordEntry(12, long_note.c_str(), "2012-03-06 12:00:00", "NA", 0, 0, "NA", '0'), 0);
  EXPECT_EQ(Value("select max(length(notes)) from record_entry"), "100000");
}

TEST_F(RecordEntryStoreTest, NonProblemsAreWrittenResolved) {
  ASSERT_GT(InsertProblem(3, "fracture", 0, ""), 0) << LastDbError();  // no setting yet: the caller's flag
  ASSERT_GT(InsertProblem(3, "", 0, ""), 0);                           // the empty description always counts
  Exec("insert into settings(category,value) values ('Non-problems','None, Healthy')");
  for (const char* description : {"HEALTHY", "none", "heal", "fracture"}) {
    ASSERT_GT(InsertProblem(4, description, 0, "2012-01-02"), 0) << LastDbError();
  }
  EXPECT_EQ(Rows("select patient_id,description,resolved from problems order by id"),
            (std::vector<std::string>{"3|fracture|0", "3||1", "4|HEALTHY|1", "4|none|1", "4|heal|1", "4|fracture|0"}));
}

TEST_F(RecordEntryStoreTest, SettingsAndAttributes) {
  Exec("insert into settings(category,value) values ('Empty',NULL)");
  Text<64> value{};
  value = "stale";
  EXPECT_EQ(GetSetting("Empty", value), 0);
  EXPECT_TRUE(value.empty());
  EXPECT_EQ(GetSetting("Missing", value), 1);

  PatientAttribute a{};
  a.date = "2012-05-01";
  a.name = "Group";
  a.value = "older";
  ASSERT_EQ(InsertPatientAttribute(9, a), 0);
  a.value = "newer, same day";
  ASSERT_EQ(InsertPatientAttribute(9, a), 0);
  a.date = "2011-01-01";
  a.value = "oldest";
  ASSERT_EQ(InsertPatientAttribute(9, a), 0);
  Text<128> found{};
  GetPatientAttribute(9, "GROUP", found);  // names compare without regard to case
  EXPECT_EQ(found, "newer, same day");
  GetPatientAttribute(9, "Other", found);
  EXPECT_TRUE(found.empty());

  a.name = "Census";
  a.value = "Total=12, M=5, F=6, UNK=1";
  ASSERT_EQ(InsertPatientAttribute(5, a), 0);
  int total = -1, males = -1, females = -1, unknown = -1;
  EXPECT_EQ(GetCensusCounts(5, total, males, females, unknown), 0);
  EXPECT_EQ((std::vector<int>{total, males, females, unknown}), (std::vector<int>{12, 5, 6, 1}));
  a.value = "Total=8, M=3";
  ASSERT_EQ(InsertPatientAttribute(5, a), 0);  // same date, inserted later: it counts
  total = males = females = unknown = -1;
  EXPECT_EQ(GetCensusCounts(5, total, males, females, unknown), 1);
  EXPECT_EQ((std::vector<int>{total, males, females, unknown}), (std::vector<int>{8, 3, -1, -1}));
  EXPECT_EQ(GetCensusCounts(6, total, males, females, unknown), 1);
}

}  // namespace
