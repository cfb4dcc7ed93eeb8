#include "jobs/csaq_pks/pks_import.h"

#include <cstdio>
#include <cstring>
#include <memory>
#include <new>
#include <string>
#include <utility>

#include "jobs/csaq_pks/pks_job.h"
#include "store/connection.h"
#include "util/strings.h"

namespace {

// A group this large is kept as one patient; a smaller one is split into
// one patient per animal.
constexpr int kLargeGroup = 6;

struct SexType {
  const char* export_text;
  const char* sex;
};

constexpr SexType kSexTypes[] = {
    {"Male", "M"},
    {"Female", "F"},
    {"Undetermined", "UNK"},
    {"Indeterminate", "UNK"},
};

struct FileCloser {
  void operator()(std::FILE* file) const { std::fclose(file); }
};

// The import is a migration into a fresh database: its patient ids start at
// 00001 in each year, and it clears the location of every patient that is no
// longer resident. Rows already in the table would get duplicate ids and
// lose their locations.
bool PatientTableIsEmpty() {
  SqlResult result = QuerySql(kEscapeTexts, "select count(*) from patient;", {});
  MYSQL_ROW row = result.NextRow();
  if (row == nullptr || row[0] == nullptr) {
    std::printf("\tERROR: Unable to count the rows of the patient table: %s\n", LastDbError());
    return false;
  }
  int patients = ToInt(row[0]);
  if (patients != 0) {
    std::printf("\tERROR: The patient table already holds %d patients: this import needs an empty patient table\n",
                patients);
    return false;
  }
  return true;
}

// The measurements and moves are read only after the patient rows are
// written: one that is missing or cannot be parsed must stop the job before
// it writes anything, with the message of the pass that reads it. Each is
// parsed here and let go again, so that the peak stays that of the largest
// document. The other exports are parsed before the first write anyway (the
// census and notes files, read again later, by the first and fourth passes).
bool LateExportsParse() {
  struct LateExport {
    const char* file;
    const char* what;  // as the pass that reads it names it
  };
  constexpr LateExport kLateExports[] = {
      {kMeasurementsFile, "measurements"},
      {kMovesFile, "enclosure moves"},
  };
  for (const LateExport& late : kLateExports) {
    XmlDocument document;
    if (XmlLoadFile(document, late.file) != 0) {
      std::printf("Unable to parse %s file '%s'\n", late.what, late.file);
      return false;
    }
  }
  return true;
}

// Sex from the export's SexType; an unknown text is reported and leaves "UNK".
void ReadSexType(const char* sex_type, Text<11>& sex) {
  for (const SexType& known : kSexTypes) {
    if (std::strcmp(sex_type, known.export_text) == 0) {
      sex = known.sex;
      return;
    }
  }
  std::printf("\tERROR: unrecognized sex '%s'\n", sex_type);
}

// What every animal of the collection starts as: a resident of the
// aquarium in North Carolina, of unknown age and sex.
void ResetAnimal(AnimalRecord& animal, const char* local_id) {
  animal.localId = local_id;
  ResetPatientRecord(animal.patient);
  animal.patient.status = "PR";
  animal.patient.flags |= kFlagResident;
  ResetFinderInfo(animal.finder, "USA", "NC");
}

// A group: a small one becomes one record per animal (males, females, then
// the others), a large one a single record that the group file lists.
void AppendGroup(ZooImport& job, AnimalRecord& animal, const char* local_id, const char* taxon_info,
                 std::FILE* group_file) {
  InitialCounts counts{};
  if (!job.initial_census.Read(local_id, counts)) {
    std::printf("\tERROR: Unable to get initial census numbers for: '%s'\n", local_id);
    counts = {};
  }
  long long total = static_cast<long long>(counts.male) + counts.female + counts.other;
  if (total < kLargeGroup) {
    // With a total this small no count is above five, unless another is negative.
    const std::pair<int, const char*> members[] = {{counts.male, "M"}, {counts.female, "F"}, {counts.other, "UNK"}};
    for (const auto& [count, sex] : members) {
      animal.patient.sex = sex;
      for (int i = 0; i < count && i < kLargeGroup - 1; ++i) job.animals.Append(animal);
    }
    return;
  }
  std::printf("\tGROUP: %s %s %d %d %d %s\n", local_id, counts.date.c_str(), counts.male, counts.female,
              counts.other, taxon_info);
  std::fprintf(group_file, "GROUP: %s %s %d %d %d %s\n", local_id, counts.date.c_str(), counts.male, counts.female,
               counts.other, taxon_info);
  animal.patient.flags |= kFlagGroupOfAnimals;
  job.animals.Append(animal);
}

void ImportAnimal(ZooImport& job, const XmlNode* record, std::FILE* group_file) {
  const char* local_id = XmlChildText(record, "Local_ID");
  const char* taxon_info = XmlChildText(record, "TaxonInfo");
  const char* sex_type = XmlChildText(record, "SexType");
  const char* life_stage = XmlChildText(record, "LifeStage");
  const char* accession_type = XmlChildText(record, "CurrentAccessionType");
  if (local_id == nullptr) {
    std::printf("\tERROR: Missing local id\n");
    return;
  }
  if (taxon_info == nullptr) {
    std::printf("\tERROR: Missing species for '%s'\n", local_id);
    return;
  }
  AnimalRecord animal;
  ResetAnimal(animal, local_id);
  PatientRecord& patient = animal.patient;
  if (life_stage != nullptr) patient.age = life_stage;
  if (sex_type != nullptr) ReadSexType(sex_type, patient.sex);
  AppendNoteLine(patient, "Imported from", local_id);
  if (!LookupSpeciesByTaxon(job.species, taxon_info, patient.species, patient.species_group)) {
    std::printf("\tERROR: Unable to lookup species: '%s'\n", taxon_info);
    patient.species = "??";
    patient.species_group = "??";
  }
  if (accession_type != nullptr && std::strcmp(accession_type, "Group of Animals") == 0) {
    AppendGroup(job, animal, local_id, taxon_info, group_file);
  } else {
    job.animals.Append(animal);
  }
}

using Pass = bool (*)(ZooImport& job);

struct PassStep {
  Pass run;
  const char* what;  // for the progress line
};

// The job, in the order it runs: every animal is built in memory before the
// first patient row is written, and later passes rely on what earlier ones
// left in the animal table.
constexpr PassStep kPasses[] = {
    {LoadCensusDocument, "census"},                     // first counts of the groups
    {LoadSpeciesCache, "species"},
    {LoadAnimals, "animals"},                           // one record per animal, groups split or kept whole
    {ApplyNoteEvents, "note events"},                   // birth, admission and release dates, collection places
    {ApplyTransactions, "transactions"},                // acquisitions and dispositions
    {SortAnimals, "sorting"},                           // by admission date: the final positions
    {ApplyIdentifiers, "identifiers"},                  // names, microchips, bands, tags
    {GeneratePatientIds, "patient ids"},
    {CreatePatientRecords, "patients"},                 // the first rows written
    {WriteNoteEntries, "note entries"},                 // notes as record entries, releases
    {WriteMeasurements, "measurements"},
    {WriteMoves, "moves"},                              // move entries and current locations
    {ClearNonResidentLocations, "resident locations"},
    {SetGroupCensusAttributes, "group census"},         // first counts of the large groups
    {WriteCensusCounts, "census counts"},               // the census history
};

}  // namespace

