#include "driver/dispatch.h"

#include <cstring>

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
};

// Every organisation code the program knows, including those whose jobs are
// run elsewhere: a repair type with one of these codes runs nothing.
constexpr const char* kOrganisations[] = {"HWC",  "KWRC",     "CSAQ_FF", "DsWC",   "GLFH",
                                          "CSAQ_PKS", "UPRC", "SBR_LA",  "SBR_SF"};

// Tested in this order; at most one job runs.
constexpr JobRow kJobs[] = {
    {"HWC", nullptr, TypeMatch::kAny, nullptr},  // nothing to import for this site
    {"KWRC", nullptr, TypeMatch::kAny, [](const RunOptions& options) { ImportKwrcYear(options.year); }},
    {"CSAQ_FF", "species", TypeMatch::kExact, [](const RunOptions&) { ImportCsaqFfSpecies(); }},
    {"CSAQ_FF", "habitats", TypeMatch::kExact, [](const RunOptions&) { ImportCsaqFfHabitats(); }},
    {"CSAQ_FF", "patient", TypeMatch::kExact, [](const RunOptions&) { ImportCsaqFfPatients(); }},
    {"CSAQ_FF", "water_chemistry", TypeMatch::kExact, [](const RunOptions&) { ImportCsaqFfWaterChemistry(); }},
    {"CSAQ_FF", "biometrics", TypeMatch::kExact, [](const RunOptions&) { ImportCsaqFfBiometrics(); }},
    {"CSAQ_FF", "vital_stats", TypeMatch::kExact, [](const RunOptions&) { ImportCsaqFfVitalStats(); }},
    {"CSAQ_FF", "invert_species_groups", TypeMatch::kExact, [](const RunOptions&) { ImportInvertSpeciesGroups(); }},
    {"CSAQ_FF", "rehab", TypeMatch::kExact, [](const RunOptions&) { ImportCsaqFfRehab(); }},
    {"DsWC", "patient", TypeMatch::kExact, [](const RunOptions& options) { ImportDswcAdmissions(options.year); }},
    {"DsWC", "species", TypeMatch::kExact, [](const RunOptions&) { ImportDswcSpecies(); }},
    {"DsWC", "address_book", TypeMatch::kExact, [](const RunOptions&) { ImportDswcAddressBook(); }},
    {"GLFH", "patient", TypeMatch::kExact, [](const RunOptions&) { ImportGlfhPatients(); }},
    {"CSAQ_PKS", "patient", TypeMatch::kExact, [](const RunOptions&) { ImportZooRecords(); }},
    {"CSAQ_PKS", "habitats", TypeMatch::kExact, [](const RunOptions&) { ImportEnclosureTree(); }},
    {"CSAQ_PKS", "taxonomy", TypeMatch::kExact, [](const RunOptions&) { RepairTaxonomy(); }},
    {"UPRC", "patient", TypeMatch::kExact, [](const RunOptions& options) { ImportUprcPatients(options.year); }},
    {"SBR_LA", "patient", TypeMatch::kExact, [](const RunOptions& options) { ImportSbrPatients(options.region.c_str()); }},
    {"SBR_SF", "patient", TypeMatch::kExact, [](const RunOptions& options) { ImportSbrPatients(options.region.c_str()); }},
    {"SBR_LA", "species", TypeMatch::kExact, [](const RunOptions&) { ImportSbrSpecies(); }},
    {"SBR_SF", "species", TypeMatch::kExact, [](const RunOptions&) { ImportSbrSpecies(); }},
    {"SBR_LA", "band_sightings", TypeMatch::kExact,
     [](const RunOptions&) { ImportBandSightings("./BandSightings/", "BandSightings.txt", 0); }},
    {"SBR_SF", "band_sightings", TypeMatch::kExact,
     [](const RunOptions&) { ImportBandSightings("./BandSightings/", "BandSightings.txt", 0); }},
    {"SBR_LA", "necropsy", TypeMatch::kExact, [](const RunOptions&) { ImportNecropsyReports(); }},
    {"SBR_SF", "necropsy", TypeMatch::kExact, [](const RunOptions&) { ImportNecropsyReports(); }},
    {nullptr, "fixTransfers", TypeMatch::kRepair, [](const RunOptions&) { fixTransfers(); }},
    {nullptr, "fix180DayReports", TypeMatch::kRepair, [](const RunOptions&) { fix180DayReports(); }},
    {nullptr, "fixLineLengths", TypeMatch::kRepair, [](const RunOptions&) { fixLineLengths(false); }},
    {nullptr, "fixLineLengthsTest", TypeMatch::kRepair, [](const RunOptions&) { fixLineLengths(true); }},
    {nullptr, "fixEnrichmentRecords", TypeMatch::kRepair, [](const RunOptions&) { fixEnrichmentRecords(); }},
    {nullptr, "fix_CBC_PCV_Records", TypeMatch::kRepair, [](const RunOptions&) { fix_CBC_PCV_Records(); }},
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

}  // namespace

bool RunSelectedJob(const char* org_code, const char* data_type, const RunOptions& options) {
  bool known_org = IsOrganisation(org_code);
  for (const JobRow& row : kJobs) {
    if (!Matches(row, org_code, data_type, known_org)) continue;
    if (row.run == nullptr) return false;
    row.run(options);
    return true;
  }
  return false;
}
