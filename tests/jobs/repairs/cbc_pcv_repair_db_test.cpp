#include "jobs/repairs/cbc_pcv_repair.h"

#include "jobs/repairs/repair_test_support.h"

namespace {

class CbcPcvRepairTest : public RepairTest {};

TEST_F(CbcPcvRepairTest, WorksOutThePackedCellVolumeAndAddsItAgainOnASecondRun) {
  LoadSeed();
  ExpectMatchesFile(Run("fix_CBC_PCV_Records"), "jobs/repairs/expected/fix_cbc_pcv_records.log");
  ExpectMatchesFile(Dump({{"cbc", "id,record_entry_id,date,count,corrected_count,pcv"},
                          {"pcv", "id,record_entry_id,date,pcv,ts,buffy,serum"}}),
                    "jobs/repairs/expected/fix_cbc_pcv_records.rows");
  // Rows are not marked: a second run adds a second pcv row to each entry.
  EXPECT_NE(Run("FIX_cbc_pcv_records").find("Found 8 records and fixed/inserted 6 records\n"), std::string::npos);
  EXPECT_EQ(Value("select count(*) from pcv"), "8");
}

TEST_F(CbcPcvRepairTest, FirstFailedWriteEndsTheWalk) {
  LoadSeed();
  Refuse("insert", "pcv");
  EXPECT_EQ(RunHere(fix_CBC_PCV_Records),
            std::make_pair(0, std::string("Fixing CBC/PCV records records\n"
                                          "PatientId=2014-0318, date: 2014-06-02, count=10,correctedCount=8, PCV=36\n"
                                          "\tERROR: Unable to insert PCV record!\n"
                                          "Found 0 records and fixed/inserted 0 records\n")));
  // The row updated before the failure keeps its volume; the next row is not reached.
  EXPECT_EQ(Rows("select pcv from cbc where id<=2 order by id"), (std::vector<std::string>{"36", "0"}));
}

}  // namespace
