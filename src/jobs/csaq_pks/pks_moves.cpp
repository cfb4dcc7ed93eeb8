// Measurements ("./Measurements.xml", pass 11), enclosure moves
// ("./EnclosureMoves.xml", pass 12) and the locations of animals that have
// left the collection (pass 13), written once the patient rows exist.
#include <cstdio>
#include <cstring>
#include <new>
#include <string>

#include "jobs/csaq_pks/pks_job.h"
#include "jobs/csaq_pks/pks_locations.h"
#include "jobs/csaq_pks/pks_measurements.h"
#include "jobs/csaq_pks/pks_text.h"
#include "store/connection.h"
#include "store/measurement_store.h"
#include "store/patient_store.h"
#include "util/strings.h"

namespace {

constexpr int kLineWidth = 80;

constexpr const char* kFallsLake = "Falls Lake";
constexpr const char* kFallsLakeReservoir = "Falls Lake Reservoir";

bool HasText(const char* text) { return text != nullptr && text[0] != '\0'; }

// ---------------------------------------------------------------------------
// Pass 11: measurements

// "2013-04-02T10:15:00+05:00" is entered as "2013-04-02 10:15:00".
std::string MeasurementEntryDate(const char* measurement_date) {
  std::string date(measurement_date);
  std::size_t t = date.find('T');
  if (t != std::string::npos) date[t] = ' ';
  return date.substr(0, date.find('+'));
}

// The value converted into `biometric`, or the reason it was not.
void ConvertValue(const char* type, const char* unit, const char* value_text, const char* gan,
                  BiometricRecord& biometric) {
  double value = 0;
  bool numeric = ReadDecimal(value_text, value);
  switch (ConvertMeasurement(type, unit, value, biometric)) {
    case MeasurementOutcome::kStored:
      if (!numeric) std::printf("\tERROR - measurement value '%s' is no number for GAN=%s\n", value_text, gan);
      break;
    case MeasurementOutcome::kUnknownUnit:
      std::printf("\tERROR - unknown measurement unit '%s'\n", unit);
      break;
    case MeasurementOutcome::kUnknownType:
      std::printf("\tERROR - unknown measurement type '%s'\n", type);
      break;
  }
}

void WriteMeasurement(ZooImport& job, const XmlNode* record) {
  const char* gan = Shown(XmlChildText(record, "GAN"));
  const char* local_id = XmlChildText(record, "Local_ID");
  const char* measurement_date = XmlChildText(record, "MeasurementDate");
  const char* type = XmlChildText(record, "MeasurementTypeName");
  const char* value_text = XmlChildText(record, "MeasurementValueEntered");
  const char* unit = XmlChildText(record, "UnitOfMeasurement");
  const char* group = XmlChildText(record, "MeasurementGroup");
  bool milestone = group != nullptr && std::strcmp(group, "Development Milestones") == 0;
  bool accepted = true;
  if (local_id == nullptr || measurement_date == nullptr || type == nullptr || value_text == nullptr) {
    std::printf("\tERROR: Missing local id, date, type or value  for GAN=%s\n", gan);
    accepted = false;
  }
  if (unit == nullptr && !milestone) {
    std::printf("\tERROR: Missing units for GAN=%s\n", gan);
    accepted = false;
  }
  if (!accepted) return;
  AnimalRun run;
  if (!job.animals.FindAnimalRun(local_id, run)) {
    std::printf("\tERROR: Processing measurements - cannot find '%s'\n", local_id);
    return;
  }
  std::string entry_date = MeasurementEntryDate(measurement_date);

  std::string text;
  BiometricRecord biometric{};
  if (milestone) {
    text = std::string("Developmental Milestone: ") + type + "\n";
  } else {
    ConvertValue(type, unit, value_text, gan, biometric);
  }
  text = EscapeSqlText(text);
  WrapLongLines(text.data(), kLineWidth);
  const char* measured_by = XmlChildText(record, "MeasuredByPerson");
  Text<32> who{};
  who = HasText(measured_by) ? measured_by : "NA";

  // A group's measurement is taken once: it goes on the first animal only.
  if (job.animals[run.first].refused) return;
  int entry_id = InsertRecordEntry(PatientKey(job.animals[run.first]), text.c_str(), entry_date.c_str(),
                                   who.c_str(), biometric.weight, 0, "NA", '0');
  if (entry_id < 0) {
    std::printf("\tERROR: Creating measurement record entry for '%s'\n", local_id);
  } else if (text.empty()) {
    biometric.date = entry_date.substr(0, entry_date.find(' '));
    if (InsertBiometric(entry_id, biometric) != 0) {
      std::printf("\tERROR: Creating biometric record for '%s'\n", local_id);
    }
  }
}

// ---------------------------------------------------------------------------
// Pass 12: moves

void WriteMove(ZooImport& job, const LocationNames& locations, const XmlNode* record) {
  const char* local_id = XmlChildText(record, "Local_ID");
  const char* enclosure_name = XmlChildText(record, "EnclosureName");
  const char* moved_in = XmlChildText(record, "MovedInDate");
  if (local_id == nullptr || enclosure_name == nullptr || moved_in == nullptr) {
    std::printf("\tERROR: Missing local id, enclosure or date\n");
    return;
  }
  AnimalRun run;
  if (!job.animals.FindAnimalRun(local_id, run)) {
    std::printf("\tERROR: Processing moves - cannot find '%s'\n", local_id);
    return;
  }
  // Kept whole: the name goes into the entry text and the messages, not into a field.
  std::string enclosure = enclosure_name;
  // The lake's location row carries its full name.
  bool falls_lake = enclosure == kFallsLake;
  if (falls_lake) {
    std::printf("\tWARNING: Modifying location: '%s'\n", enclosure.c_str());
    enclosure = kFallsLakeReservoir;
  }
  DropFirstApostrophe(enclosure);

  std::string text = "Move To: " + enclosure;
  const char* reason = XmlChildText(record, "TransferReason");
  if (HasText(reason)) text.append(", Reason: ").append(reason);
  WrapLongLines(text.data(), kLineWidth);
  text = EscapeSqlText(text);  // after the wrapping, which counts the text as it reads
  const char* responsible = XmlChildText(record, "ResponsibleParty");
  Text<32> who{};
  who = HasText(responsible) ? responsible : "NA";
  std::string entry_date = std::string(moved_in) + " 12:00:00";

  const char* location = locations.FindLocationNameByDescription(enclosure.c_str());
  // The enclosure import gives the lake's row the full name and keeps the
  // export's "Falls Lake" as its description: the move finds it by name.
  if (location == nullptr && falls_lake) location = locations.FindLocationName(kFallsLakeReservoir);
  for (int position = run.first; position <= run.last; ++position) {
    const AnimalRecord& animal = job.animals[position];
    if (animal.refused) continue;
    if (InsertRecordEntry(PatientKey(animal), text.c_str(), entry_date.c_str(), who.c_str(), 0, 0, "NA", '0') < 1) {
      std::printf("\tERROR: Processing move to '%s' for '%s' '%s'\n", enclosure.c_str(), local_id,
                  entry_date.c_str());
    }
    if (location == nullptr) {
      std::printf("\tERROR: Can't find name for enclosure '%s'\n", enclosure.c_str());
    } else if (SetPatientLocationByKey(PatientKey(animal), location) != 0) {
      std::printf("\tERROR: Processing move to '%s' for '%s' - can't update location\n", location, local_id);
    }
  }
}

}  // namespace

