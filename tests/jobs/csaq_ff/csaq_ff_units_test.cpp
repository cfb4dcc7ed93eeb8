#include "jobs/csaq_ff/csaq_ff_units.h"

#include <gtest/gtest.h>

#include "jobs/csaq_ff/csaq_ff_biometrics.h"

namespace {

// The unit word is found anywhere and letter case counts; the first unit of
// the list that occurs wins.
TEST(CsaqFfUnitsTest, WeightToGrams) {
  const std::pair<const char*, float> cases[] = {
      {"2.3 kg", 2300.0f},  {"450 g", 450.0f},       {"450 gr", 450.0f},   {"5 lbs", 5000.0f / 2.2f},
      {"5 lb", 5000.0f / 2.2f}, {"8 oz", -1.0f},     {"120", 120.0f},      {"1.5 KG", 1.5f},
      {"3 LBS", 3.0f},      {"-2 g", -2.0f},         {"kg", 0.0f},         {"", 0.0f},
      {"2 kg (gross)", 2000.0f}, {" 7.5kg", 7500.0f},
      {"8 oz, about 0.5 lb", 8000.0f / 2.2f},  // "lb" is tested before "oz"
      {"9 oz (weighed in bag)", 9.0f},          // "bag" holds a "g"
  };
  for (const auto& [text, grams] : cases) EXPECT_FLOAT_EQ(WeightToGrams(text), grams) << "'" << text << "'";
}

TEST(CsaqFfUnitsTest, LengthToMillimetres) {
  const std::pair<const char*, float> cases[] = {
      {"14 in", 355.6f}, {"14 inches", 355.6f}, {"35.5 cm", 355.0f}, {"35.5", 355.0f}, {"35.5 CM", 355.0f},
      {"2 IN", 20.0f},   {"-3", -30.0f},        {"", 0.0f},          {"10 mm", 100.0f},
      {"4 cm in total", 40.0f},  // "cm" is tested first
  };
  for (const auto& [text, millimetres] : cases) {
    EXPECT_FLOAT_EQ(LengthToMillimetres(text), millimetres) << "'" << text << "'";
  }
}

// The vital statistics job knows kilograms in any case and nothing else.
TEST(CsaqFfUnitsTest, VitalStatsGrams) {
  const std::pair<const char*, float> cases[] = {
      {"2.5 kg", 2500.0f}, {"2500", 2500.0f}, {"1.5 KG", 1500.0f}, {"3 Kg", 3000.0f},
      {"5 lbs", 5.0f},     {"8 oz", 8.0f},    {"", 0.0f},
  };
  for (const auto& [text, grams] : cases) EXPECT_FLOAT_EQ(VitalStatsGrams(text), grams) << "'" << text << "'";
}

}  // namespace
