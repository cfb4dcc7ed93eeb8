// The measurements of the zoo-records export as biometric rows: weights in
// grams, lengths and widths in millimetres, whatever unit the keeper used.
#pragma once

#include "store/measurement_store.h"

enum class MeasurementOutcome {
  kStored,       // the value went into its field
  kUnknownUnit,  // a known measurement in a unit it is never taken in
  kUnknownType,  // a measurement this import does not keep
};

// Converts `value`, taken as measurement `type` in `unit` (both compared
// exactly), into its field of `biometric`: "Live weight" in kilograms, grams
// or pounds into weight; body and total length, body width (girth) and the
// straight and curved carapace lengths and widths in inches, centimetres or
// millimetres as the table allows. The arithmetic is done in double and
// stored single-precision. Nothing is stored for an unknown type or unit.
MeasurementOutcome ConvertMeasurement(const char* type, const char* unit, double value,
                                      BiometricRecord& biometric);

// True when `type` is a measurement the table above converts (in some unit).
bool IsKnownMeasurement(const char* type);
