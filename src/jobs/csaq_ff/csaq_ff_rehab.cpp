#include "jobs/csaq_ff/csaq_ff_rehab.h"

#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <string>

#include "jobs/csaq_ff/csaq_ff_export.h"
#include "jobs/csaq_ff/csaq_ff_patient_rows.h"
#include "store/record_entry_store.h"
#include "util/dates.h"
#include "util/progress.h"
#include "util/read_losses.h"
#include "util/strings.h"

namespace {

constexpr const char* kRehabFile = "./SeaTurtleRehabRecords.xml";
constexpr int kCaseYear = 2016;

struct SpeciesName {
  const char* name;  // the whole common name, any letter case
  const char* code;
};

constexpr SpeciesName kTurtleSpecies[] = {
    {"Green", "GREENTURT"},
    {"Kemp's ridley", "KEMPRIDLEY"},
    {"Kemp&apos;s ridley", "KEMPRIDLEY"},
    {"Kemps ridley", "KEMPRIDLEY"},
    {"Loggerhead", "LOGGER"},
};

// How a transfer place is recognised.
enum class PlaceMatch {
  kWholeNoCase,  // the whole text, any letter case
  kWholeExact,   // the whole text exactly
  kContains,     // anywhere in the text, letter case counting
};

struct TransferPlace {
  const char* text;
  PlaceMatch match;
};

// Tested in this order. The hospital, the volunteer and the clinic stand for
// sites named after private persons.
constexpr TransferPlace kTransferLocations[] = {
    {"CMAST", PlaceMatch::kWholeNoCase},
    {"FF", PlaceMatch::kWholeNoCase},
    {"CSAFF", PlaceMatch::kWholeExact},
    {"PKS", PlaceMatch::kWholeNoCase},
    {"CSAPKS", PlaceMatch::kWholeExact},
    {"Fort Macon", PlaceMatch::kWholeNoCase},
    {"Coastal Sea Turtle Hospital", PlaceMatch::kWholeNoCase},
    {"Turtle Volunteer", PlaceMatch::kContains},
    {"NCWRC", PlaceMatch::kWholeNoCase},
    {"Roanoke Clinic", PlaceMatch::kWholeNoCase},
    {"Sea World", PlaceMatch::kWholeNoCase},
    {"VA", PlaceMatch::kWholeNoCase},
    {"Virginia beach aquarium", PlaceMatch::kWholeNoCase},
    {"WC-PKS", PlaceMatch::kContains},
    {"Harbor Wildlife Clinic", PlaceMatch::kWholeNoCase},
};

const char* TextOrEmpty(const char* text) { return text != nullptr ? text : ""; }

// One stranding as read, before it is written.
struct RehabCase {
  const char* stranding_number;
  PatientRecord patient;
  PatientFinderInfo finder;
  Text<512> issues;
  Text<256> transfer_location;
};

// Converts the row's `element` into `out` when it is there; reports
// "Invalid <what>" and returns false when it cannot be read.
bool ReadCaseDate(const XmlNode* row, const char* element, const char* what, const char* stranding_number,
                  Text<11>& out) {
  const char* text = FieldText(row, element);
  if (text == nullptr) return true;
  std::string copy = text;
  if (ParseExportDate(copy.data(), out) == 0) return true;
  std::printf("\tERROR - Invalid %s '%s' for '%s'!\n", what, text, stranding_number);
  return false;
}

// Reads the fields in the export's order; false (reported) for a bad date.
bool ReadCase(const XmlNode* row, RehabCase& rehab) {
  PatientRecord& patient = rehab.patient;
  PatientFinderInfo& finder = rehab.finder;
  const char* number = rehab.stranding_number;
  if (!ReadCaseDate(row, "StrandingDate", "stranding date", number, finder.found_date)) return false;
  finder.found_lat = static_cast<float>(FieldNumber(row, "Latitude"));
  finder.found_lon = static_cast<float>(FieldNumber(row, "Longitude"));
  finder.collection_info = std::string_view(TextOrEmpty(FieldText(row, "StrandingLocation"))).substr(0, 127);
  if (!ReadCaseDate(row, "AdmissionDate", "admission date", number, patient.admission_date)) return false;
  rehab.issues = FieldText(row, "Issues");
  if (FieldText(row, "Transferdate") != nullptr) {
    if (!ReadCaseDate(row, "Transferdate", "transfer date", number, patient.final_date)) return false;
    patient.status = "T";
  }
  rehab.transfer_location = FieldText(row, "TransferLocation");
  if (FieldText(row, "ReleaseDate") != nullptr) {
    if (!ReadCaseDate(row, "ReleaseDate", "release date date", number, patient.final_date)) return false;
    patient.status = "R";
  }
  patient.microchip = FieldText(row, "PitTag");
  return true;
}

// The admission date falls back on the stranding date; false (reported) when neither is known.
bool SettleDates(RehabCase& rehab) {
  PatientRecord& patient = rehab.patient;
  if (rehab.finder.found_date.empty() && patient.admission_date.empty()) {
    std::printf("\tERROR - No dates for '%s\n", rehab.stranding_number);
    return false;
  }
  if (patient.admission_date.empty()) {
    std::printf("\tSetting admission date to stranding date\n");
    patient.admission_date = rehab.finder.found_date;
  }
  return true;
}

struct RehabCounts {
  int parsed = 0;
  int transfers = 0;
  int releases = 0;
};

// Writes the patient and its rows; stops at the first failure (reported).
void WriteCase(RehabCase& rehab, RehabCounts& counts) {
  PatientRecord& patient = rehab.patient;
  if (!InsertFfPatient(patient, rehab.finder, rehab.stranding_number)) return;
  PatientAttribute attribute{};
  attribute.name = "Stranding number";
  attribute.value = rehab.stranding_number;
  InsertPatientAttribute(patient.id, attribute);
  WriteFfImportNote(patient.id, rehab.issues.view());
  if (patient.status != "T" && patient.status != "R") return;
  int entry_id = WriteFfDispositionEntry(patient);
  if (entry_id < 0) return;
  if (patient.status == "R") {
    if (WriteFfRelease(patient, entry_id, "")) ++counts.releases;
    return;
  }
  if (!IsKnownTransferLocation(rehab.transfer_location.c_str())) {
    std::printf("ERROR - Unknown transfer location '%s'!\n", rehab.transfer_location.c_str());
    return;
  }
  TransferRecord transfer{};
  if (WriteFfTransfer(patient, entry_id, transfer)) ++counts.transfers;
}

void ImportCase(const XmlNode* row, RehabCounts& counts) {
  RehabCase rehab{};
  ResetFfPatient(rehab.patient, rehab.finder, "Reh");
  ++counts.parsed;
  const char* common_name = FieldText(row, "CommonName");
  if (common_name == nullptr) {
    std::printf("\tERROR - Missing species\n");
    return;
  }
  rehab.stranding_number = FieldText(row, "StrandingNumber");
  if (rehab.stranding_number == nullptr) {
    std::printf("\tERROR - Missing stranding number\n");
    return;
  }
  std::printf("%s - %s\n", rehab.stranding_number, common_name);
  std::fflush(stdout);
  if (!ReadCase(row, rehab) || !SettleDates(rehab)) return;
  rehab.patient.patient_id.Format("%d-%05d", kCaseYear, counts.parsed);
  rehab.patient.notes.Format("Stranding number: %s", rehab.stranding_number);
  rehab.patient.species = RehabSpeciesCode(common_name);
  rehab.patient.species_group = "reptile:turtle";
  WriteCase(rehab, counts);
}

}  // namespace

