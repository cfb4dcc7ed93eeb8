#include "jobs/uprc/uprc_import.h"

#include <cstdio>
#include <cstring>
#include <string>
#include <string_view>

#include "jobs/uprc/uprc_places.h"
#include "jobs/patient_rows.h"
#include "store/case_numbers.h"
#include "store/connection.h"
#include "store/disposition_store.h"
#include "store/record_entry_store.h"
#include "util/dates.h"
#include "util/line_reader.h"
#include "util/platform.h"
#include "util/strings.h"
#include "util/tokenizer.h"

namespace {

// This centre's settings: a raptor centre in Alabama whose birds all come
// from the United States.
constexpr const char* kCountry = "USA";
constexpr const char* kHomeState = "AL";
constexpr const char* kSpeciesGroup = "avian:raptor";
constexpr const char* kEducationPlace = "URC Education";

constexpr std::size_t kMaxLine = 1023;

void SetDefaults(PatientRecord& patient, PatientFinderInfo& finder) {
  ResetPatientRecord(patient);
  patient.status = "Reh";
  patient.species_group = kSpeciesGroup;

  ResetFinderInfo(finder, kCountry, kHomeState);
}

char* Trimmed(char* text) {
  TrimLeft(text);
  TrimRight(text);
  return text;
}

// Writes every piece of the ';' or '|' separated list longer than two
// characters (shorter ones are stray codes). Returns false when any failed;
// the others are still written.
bool WriteProblems(const char* list, const PatientRecord& patient) {
  bool written = true;
  Tokenizer pieces(list);
  for (char* piece = pieces.Next(";|"); piece != nullptr; piece = pieces.Next(";|")) {
    if (std::strlen(piece) <= 2) continue;
    Text<260> problem{};
    problem = piece;
    if (InsertProblem(patient.id, problem.c_str(), 0, "") < 0) {
      std::printf("\tERROR - Unable to create problem record for patient '%s'!\n", patient.patient_id.c_str());
      written = false;
    }
  }
  return written;
}

bool WriteTransfer(char* place, const PatientRecord& patient, int record_entry_id) {
  TransferRecord transfer;
  ResetUnnamedTransfer(transfer, kCountry);
  transfer.patient_id = patient.patient_id;
  transfer.date = patient.final_date;

  TrimLeft(place);
  if (std::strcmp(place, kEducationPlace) == 0) {
    std::printf("\tWARNING: %s was transferred to URC for education...PR?\n", patient.patient_id.c_str());
  }
  ResolveTransferPlace(place, transfer);
  if (InsertTransfer(record_entry_id, transfer) != 0) {
    std::printf("\tERROR - Unable to create transfer record for patient '%s'!\n", patient.patient_id.c_str());
    return false;
  }
  return true;
}

bool WriteRelease(char* place, const PatientRecord& patient, int record_entry_id) {
  ReleaseRecord release{};
  release.patient_id = patient.patient_id;
  release.date = patient.final_date;
  release.state = "NA";
  release.country = kCountry;
  release.id_type = "None";
  release.tracker_type = "None";

  TrimLeft(place);
  ResolveReleasePlace(place, release);
  if (InsertRelease(record_entry_id, release) != 0) {
    std::printf("\tERROR - Unable to create release record for patient '%s'!\n", patient.patient_id.c_str());
    return false;
  }
  return true;
}

// A record entry dated with the final date, carrying the transfer or the
// release. A failed entry still lets the detail row be tried (with -1).
bool WriteDisposition(char* const column[kUprcColumnCount], const PatientRecord& patient) {
  bool written = true;
  int record_entry_id = InsertRecordEntry(patient.id, "", patient.final_date.c_str(), "NA", 0, 0, "NA", '0');
  if (record_entry_id < 0) {
    std::printf("\tERROR - Unable to create record entry for patient '%s'!\n", patient.patient_id.c_str());
    written = false;
  }
  if (patient.status == "T") {
    written = WriteTransfer(column[kUprcTransferPlace], patient, record_entry_id) && written;
  } else {
    written = WriteRelease(column[kUprcReleasePlace], patient, record_entry_id) && written;
  }
  return written;
}

// The patient number goes to one bird only: a blank one, or one that an
// earlier line already has, would make the birds share releases and
// transfers. False, reported, when taken.
bool ClaimCaseNumber(const char* number, const PatientRecord& patient, long long line_number,
                     RunCaseNumbers& case_numbers) {
  if (IsBlankCaseNumber(patient.patient_id.view())) {
    std::printf("\tERROR - blank patient number on line %lld, line skipped\n", line_number);
    return false;
  }
  if (const std::string* owner = case_numbers.Claim(patient.patient_id.view(), number)) {
    std::printf("\tERROR - case number '%s' of '%s' already belongs to '%s', line skipped\n",
                patient.patient_id.c_str(), number, owner->c_str());
    return false;
  }
  return true;
}

// Imports one line; true when every row of it was written.
bool ImportLine(char* const column[kUprcColumnCount], long long line_number, RunCaseNumbers& case_numbers) {
  PatientRecord patient;
  PatientFinderInfo finder;
  if (!ReadUprcPatient(column, patient, finder)) return false;
  if (!ClaimCaseNumber(column[kUprcNumber], patient, line_number, case_numbers)) return false;

  const char* id = patient.patient_id.c_str();
  if (!InsertPatientWithFinder(patient, finder)) return false;
  if (!WriteProblems(column[kUprcProblems], patient)) return false;
  if (InsertImportNote(patient) < 0) {
    std::printf("\tERROR - Unable to create record entry for patient '%s'!\n", id);
    return false;
  }
  if (patient.status == "T" || patient.status == "R") return WriteDisposition(column, patient);
  return true;
}

}  // namespace

