#include "store/reference_store.h"

#include <gtest/gtest.h>

#include "store/connection.h"
#include "support/test_database.h"

namespace {

using ReferenceStoreTest = DatabaseTest;

TEST_F(ReferenceStoreTest, Species) {
  SpeciesRecord s{};
  s.abbrev = "GHOW";
  s.nord = 'N';
  s.value = 12.345f;
  ASSERT_EQ(InsertSpecies(s), 0) << LastDbError();
  EXPECT_EQ(Rows("select id,nord,value,kingdom from species"),
            (std::vector<std::string>{std::to_string(s.id) + "|N|12.35|"}));  // taxonomy written as empty texts
  Exec("insert into species(abbrev,common_name,kingdom,cost_category) values ('COHA','Cooper''s Hawk',NULL,3)");
  s = {};
  s.kingdom = "kept";
  ASSERT_EQ(GetSpeciesByAbbrev("COHA", s), 0);
  EXPECT_EQ(s.common_name, "Cooper's Hawk");
  EXPECT_EQ(s.cost_category, 3);
  EXPECT_EQ(s.kingdom, "kept");  // a null column leaves the caller's value
  EXPECT_EQ(GetSpeciesByAbbrev("NONE", s), 1);

  Text<16> abbrev{};
  EXPECT_EQ(GetSpeciesAbbrevByCommonName("cooper's hawk", abbrev), 0);  // escaped by the look-up itself
  EXPECT_EQ(abbrev, "COHA");
  abbrev = "";
  EXPECT_EQ(GetSpeciesAbbrevByCommonName("Harris's Hawk", abbrev), 1);
  EXPECT_TRUE(abbrev.empty());

  // A common name with quotes at the field's width is stored whole and found by itself.
  s = {};
  s.abbrev = "LUWA";
  const std::string name = "Lucy's \"desert\" warbler " + std::string(39, 'w');
  s.common_name = name;
  ASSERT_EQ(s.common_name.size(), 63u);
  ASSERT_EQ(InsertSpecies(s), 0) << LastDbError();
  EXPECT_EQ(Value("select common_name from species where abbrev='LUWA'"), name);
  EXPECT_EQ(GetSpeciesAbbrevByCommonName(name.c_str(), abbrev), 0);
  EXPECT_EQ(abbrev, "LUWA");
}

TEST_F(ReferenceStoreTest, LocationsAndAddressBook) {
  LocationRecord l{};
  l.name = "Flight Pen 2";
  l.volume = 1200.25f;
  ASSERT_EQ(InsertLocation(l), 0) << LastDbError();
  EXPECT_EQ(std::to_string(GetLocationId("Flight Pen 2")), Value("select id from location"));
  EXPECT_EQ(Value("select volume from location"), "1200.2");  // one decimal
  EXPECT_EQ(GetLocationId("Owl's Barn"), 0);
  l.name = "Owl's Barn";
  l.description = "The owls' barn, \\ wing";
  ASSERT_EQ(InsertLocation(l), 0) << LastDbError();
  EXPECT_GT(GetLocationId("Owl's Barn"), 0);
  EXPECT_EQ(Value("select description from location where name='Owl''s Barn'"), "The owls' barn, \\ wing");

  AddressBookEntry e{};
  e.org = "Sonoran Wildlife Vets";
  ASSERT_EQ(InsertAddressBookEntry(e), 0) << LastDbError();
  EXPECT_EQ(Rows("select id,org from addressBook"),
            (std::vector<std::string>{std::to_string(e.id) + "|Sonoran Wildlife Vets"}));
}

}  // namespace
