#include "jobs/repairs/enrichment_repair.h"

#include "jobs/repairs/repair_test_support.h"
#include "store/connection.h"

namespace {

constexpr const char* kColumns = "id,type,what,interactionLevel,interactionTime,overallTime,behavior,comments";

class EnrichmentRepairTest : public RepairTest {
 protected:
  // Adds a row in the old meaning; texts are given as stored.
  void AddRow(int id, int type, const std::string& what, const std::string& interaction_time,
              const std::string& overall_time, const std::string& behavior, const std::string& comments) {
    Exec("insert into enrichment (id,date,who,type,what,interactionTime,overallTime,behavior,comments) values (" +
         std::to_string(id) + ",'2014-05-02 09:30:00','K.O.'," + std::to_string(type) + ",'" +
         EscapeSqlText(what) + "','" + EscapeSqlText(interaction_time) + "','" + EscapeSqlText(overall_time) +
         "','" + EscapeSqlText(behavior) + "','" + EscapeSqlText(comments) + "')");
  }
  std::string Column(int id, const std::string& column) {
    return Value("select " + column + " from enrichment where id=" + std::to_string(id));
  }
};

// Quotes in `what` and `interactionTime` (rows 4 and 6) are written escaped like every other text.
// Not idempotent: a second run reads the new type 84 as bits 4, 16 and 64, the level 3 as bits 1 and 2.
TEST_F(EnrichmentRepairTest, RewritesEveryRowAndAgainOnASecondRun) {
  LoadSeed();
  ExpectMatchesFile(Run("fixEnrichmentRecords"), "jobs/repairs/expected/fix_enrichment_records.log");
  ExpectMatchesFile(Dump({{"enrichment", kColumns}}), "jobs/repairs/expected/fix_enrichment_records.rows");
  ExpectMatchesFile(Run("FixEnrichmentRecords"), "jobs/repairs/expected/fix_enrichment_records_again.log");
  ExpectMatchesFile(Dump({{"enrichment", kColumns}}), "jobs/repairs/expected/fix_enrichment_records_again.rows");
}

// Every character a row held stays, at the columns' full widths and with backslashes and quotes; a row whose
// new text its column cannot hold, or whose text holds a NUL byte, is reported and left as it was.
TEST_F(EnrichmentRepairTest, TextsStayWhole) {
  std::string full_what(319, 'w');
  full_what.replace(0, 21, "pine cones scented...");
  const std::string full_time(127, 't');
  std::string long_comments;
  while (long_comments.size() < 5000) long_comments += "Keeper's note " + std::to_string(long_comments.size()) + ". ";
  AddRow(1, 1, full_what, full_time, "", "Cached two cones.", long_comments);
  AddRow(2, 2, R"(Box\Tube)", R"(10 o'clock \N)", R"(2\3 hr)", R"(Said "hi" \0)", R"(Ruiz\nVet's "care")");
  AddRow(3, 2, std::string(313, 'w'), "5 min", "", "", "Too long for one more word.");
  AddRow(4, 2, "Ball", "5 min", "", "", std::string("Before a NUL") + '\0' + "and after it");
  EXPECT_EQ(RunHere(fixEnrichmentRecords),
            std::make_pair(0, std::string("Fixing enrichment records\n"
                                          "\tERROR: Unable to fix record 3: the new what has 320 characters, "
                                          "its column holds 319\n"
                                          "\tERROR: Unable to fix record 4: its comments could not be read whole\n"
                                          "Fixed 2 enrichment records\n")));
  EXPECT_EQ(Column(1, "what"), full_what);
  EXPECT_EQ(Column(1, "interactionTime"), full_time);
  EXPECT_EQ(Column(1, "comments"), long_comments + "\nCached two cones.");
  EXPECT_EQ(Column(2, "what"), R"(Box\Tube Visual)");
  EXPECT_EQ(Column(2, "interactionTime"), R"(10 o'clock \N. Overall time: 2\3 hr)");
  EXPECT_EQ(Column(2, "comments"), R"(Ruiz\nVet's "care")" "\n" R"(Said "hi" \0)");
  EXPECT_EQ(Rows("select type,what from enrichment where id>=3 order by id"),
            (std::vector<std::string>{"2|" + std::string(313, 'w'), "2|Ball"}));
  EXPECT_EQ(Column(4, "length(comments)"), "25");
}

}  // namespace