const XmlNode* FirstRecord(const XmlDocument& document) { return XmlFirstChild(XmlFirstChild(XmlRoot(document))); }

const char* Shown(const char* text) { return text != nullptr ? text : "(null)"; }

bool LoadCensusDocument(ZooImport& job) {
  std::printf("Loading census data...\n");
  if (XmlLoadFile(job.census, kCensusFile) != 0) {
    std::printf("Unable to parse census file '%s'\n", kCensusFile);
    return false;
  }
  job.initial_census.Index(FirstRecord(job.census));
  return true;
}

bool LoadSpeciesCache(ZooImport& job) {
  std::printf("Loaded %d species\n", job.species.Load());
  return true;
}

bool LoadAnimals(ZooImport& job) {
  std::printf("Loading patient data...\n");
  std::unique_ptr<std::FILE, FileCloser> group_file(std::fopen(kGroupTempFile, "w"));
  if (group_file == nullptr) {
    std::printf("\tERROR: Unable to open group temp file'%s'\n", kGroupTempFile);
    return false;
  }
  if (XmlLoadFile(job.work, kAnimalsFile) != 0) {
    std::printf("\tERROR: Unable to parse animal file '%s'\n", kAnimalsFile);
    return false;
  }
  int visited =
      VisitRecords(job, kAnimalsFile, [&](const XmlNode* record) { ImportAnimal(job, record, group_file.get()); });
  std::printf("Processed %d animals\n", visited);
  // Only the animal pass reads first counts; the census counts pass reads
  // the file again.
  job.initial_census = InitialCensus();
  XmlClear(job.census);
  return true;
}

int ImportZooRecords() {
  try {
    if (!PatientTableIsEmpty() || !LateExportsParse()) return 1;
    ZooImport job;
    int number = 0;
    for (const PassStep& pass : kPasses) {
      job.pass = "Pass " + std::to_string(++number) + " of " + std::to_string(std::size(kPasses)) + ": " + pass.what;
      ProgressStart(job.pass.c_str(), 0, "records");
      if (!pass.run(job)) return 1;
    }
  } catch (const std::bad_alloc&) {
    std::printf("Out of memory!\n");
    return 1;
  }
  return 0;
}
