#include "jobs/uprc/uprc_places.h"

#include <gtest/gtest.h>

#include <string>

namespace {

// Keys compare ignoring case but count every blank; no key hides a later one.
TEST(UprcPlacesTest, TableLookup) {
  for (const UprcPlace& place : UprcPlaces()) EXPECT_EQ(FindUprcPlace(place.key), &place) << place.key;
  const std::pair<const char*, const char*> cases[] = {
      {"aware", "AWARE"}, {"AWARE ", "AWARE "}, {"AWARE  ", nullptr}, {" Arboretum", nullptr},
      {"Arboretum, Auburn, AL", nullptr},
  };
  for (const auto& [text, key] : cases) {
    const UprcPlace* place = FindUprcPlace(text);
    EXPECT_STREQ(place != nullptr ? place->key : nullptr, key) << "'" << text << "'";
  }
}

// Fields start as " old name ", "old town", "old state": those without a part are kept, trimmed.
TEST(UprcPlacesTest, SplitPlaceText) {
  const char* const cases[][4] = {  // text, name, town, state
      {"\tFarm\t,\tTown\r\n, AL\n", "Farm", "Town", "AL"},
      {"Tallassee, AL", "old name", "Tallassee", "AL"},
      {" GA ", "old name", "old town", "GA"},
      {"", "old name", "old town", "old state"},
      {",,Tallassee,, AL,", "old name", "Tallassee", "AL"},                // empty parts vanish
      {"Trail, 12 Mill Rd, Opelika, AL", "Trail", "12 Mill Rd", "Opelika"},  // only three parts count
      {" , AL", "old name", "", "AL"},
  };
  for (const auto& [text, name, town, state] : cases) {
    Text<64> n{};
    Text<32> t{};
    Text<21> s{};
    n = " old name ";
    t = "old town";
    s = "old state";
    SplitPlaceText(text, n, t, s);
    EXPECT_EQ(n, name) << "'" << text << "'";
    EXPECT_EQ(t, town) << "'" << text << "'";
    EXPECT_EQ(s, state) << "'" << text << "'";
  }
}

// Only "Release" written so marks a transfer for continued care.
TEST(UprcPlacesTest, TransferReleaseIsCaseSensitive) {
  TransferRecord t{};
  t.reason = "E/S";
  ResolveTransferPlace("awaiting release, Foley, AL", t);
  EXPECT_EQ(t.name, "awaiting release");
  EXPECT_EQ(t.reason, "E/S");
}

}  // namespace
