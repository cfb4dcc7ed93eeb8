#include "jobs/repairs/cbc_pcv_repair.h"

#include "jobs/repairs/repair_test_support.h"

namespace {

class CbcPcvRepairTest : public RepairTest {
 protected:
  std::string Rows() {
    return Dump({{"cbc", "id,record_entry_id,date,count,corrected_count,pcv"},
                 {"pcv", "id,record_entry_id,date,pcv,ts,buffy,serum"}});
  }
};

TEST_F(CbcPcvRepairTest, WorksOutThePackedCellVolume) {
  LoadSeed();
  ExpectMatchesFile(Run("fix_CBC_PCV_Records"), "jobs/repairs/expected/fix_cbc_pcv_records.log");
  ExpectMatchesFile(Rows(), "jobs/repairs/expected/fix_cbc_pcv_records.rows");
  // 8*45/10 = 36, 7*45/9 = 35, 5*45/7 = 32.14 up to 33, 13*45/14 = 41.8 up to 42;
  // equal counts, a volume of 0 or less and a count of 0 write nothing.
  EXPECT_EQ(DatabaseTest::Rows("select id,pcv from cbc where pcv<>0 order by id"),
            (std::vector<std::string>{"1|36", "2|35", "3|33", "8|42"}));
  // Rows are not marked: a second run adds a second pcv row to each entry.
  EXPECT_NE(Run("FIX_cbc_pcv_records").find("Found 8 records and fixed/inserted 6 records\n"), std::string::npos);
  EXPECT_EQ(Value("select count(*) from pcv"), "8");
}

TEST_F(CbcPcvRepairTest, FirstFailedWriteEndsTheWalk) {
  struct Case {
    const char* refused_event;
    const char* refused_table;
    const char* message;
    const char* first_cbc_pcv;
  };
  for (const Case& c : {Case{"update", "cbc", "\tERROR: Unable to update CBC record!\n", "0"},
                        Case{"insert", "pcv", "\tERROR: Unable to insert PCV record!\n", "36"}}) {
    SCOPED_TRACE(c.message);
    Exec("delete from patient; delete from record_entry; delete from cbc; drop trigger if exists refuse;"
         "insert into patient (id,patient_id) values (1,'2014-0318');"
         "insert into record_entry (id,patient_id) values (7,1),(8,1);"
         "insert into cbc (id,record_entry_id,date,count,corrected_count) values "
         "(1,7,'2014-06-02',10,8),(2,8,'2014-06-09',9,7)");
    Refuse(c.refused_event, c.refused_table);
    JobOutput run = RunHere(fix_CBC_PCV_Records);
    EXPECT_EQ(run.result, 0);
    EXPECT_EQ(run.log, std::string("Fixing CBC/PCV records records\n"
                                   "PatientId=2014-0318, date: 2014-06-02, count=10,correctedCount=8, PCV=36\n") +
                           c.message + "Found 0 records and fixed/inserted 0 records\n");
    EXPECT_EQ(DatabaseTest::Rows("select pcv from cbc order by id"), (std::vector<std::string>{c.first_cbc_pcv, "0"}));
  }
}

}  // namespace
