#include "jobs/csaq_pks/pks_measurements.h"

#include <gtest/gtest.h>

#include <cstring>

namespace {

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
      {"Live weight", "kilogram", 2.5, MeasurementOutcome::kStored, &BiometricRecord::weight, 2500},
      {"Live weight", "gram", 60, MeasurementOutcome::kStored, &BiometricRecord::weight, 60},
      {"Live weight", "pound", 1, MeasurementOutcome::kStored, &BiometricRecord::weight, 1000 / 2.2},
      {"body length", "inch", 3, MeasurementOutcome::kStored, &BiometricRecord::length, 3 * 2.54 * 10},
      {"body length", "centimetre", 12.5, MeasurementOutcome::kStored, &BiometricRecord::length, 125},
      {"total length", "millimetre", 480, MeasurementOutcome::kStored, &BiometricRecord::length, 480},
      {"body width", "centimetre", 3.5, MeasurementOutcome::kStored, &BiometricRecord::girth, 35},
      {"carapace length", "centimetre", 72.1, MeasurementOutcome::kStored, &BiometricRecord::straight_NPN_length,
       721},
      {"carapace length (curved)", "centimetre", 70, MeasurementOutcome::kStored,
       &BiometricRecord::curved_NPN_length, 700},
      {"carapace width", "centimetre", 6, MeasurementOutcome::kStored, &BiometricRecord::straight_carapace_width, 60},
      {"carapace width (curved)", "centimetre", 68, MeasurementOutcome::kStored,
       &BiometricRecord::curved_carapace_width, 680},
      {"Live weight", "ounce", 12, MeasurementOutcome::kUnknownUnit, nullptr, 0},
      {"total length", "centimetre", 4, MeasurementOutcome::kUnknownUnit, nullptr, 0},
      {"live weight", "gram", 5, MeasurementOutcome::kUnknownType, nullptr, 0},
      {"fin length", "centimetre", 4, MeasurementOutcome::kUnknownType, nullptr, 0},
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
