#include "jobs/repairs/transfer_repairs.h"

#include <ctime>

#include "jobs/repairs/repair_test_support.h"

namespace {

class TransferRepairsTest : public RepairTest {};

TEST_F(TransferRepairsTest, TransferNamesLoseOnePrefixPerRun) {
  LoadSeed();
  const std::string seeded = Dump({{"transfers", "id,patient_id,name"}});
  // An organisation code that has import jobs selects no repair.
  ExpectMatchesFile(Run("fixTransfers", "DsWC"), "jobs/repairs/expected/no_repair_for_import_org.log");
  EXPECT_EQ(Dump({{"transfers", "id,patient_id,name"}}), seeded);

  ExpectMatchesFile(Run("fixTransfers"), "jobs/repairs/expected/fix_transfers.log");
  ExpectMatchesFile(Dump({{"transfers", "id,patient_id,name"}}), "jobs/repairs/expected/fix_transfers.rows");
  EXPECT_EQ(Value("select name from transfers where id=1"), "Desert Raptor Sanctuary");
  // Any case selects it; the doubled prefix loses its second copy.
  ExpectMatchesFile(Run("FIXTRANSFERS"), "jobs/repairs/expected/fix_transfers_again.log");
  EXPECT_EQ(Value("select name from transfers where id=2"), "Coastal Wildlife Hospital");
}

TEST_F(TransferRepairsTest, QuoteInNameStopsTheRepair) {
  Exec("insert into transfers (id,name) values (1,' - Otter Creek'),(2,' - St. Clare''s Clinic'),(3,' - Pine Hollow')");
  JobOutput run = RunHere(fixTransfers);
  EXPECT_EQ(run.result, 1);
  EXPECT_EQ(run.log, "Error updating transfer record 2 - 'St. Clare's Clinic'\n");
  EXPECT_EQ(Rows("select name from transfers order by id"),
            (std::vector<std::string>{"Otter Creek", " - St. Clare's Clinic", " - Pine Hollow"}));
}

TEST_F(TransferRepairsTest, FlagBecomesAttributeDatedToday) {
  std::time_t now = std::time(nullptr);
  std::tm local{};
  localtime_r(&now, &local);
  char today[16];
  std::strftime(today, sizeof today, "%Y-%m-%d", &local);

  LoadSeed();
  ExpectMatchesFile(Run("fix180DayReports"), "jobs/repairs/expected/fix_180_day_reports.log");
  ExpectMatchesFile(ReplaceAll(Dump({{"patient", "id,patient_id,flags"}, {"attributes", "id,patient_id,name,value,date"}}),
                               today, "TODAY"),
                    "jobs/repairs/expected/fix_180_day_reports.rows");
  // Only bit 41 goes: bits 63 and 52 stay, so the value stays negative.
  EXPECT_EQ(Value("select flags from patient where id=3"), "-9218868437227405312");
  EXPECT_EQ(Value("select count(*) from attributes where value='' and date='" + std::string(today) + "'"), "3");
  // Every handled flag is cleared: a second run finds nothing.
  ExpectMatchesFile(Run("FIX180DAYREPORTS"), "jobs/repairs/expected/fix_180_day_reports_again.log");
  EXPECT_EQ(Value("select count(*) from attributes"), "3");
}

TEST_F(TransferRepairsTest, FailuresStopThe180DayRepair) {
  struct Case {
    const char* refused_event;
    const char* refused_table;
    const char* attributes_left;  // a refused flag update leaves the attribute: the next run adds another
  };
  for (const Case& c : {Case{"insert", "attributes", "0"}, Case{"update", "patient", "1"}}) {
    SCOPED_TRACE(c.refused_table);
    Exec("delete from patient; delete from attributes; drop trigger if exists refuse;"
         "insert into patient (id,patient_id,flags) values (1,'2014-0112',2199023255552),(2,'2014-0187',2199023255553)");
    Refuse(c.refused_event, c.refused_table);
    JobOutput run = RunHere(fix180DayReports);
    EXPECT_EQ(run.result, 1);
    EXPECT_EQ(run.log, "Fixing 180 day reports\nPatient id: 2014-0112\n"
                       "Error create patient attribute record 1 - '2014-0112'\n");
    EXPECT_EQ(Value("select count(*) from attributes"), c.attributes_left);
    EXPECT_EQ(Rows("select flags from patient order by id"),
              (std::vector<std::string>{"2199023255552", "2199023255553"}));
  }
}

}  // namespace
