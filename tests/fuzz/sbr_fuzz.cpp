// SBR's cell conversions (case number, age, sex, found address, colour
// marker, units), the disposition against its date and place, band-sighting
// markers, and the species look-up by common name.
#include <cstdint>

#include "fuzz_input.h"
#include "jobs/sbr/band_sightings.h"
#include "jobs/sbr/sbr_conversions.h"
#include "jobs/sbr/sbr_disposition.h"
#include "jobs/sbr/sbr_species_list.h"

CORVANA_FUZZ_SILENT_STDOUT

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  FuzzInput input(data, size);
  static SbrYearCounters counters{};
  PatientRecord patient{};
  MakeSbrPatientId(input.Next(), counters, patient.patient_id);
  const char* description = input.NextOrNull();
  const char* second = input.NextOrNull();
  MapSbrAge(patient.age, description, second, input.NextOrNull());
  MapSbrSex(input.NextOrNull(), patient.sex);

  char* address = input.Next();
  TrimAndUnquote(address);
  PatientFinderInfo finder{};
  ParseSbrFoundAddress(address, finder);

  SbrSpeciesList list;
  const char* abbrev = input.Next();
  const char* common_name = input.Next();
  list.Add(abbrev, common_name, input.Next());
  list.Add("BRPE", "Brown Pelican", "Pelican");
  LookupSbrSpecies(input.Next(), list, patient);
  MakeSbrAuxMarker(input.NextOrNull(), patient);
  (void)ParseWeightGrams(input.Next());
  (void)ParseCulmenMm(input.Next());

  TransferRecord transfer{};
  ReleaseRecord release{};
  const char* disposition = input.NextOrNull();
  const char* final_date = input.NextOrNull();
  MapSbrDisposition(disposition, final_date, input.NextOrNull(), patient, transfer, release, input.Next());

  NormalizeMarkerCode(input.Next());
  return 0;
}
