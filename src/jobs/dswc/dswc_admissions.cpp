#include "jobs/dswc/dswc_admissions.h"

#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <string>
#include <unordered_map>

#include "jobs/dswc/dswc_disposition.h"
#include "jobs/dswc/dswc_species.h"
#include "jobs/patient_rows.h"
#include "store/case_numbers.h"
#include "store/connection.h"
#include "store/disposition_store.h"
#include "store/record_entry_store.h"
#include "util/dates.h"
#include "util/line_reader.h"
#include "util/strings.h"
#include "util/tokenizer.h"

namespace {

constexpr std::size_t kMaxLine = 1023;
constexpr int kHeaderLines = 2;
// This year's export has a donation column right after the disposition.
constexpr int kDonationYear = 2014;

// Kept for the whole run, as the species labels are looked up line by line.
XmlDocument g_species_list;
// The species elements of g_species_list by lower-cased label, the first of
// each label only (the one a search from the top finds): one look-up per
// admission however long the list.
std::unordered_map<std::string, const XmlNode*> g_species_by_label;

// The columns of an admission line by meaning; a file without the donation
// column simply has no kDonation field.
enum Column {
  kNumber,
  kSpecies,
  kAdmitted,
  kFirstName,
  kLastName,
  kAddress,
  kCity,
  kZip,
  kCrossStreets,
  kCause,
  kProblem,
  kFinalDate,
  kDisposition,
  kDonation,
  kPhone,
  kBroughtInBy,
  kAge,
  kColumnCount
};

// Species, dates and disposition decide whether and how the animal is
// stored; the columns after the disposition are optional.
constexpr int kNeededFields = kDisposition + 1;

struct AdmissionLine {
  char* field[kColumnCount];  // null when the line does not have the column
  int found;                  // fields present, counted in file order

