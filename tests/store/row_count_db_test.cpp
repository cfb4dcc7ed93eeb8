// Row counts and single-number queries, which jobs use to check that the
// rows they build on exist.
#include <gtest/gtest.h>

#include "store/connection.h"
#include "store/patient_store.h"
#include "store/reference_store.h"
#include "support/test_database.h"

namespace {

using RowCountTest = DatabaseTest;

TEST_F(RowCountTest, CountsAndQueryInt) {
  EXPECT_EQ(CountSpecies(), 0);
  EXPECT_EQ(CountLocations(), 0);
  EXPECT_EQ(CountPatients(), 0);
  Exec("insert into species(abbrev) values ('A'),('B'); insert into location(name) values ('Tank 1');"
       "insert into patient(patient_id,notes) values ('P1','Imported from: X RS01'),('P2','Imported from: Y')");
  EXPECT_EQ(CountSpecies(), 2);
  EXPECT_EQ(CountLocations(), 1);
  EXPECT_EQ(CountPatients(), 2);

  std::string second = Value("select id from patient where patient_id='P2'");
  EXPECT_EQ(QueryInt("select id from patient where notes like '%%%s';", {"Y"}, 0), std::stoi(second));
  EXPECT_EQ(QueryInt("select id from patient where notes like '%%%s';", {"Z"}, -7), -7);  // no row
  EXPECT_EQ(QueryInt("select band from patient where patient_id='P1';", {}, -7), -7);     // null
  EXPECT_EQ(QueryInt("select id from patient where notes like '%%%s';", {"O'Hara"}, -7), -7);  // refused
  EXPECT_EQ(QueryInt("select nosuchcolumn from patient;", {}, -7), -7);
}

}  // namespace
