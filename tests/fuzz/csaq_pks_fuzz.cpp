// The zoo-records conversions: note dates and numbers, markup turned into
// text, collection and release places, census count types, measurement
// units, common names and the notes and band texts an animal collects.
#include <cstdint>
#include <string>

#include "fuzz_input.h"
#include "jobs/csaq_pks/pks_animals.h"
#include "jobs/csaq_pks/pks_census.h"
#include "jobs/csaq_pks/pks_enclosures.h"
#include "jobs/csaq_pks/pks_measurements.h"
#include "jobs/csaq_pks/pks_places.h"
#include "jobs/csaq_pks/pks_species.h"
#include "jobs/csaq_pks/pks_text.h"
#include "util/strings.h"

CORVANA_FUZZ_SILENT_STDOUT

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  FuzzInput input(data, size);
  const char* text = input.Next();
  (void)StripDateQualifier(text);
  int count = 0;
  ReadCount(text, count);
  double value = 0;
  ReadDecimal(text, value);

  std::string note = input.Next();
  std::string pattern = input.Next();
  std::string replacement = input.Next();
  std::string copy = note;
  DropFirstApostrophe(copy.data());
  copy = note;
  if (!pattern.empty()) ReplaceAll(copy, pattern, replacement);
  copy = note;
  if (!pattern.empty()) ReplaceTagWithAttributes(copy, pattern, replacement);
  copy = note;
  CleanMarkup(copy);

  PatientFinderInfo finder{};
  ApplyCollectionSite(finder, input.Next());
  ReleaseRecord release{};
  ParseReleasePlace(release, input.Next());

  CensusCount census{};
  census.local_id = input.Next();
  census.census_date = input.Next();
  census.method = input.Next();
  census.type = input.Next();
  census.male = ToInt(input.Next());
  census.change = ToInt(input.Next());
  SettleCountType(census);

  BiometricRecord biometric{};
  const char* type = input.Next();
  const char* unit = input.Next();
  (void)IsKnownMeasurement(type);
  ConvertMeasurement(type, unit, value, biometric);

  const char* type_text = input.Next();
  const char* category = input.Next();
  (void)EnclosureFlags(type_text, category, input.Next());

  const char* common_name = input.Next();
  (void)NormaliseCommonName(common_name);
  SpeciesCache cache;
  cache.Add({{}, {}, {}});
  SpeciesCacheEntry entry{};
  entry.abbrev = "LOGGER";
  entry.common_name = common_name;
  entry.species_group = input.Next();
  cache.Add(entry);
  Text<16> abbrev{};
  Text<64> group{};
  LookupSpeciesByTaxon(cache, input.Next(), abbrev, group);

  PatientRecord patient{};
  AppendNoteLine(patient, input.Next(), input.Next());
  AppendNoteLine(patient, note.c_str(), note.c_str());
  AppendBandText(patient, input.Next());
  AppendBandText(patient, note.c_str());
  return 0;
}