  const char* operator[](Column column) const { return field[column]; }
  char* operator[](Column column) { return field[column]; }
};

// Cuts a line (without its line end) the way the export was written: a run
// of tabs is one separator.
AdmissionLine CutAdmissionLine(Tokenizer& tokenizer, bool with_donation) {
  char* in_file_order[kColumnCount];
  const int columns = with_donation ? kColumnCount : kColumnCount - 1;
  AdmissionLine line{};
  line.found = TakeFields(tokenizer, in_file_order, columns, "\t", "\t\r\n");
  for (int i = 0; i < columns; ++i) {
    int column = !with_donation && i >= kDonation ? i + 1 : i;
    line.field[column] = in_file_order[i];
  }
  return line;
}

void SetDefaults(PatientRecord& patient, PatientFinderInfo& finder, TransferRecord& transfer) {
  ResetPatientRecord(patient);
  patient.status = "Reh";

  ResetFinderInfo(finder, "USA", "AZ");

  transfer = {};
  transfer.name = "NA";
  transfer.addr = "NA";
  transfer.city = "NA";
  transfer.zip = "NA";
  transfer.county = "NA";
  transfer.permit = "NA";
  transfer.state = "AZ";
  transfer.country = "USA";
  transfer.reason = "E/S";
}

// The finder, donation, presenter and age columns.
void ApplyRemainingColumns(AdmissionLine& line, PatientRecord& patient, PatientFinderInfo& finder) {
  std::string name = line[kFirstName];
  if (line[kLastName] != nullptr) {
    if (!name.empty()) name += ' ';
    name += line[kLastName];
  }
  finder.found_name = name;
  finder.found_addr = line[kAddress];
  finder.found_city = line[kCity];
  finder.found_zip = line[kZip];
  finder.found_crossStreets = line[kCrossStreets];
  patient.injury_cause = line[kCause];

  if (line[kDonation] != nullptr) {
    if (const char* dollar = std::strchr(line[kDonation], '$')) {
      finder.donation = static_cast<float>(ReadNumber(dollar + 1));
    }
  }
  if (line[kPhone] != nullptr) finder.found_phone1 = line[kPhone];
  if (const char* brought_in_by = line[kBroughtInBy]) {
    finder.presenter_transporter = EqualsNoCase(brought_in_by, "Brought in") ? "Finder" : brought_in_by;
  }
  if (char* age = line[kAge]) {
    TrimLeft(age);
    if (age[0] != '\0') {
      patient.age = age;
      patient.ageIn = age;
    }
  }
}

// Returns false when the problem could not be stored.
bool WriteProblem(const char* problem, const PatientRecord& patient) {
  if (problem == nullptr || problem[0] == '\0') return true;
  Text<1024> description{};
  description = problem;
  if (InsertProblem(patient.id, description.c_str(), 0, "") < 0) {
    std::printf("\tERROR - Unable to create problem record for patient '%s'!\n", patient.patient_id.c_str());
    return false;
  }
  return true;
}

// Returns false when the note could not be stored.
bool WriteImportNote(const PatientRecord& patient, const DswcReason& reason) {
  Text<512> note{};
  note.Format("Patient record imported into Corvana\n-------------------------------------\n%s%s",
              patient.status == "DNA" ? "Did not admit because: " : "",
              patient.status == "DNA" ? reason.c_str() : "");
  if (InsertRecordEntry(patient.id, EscapeSqlText(note).c_str(), NowTimestamp(), "NA", 0, 0, "NA", '0') < 0) {
    std::printf("\tERROR - Unable to create record entry for patient '%s'!\n", patient.patient_id.c_str());
    return false;
  }
  return true;
}

// The record entry of a release or transfer and its detail row. The detail
// row is still tried when the entry failed. Returns false on any failure.
bool WriteDeparture(const PatientRecord& patient, TransferRecord& transfer) {
  const char* patient_id = patient.patient_id.c_str();
  bool written = true;
  int entry_id = InsertRecordEntry(patient.id, "", patient.final_date.c_str(), "NA", 0, 0, "NA", '0');
  if (entry_id < 0) {
    std::printf("\tERROR - Unable to create record entry for patient '%s'!\n", patient_id);
    written = false;
  }
  if (patient.status == "T") {
    transfer.patient_id = patient.patient_id;
    transfer.date = patient.final_date;
    if (InsertTransfer(entry_id, transfer) != 0) {
      std::printf("\tERROR - Unable to create transfer record for patient '%s'!\n", patient_id);
      written = false;
    }
  } else {
    ReleaseRecord release{};
    release.patient_id = patient.patient_id;
    release.date = patient.final_date;
    release.state = "AZ";
    release.country = "USA";
    release.id_type = "None";
    release.tracker_type = "None";
    if (InsertRelease(entry_id, release) != 0) {
      std::printf("\tERROR - Unable to create release record for patient '%s'!\n", patient_id);
      written = false;
    }
  }
  return written;
}

// Writes the rows of an accepted admission, stopping at the first failure.
// Returns true when all of them were stored.
bool WriteAdmission(const AdmissionLine& line, PatientRecord& patient, const PatientFinderInfo& finder,
                    const DswcReason& reason, TransferRecord& transfer) {
  if (!InsertPatientWithFinder(patient, finder)) return false;
  if (!WriteProblem(line[kProblem], patient)) return false;
  if (!WriteImportNote(patient, reason)) return false;
  if (patient.status == "T" || patient.status == "R") return WriteDeparture(patient, transfer);
  return true;
}

// Admission numbers 12, 012 and 12a are all case number <year>-0012: only
// the first of them becomes a patient, so that no two animals share
// releases and transfers. False, reported, when an earlier line has it.
bool ClaimCaseNumber(const AdmissionLine& line, const Text<16>& patient_id, RunCaseNumbers& case_numbers) {
  if (const std::string* owner = case_numbers.Claim(patient_id.view(), line[kNumber])) {
    std::printf("\tERROR - case number '%s' of '%s' already belongs to '%s', line skipped\n", patient_id.c_str(),
                line[kNumber], owner->c_str());
    return false;
  }
  return true;
}

// Imports one line that has at least the needed fields. Returns true when
// the patient and all its rows were stored.
bool ImportAdmission(AdmissionLine& line, const Text<16>& patient_id, RunCaseNumbers& case_numbers) {
  PatientRecord patient;
  PatientFinderInfo finder;
  TransferRecord transfer;
  DswcReason reason{};
  SetDefaults(patient, finder, transfer);
  patient.patient_id = patient_id;

  bool valid = true;
  if (LookupDswcSpecies(line[kSpecies], patient) != 0) {
    std::printf("\tERROR - Unable to find species for '%s'\n", line[kSpecies]);
    valid = false;
  }
  if (ParseSlashDate(line[kAdmitted], patient.admission_date) != 0) {
    std::printf("\tERROR - Invalid admission date '%s' - '%s'\n", line[kAdmitted], patient_id.c_str());
    valid = false;
  }
  if (MapDswcDisposition(line[kDisposition], line[kFinalDate], patient, reason, transfer) != 0) {
    std::printf("\tERROR - Invalid status '%s' for '%s'\n", line[kDisposition], patient_id.c_str());
    valid = false;
  }
  ApplyRemainingColumns(line, patient, finder);
  if (patient.status == "PR") {
    ApplyResidentTable(patient);
    patient.flags |= kFlagResident;
  }
  return valid && ClaimCaseNumber(line, patient_id, case_numbers) &&
         WriteAdmission(line, patient, finder, reason, transfer);
}

}  // namespace

