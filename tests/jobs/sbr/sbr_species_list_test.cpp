#include "jobs/sbr/sbr_species_list.h"

#include <gtest/gtest.h>

#include <string>

namespace {

// The samples pin the corrections; these are the rules of the look-up around them.
TEST(SbrSpeciesList, CommonNamesWithTheLogsSpellings) {
  SbrSpeciesList list;
  const char* const species[][3] = {
      {"DCCO", "Double-crested Cormorant", "avian:seabird"}, {"WEME", "WESTERN meadowlark", "avian:passerine"},
      {"WEGU", "Western Gull", "avian:gull"},                {"WEG2", "western gull", "avian:other"},
      {"LONG", "A species name of thirty-one ch", "avian:other"},
  };
  for (const auto& [abbrev, name, group] : species) ASSERT_TRUE(list.Add(abbrev, name, group));
  EXPECT_FALSE(list.Add("NULL", nullptr, "avian:other"));
  EXPECT_EQ(list.size(), 5);

  const char* const cases[][2] = {  // as written in the log, abbreviation found ("" when none)
      {"Double-crested Coromorant", ""},  // the correction needs its trailing blank
      {"meadowlark", "WEME"},             {"Western Gull  \t", "WEGU"},  // a later namesake is never found
      {"WESTERN GULL", "WEGU"},           {"Western", ""},
      {"A species name of thirty-one characters", "LONG"},  // only the first 31 characters count
      {"Sora Rail", ""},                  // corrected to a species this list lacks
      {"", ""},
  };
  for (const auto& [written, abbrev] : cases) {
    PatientRecord patient{};
    patient.species = "kept";
    int result = LookupSbrSpecies(written, list, patient);
    EXPECT_EQ(result, abbrev[0] != '\0' ? 0 : 1) << written;
    EXPECT_EQ(patient.species, abbrev[0] != '\0' ? abbrev : "kept") << written;
    for (const auto& [known, name, group] : species) {
      if (result == 0 && patient.species == known) {
        EXPECT_EQ(patient.species_group, group) << written;
      }
    }
  }
}

}  // namespace
