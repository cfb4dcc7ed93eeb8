#include "jobs/repairs/line_length_repair.h"

#include "jobs/repairs/repair_test_support.h"
#include "store/connection.h"

namespace {

class LineLengthRepairTest : public RepairTest {
 protected:
  std::string Notes() { return Dump({{"record_entry", "id,notes"}, {"location_record_entry", "id,notes"}}); }
};

// The test run writes nothing (else the real run would adjust nothing) and prints what the real run does.
TEST_F(LineLengthRepairTest, TestRunShowsWhatTheRealRunDoesOnce) {
  LoadSeed();
  const std::string dry_run = Run("FIXLINELENGTHSTEST");
  const std::string real_run = Run("fixLineLengths");
  ExpectMatchesFile(real_run, "jobs/repairs/expected/fix_line_lengths.log");
  ExpectMatchesFile(Notes(), "jobs/repairs/expected/fix_line_lengths.rows");
  EXPECT_EQ(ReplaceAll(dry_run, "FIXLINELENGTHSTEST", "fixLineLengths"), real_run);
  // Idempotent: a second run changes nothing.
  ExpectMatchesFile(Run("fixlinelengths"), "jobs/repairs/expected/fix_line_lengths_again.log");
  ExpectMatchesFile(Notes(), "jobs/repairs/expected/fix_line_lengths.rows");
}

TEST_F(LineLengthRepairTest, NoteOfAnyLengthIsWrappedWhole) {
  // 25,000 ten-character words, quotes and backslashes kept: every ninth blank (column 90) breaks.
  std::string note, expected;
  for (int i = 1; i <= 25000; ++i) {
    note += "O'Neil\\12 ";
    expected += std::string("O'Neil\\12") + (i % 9 == 0 ? '\n' : ' ');
  }
  Exec("insert into record_entry (id,notes) values (1,'" + EscapeSqlText(note) + "')");
  EXPECT_EQ(RunHere([] { return fixLineLengths(false); }).first, 0);
  EXPECT_EQ(Value("select notes from record_entry where id=1"), expected);
}

// A NUL byte is one more character of its line: the note is wrapped on both sides of it and keeps its tail.
TEST_F(LineLengthRepairTest, NoteWithANulByteKeepsItsTail) {
  const std::string note = std::string(85, 'x') + " mid" + '\0' + std::string(85, 'y') + " tail";
  Exec("insert into location_record_entry (id,notes) values (7,'" + EscapeSqlText(note) + "')");
  EXPECT_EQ(RunHere([] { return fixLineLengths(false); }).second,
            "Fixing RECORD_ENTRY line lengths\n\nChecked 0 records\nAdjusted 0 records\n\n"
            "Fixing LOCATION RECORD_ENTRY line lengths\n-* (7)\nChecked 1 records\nAdjusted 1 records\n");
  EXPECT_EQ(Value("select replace(notes,char(0),'<NUL>') from location_record_entry"),
            std::string(85, 'x') + "\nmid<NUL>" + std::string(85, 'y') + "\ntail");
}

TEST_F(LineLengthRepairTest, RefusedUpdateIsReportedWithTheServersWordsAndTheWalkGoesOn) {
  Exec("insert into record_entry (id,notes) values (1,'" + std::string(85, 'x') + " tail')");
  Refuse("update", "record_entry");
  EXPECT_EQ(RunHere([] { return fixLineLengths(false); }),
            std::make_pair(0, std::string("Fixing RECORD_ENTRY line lengths\n-* (1)\nERROR: Unable to update record 1\n"
                                          "Refused for the test\n\nChecked 1 records\nAdjusted 1 records\n\n"
                                          "Fixing LOCATION RECORD_ENTRY line lengths\n\nChecked 0 records\n"
                                          "Adjusted 0 records\n")));
}

}  // namespace
