#include "jobs/csaq_pks/pks_measurements.h"

#include <cstring>

namespace {

struct Conversion {
  const char* type;
  const char* unit;
  float BiometricRecord::*field;
  // field = value * factor * second_factor / divisor, in that order
  double factor;
  double second_factor;
  double divisor;
};

constexpr Conversion kConversions[] = {
    {"Live weight", "kilogram", &BiometricRecord::weight, 1000, 1, 1},
    {"Live weight", "gram", &BiometricRecord::weight, 1, 1, 1},
    {"Live weight", "pound", &BiometricRecord::weight, 1000, 1, 2.2},
    {"body length", "inch", &BiometricRecord::length, 2.54, 10, 1},
    {"body length", "centimetre", &BiometricRecord::length, 10, 1, 1},
    {"total length", "millimetre", &BiometricRecord::length, 1, 1, 1},
    {"body width", "centimetre", &BiometricRecord::girth, 10, 1, 1},
    {"carapace length", "centimetre", &BiometricRecord::straight_NPN_length, 10, 1, 1},
    {"carapace length (curved)", "centimetre", &BiometricRecord::curved_NPN_length, 10, 1, 1},
    {"carapace width", "centimetre", &BiometricRecord::straight_carapace_width, 10, 1, 1},
    {"carapace width (curved)", "centimetre", &BiometricRecord::curved_carapace_width, 10, 1, 1},
};

}  // namespace

bool IsKnownMeasurement(const char* type) {
  for (const Conversion& conversion : kConversions) {
    if (std::strcmp(type, conversion.type) == 0) return true;
  }
  return false;
}

MeasurementOutcome ConvertMeasurement(const char* type, const char* unit, double value,
                                      BiometricRecord& biometric) {
  for (const Conversion& conversion : kConversions) {
    if (std::strcmp(type, conversion.type) != 0 || std::strcmp(unit, conversion.unit) != 0) continue;
    biometric.*conversion.field =
        static_cast<float>(value * conversion.factor * conversion.second_factor / conversion.divisor);
    return MeasurementOutcome::kStored;
  }
  return IsKnownMeasurement(type) ? MeasurementOutcome::kUnknownUnit : MeasurementOutcome::kUnknownType;
}