bool ReadUprcPatient(char* const column[kUprcColumnCount], PatientRecord& patient, PatientFinderInfo& finder) {
  SetDefaults(patient, finder);
  bool valid = true;
  patient.patient_id = column[kUprcNumber];
  patient.species = column[kUprcSpecies];
  const char* id = patient.patient_id.c_str();

  std::string_view status = column[kUprcStatus];
  if (status == "Med") {
    std::printf("\tWARNING: Animal '%s has status = Med\n", id);
    status = "Reh";
  }
  // A cut status could turn into another code, so a longer one is refused.
  if (status.size() > patient.status.kCapacity) {
    std::printf("\tERROR - Invalid status '%s' - '%s'\n", column[kUprcStatus], id);
    valid = false;
  }
  patient.status = status;

  if (ParseSlashDate(column[kUprcAdmitted], patient.admission_date) != 0) {
    std::printf("\tERROR - Invalid admission date '%s' - '%s'\n", column[kUprcAdmitted], id);
    valid = false;
  }

  if (status == "PR") {
    patient.name = Trimmed(column[kUprcName]);
    patient.location = Trimmed(column[kUprcEnclosure]);
    patient.flags |= kFlagResident;
  } else if (status == "Reh") {
    patient.location = Trimmed(column[kUprcEnclosure]);
  } else {
    if (ParseSlashDate(column[kUprcFinalDate], patient.final_date) != 0) {
      std::printf("\tERROR - Invalid final date '%s' - '%s'\n", column[kUprcFinalDate], id);
      valid = false;
    }
    if (patient.admission_date == patient.final_date) {
      if (patient.status == "E") patient.status = "E24";
      if (patient.status == "D") patient.status = "D24";
    }
  }
  return valid;
}

int ImportUprcPatients(int year) {
  Text<64> file_name{};
  file_name.Format("%sUPRC %d.txt", kCurrentFolder, year);
  std::printf("Loading patient data from '%s'\n", file_name.c_str());
  LineReader reader(file_name.c_str(), kMaxLine);
  if (!reader.CanRead()) {
    std::printf("Unable to open '%s'\n", file_name.c_str());
    return 1;
  }
  int imported = 0;
  RunCaseNumbers case_numbers;
  std::string text;
  reader.ReadLine(text);  // header
  while (reader.ReadLine(text)) {
    if (IsEmptyLine(text)) continue;  // an empty line holds no patient; any other goes through
    Tokenizer tokenizer(text);
    char* column[kUprcColumnCount];
    int found = TakeFields(tokenizer, column, kUprcColumnCount, "\t", "\t\r\n");
    // Empty cells vanish between tabs, so a short line has its later columns
    // shifted: none of them can be trusted.
    if (found < kUprcColumnCount && found > 0) TrimRight(column[kUprcNumber]);  // may hold the line feed
    if (!HasFields(found, kUprcColumnCount, column[kUprcNumber])) continue;
    if (ImportLine(column, reader.line_number(), case_numbers)) ++imported;
  }
  std::printf("Imported %d patients\n", imported);
  return 0;
}
