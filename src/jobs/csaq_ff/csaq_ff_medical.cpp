#include "jobs/csaq_ff/csaq_ff_medical.h"

#include <cstdio>
#include <string>

#include "jobs/csaq_ff/csaq_ff_collection.h"
#include "jobs/csaq_ff/csaq_ff_export.h"
#include "jobs/csaq_ff/csaq_ff_units.h"
#include "store/connection.h"
#include "store/measurement_store.h"
#include "store/record_entry_store.h"
#include "util/progress.h"
#include "util/read_losses.h"
#include "util/strings.h"

namespace {

constexpr int kNoteWidth = 80;
constexpr const char* kMedicalHeading = "*** MEDICAL RECORD ENTRY ***\n";

struct VitalMeasure {
  const char* element;
  float (*convert)(const char* text);
  const char* name;  // in the message of a negative value
  float BiometricRecord::*column;
};

// Read and checked in this order.
constexpr VitalMeasure kVitalMeasures[] = {
    {"Weight", WeightToGrams, "weight", &BiometricRecord::weight},
    {"Overall_x0020_Length", LengthToMillimetres, "length", &BiometricRecord::length},
    {"SCL_x0020__x0028_Straight_x0020_Carapace_x0020_Length_x0029_", LengthToMillimetres, "SCL",
     &BiometricRecord::straight_NPN_length},
    {"Curved_x0020_Length", LengthToMillimetres, "CCL", &BiometricRecord::curved_NPN_length},
    {"CSW_x0020__x0028_Carapace_x0020_Width_x0020_Straight_x0029_", LengthToMillimetres, "CSW",
     &BiometricRecord::straight_carapace_width},
    {"CCW_x0020__x0028_Carapace_x0020_Width_x0020_Curved_x0029_", LengthToMillimetres, "CCW",
     &BiometricRecord::curved_carapace_width},
};

// The tag of a row of `type`, or null for a row the pass does not use.
const char* TagOfType(const XmlNode* row, const char* type) {
  const char* tag = FieldText(row, kFfIdentityTag);
  const char* row_type = FieldText(row, kFfDataType);
  if (tag == nullptr || row_type == nullptr || !EqualsNoCase(row_type, type)) return nullptr;
  return tag;
}

// Fills the measures of `biometric`; false (reported) at the first negative one.
bool ReadVitalMeasures(const XmlNode* row, const char* tag, BiometricRecord& biometric) {
  for (const VitalMeasure& measure : kVitalMeasures) {
    const char* text = FieldText(row, measure.element);
    float value = text != nullptr ? measure.convert(text) : 0.0f;
    if (value < 0) {
      std::printf("\tERROR: Invalid %s '%s' in Vital Stats record for '%s'.\n", measure.name, text, tag);
      return false;
    }
    biometric.*measure.column = value;
  }
  return true;
}

bool AllZero(const BiometricRecord& biometric) {
  for (const VitalMeasure& measure : kVitalMeasures) {
    if (biometric.*measure.column != 0) return false;
  }
  return true;
}

// Writes a record entry for an animal of the table; an animal whose patient
// row was never written gets none. Returns the entry id, or -1 (reported).
int WriteAnimalEntry(const AnimalEntry& animal, const char* notes, const char* date, float weight, char special) {
  int entry_id = -1;
  if (animal.patient.id != 0) {
    entry_id = InsertRecordEntry(animal.patient.id, notes, date, "NA", weight, 0.0f, "NA", special);
  }
  if (entry_id < 0) {
    std::printf("ERROR - Unable to create record entry for patient '%s'!\n", animal.patient.patient_id.c_str());
  }
  return entry_id;
}

void ImportVitalStats(const XmlNode* row, const char* tag, CollectionAnimalTable& animals) {
  if (FieldInt(row, kFfSpecimenCount, 0) != 1) {
    std::printf("\tERROR: Number not equal 1 for Vital Stats record for '%s'.\n", tag);
    return;
  }
  const char* date = FieldText(row, "Date");
  if (date == nullptr) {
    std::printf("\tERROR: Missing 'Date' in Vital Stats record for '%s'.\n", tag);
    return;
  }
  const AnimalEntry* animal = animals.FirstWithTag(tag);
  if (animal == nullptr) {
    std::printf("\tERROR: Unable to find animal for Vital Stats record for '%s'.\n", tag);
    return;
  }
  BiometricRecord biometric{};
  if (!ReadVitalMeasures(row, tag, biometric) || AllZero(biometric)) return;
  biometric.date = DateBeforeT(date);
  int entry_id = WriteAnimalEntry(*animal, "", date, biometric.weight, '0');
  if (entry_id < 0) return;
  if (InsertBiometric(entry_id, biometric) != 0) {
    std::printf("ERROR - Unable to create BIOMETRIC for patient '%s'!\n", animal->patient.patient_id.c_str());
  }
}

// The stored form of a report: no "&quot;", blanks for bytes above 127,
// escaped, then wrapped (the escapes count toward the width).
std::string MedicalNote(const char* report) {
  std::string note = EscapeSqlText(PlainCollectionText(std::string(kMedicalHeading) + report));
  WrapLongLines(note.data(), kNoteWidth);
  return note;
}

void ImportMedicalRecord(const XmlNode* row, const char* tag, CollectionAnimalTable& animals) {
  if (FieldInt(row, kFfSpecimenCount, 0) < 1) {
    std::printf("\tERROR: Number < 1 for Medical record for '%s'.\n", tag);
    return;
  }
  const char* date = FieldText(row, "Date");
  if (date == nullptr) {
    std::printf("\tERROR: Missing 'Date' in Medical record for '%s'.\n", tag);
    return;
  }
  std::span<AnimalEntry> group = animals.FirstRun(tag);
  if (group.empty()) {
    std::printf("\tERROR: Unable to find animal for Medical record for '%s'.\n", tag);
    return;
  }
  const char* report = FieldText(row, "Medical_x0020_Report");
  if (report == nullptr || report[0] == '\0') return;
  std::string note = MedicalNote(report);
  for (const AnimalEntry& animal : group) WriteAnimalEntry(animal, note.c_str(), date, 0.0f, '1');
}

}  // namespace

void CSAQ_LoadVitalStats(const XmlDocument& husbandry, CollectionAnimalTable& animals) {
  ProgressLoop progress("Importing the vital statistics", ExportRowCount(husbandry));
  ExportRows rows(kFfHusbandryFile);
  long long row_number = 0;
  for (const XmlNode* row = FirstExportRow(husbandry); row != nullptr; row = XmlNextSibling(row)) {
    progress.Step();
    rows.Name(++row_number);
    if (const char* tag = TagOfType(row, "Vital Stats")) ImportVitalStats(row, tag, animals);
  }
}

void CSAQ_LoadMedicalRecords(const XmlDocument& husbandry, CollectionAnimalTable& animals) {
  ProgressLoop progress("Importing the medical records", ExportRowCount(husbandry));
  ExportRows rows(kFfHusbandryFile);
  long long row_number = 0;
  for (const XmlNode* row = FirstExportRow(husbandry); row != nullptr; row = XmlNextSibling(row)) {
    progress.Step();
    rows.Name(++row_number);
    if (const char* tag = TagOfType(row, "Medical")) ImportMedicalRecord(row, tag, animals);
  }
}
