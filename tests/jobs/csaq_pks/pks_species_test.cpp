#include "jobs/csaq_pks/pks_species.h"

#include <gtest/gtest.h>

#include <string>

namespace {

TEST(PksSpeciesTest, NormaliseCommonName) {
  const std::pair<const char*, const char*> cases[] = {
      {"MOON JELLYFISH", "Moon jelly"},                 // the first list ignores letter case
      {"Loggerhead", "Loggerhead turtle"},              // the second list is exact
      {"loggerhead", "loggerhead"},
      {"Spiny softshelled turtle", "Eastern spiny softshell turtle"},
      {"Moon jellyfish ", "Moon jellyfish "},
  };
  for (const auto& [export_name, used] : cases) EXPECT_EQ(NormaliseCommonName(export_name), used) << export_name;
}

TEST(PksSpeciesTest, LookupSpeciesByTaxon) {
  SpeciesCache cache;
  const SpeciesCacheEntry entries[] = {
      {{"MOJE", 0}, {"Moon jelly", 0}, {"invertebrate:cnidarian", 0}},
      {{"LOGG", 0}, {"Loggerhead turtle", 0}, {"reptile:turtle", 0}},
      {{"LOG2", 0}, {"Loggerhead turtle", 0}, {"second of the name", 0}},
      {{"ABBREV_LONGER_THAN_FIFTEEN", 0}, {"Blue tang", 0}, {"fish:marine", 0}},
      {{"", 0}, {"Unsorted", 0}, {"invertebrate", 0}},
      {{"ATSN", 0}, {"Atlantic sea nettle", 0}, {"after the entry without abbrev", 0}},
  };
  for (const SpeciesCacheEntry& entry : entries) cache.Add(entry);
  struct Case {
    const char* taxon_info;
    bool found;
    const char* abbrev;
    const char* group;
  };
  const Case cases[] = {
      {"Aurelia aurita/Moon Jellyfish", true, "MOJE", "invertebrate:cnidarian"},
      {"Caretta caretta/Loggerhead", true, "LOGG", "reptile:turtle"},  // the first of two rows
      {"Acanthurus coeruleus/Blue tang surgeon", true, "ABBREV_LONGER_T", "fish:marine"},
      {"/Unsorted", false, "", ""},
      {"Chrysaora quinquecirrha/Atlantic sea nettle", false, "", ""},  // the samples pin the other misses
  };
  for (const Case& c : cases) {
    Text<16> abbrev{};
    Text<64> group{};
    EXPECT_EQ(LookupSpeciesByTaxon(cache, c.taxon_info, abbrev, group), c.found) << c.taxon_info;
    EXPECT_EQ(abbrev, c.abbrev) << c.taxon_info;
    EXPECT_EQ(group, c.group) << c.taxon_info;
  }
}

}  // namespace
