#include "store/journal.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "support/test_database.h"

namespace {

// Whatever a row holds comes back field for field: tabs, line ends and
// backslashes are escaped, \N stands for NULL, empty fields stay.
TEST(JournalTest, RecordsReadBackFieldForField) {
  const std::vector<JournalRecord> written = {
      {"journal", "1"},
      {"start", "2026-11-25 11:59:59"},
      {"~", "record_entry", "2", "two\ttabs\there", "line\r\nend", "back\\slash \\N not null", "", kJournalNull},
      {"+", "patient", "19"},
      {"end", "completed", "2026-11-25 12:00:00"},
  };
  std::string path = MakeTempDir() + "/run.journal";
  {
    RunJournal journal;
    ASSERT_TRUE(journal.Create(path));
    EXPECT_FALSE(RunJournal().Create(path));  // an existing journal is never overwritten
    for (const JournalRecord& record : written) journal.Record(record);
  }
  std::vector<JournalRecord> read;
  ASSERT_TRUE(ReadJournal(path, read));
  EXPECT_EQ(read, written);
  EXPECT_EQ(ReadFile(path).find('\r'), std::string::npos);  // one record, one line

  ASSERT_TRUE(AppendJournalRecord(path, {"undone", "2026-11-25 12:01:00", ""}));
  ASSERT_TRUE(ReadJournal(path, read, true));
  EXPECT_EQ(read.size(), 2u);  // the head ends at "start"
  ASSERT_TRUE(ReadJournal(path, read));
  EXPECT_EQ(read.back(), (JournalRecord{"undone", "2026-11-25 12:01:00", ""}));

  // A line cut by a kill (no line end) is not taken: "+ patient 2" may be 23.
  WriteFile(path, "journal\t1\n+\tpatient\t2");
  ASSERT_TRUE(ReadJournal(path, read));
  EXPECT_EQ(read.size(), 1u);
  EXPECT_FALSE(ReadJournal(path + ".missing", read));
}

}  // namespace
