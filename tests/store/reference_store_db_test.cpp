#include "store/reference_store.h"

#include <gtest/gtest.h>

#include "store/connection.h"
#include "support/test_database.h"

namespace {

using ReferenceStoreTest = DatabaseTest;

TEST_F(ReferenceStoreTest, SpeciesWithZeroFlagsAndEmptyTaxonomy) {
  SpeciesRecord s{};
  s.abbrev = "GHOW";
  s.common_name = "Great Horned Owl";
  s.scientific_name = "Bubo virginianus";
  s.nord = 'N';
  s.value = 12.345f;
  ASSERT_EQ(InsertSpecies(s), 0) << LastDbError();
  EXPECT_GT(s.id, 0);
  EXPECT_EQ(Rows("select abbrev,nord,native,hms,habitat,value,kingdom,genus from species"),
            (std::vector<std::string>{"GHOW|N||||12.35||"}));  // taxonomy written as empty texts

  s = {};
  s.abbrev = "COHA";
  s.common_name = "Cooper's Hawk";
  EXPECT_EQ(InsertSpecies(s), 1);  // unescaped quote
}

TEST_F(ReferenceStoreTest, SpeciesLookUps) {
  Exec("insert into species(abbrev,common_name,scientific_name,nord,kingdom,cost_category,value) values "
       "('COHA','Cooper''s Hawk','Accipiter cooperii','N',NULL,3,1.5)");
  SpeciesRecord s{};
  s.kingdom = "kept";
  ASSERT_EQ(GetSpeciesByAbbrev("COHA", s), 0);
  EXPECT_EQ(s.abbrev, "COHA");
  EXPECT_EQ(s.common_name, "Cooper's Hawk");
  EXPECT_EQ(s.nord, 'N');
  EXPECT_EQ(s.cost_category, 3);
  EXPECT_FLOAT_EQ(s.value, 1.5f);
  EXPECT_EQ(s.kingdom, "kept");  // a null column leaves the caller's value
  EXPECT_EQ(GetSpeciesByAbbrev("NONE", s), 1);

  Text<16> abbrev{};
  EXPECT_EQ(GetSpeciesAbbrevByCommonName("cooper's hawk", abbrev), 0);  // escaped by the look-up itself
  EXPECT_EQ(abbrev, "COHA");
  abbrev = "";
  EXPECT_EQ(GetSpeciesAbbrevByCommonName("Harris's Hawk", abbrev), 1);
  EXPECT_TRUE(abbrev.empty());
}

TEST_F(ReferenceStoreTest, LocationsAndAddressBook) {
  LocationRecord l{};
  l.name = "Flight Pen 2";
  l.volume = 1200.25f;
  ASSERT_EQ(InsertLocation(l), 0) << LastDbError();
  EXPECT_GT(GetLocationId("Flight Pen 2"), 0);
  EXPECT_EQ(Value("select volume from location"), "1200.2");  // one decimal
  EXPECT_EQ(GetLocationId("Owl's Barn"), 0);

  AddressBookEntry e{};
  e.org = "Sonoran Wildlife Vets";
  e.lat = 32.25f;
  e.type = 17;
  ASSERT_EQ(InsertAddressBookEntry(e), 0) << LastDbError();
  EXPECT_EQ(std::to_string(e.id), Value("select id from addressBook"));
  EXPECT_EQ(Rows("select org,lat,type from addressBook"), (std::vector<std::string>{"Sonoran Wildlife Vets|32.25|17"}));
}

}  // namespace
