#include "jobs/csaq_pks/pks_measurements.h"

#include <gtest/gtest.h>

#include <cstring>

namespace {

// The samples pin the units and types they use; these are the ones they do not reach.
TEST(PksMeasurementsTest, ConvertMeasurement) {
  struct Case {
    const char* type;
    const char* unit;
    double value;
    MeasurementOutcome outcome;
    float BiometricRecord::*field;
    float stored;
  };
  const Case cases[] = {
      {"carapace length (curved)", "centimetre", 70, MeasurementOutcome::kStored,
       &BiometricRecord::curved_NPN_length, 700},
      {"carapace width", "centimetre", 6, MeasurementOutcome::kStored, &BiometricRecord::straight_carapace_width, 60},
      {"total length", "centimetre", 4, MeasurementOutcome::kUnknownUnit, nullptr, 0},
      {"live weight", "gram", 5, MeasurementOutcome::kUnknownType, nullptr, 0},
  };
  for (const Case& c : cases) {
    BiometricRecord biometric{};
    EXPECT_EQ(ConvertMeasurement(c.type, c.unit, c.value, biometric), c.outcome) << c.type << " " << c.unit;
    BiometricRecord expected{};
    if (c.field != nullptr) expected.*c.field = c.stored;
    EXPECT_EQ(std::memcmp(&biometric, &expected, sizeof biometric), 0) << c.type << " " << c.unit;
  }
}

}  // namespace
