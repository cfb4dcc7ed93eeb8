#include "jobs/sbr/sbr_species_list.h"

#include <gtest/gtest.h>

#include <string>

namespace {

TEST(SbrSpeciesList, CommonNamesWithTheLogsSpellings) {
  SbrSpeciesList list;
  const char* const species[][3] = {
      {"DCCO", "Double-crested Cormorant", "avian:seabird"}, {"WEME", "WESTERN meadowlark", "avian:passerine"},
      {"ROGO", "Ross's Goose", "avian:waterfowl"},           {"CLGR", "Clark's Grebe", "avian:waterbird"},
      {"CLGX", "Clark's Grebe X", "avian:waterbird"},        {"BRAN", "Black Brant", "avian:waterfowl"},
      {"REDH", "Redhead duck", "avian:waterfowl"},           {"WEGU", "Western Gull", "avian:gull"},
      {"WEG2", "western gull", "avian:other"},  // a later namesake is never found
      {"LONG", "A species name of thirty-one ch", "avian:other"},
  };
  for (const auto& [abbrev, name, group] : species) ASSERT_TRUE(list.Add(abbrev, name, group));
  EXPECT_FALSE(list.Add("NULL", nullptr, "avian:other"));
  EXPECT_EQ(list.size(), 10);

  const char* const cases[][2] = {  // as written in the log, abbreviation found ("" when none)
      {"Double-crested Coromorant ", "DCCO"},
      {"Double-crested Coromorant", ""},  // the correction needs its trailing blank
      {"meadowlark", "WEME"},            {"Ross' Goose", "ROGO"},       {"ROSS\x92 GOOSE", "ROGO"},
      {"Clark\x92s Grebe", "CLGR"},      {"Clark's Grebe (hybrid?)", "CLGX"},
      {"Brant", "BRAN"},                 {"brant goose", "BRAN"},       {"REDHEAD", "REDH"},
      {"Western Gull  \t", "WEGU"},      {"WESTERN GULL", "WEGU"},      {"Western", ""},
      {"A species name of thirty-one characters", "LONG"},  // only the first 31 characters count
      {"Sora Rail", ""},                 // corrected to a species this list lacks
      {"", ""},
  };
  for (const auto& [written, abbrev] : cases) {
    PatientRecord patient{};
    patient.species = "kept";
    patient.species_group = "kept";
    int result = LookupSbrSpecies(written, list, patient);
    EXPECT_EQ(result, abbrev[0] != '\0' ? 0 : 1) << written;
    EXPECT_EQ(patient.species, abbrev[0] != '\0' ? abbrev : "kept") << written;
  }
  PatientRecord patient{};
  LookupSbrSpecies("Western Gull", list, patient);
  EXPECT_EQ(patient.species_group, "avian:gull");
}

}  // namespace
