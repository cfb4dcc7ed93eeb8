#include "jobs/repairs/cbc_pcv_repair.h"

#include "jobs/repairs/repair_test_support.h"

namespace {

class CbcPcvRepairTest : public RepairTest {
 protected:
  std::string Blood() {
    return Dump({{"cbc", "id,record_entry_id,date,count,corrected_count,pcv"},
                 {"pcv", "id,record_entry_id,date,pcv,ts,buffy,serum"}});
  }
};

TEST_F(CbcPcvRepairTest, WorksOutThePackedCellVolumeOnce) {
  LoadSeed();
  ExpectMatchesFile(Run("fix_CBC_PCV_Records"), "jobs/repairs/expected/fix_cbc_pcv_records.log");
  ExpectMatchesFile(Blood(), "jobs/repairs/expected/fix_cbc_pcv_records.rows");
  // The rows it filled are not taken again; those it could not fill are reported again and stay as they were.
  ExpectMatchesFile(Run("FIX_cbc_pcv_records"), "jobs/repairs/expected/fix_cbc_pcv_records_again.log");
  ExpectMatchesFile(Blood(), "jobs/repairs/expected/fix_cbc_pcv_records.rows");
}

// A measured volume (40, where the counts give 41) keeps its one pcv row; a volume that no pcv row can hold
// (count 1, corrected count 1000: 45000) is reported and not written; a second run changes nothing.
TEST_F(CbcPcvRepairTest, MeasuredAndImpossibleVolumesAreNotWritten) {
  Exec("insert into patient (id,patient_id) values (1,'2015-0007');"
       "insert into record_entry (id,patient_id,date) values (1,1,'2015-02-01'),(2,1,'2015-02-08'),(3,1,'2015-02-15');"
       "insert into cbc (id,record_entry_id,date,count,corrected_count,pcv) values "
       "(1,1,'2015-02-01',10,9,40),(2,2,'2015-02-08',1,1000,0),(3,3,'2015-02-15',10,8,0);"
       "insert into pcv (id,record_entry_id,date,pcv,ts,buffy) values (1,1,'2015-02-01',40,4.2,0.5)");
  const std::string impossible =
      "\tERROR: CBC record 2 of PatientId=2015-0007, date: 2015-02-08 has count=1 and correctedCount=1000, "
      "PCV=45000 does not fit, not written\n";
  EXPECT_EQ(RunHere(fix_CBC_PCV_Records),
            std::make_pair(0, "Fixing CBC/PCV records records\n" + impossible +
                                  "PatientId=2015-0007, date: 2015-02-15, count=10,correctedCount=8, PCV=36\n"
                                  "Found 2 records and fixed/inserted 1 records\n"));
  const std::string rows = Blood();
  EXPECT_EQ(rows,
            "cbc: 1|1|2015-02-01|10|9|40\n"
            "cbc: 2|2|2015-02-08|1|1000|0\n"
            "cbc: 3|3|2015-02-15|10|8|36\n"
            "pcv: 1|1|2015-02-01|40|4.2|0.5|\n"
            "pcv: 2|3|2015-02-15|36|-1|-1|\n");
  EXPECT_EQ(RunHere(fix_CBC_PCV_Records),
            std::make_pair(0, "Fixing CBC/PCV records records\n" + impossible +
                                  "Found 1 records and fixed/inserted 0 records\n"));
  EXPECT_EQ(Blood(), rows);
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
