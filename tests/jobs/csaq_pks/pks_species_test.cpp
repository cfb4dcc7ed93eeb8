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
      {{"MOJE"}, {"Moon jelly"}, {"invertebrate:cnidarian"}},
      {{"LOGG"}, {"Loggerhead turtle"}, {"reptile:turtle"}},
      {{"LOG2"}, {"Loggerhead turtle"}, {"second of the name"}},
      {{"ABBREV_LONGER_THAN_FIFTEEN"}, {"Blue tang"}, {"fish:marine"}},
      {{""}, {"Unsorted"}, {"invertebrate"}},
      {{"ATSN"}, {"Atlantic sea nettle"}, {"after the entry without abbrev"}},
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
