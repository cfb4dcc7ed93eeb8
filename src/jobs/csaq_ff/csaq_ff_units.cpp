#include "jobs/csaq_ff/csaq_ff_units.h"

#include <cstdlib>
#include <cstring>

#include "util/strings.h"

namespace {

struct Unit {
  const char* word;  // looked for anywhere in the text, letter case counting
  double factor;     // to grams or millimetres; negative: not a usable unit
};

constexpr Unit kWeightUnits[] = {
    {"kg", 1000.0},
    {"g", 1.0},
    {"lb", 1000.0 / 2.2},
    {"oz", -1.0},
};

constexpr Unit kLengthUnits[] = {
    {"cm", 10.0},
    {"in", 25.4},
};
constexpr double kCentimetres = 10.0;  // a length without a unit

template <std::size_t N>
float Convert(const char* text, const Unit (&units)[N], double no_unit) {
  // Measures are kept single-precision, as the biometric columns are.
  double value = static_cast<float>(ReadNumber(text, NumberRest::kUnit));
  for (const Unit& unit : units) {
    if (std::strstr(text, unit.word) == nullptr) continue;
    return unit.factor < 0 ? -1.0f : static_cast<float>(value * unit.factor);
  }
  return static_cast<float>(value * no_unit);
}

}  // namespace

float WeightToGrams(const char* text) { return Convert(text, kWeightUnits, 1.0); }

float LengthToMillimetres(const char* text) { return Convert(text, kLengthUnits, kCentimetres); }
