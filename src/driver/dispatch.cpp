#include "driver/dispatch.h"

#include <cstring>
#include <string>
#include <vector>

#include "jobs/csaq_ff/csaq_ff_biometrics.h"
#include "jobs/csaq_ff/csaq_ff_habitats.h"
#include "jobs/csaq_ff/csaq_ff_invert_species_groups.h"
#include "jobs/csaq_ff/csaq_ff_patients.h"
#include "jobs/csaq_ff/csaq_ff_rehab.h"
#include "jobs/csaq_ff/csaq_ff_species.h"
#include "jobs/csaq_ff/csaq_ff_water_chemistry.h"
#include "jobs/csaq_pks/pks_enclosures.h"
#include "jobs/csaq_pks/pks_import.h"
#include "jobs/csaq_pks/pks_taxonomy.h"
#include "jobs/dswc/dswc_address_book.h"
#include "jobs/dswc/dswc_admissions.h"
#include "jobs/dswc/dswc_species.h"
#include "jobs/glfh/glfh_import.h"
#include "jobs/kwrc/kwrc_import.h"
#include "jobs/repairs/cbc_pcv_repair.h"
#include "jobs/repairs/enrichment_repair.h"
#include "jobs/repairs/line_length_repair.h"
#include "jobs/repairs/transfer_repairs.h"
#include "jobs/sbr/band_sightings.h"
#include "jobs/sbr/necropsy_import.h"
#include "jobs/sbr/sbr_patients.h"
#include "jobs/sbr/sbr_species.h"
#include "jobs/uprc/uprc_import.h"
#include "util/strings.h"