const char* RehabSpeciesCode(const char* common_name) {
  for (const SpeciesName& species : kTurtleSpecies) {
    if (EqualsNoCase(species.name, common_name)) return species.code;
  }
  return "";
}

bool IsKnownTransferLocation(const char* place) {
  for (const TransferPlace& known : kTransferLocations) {
    switch (known.match) {
      case PlaceMatch::kWholeNoCase:
        if (EqualsNoCase(known.text, place)) return true;
        break;
      case PlaceMatch::kWholeExact:
        if (std::strcmp(known.text, place) == 0) return true;
        break;
      case PlaceMatch::kContains:
        if (std::strstr(place, known.text) != nullptr) return true;
        break;
    }
  }
  return false;
}

int ImportCsaqFfRehab() {
  XmlDocument cases;
  std::printf("Loading REHAB data from '%s'.\n", kRehabFile);
  if (XmlLoadFile(cases, kRehabFile) != 0) {
    std::printf("Unable to load rehab data!");
    return 1;
  }
  RehabCounts counts;
  ProgressLoop progress("Importing the rehabilitation cases", ExportRowCount(cases));
  ExportRows rows(kRehabFile);
  long long row_number = 0;
  for (const XmlNode* row = FirstExportRow(cases); row != nullptr; row = XmlNextSibling(row)) {
    progress.Step();
    rows.Name(++row_number);
    ImportCase(row, counts);
  }
  std::printf("Parsed %d records\n", counts.parsed);
  std::printf("Transfer count %d\n", counts.transfers);
  std::printf("Release count %d\n", counts.releases);
  return 0;
}
