// GLFH's register line (owner, species, dates, chip, patient number) read
// into a patient and its finder from any bytes.
#include <cstdint>
#include <string_view>

#include "fuzz_input.h"
#include "jobs/glfh/glfh_import.h"

CORVANA_FUZZ_SILENT_STDOUT

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  PatientRecord patient{};
  PatientFinderInfo finder{};
  ReadGlfhLine(std::string_view(reinterpret_cast<const char*>(data), size), patient, finder);
  return 0;
}