namespace {

enum class TypeMatch {
  kAny,     // the organisation's only job, whatever the data type
  kExact,   // data type compared exactly
  kRepair,  // any other organisation; data type compared ignoring case
};

struct JobRow {
  const char* org;   // null for repairs
  const char* type;  // null for kAny
  TypeMatch match;
  void (*run)(const RunOptions& options);
  // Every table the job may write, and its input files ("%d" the year, "%s"
  // the region), each list separated by commas: what a dry or atomic run
  // checks before the first write and what the journal names.
  const char* tables;
  const char* inputs;
};

// The tables of the patient imports: the patient, its record entries and
// what hangs on them.
#define PATIENT_TABLES "patient,record_entry,problems,attributes,releases,transfers,biometric,pcv"

// Every organisation code the program knows, including those whose jobs are
// run elsewhere: a repair type with one of these codes runs nothing.
constexpr const char* kOrganisations[] = {"HWC",  "KWRC",     "CSAQ_FF", "DsWC",   "GLFH",
                                          "CSAQ_PKS", "UPRC", "SBR_LA",  "SBR_SF"};

// Tested in this order; at most one job runs.
constexpr JobRow kJobs[] = {
    {"HWC", nullptr, TypeMatch::kAny, nullptr, "", ""},  // nothing to import for this site
    {"KWRC", nullptr, TypeMatch::kAny, [](const RunOptions& options) { ImportKwrcYear(options.year); }, PATIENT_TABLES, "KWRC_%d.txt"},
    {"CSAQ_FF", "species", TypeMatch::kExact, [](const RunOptions&) { ImportCsaqFfSpecies(); }, "species,settings", "ScientificNames.xml,NonNatives.xml,SpeciesAbbreviations.xml"},
    {"CSAQ_FF", "habitats", TypeMatch::kExact, [](const RunOptions&) { ImportCsaqFfHabitats(); }, "location", "Habitats.xml"},
    {"CSAQ_FF", "patient", TypeMatch::kExact, [](const RunOptions&) { ImportCsaqFfPatients(); }, PATIENT_TABLES, "Groups.xml,Husbandry.xml,Habitats.xml,HabitatCensus.xml,SpeciesAbbreviations.xml"},
    {"CSAQ_FF", "water_chemistry", TypeMatch::kExact, [](const RunOptions&) { ImportCsaqFfWaterChemistry(); }, "location_record_entry,water_quality", "WaterChem.xml,Habitats.xml"},
    {"CSAQ_FF", "biometrics", TypeMatch::kExact, [](const RunOptions&) { ImportCsaqFfBiometrics(); }, "record_entry,biometric", "LoggerHeadDailyLogs.xml,SnakeStatTable.xml"},
    {"CSAQ_FF", "vital_stats", TypeMatch::kExact, [](const RunOptions&) { ImportCsaqFfVitalStats(); }, "record_entry,biometric", "Husbandry.xml"},
    {"CSAQ_FF", "invert_species_groups", TypeMatch::kExact, [](const RunOptions&) { ImportInvertSpeciesGroups(); }, "species,patient", "InvertebrateSpecies.txt"},
    {"CSAQ_FF", "rehab", TypeMatch::kExact, [](const RunOptions&) { ImportCsaqFfRehab(); }, PATIENT_TABLES, "SeaTurtleRehabRecords.xml"},
    {"DsWC", "patient", TypeMatch::kExact, [](const RunOptions& options) { ImportDswcAdmissions(options.year); }, PATIENT_TABLES, "%dAdmissions.txt,species.xml"},
    {"DsWC", "species", TypeMatch::kExact, [](const RunOptions&) { ImportDswcSpecies(); }, "species", "species.xml"},
    {"DsWC", "address_book", TypeMatch::kExact, [](const RunOptions&) { ImportDswcAddressBook(); }, "addressBook", "AddressBook.txt"},
    {"GLFH", "patient", TypeMatch::kExact, [](const RunOptions&) { ImportGlfhPatients(); }, PATIENT_TABLES, "GLFH_Patients.txt"},
    {"CSAQ_PKS", "patient", TypeMatch::kExact, [](const RunOptions&) { ImportZooRecords(); }, PATIENT_TABLES, "CensusCounts.xml,Animals.xml,Notes.xml,Transactions.xml,Identifiers.xml,Measurements.xml,EnclosureMoves.xml"},
    {"CSAQ_PKS", "habitats", TypeMatch::kExact, [](const RunOptions&) { ImportEnclosureTree(); }, "location", "EnclosureTree.xml"},
    {"CSAQ_PKS", "taxonomy", TypeMatch::kExact, [](const RunOptions&) { RepairTaxonomy(); }, "species", "MissingTaxonomy.txt"},
    {"UPRC", "patient", TypeMatch::kExact, [](const RunOptions& options) { ImportUprcPatients(options.year); }, PATIENT_TABLES, "UPRC %d.txt"},
    {"SBR_LA", "patient", TypeMatch::kExact, [](const RunOptions& options) { ImportSbrPatients(options.region.c_str()); }, PATIENT_TABLES, "SBR_%s.txt"},
    {"SBR_SF", "patient", TypeMatch::kExact, [](const RunOptions& options) { ImportSbrPatients(options.region.c_str()); }, PATIENT_TABLES, "SBR_%s.txt"},
    {"SBR_LA", "species", TypeMatch::kExact, [](const RunOptions&) { ImportSbrSpecies(); }, "species", "species.txt"},
    {"SBR_SF", "species", TypeMatch::kExact, [](const RunOptions&) { ImportSbrSpecies(); }, "species", "species.txt"},
    {"SBR_LA", "band_sightings", TypeMatch::kExact,
     [](const RunOptions&) { ImportBandSightings("./BandSightings/", "BandSightings.txt", 0); }, "record_entry,band_report", "BandSightings/BandSightings.txt"},
    {"SBR_SF", "band_sightings", TypeMatch::kExact,
     [](const RunOptions&) { ImportBandSightings("./BandSightings/", "BandSightings.txt", 0); }, "record_entry,band_report", "BandSightings/BandSightings.txt"},
    {"SBR_LA", "necropsy", TypeMatch::kExact, [](const RunOptions&) { ImportNecropsyReports(); }, "record_entry", "Necropsy.txt"},
    {"SBR_SF", "necropsy", TypeMatch::kExact, [](const RunOptions&) { ImportNecropsyReports(); }, "record_entry", "Necropsy.txt"},
    {nullptr, "fixTransfers", TypeMatch::kRepair, [](const RunOptions&) { fixTransfers(); }, "transfers", ""},
    {nullptr, "fix180DayReports", TypeMatch::kRepair, [](const RunOptions&) { fix180DayReports(); }, "patient,attributes", ""},
    {nullptr, "fixLineLengths", TypeMatch::kRepair, [](const RunOptions&) { fixLineLengths(false); }, "record_entry,location_record_entry", ""},
    {nullptr, "fixLineLengthsTest", TypeMatch::kRepair, [](const RunOptions&) { fixLineLengths(true); }, "", ""},
    {nullptr, "fixEnrichmentRecords", TypeMatch::kRepair, [](const RunOptions&) { fixEnrichmentRecords(); }, "enrichment", ""},
    {nullptr, "fix_CBC_PCV_Records", TypeMatch::kRepair, [](const RunOptions&) { fix_CBC_PCV_Records(); }, "cbc,pcv", ""},
};

bool IsOrganisation(const char* org_code) {
  for (const char* org : kOrganisations) {
    if (std::strcmp(org, org_code) == 0) return true;
  }
  return false;
}

bool Matches(const JobRow& row, const char* org_code, const char* data_type, bool known_org) {
  switch (row.match) {
    case TypeMatch::kAny:
      return std::strcmp(row.org, org_code) == 0;
    case TypeMatch::kExact:
      return std::strcmp(row.org, org_code) == 0 && std::strcmp(row.type, data_type) == 0;
    case TypeMatch::kRepair:
      return !known_org && EqualsNoCase(row.type, data_type);
  }
  return false;
}

const JobRow* FindJob(const char* org_code, const char* data_type) {
  bool known_org = IsOrganisation(org_code);
  for (const JobRow& row : kJobs) {
    if (Matches(row, org_code, data_type, known_org)) return &row;
  }
  return nullptr;
}

std::vector<std::string> SplitList(const char* list) {
  std::vector<std::string> items;
  std::string item;
  for (const char* p = list; ; ++p) {
    if (*p == ',' || *p == '\0') {
      if (!item.empty()) items.push_back(item);
      item.clear();
      if (*p == '\0') break;
    } else {
      item.push_back(*p);
    }
  }
  return items;
}

}  // namespace

bool DescribeSelectedJob(const char* org_code, const char* data_type, const RunOptions& options,
                         JobDescription& job) {
  const JobRow* row = FindJob(org_code, data_type);
  if (row == nullptr || row->run == nullptr) return false;
  job.tables = SplitList(row->tables);
  job.inputs.clear();
  for (std::string name : SplitList(row->inputs)) {
    if (std::size_t at = name.find("%d"); at != std::string::npos) name.replace(at, 2, std::to_string(options.year));
    if (std::size_t at = name.find("%s"); at != std::string::npos) name.replace(at, 2, options.region.c_str());
    job.inputs.push_back(name);
  }
  return true;
}

bool RunSelectedJob(const char* org_code, const char* data_type, const RunOptions& options) {
  const JobRow* row = FindJob(org_code, data_type);
  if (row == nullptr || row->run == nullptr) return false;
  row->run(options);
  return true;
}
