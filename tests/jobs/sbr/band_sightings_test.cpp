#include "jobs/sbr/band_sightings.h"

#include <gtest/gtest.h>

#include <string>

namespace {

TEST(BandSightings, MarkerCodesAsReportersWriteThem) {
  const char* const cases[][2] = {
      {"a-7b", "A7B"}, {"A 7B", "A7B"}, {"a-7-b", "A7B"}, {"A 7 B", "A7B"}, {"a7b", "A7B"},
      {"AB7C", "AB7C"},   // four characters without a separator stay four
      {"A--B", "A-B"},    // only the second character goes
      {"ABCDE", "ACE"},   // five characters always lose the second and fourth
      {"A-7B-", "A7-"}, {"", ""}, {"k12", "K12"}, {"A-7-BC", "A-7-BC"},
  };
  for (const auto& [written, expected] : cases) {
    std::string marker(written);
    NormalizeMarkerCode(marker.data());
    EXPECT_EQ(std::string(marker.c_str()), expected) << written;
  }
}

}  // namespace