bool WriteMeasurements(ZooImport& job) {
  std::printf("Loading measurements...\n");
  if (XmlLoadFile(job.work, kMeasurementsFile) != 0) {
    std::printf("Unable to parse measurements file '%s'\n", kMeasurementsFile);
    return false;
  }
  int visited = VisitRecords(job, kMeasurementsFile, [&](const XmlNode* record) { WriteMeasurement(job, record); });
  std::printf("Processed %d measurements\n", visited);
  return true;
}

bool WriteMoves(ZooImport& job) {
  std::printf("Loading patient moves...\n");
  if (XmlLoadFile(job.work, kMovesFile) != 0) {
    std::printf("Unable to parse enclosure moves file '%s'\n", kMovesFile);
    return false;
  }
  LocationNames locations;
  try {
    locations.Load();
  } catch (const std::bad_alloc&) {
    std::printf("\tERROR: Out of memory\n");
    return false;
  }
  int visited = VisitRecords(job, kMovesFile, [&](const XmlNode* record) { WriteMove(job, locations, record); });
  std::printf("Processed %d moves\n", visited);
  return true;
}

bool ClearNonResidentLocations(ZooImport&) {
  std::printf("Clearing locations for animals that are no longer residents...\n");
  // Every patient of the database, not only those of this run.
  if (ExecuteSql(kEscapeTexts, "update patient set location='' where status != 'PR'", {}) != 0) {
    std::printf("\tERROR: Unable to clear locations for non-residents\n");
  }
  return true;
}
