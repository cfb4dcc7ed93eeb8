#include "jobs/repairs/repair_test_support.h"

namespace {

constexpr const char* kColumns = "id,type,what,interactionLevel,interactionTime,overallTime,behavior,comments";

class EnrichmentRepairTest : public RepairTest {};

TEST_F(EnrichmentRepairTest, RewritesEveryRowAndAgainOnASecondRun) {
  LoadSeed();
  ExpectMatchesFile(Run("fixEnrichmentRecords"), "jobs/repairs/expected/fix_enrichment_records.log");
  ExpectMatchesFile(Dump({{"enrichment", kColumns}}), "jobs/repairs/expected/fix_enrichment_records.rows");
  EXPECT_EQ(Rows(std::string("select ") + kColumns + " from enrichment where id<=4 order by id"),
            (std::vector<std::string>{
                "1|84||3|10 min. Overall time: 45 min|45 min|Footed and mantled over the lure.|"
                "Took the lure on the first pass.\nFooted and mantled over the lure.",
                "2|69|Kong Visual Olfactory Diet|0|Overall time: 20 min|20 min||Pulled the mouse out within a minute.",
                "3|84|Auditory Physical Social Tactile|2|15 minutes||Vocalised twice.|"
                "Didn't approach until the keeper left.\nVocalised twice.",
                "4|69|Keeper's glove|2|5 min|30 min|Ignored it.|No interest.",  // stopped at `what`
            }));

  // The new type 84 reads as bits 4, 16 and 64, the level 3 as bits 1 and 2.
  ExpectMatchesFile(Run("FixEnrichmentRecords"), "jobs/repairs/expected/fix_enrichment_records_again.log");
  ExpectMatchesFile(Dump({{"enrichment", kColumns}}), "jobs/repairs/expected/fix_enrichment_records_again.rows");
  EXPECT_EQ(Value("select concat_ws(' / ',type,what,interactionLevel) from enrichment where id=1"),
            "69 / Auditory Physical Tactile / 1");
}

}  // namespace
