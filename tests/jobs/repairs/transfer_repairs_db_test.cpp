#include "jobs/repairs/transfer_repairs.h"

#include <ctime>

#include "jobs/repairs/repair_test_support.h"

namespace {

class TransferRepairsTest : public RepairTest {};

TEST_F(TransferRepairsTest, TransferNamesLoseOnePrefixPerRun) {
  LoadSeed();
  // An organisation code that has import jobs selects no repair: the next run still finds all three names.
  ExpectMatchesFile(Run("fixTransfers", "DsWC"), "jobs/repairs/expected/no_repair_for_import_org.log");
  ExpectMatchesFile(Run("fixTransfers"), "jobs/repairs/expected/fix_transfers.log");
  ExpectMatchesFile(Dump({{"transfers", "id,patient_id,name"}}), "jobs/repairs/expected/fix_transfers.rows");
  // Any case selects it; the doubled prefix loses its second copy.
  ExpectMatchesFile(Run("FIXTRANSFERS"), "jobs/repairs/expected/fix_transfers_again.log");
  EXPECT_EQ(Value("select name from transfers where id=2"), "Coastal Wildlife Hospital");
}

// The rest of the name goes back as it was stored, backslashes and quotes included.
TEST_F(TransferRepairsTest, NamesKeepTheirBackslashesAndQuotes) {
  Exec(R"(insert into transfers (id,name) values (1,' - A\\B Wildlife'),(2,' - Ruiz\\nVet'),)"
       R"((3,' - St. Clare''s Clinic'),(4,' - O\\''Neil \\'))");
  EXPECT_EQ(RunHere(fixTransfers), std::make_pair(0, std::string("Updated 4 transfer records\n")));
  EXPECT_EQ(Rows("select name from transfers order by id"),
            (std::vector<std::string>{R"(A\B Wildlife)", R"(Ruiz\nVet)", "St. Clare's Clinic", R"(O\'Neil \)"}));
}

TEST_F(TransferRepairsTest, FailedUpdateStopsTheRepair) {
  Exec("insert into transfers (id,name) values (1,' - Otter Creek'),(2,' - Pine Hollow')");
  Refuse("update", "transfers");
  EXPECT_EQ(RunHere(fixTransfers), std::make_pair(1, std::string("Error updating transfer record 1 - 'Otter Creek'\n")));
  EXPECT_EQ(Rows("select name from transfers order by id"),
            (std::vector<std::string>{" - Otter Creek", " - Pine Hollow"}));
}

TEST_F(TransferRepairsTest, FlagBecomesAttributeDatedToday) {
  const std::time_t now = std::time(nullptr);
  char today[11];
  std::strftime(today, sizeof today, "%Y-%m-%d", std::localtime(&now));
  LoadSeed();
  ExpectMatchesFile(Run("fix180DayReports"), "jobs/repairs/expected/fix_180_day_reports.log");
  ExpectMatchesFile(
      ReplaceAll(Dump({{"patient", "id,patient_id,flags"}, {"attributes", "id,patient_id,name,value,date"}}), today,
                 "TODAY"),
                    "jobs/repairs/expected/fix_180_day_reports.rows");
  // Only bit 41 goes: bits 63 and 52 stay, so the value stays negative.
  EXPECT_EQ(Value("select flags from patient where id=3"), "-9218868437227405312");
  // Every handled flag is cleared: a second run finds nothing.
  ExpectMatchesFile(Run("FIX180DAYREPORTS"), "jobs/repairs/expected/fix_180_day_reports_again.log");
}

// The flag is cleared in the patient's own row whatever its case number holds (none, a backslash, a
// trailing backslash): a second run finds nothing and adds no attribute.
TEST_F(TransferRepairsTest, FlagIsClearedByKey) {
  Exec(R"(insert into patient (id,patient_id,flags) values (1,NULL,2199023255553),(2,'A\\B',2199023255552),)"
       R"((3,'C\\',2199023255552))");
  EXPECT_EQ(RunHere(fix180DayReports),
            std::make_pair(0, std::string("Fixing 180 day reports\nPatient id: \nPatient id: A\\B\n"
                                          "Patient id: C\\\nUpdated 3 patient records\n")));
  EXPECT_EQ(Rows("select flags from patient order by id"), (std::vector<std::string>{"1", "0", "0"}));
  EXPECT_EQ(RunHere(fix180DayReports),
            std::make_pair(0, std::string("Fixing 180 day reports\nUpdated 0 patient records\n")));
  EXPECT_EQ(Value("select count(*) from attributes"), "3");
}

// The attribute written before the refused flag update stays: the next run adds another.
TEST_F(TransferRepairsTest, FailedFlagUpdateStopsThe180DayRepair) {
  LoadSeed();
  Refuse("update", "patient");
  EXPECT_EQ(RunHere(fix180DayReports),
            std::make_pair(1, std::string("Fixing 180 day reports\nPatient id: 2014-0112\n"
                                          "Error create patient attribute record 1 - '2014-0112'\n")));
  EXPECT_EQ(Value("select count(*) from attributes"), "1");
}

}  // namespace
