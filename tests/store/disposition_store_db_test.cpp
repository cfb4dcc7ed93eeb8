#include "store/disposition_store.h"

#include <gtest/gtest.h>

#include "store/connection.h"
#include "support/test_database.h"

namespace {

using DispositionStoreTest = DatabaseTest;

TEST_F(DispositionStoreTest, ReleasesAndTransfers) {
  ReleaseRecord r{};
  r.patient_id = "012345";
  r.date = "2012-06-01";
  r.lat = 40.5f;
  r.location = "Miyun Reservoir, Miyun District";
  ASSERT_EQ(InsertRelease(32, r), 0) << LastDbError();
  EXPECT_EQ(Rows("select record_entry_id,patient_id,date,lat,location from releases"),
            (std::vector<std::string>{"32|012345|2012-06-01|40.5|Miyun Reservoir, Miyun District"}));

  TransferRecord t{};
  t.patient_id = "012347";
  t.date = "2012-07-01";
  t.name = "St. Mary's Sanctuary";
  t.reason = "E/S";
  ASSERT_EQ(InsertTransfer(33, t), 0) << LastDbError();  // escaped by the store, once
  EXPECT_EQ(Rows("select record_entry_id,patient_id,date,name,reason from transfers"),
            (std::vector<std::string>{"33|012347|2012-07-01|St. Mary's Sanctuary|E/S"}));

  // Texts at their fields' widths, quotes included, are stored whole.
  const std::string name = "O'Brien's " + std::string(53, 'n');  // 63 characters
  const std::string place = "Miller's Pond " + std::string(49, 'p');
  t.name = name;
  r.location = place;
  ASSERT_EQ(t.name.size(), 63u);
  ASSERT_EQ(InsertTransfer(34, t), 0) << LastDbError();
  ASSERT_EQ(InsertRelease(35, r), 0) << LastDbError();
  EXPECT_EQ(Value("select name from transfers where record_entry_id=34"), name);
  EXPECT_EQ(Value("select location from releases where record_entry_id=35"), place);
}

}  // namespace
