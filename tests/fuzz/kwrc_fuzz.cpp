// KWRC's per-line conversions: the outcome word against both dates, and
// the Chinese place descriptions split into their address fields.
#include <cstdint>

#include "fuzz_input.h"
#include "jobs/kwrc/kwrc_import.h"

CORVANA_FUZZ_SILENT_STDOUT

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  FuzzInput input(data, size);
  PatientRecord patient{};
  patient.admission_date = input.Next();
  patient.final_date = input.Next();
  MapKwrcOutcome(patient, input.Next());

  Text<64> street{};
  Text<32> city{}, district{}, province{}, country{};
  SplitKwrcAddress(input.Next(), street, city, district, province, country);
  return 0;
}
