#include "jobs/glfh/glfh_import.h"

#include <cstdio>
#include <string>

#include "jobs/patient_rows.h"
#include "store/case_numbers.h"
#include "store/connection.h"
#include "store/record_entry_store.h"
#include "util/dates.h"
#include "util/line_reader.h"
#include "util/strings.h"
#include "util/tokenizer.h"

namespace {

// This clinic's settings: its register holds only owned falcons of owners in
// Qatar, so the species group, country and status are the same for every bird.
constexpr const char* kInputFile = "./GLFH_Patients.txt";
constexpr const char* kOwnerCountry = "Qatar";
constexpr const char* kDefaultSpecies = "FALCON";
constexpr const char* kSpeciesGroup = "avian:raptor";
constexpr const char* kOwnedBirdStatus = "COA";

constexpr std::size_t kMaxLine = 1023;

// The register's columns, in file order.
enum Column { kOwner, kSpecies, kAdmitted, kChip, kNumber, kPhone, kColumnCount };

void SetDefaults(PatientRecord& patient, PatientFinderInfo& finder) {
  ResetPatientRecord(patient);
  patient.status = kOwnedBirdStatus;
  patient.species = kDefaultSpecies;
  patient.species_group = kSpeciesGroup;

  ResetFinderInfo(finder, kOwnerCountry, "NA");
}

// The register's number as a case number; false when it is not above 0
// (0, negative, or not a number), leaving `patient_id` untouched.
bool FormatGlfhPatientId(const char* number, Text<16>& patient_id) {
  int value = ToInt(number);
  if (value <= 0) return false;
  patient_id.Format("%.5d", value);
  return true;
}

int WriteImportNote(const PatientRecord& patient) {
  Text<512> note{};
  note.Format("Patient record imported into Corvana\n"
              "-------------------------------------\n"
              "Record number: %s\n"
              "Species: %s\n",
              patient.patient_id.c_str(), patient.species.c_str());
  return InsertRecordEntry(patient.id, EscapeSqlText(note).c_str(), NowTimestamp(), "NA", 0, 0, "NA", '0');
}

// Writes the patient, its owner and the import note; true when all three
// were written. The owner's name and phone land as the register has them.
bool WritePatient(PatientRecord& patient, const PatientFinderInfo& finder) {
  const char* id = patient.patient_id.c_str();
  if (!InsertPatientWithFinder(patient, finder)) return false;
  if (WriteImportNote(patient) < 0) {
    std::printf("\tERROR - Unable to create record entry for patient '%s'!\n", id);
    return false;
  }
  return true;
}

// Register numbers 101, 0101 and 101a are all case number 00101: only the
// first of them becomes a patient, so that no two birds share one record
// number. False, reported, when an earlier line has it.
bool ClaimCaseNumber(std::string_view line, const PatientRecord& patient, RunCaseNumbers& case_numbers) {
  Tokenizer tokenizer(line);
  char* column[kColumnCount];
  TakeFields(tokenizer, column, kColumnCount, "\t", "\t");
  if (const std::string* owner = case_numbers.Claim(patient.patient_id.view(), column[kNumber])) {
    std::printf("\tERROR - case number '%s' of '%s' already belongs to '%s', line skipped\n",
                patient.patient_id.c_str(), column[kNumber], owner->c_str());
    return false;
  }
  return true;
}

}  // namespace

bool ReadGlfhLine(std::string_view line, PatientRecord& patient, PatientFinderInfo& finder) {
  SetDefaults(patient, finder);
  Tokenizer tokenizer(line);
  char* column[kColumnCount];
  TakeFields(tokenizer, column, kColumnCount, "\t", "\t");

  if (column[kOwner] == nullptr) {
    std::printf("\tERROR - missing owner name\n");
    return false;
  }
  finder.found_name = column[kOwner];
  finder.presenter_name = column[kOwner];
  if (column[kSpecies] == nullptr) {
    std::printf("\tERROR - missing species\n");
    return false;
  }
  patient.species = column[kSpecies];
  if (column[kAdmitted] == nullptr) {
    std::printf("\tERROR - missing date\n");
    return false;
  }
  if (column[kChip] == nullptr) {
    std::printf("\tERROR - missing chip number\n");
    return false;
  }
  patient.microchip = column[kChip];
  if (column[kNumber] == nullptr) {
    std::printf("\tERROR - missing patient id for '%s'\n", column[kOwner]);
    return false;
  }
  if (!FormatGlfhPatientId(column[kNumber], patient.patient_id)) {
    std::printf("\tERROR - invalid patient id '%s'\n", column[kNumber]);
    return false;
  }
  if (column[kPhone] != nullptr) {
    finder.found_phone1 = column[kPhone];
    finder.presenter_phone1 = column[kPhone];
  }
  if (ParseSlashDate(column[kAdmitted], patient.admission_date) != 0) {
    std::printf("\tERROR - Invalid admission date '%s' - '%s'\n", column[kAdmitted], patient.patient_id.c_str());
    return false;
  }
  return true;
}

int ImportGlfhPatients() {
  std::printf("Loading patient data from '%s'\n", kInputFile);
  LineReader reader(kInputFile, kMaxLine);
  if (!reader.CanRead()) {
    std::printf("Unable to open '%s'\n", kInputFile);
    return 1;
  }
  int imported = 0;
  RunCaseNumbers case_numbers;
  std::string text;
  reader.ReadLine(text);  // header
  while (reader.ReadLine(text)) {
    PatientRecord patient;
    PatientFinderInfo finder;
    if (!ReadGlfhLine(text, patient, finder)) continue;
    if (!ClaimCaseNumber(text, patient, case_numbers)) continue;
    if (WritePatient(patient, finder)) ++imported;
  }
  std::printf("Imported %d patients\n", imported);
  return 0;
}
