#include "store/measurement_store.h"

#include <gtest/gtest.h>

#include "store/connection.h"
#include "support/test_database.h"

namespace {

using MeasurementStoreTest = DatabaseTest;

TEST_F(MeasurementStoreTest, StatementsFixTheirDecimals) {
  BiometricRecord b{};
  b.date = "2012-04-05";
  b.weight = 2.5f;
  ASSERT_EQ(InsertBiometric(41, b), 0) << LastDbError();
  EXPECT_EQ(Value("select weight from biometric where record_entry_id=41"), "2.5");

  PcvRecord p{};
  p.date = "2012-04-05";
  p.ts = 4.25f;
  p.buffy = 0.5f;
  ASSERT_EQ(InsertPcv(41, p), 0) << LastDbError();
  EXPECT_EQ(Rows("select record_entry_id,ts,buffy from pcv"), (std::vector<std::string>{"41|4.2|0.5"}));

  WaterQualityRecord w{};
  w.date = "2012-01-02 08:30:00";
  w.temp = 24.5f;
  w.pH = 8.1f;
  w.TAN = 0.0125f;
  ASSERT_EQ(InsertWaterQuality(61, 7, w), 0) << LastDbError();
  EXPECT_EQ(Rows("select location_record_entry_id,location_id,date,temp,pH,TAN from water_quality"),
            (std::vector<std::string>{"61|7|2012-01-02 08:30:00|24.5|8.1|0.0125"}));  // pH and temp apart
}

TEST_F(MeasurementStoreTest, BandReportEscapesItsFreeTexts) {
  BandReportRecord r{};
  r.date = "2012-08-09";
  r.notes = "Seen on the pier, \"limping\"\nfinder's dog";
  r.location = "O'Neill Beach";
  r.band = "0987-65432";
  ASSERT_EQ(InsertBandReport(51, r), 0) << LastDbError();
  EXPECT_EQ(Rows("select location,notes,band from band_report"),
            (std::vector<std::string>{"O'Neill Beach|Seen on the pier, \"limping\"\nfinder's dog|0987-65432"}));
  EXPECT_EQ(r.location, "O'Neill Beach");  // the record itself is not changed
}

TEST_F(MeasurementStoreTest, GetEnrichment) {
  Exec("insert into enrichment(date,who,what,type,goal,location,comments) values "
       "('2012-03-04 10:00:00','keeper','ice block',5,'foraging',NULL,'ate quickly')");
  EnrichmentRecord e{};
  e.location = "kept";
  ASSERT_EQ(GetEnrichment(std::stoi(Value("select id from enrichment")), e), 0);
  EXPECT_EQ(e.date, "2012-03-04");
  EXPECT_EQ(e.type, 5);
  EXPECT_EQ(e.location, "kept");  // a null column leaves the caller's value
  EXPECT_EQ(GetEnrichment(999, e), 1);
  EXPECT_EQ(e.date, "2012-03-04");  // untouched
}

}  // namespace
