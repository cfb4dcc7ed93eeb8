#include "jobs/csaq_ff/csaq_ff_collection.h"

#include <gtest/gtest.h>

#include <string>

namespace {

TEST(CsaqFfCollectionTest, Position) {
  struct Case {
    const char* text;
    bool set;
    float lat, lon;
  };
  const Case cases[] = {
      {"34.5 76.1", true, 34.5f, -76.1f},
      {"34.5, -76.1", true, 34.5f, -76.1f},  // the sign is lost with the other non-digits
      {"34\xb0 43' 12\" N, 77\xb0 25' 48\" W", true, 34.72f, -77.43f},
      {"N34 W0", true, 34.0f, 0.0f},
      {"34 41.5 76", false, 9.0f, 9.0f},
      {"34 41 N 76 40 W 12", false, 9.0f, 9.0f},
      {"", false, 9.0f, 9.0f},
      {"unknown", false, 9.0f, 9.0f},
  };
  for (const Case& c : cases) {
    float lat = 9.0f, lon = 9.0f;
    EXPECT_EQ(ReadCollectionPosition(c.text, lat, lon), c.set) << c.text;
    EXPECT_NEAR(lat, c.lat, 1e-4) << c.text;
    EXPECT_NEAR(lon, c.lon, 1e-4) << c.text;
  }
}

TEST(CsaqFfCollectionTest, CountyAndPlainText) {
  const std::pair<const char*, const char*> counties[] = {
      {"Onslow county NC", "Onslow county"}, {"Pender County County", "Pender County"},  // the samples pin the rest
      {"Brunswick county, Carteret County", "Brunswick county, Carteret County"},  // " County" is looked for first
      {"", ""},
  };
  for (const auto& [text, county] : counties) EXPECT_EQ(CollectionCounty(text), county) << text;

  const std::pair<const char*, const char*> texts[] = {
      {"&quot;Left&quot; fin notch", "Left fin notch"}, {"caf\xe9 \xe0 la", "caf    la"},
      {"&amp;quot;", "&amp;quot;"},                     {"&quot&quot;;", "&quot;"},
  };
  for (const auto& [text, plain] : texts) EXPECT_EQ(PlainCollectionText(text), plain) << text;
}

TEST(CsaqFfCollectionTest, NameFromNotes) {
  struct Case {
    const char* notes;
    bool found;
    const char* name;
    const char* rest;
  };
  const Case cases[] = {  // the samples pin names at the start, alone, and a second quote after one
      {"Seen as &quot;Big Mama&quot;; largest &quot;one&quot;;", true, "Big Mama", " largest &quot;one&quot;;"},
      {"&quot;;&quot;;x", true, ";", "x"},  // the closing marker is looked for after the opening one
      {"&quot;Big Mama&quot; is the largest", false, "", "&quot;Big Mama&quot; is the largest"},
      {"No name here", false, "", "No name here"},
  };
  for (const Case& c : cases) {
    std::string notes = c.notes;
    std::string name;
    EXPECT_EQ(TakeNameFromNotes(notes, name), c.found) << c.notes;
    EXPECT_EQ(name, c.name) << c.notes;
    EXPECT_EQ(notes, c.rest) << c.notes;
  }
}

TEST(CsaqFfCollectionTest, DispositionWords) {
  const std::pair<const char*, const char*> cases[] = {
      {"DIED", "D"},  // the samples pin the plain words
      {"MIA", "MIA"},         {"eaten/mia", "MIA"},    {"died/MIA", "MIA"},       {"transfer out", "T"},
      {"trransfered", "T"},   {"TRANSFERRED", nullptr}, {"Died suddenly", nullptr}, {"", nullptr},
      {"Released, then Transferred", "T"},
  };
  for (const auto& [word, status] : cases) {
    const char* found = DispositionStatus(word);
    EXPECT_STREQ(found, status) << "'" << word << "'";
  }
}

// The phrases are tried in their order, not by where they stand in the notes.
TEST(CsaqFfCollectionTest, TransferDestination) {
  const std::pair<const char*, const char*> cases[] = {
      {"Transfered to the state", "the state"},  // the samples pin the common phrases
      {"Sent to Fort Fisher, later moved to Roanoke Island", "Fort Fisher, later moved to Roanoke Island"},
      {"Traded to Pine Knoll Shores; Sent to Duke", "Duke"},
      {"Returned to owner", "owner"},
      {"", ""},
  };
  for (const auto& [notes, destination] : cases) EXPECT_EQ(TransferDestination(notes), destination) << notes;
}

}  // namespace
