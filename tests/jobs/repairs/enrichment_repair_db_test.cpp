#include "jobs/repairs/repair_test_support.h"

namespace {

constexpr const char* kColumns = "id,type,what,interactionLevel,interactionTime,overallTime,behavior,comments";

class EnrichmentRepairTest : public RepairTest {};

// A row whose update is refused (a quote in the new text) is reported and the walk goes on: rows 4 and 6.
// Not idempotent: a second run reads the new type 84 as bits 4, 16 and 64, the level 3 as bits 1 and 2.
TEST_F(EnrichmentRepairTest, RewritesEveryRowAndAgainOnASecondRun) {
  LoadSeed();
  ExpectMatchesFile(Run("fixEnrichmentRecords"), "jobs/repairs/expected/fix_enrichment_records.log");
  ExpectMatchesFile(Dump({{"enrichment", kColumns}}), "jobs/repairs/expected/fix_enrichment_records.rows");
  ExpectMatchesFile(Run("FixEnrichmentRecords"), "jobs/repairs/expected/fix_enrichment_records_again.log");
  ExpectMatchesFile(Dump({{"enrichment", kColumns}}), "jobs/repairs/expected/fix_enrichment_records_again.rows");
}

}  // namespace
