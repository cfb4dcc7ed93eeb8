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
  ASSERT_EQ(InsertRelease(31, r), 0) << LastDbError();
  r.lat = 40.5f;
  r.location = "Miyun Reservoir, Miyun District";
  ASSERT_EQ(InsertRelease(32, r), 0) << LastDbError();
  EXPECT_EQ(Rows("select record_entry_id,patient_id,date,how_age,weight,lat,lon,location from releases"),
            (std::vector<std::string>{"31|012345|2012-06-01||0|0|0|",
                                      "32|012345|2012-06-01||0|40.5|0|Miyun Reservoir, Miyun District"}));

  TransferRecord t{};
  t.patient_id = "012347";
  t.date = "2012-07-01";
  t.name = "St. Mary's Sanctuary";
  t.reason = "E/S";
  EXPECT_EQ(InsertTransfer(33, t), 1);  // the caller did not escape the name
  EscapeSql(t.name);
  ASSERT_EQ(InsertTransfer(33, t), 0) << LastDbError();
  EXPECT_EQ(Rows("select record_entry_id,patient_id,date,name,reason from transfers"),
            (std::vector<std::string>{"33|012347|2012-07-01|St. Mary's Sanctuary|E/S"}));
}

}  // namespace
