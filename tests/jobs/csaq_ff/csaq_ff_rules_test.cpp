// The small mapping rules of the CSAQ_FF jobs, each from its own table.
#include <gtest/gtest.h>

#include <string>

#include "jobs/csaq_ff/csaq_ff_biometrics.h"
#include "jobs/csaq_ff/csaq_ff_habitats.h"
#include "jobs/csaq_ff/csaq_ff_rehab.h"
#include "jobs/csaq_ff/csaq_ff_species.h"

namespace {

TEST(CsaqFfRulesTest, SpeciesGroups) {
  struct Case {
    const char* phylum;
    const char* class_name;
    const char* common_name;
    const char* abbrev;
    const char* group;
  };
  const Case cases[] = {  // the samples pin the other rules; the invertebrates' groups are rewritten later
      {"Cnidaria", "Scyphozoa", "Moon jellyfish", "MOONJELLY", "invertebrate"},
      {"ECHINODERMATA", "", "Sea star", "", "invertebrate"},
      {"Chordata", "Amphibia", "Bullfrog", "", "amphibian"},
      {"Chordata", "Reptilia", "Snapping turtle", "", "reptile:turtle"},
      {"Chordata", "Reptilia", "LOGGERHEAD", "", "reptile:turtle"},
      {"Chordata", "Reptilia", "Loggerhead musk", "", "reptile"},
      {"Chordata", "Reptilia", "Kemp's ridley", "", "reptile"},
      {"Chordata", "Aves", "Bald eagle", "BAEA", "avian:raptor"},
      {"Chordata", "Aves", "Osprey", "easo", "avian"},
      {"Chordata", "Actinopterygii", "American eel", "", "fish:eel"},
      {"Chordata", "Actinopterygii", "Gray triggerfish ray", "", "fish"},
      {"Chordata", "Actinopterygii", "Whale shark eel", "", "fish:elasmobranch:shark"},  // first rule wins
  };
  for (const Case& c : cases) {
    SpeciesRecord species{};
    species.phylum = c.phylum;
    species.class_ = c.class_name;
    species.common_name = c.common_name;
    species.abbrev = c.abbrev;
    EXPECT_STREQ(CsaqFfSpeciesGroup(species), c.group) << c.common_name;
  }
}

TEST(CsaqFfRulesTest, HighlyMigratoryAndWater) {
  for (const char* name : {"Sand tiger shark", "SWORDFISH", "atlantic angel shark", "Spinnter shark"}) {
    EXPECT_TRUE(IsHighlyMigratorySpecies(name)) << name;
  }
  for (const char* name : {"Spinner shark", "Sand tiger", "Bluefin tuna ", ""}) {
    EXPECT_FALSE(IsHighlyMigratorySpecies(name)) << name;
  }
  // The samples pin the water words in both cases; only whole words count.
  for (const char* water : {"Salt water", "", static_cast<const char*>(nullptr)}) {
    EXPECT_EQ(CsaqFfHabitatFlags(water), 0x1) << (water ? water : "(null)");
  }
}

TEST(CsaqFfRulesTest, MeasuredAnimals) {
  struct Case {
    const char* turtle;
    const char* species;
    const char* tag;
  };
  const Case turtles[] = {
      {"Loggerhead NCSTN 012", "LOGGER", "NCSTN 012"},  // the samples pin the plain names
      {"Juvenile Loggerhead 7", "LOGGER", "Loggerhead 7"},  // after the first blank of the text
      {"Green turtle Loggerhead 3", "LOGGER", "turtle Loggerhead 3"},
      {"Loggerhead", nullptr, ""},
      {"green turtle 4", nullptr, ""},
  };
  for (const Case& c : turtles) {
    std::string tag = "old";
    EXPECT_STREQ(TurtleSpeciesCode(c.turtle, tag), c.species) << c.turtle;
    EXPECT_EQ(tag, c.tag) << c.turtle;
  }
  const std::pair<const char*, const char*> snakes[] = {
      {"Black rat snake", "BLACKRATSNAKE"},  {"Old Eastern kingsnake", "EKINGSNAKE"},  // the samples pin the rest
      {"Northern pine snake", nullptr},      {"corn snake", nullptr},
  };
  for (const auto& [snake, code] : snakes) EXPECT_STREQ(SnakeSpeciesCode(snake), code) << snake;
}

TEST(CsaqFfRulesTest, RehabSpeciesAndTransferSites) {
  const std::pair<const char*, const char*> species[] = {
      {"GREEN", "GREENTURT"},  {"kemp&apos;s Ridley", "KEMPRIDLEY"},  // the samples pin the plain names
      {"Kemps ridley", "KEMPRIDLEY"}, {"Green turtle", ""},
  };
  for (const auto& [name, code] : species) EXPECT_STREQ(RehabSpeciesCode(name), code) << name;

  // A rehab case that is released never asks, so the samples reach few of these.
  for (const char* place : {"CMAST", "cmast", "ff", "FF", "CSAFF", "pks", "CSAPKS", "Fort Macon", "NCWRC", "va",
                            "Sea world", "Roanoke clinic", "VIRGINIA BEACH AQUARIUM", "to WC-PKS pens",
                            "Coastal sea turtle hospital", "Left with the Turtle Volunteer team",
                            "Harbor wildlife clinic"}) {
    EXPECT_TRUE(IsKnownTransferLocation(place)) << place;
  }
  for (const char* place : {"csaff", "CSApks", "CMAST ", "Fort Macon State Park", "wc-pks", "turtle volunteer", ""}) {
    EXPECT_FALSE(IsKnownTransferLocation(place)) << place;
  }
}

}  // namespace
