// The aquarium's conversions: measures in any unit, collection positions,
// counties and notes, disposition words and transfer destinations, species
// and tank texts, and the case numbers counted per admission year.
#include <cstdint>
#include <string>

#include "fuzz_input.h"
#include "jobs/csaq_ff/csaq_ff_animal_table.h"
#include "jobs/csaq_ff/csaq_ff_biometrics.h"
#include "jobs/csaq_ff/csaq_ff_collection.h"
#include "jobs/csaq_ff/csaq_ff_export.h"
#include "jobs/csaq_ff/csaq_ff_habitats.h"
#include "jobs/csaq_ff/csaq_ff_rehab.h"
#include "jobs/csaq_ff/csaq_ff_species.h"
#include "jobs/csaq_ff/csaq_ff_units.h"
#include "store/reference_store.h"

CORVANA_FUZZ_SILENT_STDOUT

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  FuzzInput input(data, size);
  const char* measure = input.Next();
  (void)WeightToGrams(measure);
  (void)LengthToMillimetres(measure);
  (void)VitalStatsGrams(measure);

  float lat = 0, lon = 0;
  ReadCollectionPosition(input.Next(), lat, lon);
  std::string text = input.Next();
  (void)CollectionCounty(text);
  (void)PlainCollectionText(text);
  std::string notes = text;
  std::string name;
  TakeNameFromNotes(notes, name);
  (void)TransferDestination(text);
  (void)DispositionStatus(input.Next());
  (void)DateBeforeT(input.NextOrNull());
  (void)ReplaceFirstApos(text);
  (void)LowerAscii(text);

  std::string tag;
  (void)TurtleSpeciesCode(input.Next(), tag);
  (void)SnakeSpeciesCode(input.Next());
  (void)RehabSpeciesCode(input.Next());
  (void)IsKnownTransferLocation(input.Next());
  (void)IsHighlyMigratorySpecies(input.Next());
  (void)CsaqFfHabitatFlags(input.NextOrNull());

  SpeciesRecord species{};
  species.phylum = input.Next();
  species.class_ = input.Next();
  species.common_name = input.Next();
  species.abbrev = input.Next();
  (void)CsaqFfSpeciesGroup(species);

  static PatientNumberCounters counters;
  Text<16> patient_id{};
  counters.Next(input.Next(), patient_id);
  return 0;
}
