#include "store/disposition_store.h"

#include <gtest/gtest.h>

#include "store/connection.h"
#include "support/test_database.h"

namespace {

using DispositionStoreTest = DatabaseTest;

TEST_F(DispositionStoreTest, MinimalReleaseIsSentWithEmptiesAndZeros) {
  ReleaseRecord r{};
  r.patient_id = "012345";
  r.date = "2012-06-01";
  ASSERT_EQ(InsertRelease(31, r), 0) << LastDbError();
  EXPECT_EQ(Rows("select record_entry_id,patient_id,date,how_age,band_number,weight,lat,lon,id_type,pub_priv "
                 "from releases"),
            (std::vector<std::string>{"31|012345|2012-06-01|||0|0|0||"}));
}

TEST_F(DispositionStoreTest, FullReleaseAndTransfer) {
  ReleaseRecord r{};
  r.patient_id = "012346";
  r.date = "2012-06-02";
  r.how_age = "NA";
  r.how_sex = "NA";
  r.band_number = "NO BAND";
  r.id_type = "None";
  r.tracker_type = "None";
  r.pub_priv = "UNK";
  r.location = "Miyun Reservoir, Miyun District";
  r.state = "Beijing";
  r.country = "CHINA";
  r.lat = 40.5f;
  r.lon = 116.875f;
  r.weight = 950;
  ASSERT_EQ(InsertRelease(32, r), 0) << LastDbError();
  EXPECT_EQ(Rows("select location,state,country,weight,lat,lon,tracker_type from releases"),
            (std::vector<std::string>{"Miyun Reservoir, Miyun District|Beijing|CHINA|950|40.5|116.875|None"}));

  TransferRecord t{};
  t.patient_id = "012347";
  t.date = "2012-07-01";
  t.name = "\"Beijing Raptor Rescue\"";
  t.reason = "E/S";
  t.country = "CHINA";
  ASSERT_EQ(InsertTransfer(33, t), 0) << LastDbError();
  EXPECT_EQ(Rows("select record_entry_id,patient_id,date,name,reason,country from transfers"),
            (std::vector<std::string>{"33|012347|2012-07-01|\"Beijing Raptor Rescue\"|E/S|CHINA"}));

  t.name = "St. Mary's Sanctuary";
  EXPECT_EQ(InsertTransfer(34, t), 1);
  EscapeSql(t.name);
  EXPECT_EQ(InsertTransfer(34, t), 0);
}

}  // namespace
