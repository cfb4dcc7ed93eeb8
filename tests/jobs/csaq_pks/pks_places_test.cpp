#include "jobs/csaq_pks/pks_places.h"

#include <gtest/gtest.h>

#include <string>

namespace {

// The finder fields a collection place may set, joined by '|':
// found addr, city, state, county, country | presenter org, city, state, county, country.
std::string Found(const PatientFinderInfo& f) {
  return std::string(f.found_addr.view()) + "|" + std::string(f.found_city.view()) + "|" +
         std::string(f.found_state.view()) + "|" + std::string(f.found_county.view()) + "|" +
         std::string(f.found_country.view()) + " / " + std::string(f.presenter_org.view()) + "|" +
         std::string(f.presenter_city.view()) + "|" + std::string(f.presenter_state.view()) + "|" +
         std::string(f.presenter_county.view()) + "|" + std::string(f.presenter_country.view());
}

TEST(PksPlacesTest, ApplyCollectionSite) {
  struct Case {
    const char* place;
    int result;
    const char* fields;
    const char* printed;
  };
  // Every finder starts as the import's defaults with a found city "old". The samples pin the known places.
  const Case cases[] = {
      {" at Little Swift Creek , north bank", 0, "Little Swift Creek|Ernul|NC|Craven|USA / |old|NC|NA|USA", ""},
      {"Bogue Sound/ignored", 0, "Bogue Sound||NC|Carteret|USA / |old|NC|NA|USA", ""},
      {"United States,Virginia,,Chincoteague", 0, "Chincoteague|old|VA|NA|USA / |old|NC|NA|USA", ""},
      {"United States/South Carolina", 1, "|old|SC|NA|USA / |old|NC|NA|USA", ""},
      {"United States", 1, "|old|NC|NA|USA / |old|NC|NA|USA", ""},
      {" / , ", 1, "|old|NC|NA|USA / |old|NC|NA|USA", "\tERROR: Unknown country: ''\n"},
      {"//,,", 1, "|old|NC|NA|USA / |old|NC|NA|USA", ""},
  };
  for (const Case& c : cases) {
    PatientFinderInfo finder;
    ResetFinderInfo(finder, "USA", "NC");
    finder.found_city = "old";
    finder.presenter_city = "old";
    testing::internal::CaptureStdout();
    int result = ApplyCollectionSite(finder, c.place);
    EXPECT_EQ(testing::internal::GetCapturedStdout(), c.printed) << c.place;
    EXPECT_EQ(result, c.result) << c.place;
    EXPECT_EQ(Found(finder), c.fields) << c.place;
  }
}

// Only the first 127 characters of a place are read.
TEST(PksPlacesTest, LongPlacesAreCut) {
  PatientFinderInfo finder{};
  std::string place = "United States/North Carolina/" + std::string(120, 'x') + "/FL";
  EXPECT_EQ(ApplyCollectionSite(finder, place.c_str()), 0);
  EXPECT_EQ(finder.found_addr.size(), 31u);  // the field's width
  EXPECT_EQ(finder.found_state, "NC");       // the fourth token was past the cut

  ReleaseRecord release{};
  EXPECT_EQ(ParseReleasePlace(release, ("United States/Georgia/" + std::string(200, 'y')).c_str()), 0);
  EXPECT_EQ(release.location.size(), 63u);
}

TEST(PksPlacesTest, ParseReleasePlace) {
  struct Case {
    const char* place;
    int result;
    const char* fields;  // country|state|city|county|location
    const char* printed;
  };
  const Case cases[] = {  // the samples pin the ocean, a county by region and a named site
      {"United States/North Carolina", 0, "USA|NC|c|k|l", ""},
      {"United States/Louisiana/ ", 0, "USA|LA|c|k|l", ""},
      {"United States/Southeast/x", 0, "USA|NC|Banner Elk|k|l", ""},
      {"United States", 0, "USA|s|c|k|l", ""},
      {"United States/Texas", 1, "USA|s|c|k|l", "\tERROR: Unknown release state: 'Texas'\n"},
      {"Mexico/Yucatan", 1, "x|s|c|k|l", "\tERROR: Unknown release country: 'Mexico'\n"},
      {"", 1, "x|s|c|k|l", ""},
  };
  for (const Case& c : cases) {
    ReleaseRecord release{};
    release.country = "x";
    release.state = "s";
    release.city = "c";
    release.county = "k";
    release.location = "l";
    testing::internal::CaptureStdout();
    int result = ParseReleasePlace(release, c.place);
    EXPECT_EQ(testing::internal::GetCapturedStdout(), c.printed) << c.place;
    EXPECT_EQ(result, c.result) << c.place;
    std::string fields = std::string(release.country.view()) + "|" + std::string(release.state.view()) + "|" +
                         std::string(release.city.view()) + "|" + std::string(release.county.view()) + "|" +
                         std::string(release.location.view());
    EXPECT_EQ(fields, c.fields) << c.place;
  }
}

}  // namespace
