// UPRC's line: the ten columns read into a patient, and the release and
// transfer places looked up or split.
#include <cstdint>

#include "fuzz_input.h"
#include "jobs/uprc/uprc_import.h"
#include "jobs/uprc/uprc_places.h"

CORVANA_FUZZ_SILENT_STDOUT

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  FuzzInput input(data, size);
  char* column[kUprcColumnCount];
  for (char*& c : column) c = input.Next();
  PatientRecord patient{};
  PatientFinderInfo finder{};
  ReadUprcPatient(column, patient, finder);

  const char* place = input.Next();
  (void)FindUprcPlace(place);
  Text<64> name{};
  Text<32> town{};
  Text<21> state{};
  SplitPlaceText(place, name, town, state);
  TransferRecord transfer{};
  ResolveTransferPlace(place, transfer);
  ReleaseRecord release{};
  ResolveReleasePlace(input.Next(), release);
  return 0;
}
