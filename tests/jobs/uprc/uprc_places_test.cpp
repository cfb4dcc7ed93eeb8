#include "jobs/uprc/uprc_places.h"

#include <gtest/gtest.h>

#include <string>

namespace {

TEST(UprcPlacesTest, EveryKeyFindsItsOwnRow) {
  ASSERT_EQ(UprcPlaces().size(), 46u);
  for (const UprcPlace& place : UprcPlaces()) {
    EXPECT_EQ(FindUprcPlace(place.key), &place) << "'" << place.key << "' is shadowed by an earlier key";
  }
}

// Keys compare ignoring case but count every blank.
TEST(UprcPlacesTest, TableLookup) {
  const std::pair<const char*, const char*> cases[] = {
      {"arboretum", "Arboretum"},     {"URC EDUCATION", "URC Education"}, {"AWARE ", "AWARE "},
      {"aware", "AWARE"},             {"AWARE  ", nullptr},               {" Arboretum", nullptr},
      {"Arboretum, Auburn, AL", nullptr}, {"", nullptr},
  };
  for (const auto& [text, key] : cases) {
    const UprcPlace* place = FindUprcPlace(text);
    EXPECT_STREQ(place != nullptr ? place->key : nullptr, key) << "'" << text << "'";
  }
}

TEST(UprcPlacesTest, SplitPlaceTextFillsFromTheRight) {
  struct Case {
    const char* text;
    const char* name;
    const char* town;
    const char* state;
  };
  // The fields start as " old name ", "old town", "old state": untouched fields are trimmed too.
  const Case cases[] = {
      {"Hargrove Farm, Loachapoka, AL", "Hargrove Farm", "Loachapoka", "AL"},
      {"Tallassee, AL", "old name", "Tallassee", "AL"},
      {" GA ", "old name", "old town", "GA"},
      {"", "old name", "old town", "old state"},
      {",,Tallassee,, AL,", "old name", "Tallassee", "AL"},  // empty parts vanish
      {"Trail, 12 Mill Rd, Opelika, AL", "Trail", "12 Mill Rd", "Opelika"},  // only three parts count
      {" , AL", "old name", "", "AL"},
      {"\tFarm\t,\tTown\r\n, AL\n", "Farm", "Town", "AL"},
  };
  for (const Case& c : cases) {
    Text<64> name{};
    Text<32> town{};
    Text<21> state{};
    name = " old name ";
    town = "old town";
    state = "old state";
    SplitPlaceText(c.text, name, town, state);
    EXPECT_EQ(name, c.name) << "'" << c.text << "'";
    EXPECT_EQ(town, c.town) << "'" << c.text << "'";
    EXPECT_EQ(state, c.state) << "'" << c.text << "'";
  }
}

TEST(UprcPlacesTest, TransferPlaces) {
  struct Case {
    const char* text;
    const char* name;
    const char* city;
    const char* state;
    const char* reason;
  };
  const Case cases[] = {
      {"AWARE for Release", "AWARE", "Lithonia", "GA", "Continued care"},
      {"AWARE", "AWARE", "Lithonia", "GA", "E/S"},
      {"awaiting release, Foley, AL", "awaiting release", "Foley", "AL", "E/S"},  // case-sensitive
      {"Squam Lake Natural Science Center", "", "", "", "E/S"},  // a table row sets all three
      {"Coastal Raptor Trust for Release, Foley, AL", "Coastal Raptor Trust for Release", "Foley", "AL",
       "Continued care"},
      {"Georgia", "NA", "NA", "Georgia", "E/S"},
  };
  for (const Case& c : cases) {
    TransferRecord transfer{};  // as the job starts it
    transfer.name = "NA";
    transfer.city = "NA";
    transfer.state = "NA";
    transfer.reason = "E/S";
    ResolveTransferPlace(c.text, transfer);
    EXPECT_EQ(transfer.name, c.name) << c.text;
    EXPECT_EQ(transfer.city, c.city) << c.text;
    EXPECT_EQ(transfer.state, c.state) << c.text;
    EXPECT_EQ(transfer.reason, c.reason) << c.text;
  }
}

}  // namespace
