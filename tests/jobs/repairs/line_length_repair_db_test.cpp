#include "jobs/repairs/line_length_repair.h"

#include <algorithm>

#include "jobs/repairs/repair_test_support.h"
#include "store/connection.h"

namespace {

class LineLengthRepairTest : public RepairTest {
 protected:
  std::string Notes() { return Dump({{"record_entry", "id,notes"}, {"location_record_entry", "id,notes"}}); }
};

TEST_F(LineLengthRepairTest, TestRunShowsWhatTheRealRunDoesOnce) {
  LoadSeed();
  const std::string seeded = Notes();
  std::string dry_run = Run("FIXLINELENGTHSTEST");
  EXPECT_EQ(Notes(), seeded);

  std::string real_run = Run("fixLineLengths");
  ExpectMatchesFile(real_run, "jobs/repairs/expected/fix_line_lengths.log");
  ExpectMatchesFile(Notes(), "jobs/repairs/expected/fix_line_lengths.rows");
  EXPECT_EQ(ReplaceAll(dry_run, "FIXLINELENGTHSTEST", "fixLineLengths"), real_run);
  // Blanks at columns 10 and 90 only: the break goes at 90.
  EXPECT_EQ(Value("select locate('\\n', notes) from record_entry where id=6"), "90");

  ExpectMatchesFile(Run("fixlinelengths"), "jobs/repairs/expected/fix_line_lengths_again.log");
  ExpectMatchesFile(Notes(), "jobs/repairs/expected/fix_line_lengths.rows");
}

TEST_F(LineLengthRepairTest, ProgressMarkBeforeEveryHundredthRow) {
  for (auto [rows, marks] : {std::pair{0, 0}, {1, 1}, {100, 1}, {101, 2}, {201, 3}}) {
    Exec("delete from record_entry; insert into record_entry (notes) with recursive n(i) as "
         "(select 1 union all select i+1 from n where i<" + std::to_string(rows) + ") select 'Fed.' from n where " +
         std::to_string(rows) + ">0");
    std::string log = RunHere([] { return fixLineLengths(true); }).log;
    EXPECT_EQ(std::count(log.begin(), log.begin() + log.find("Checked"), '-'), marks) << rows << " rows";
  }
}

TEST_F(LineLengthRepairTest, NoteOfAnyLengthIsWrappedWhole) {
  // 25,000 ten-character words: every ninth blank (column 90) becomes a break.
  std::string note, expected;
  for (int i = 1; i <= 25000; ++i) {
    note += "O'Neil\\12 ";
    expected += std::string("O'Neil\\12") + (i % 9 == 0 ? '\n' : ' ');
  }
  Exec("insert into record_entry (id,notes) values (1,'" + EscapeSqlText(note) + "')");
  EXPECT_EQ(RunHere([] { return fixLineLengths(false); }).result, 0);
  EXPECT_EQ(Value("select notes from record_entry where id=1"), expected);
}

TEST_F(LineLengthRepairTest, RefusedUpdateIsReportedWithTheServersWords) {
  Exec("insert into record_entry (id,notes) values (1,'" + std::string(85, 'x') + " tail')");
  Refuse("update", "record_entry");
  EXPECT_EQ(RunHere([] { return fixLineLengths(false); }).log,
            "Fixing RECORD_ENTRY line lengths\n-* (1)\nERROR: Unable to update record 1\nRefused for the test\n"
            "\nChecked 1 records\nAdjusted 1 records\n"
            "\nFixing LOCATION RECORD_ENTRY line lengths\n\nChecked 0 records\nAdjusted 0 records\n");
}

}  // namespace