namespace {

void CopySpecies(const XmlNode* element, PatientRecord& patient) {
  patient.species = XmlAttributeValue(element, "abbrev");
  patient.species_group = XmlAttributeValue(element, "speciesGroup");
  if (const char* age = XmlAttributeValue(element, "age")) {
    patient.age = age;
    patient.ageIn = age;
  }
}

void IndexSpeciesLabels() {
  g_species_by_label.clear();
  for (const XmlNode* element = FirstDswcSpecies(g_species_list); element != nullptr;
       element = XmlNextSibling(element)) {
    const char* label = XmlAttributeValue(element, "label");
    if (label != nullptr) g_species_by_label.try_emplace(LowerAscii(label), element);
  }
}

}  // namespace

int LookupDswcSpecies(const XmlDocument& species_list, const char* label, PatientRecord& patient) {
  if (label == nullptr) return 1;
  for (const XmlNode* element = FirstDswcSpecies(species_list); element != nullptr;
       element = XmlNextSibling(element)) {
    const char* element_label = XmlAttributeValue(element, "label");
    if (element_label == nullptr || !EqualsNoCase(element_label, label)) continue;
    CopySpecies(element, patient);
    return 0;
  }
  return 1;
}

int LookupDswcSpecies(const char* label, PatientRecord& patient) {
  if (label == nullptr) return 1;
  auto found = g_species_by_label.find(LowerAscii(label));
  if (found == g_species_by_label.end()) return 1;
  CopySpecies(found->second, patient);
  return 0;
}

int ImportDswcAdmissions(int year) {
  Text<64> file_name{};
  file_name.Format("./%dAdmissions.txt", year);
  std::printf("Loading patient data from '%s'\n", file_name.c_str());
  LineReader reader(file_name.c_str(), kMaxLine);
  if (!reader.CanRead()) {
    std::printf("Unable to open '%s'\n", file_name.c_str());
    return 1;
  }
  if (XmlLoadFile(g_species_list, kDswcSpeciesFile) != 0) {
    std::printf("Unable to parse species file '%s'\n", kDswcSpeciesFile);
    return 1;
  }
  IndexSpeciesLabels();

  const bool with_donation = year == kDonationYear;
  int imported = 0;
  RunCaseNumbers case_numbers;
  std::string text;
  for (int i = 0; i < kHeaderLines; ++i) reader.ReadLine(text);
  while (reader.ReadLine(text)) {
    // A line that stops early must not carry its line end into its last field.
    while (!text.empty() && (text.back() == '\n' || text.back() == '\r')) text.pop_back();
    if (text.empty()) continue;  // an empty line holds no admission; any other goes through
    Tokenizer tokenizer(text);
    AdmissionLine line = CutAdmissionLine(tokenizer, with_donation);
    Text<16> patient_id{};
    // "%.4d" writes what the centre's "%04.4d" does: at least four digits.
    patient_id.Format("%d-%.4d", year, line.found > 0 ? ToInt(line[kNumber]) : 0);
    if (!HasFields(line.found, kNeededFields, patient_id.c_str())) continue;
    if (ImportAdmission(line, patient_id, case_numbers)) ++imported;
  }
  std::printf("Imported %d patients\n", imported);
  return 0;
}
