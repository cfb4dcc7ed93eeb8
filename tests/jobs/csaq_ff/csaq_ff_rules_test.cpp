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
  const Case cases[] = {
      {"Cnidaria", "Scyphozoa", "Moon jellyfish", "MOONJELLY", "invertebrate"},
      {"ECHINODERMATA", "", "Sea star", "", "invertebrate"},
      {"Arthropoda", "Malacostraca", "Blue crab", "", "invertebrate:arthropod"},
      {"Chordata", "Amphibia", "Bullfrog", "", "amphibian"},
      {"Chordata", "REPTILIA", "American Alligator", "", "reptile:crocadilian"},
      {"Chordata", "Reptilia", "Snapping turtle", "", "reptile:turtle"},
      {"Chordata", "Reptilia", "Eastern kingsnake", "", "reptile:snake"},
      {"Chordata", "Reptilia", "LOGGERHEAD", "", "reptile:turtle"},
      {"Chordata", "Reptilia", "Loggerhead musk", "", "reptile"},
      {"Chordata", "Reptilia", "Kemp's ridley", "", "reptile"},
      {"Chordata", "Aves", "Eastern screech owl", "EASO", "avian:raptor"},
      {"Chordata", "Aves", "Bald eagle", "BAEA", "avian:raptor"},
      {"Chordata", "Aves", "Osprey", "easo", "avian"},
      {"Chordata", "Chondrichthyes", "Sand tiger shark", "", "fish:elasmobranch:shark"},
      {"Chordata", "Chondrichthyes", "Atlantic guitarfish", "", "fish:elasmobranch:guitarfish"},
      {"Chordata", "Actinopterygii", "Green moray", "", "fish:eel"},
      {"Chordata", "Actinopterygii", "American eel", "", "fish:eel"},
      {"Chordata", "Actinopterygii", "Lemonpeel angelfish", "", "fish"},
      {"Chordata", "Chondrichthyes", "Spotted eagle ray", "", "fish:elasmobranch:ray"},
      {"Chordata", "Actinopterygii", "Gray snapper", "", "fish"},
      {"Chordata", "Actinopterygii", "Gray triggerfish ray", "", "fish"},
      {"Chordata", "Chondrichthyes", "Clearnose skate", "", "fish:elasmobranch:skate"},
      {"", "", "Sea anemone", "", "fish"},
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
  const std::pair<const char*, int> waters[] = {
      {"Salt", 0x101}, {"SALT", 0x101}, {"fresh", 0x81}, {"Brackish", 0x1}, {"Salt water", 0x1}, {"", 0x1},
  };
  for (const auto& [water, flags] : waters) EXPECT_EQ(CsaqFfHabitatFlags(water), flags) << water;
  EXPECT_EQ(CsaqFfHabitatFlags(nullptr), 0x1);
}

TEST(CsaqFfRulesTest, MeasuredAnimals) {
  struct Case {
    const char* turtle;
    const char* species;
    const char* tag;
  };
  const Case turtles[] = {
      {"Loggerhead 12", "LOGGER", "12"},
      {"Green turtle 21", "GREENTURTLE", "21"},
      {"Loggerhead NCSTN 012", "LOGGER", "NCSTN 012"},
      {"Juvenile Loggerhead 7", "LOGGER", "Loggerhead 7"},  // after the first blank of the text
      {"Green turtle Loggerhead 3", "LOGGER", "turtle Loggerhead 3"},
      {"Loggerhead", nullptr, ""},
      {"green turtle 4", nullptr, ""},
      {"Kemp's ridley 5", nullptr, ""},
  };
  for (const Case& c : turtles) {
    std::string tag = "old";
    EXPECT_STREQ(TurtleSpeciesCode(c.turtle, tag), c.species) << c.turtle;
    EXPECT_EQ(tag, c.tag) << c.turtle;
  }
  const std::pair<const char*, const char*> snakes[] = {
      {"Yellow rat snake 2", "YRATSNAKE"},   {"Corn snake RS01", "CORNSNAKE"},
      {"Black rat snake", "BLACKRATSNAKE"},  {"Old Eastern kingsnake", "EKINGSNAKE"},
      {"Northern Pine Snake 1", "NORPINESNAKE"}, {"Northern pine snake", nullptr},
      {"corn snake", nullptr},
  };
  for (const auto& [snake, code] : snakes) EXPECT_STREQ(SnakeSpeciesCode(snake), code) << snake;
}

TEST(CsaqFfRulesTest, RehabSpeciesAndTransferSites) {
  const std::pair<const char*, const char*> species[] = {
      {"Green", "GREENTURT"},          {"GREEN", "GREENTURT"},           {"Kemp's ridley", "KEMPRIDLEY"},
      {"kemp&apos;s Ridley", "KEMPRIDLEY"}, {"Kemps ridley", "KEMPRIDLEY"}, {"Loggerhead", "LOGGER"},
      {"Green turtle", ""},            {"Hawksbill", ""},
  };
  for (const auto& [name, code] : species) EXPECT_STREQ(RehabSpeciesCode(name), code) << name;

  for (const char* place : {"CMAST", "cmast", "ff", "FF", "CSAFF", "pks", "CSAPKS", "Fort Macon", "NCWRC", "va",
                            "Sea world", "Roanoke clinic", "VIRGINIA BEACH AQUARIUM", "to WC-PKS pens",
                            "Coastal sea turtle hospital", "Left with the Turtle Volunteer team",
                            "Harbor wildlife clinic"}) {
    EXPECT_TRUE(IsKnownTransferLocation(place)) << place;
  }
  for (const char* place : {"csaff", "CSApks", "CMAST ", "Fort Macon State Park", "wc-pks", "turtle volunteer",
                            "Duke Marine Lab", ""}) {
    EXPECT_FALSE(IsKnownTransferLocation(place)) << place;
  }
}

}  // namespace
