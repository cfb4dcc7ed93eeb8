#include "jobs/csaq_ff/csaq_ff_biometrics.h"

#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <unordered_map>

#include "jobs/csaq_ff/csaq_ff_export.h"
#include "jobs/csaq_ff/csaq_ff_patient_finder.h"
#include "store/connection.h"
#include "store/measurement_store.h"
#include "store/patient_store.h"
#include "store/record_entry_store.h"
#include "util/progress.h"
#include "util/read_losses.h"
#include "util/strings.h"

namespace {

constexpr const char* kTurtleLogFile = "./LoggerHeadDailyLogs.xml";
constexpr const char* kSnakeTableFile = "./SnakeStatTable.xml";

struct CodeByName {
  const char* piece;  // looked for anywhere in the text, letter case counting
  const char* code;
};

constexpr CodeByName kSnakeCodes[] = {
    {"Yellow rat snake", "YRATSNAKE"},      {"Corn snake", "CORNSNAKE"},
    {"Black rat snake", "BLACKRATSNAKE"},   {"Eastern kingsnake", "EKINGSNAKE"},
    {"Northern Pine Snake", "NORPINESNAKE"},
};

// Lengths come in centimetres and are stored in millimetres.
constexpr float kMillimetresPerCentimetre = 10.0f;

float Millimetres(const XmlNode* row, const char* element) {
  const char* text = FieldText(row, element);
  // "68 cm" only repeats the unit the element is in.
  double centimetres = text != nullptr ? ReadNumber(text, NumberRest::kUnit) : 0.0;
  return static_cast<float>(centimetres) * kMillimetresPerCentimetre;
}

// Patient keys found so far: a daily log names the same animal day after day.
class PatientFinder {
 public:
  // The first patient of `species` whose notes end with `tag`; 0 when none.
  int BySpecies(const char* species, const std::string& tag) {
    return Cached(std::string(species) + '\n' + tag, [&] { return notes_.Find(species, tag); });
  }
  // The first patient whose notes end with `tag`; 0 when none or the tag is empty.
  int ByTag(const std::string& tag) {
    if (tag.empty()) return 0;  // would match every patient
    return Cached(tag, [&] { return notes_.Find(nullptr, tag); });
  }

 private:
  template <typename Query>
  int Cached(const std::string& key, Query query) {
    auto found = keys_.find(key);
    if (found != keys_.end()) return found->second;
    int key_id = query();
    keys_.emplace(key, key_id);
    return key_id;
  }
  NotesTagFinder notes_;
  std::unordered_map<std::string, int> keys_;
};

const char* TextOrEmpty(const char* text) { return text != nullptr ? text : ""; }

// Writes the weighed record entry of a measurement and, when `biometric` is
// given, its biometric row. Prints the failure and returns false when the
// job has to stop.
bool WriteMeasurement(int patient, const std::string& date, float weight, const BiometricRecord* biometric) {
  int entry_id = InsertRecordEntry(patient, "", date.c_str(), "NA", weight, 0.0f, "NA", '0');
  if (entry_id < 0) {
    std::printf("ERROR - Unable to create record entry for patient '%d'!\n", patient);
    return false;
  }
  if (biometric != nullptr && InsertBiometric(entry_id, *biometric) != 0) {
    std::printf("ERROR - Unable to create BIOMETRIC record for patient '%d'!\n", patient);
    return false;
  }
  return true;
}

struct Counts {
  int errors = 0;
  int inserted = 0;
};

// One daily-log row: returns false when the job has to stop.
bool ImportTurtleRow(const XmlNode* row, PatientFinder& patients, Counts& counts) {
  const char* turtle = TextOrEmpty(FieldText(row, "Turtle"));
  std::string tag;
  const char* species = TurtleSpeciesCode(turtle, tag);
  int patient = species != nullptr ? patients.BySpecies(species, tag) : 0;
  if (patient == 0) {
    std::printf("ERROR: unable to find patient id for '%s'\n", turtle);
    ++counts.errors;
    return true;
  }
  std::string date = DateBeforeT(FieldText(row, "Report_x0020_Date"));
  BiometricRecord biometric{};
  biometric.date = date;
  biometric.curved_NPN_length = Millimetres(row, "Curved_x0020_Length_x0020_N-PN_x0020__x0028_cm_x0029_");
  biometric.straight_NPN_length = Millimetres(row, "Straight_x0020_Length_x0020_N-PN_x0020__x0028_cm_x0029_");
  biometric.curved_carapace_width = Millimetres(row, "Curved_x0020_Width_x0020__x0028_cm_x0029_");
  biometric.straight_carapace_width = Millimetres(row, "Staight_x0020_Width_x0020__x0028_cm_x0029_");
  biometric.weight = static_cast<float>(FieldNumber(row, "Weight_x0020__x0028_g_x0029_"));
  if (!WriteMeasurement(patient, date, biometric.weight, &biometric)) return false;
  ++counts.inserted;
  return true;
}

// One snake-table row: returns false when the job has to stop.
bool ImportSnakeRow(const XmlNode* row, PatientFinder& patients, Counts& counts) {
  const char* snake = FieldText(row, "Snake");
  if (snake == nullptr || snake[0] == '\0') return true;
  const char* species = SnakeSpeciesCode(snake);
  int patient = species != nullptr ? patients.BySpecies(species, snake) : 0;
  if (patient == 0) {
    std::printf("ERROR: unable to find patient id for '%s'\n", snake);
    ++counts.errors;
    return true;
  }
  const char* weight = FieldText(row, "Weight_x0020__x0028_g_x0029_");
  if (weight == nullptr) return true;
  if (!WriteMeasurement(patient, DateBeforeT(FieldText(row, "Report_x0020_Date")),
                        static_cast<float>(ReadNumber(weight)), nullptr)) {
    return false;
  }
  ++counts.inserted;
  return true;
}

// Vital-statistics lengths, in this order: a later one overwrites an earlier
// one for the same column.
struct LengthColumn {
  const char* element;
  float BiometricRecord::*column;
};

constexpr LengthColumn kVitalLengths[] = {
    {"Length_x0020_Overall", &BiometricRecord::length},
    {"Curved_x0020_Length", &BiometricRecord::curved_NPN_length},
    {"CCL_x0020__x0028_Curved-Nuchal_x0020_Notch_x0020_to_x0020_Posterior_x0020_Tip_x0029_",
     &BiometricRecord::curved_NPN_length},
    {"SCL_x0020__x0028_Straight_x0020_Carapace_x0020_Length_x0029_", &BiometricRecord::straight_NPN_length},
    {"CCW_x0020__x0028_Carapace_x0020_Width_x0020_Curved_x0029_", &BiometricRecord::curved_carapace_width},
    {"CSW_x0020__x0028_Carapace_x0020_Width_x0020_Straight_x0029_", &BiometricRecord::straight_carapace_width},
    {"Fork_x0020_Length", &BiometricRecord::fork_length},
    {"Overall_x0020_Length", &BiometricRecord::length},
};

// One husbandry row: returns false when the job has to stop.
bool ImportVitalStatsRow(const XmlNode* row, PatientFinder& patients, Counts& counts) {
  const char* type = FieldText(row, kFfDataType);
  if (type == nullptr || !EqualsNoCase(type, "Vital Stats")) return true;
  const char* tag = TextOrEmpty(FieldText(row, kFfIdentityTag));
  int patient = patients.ByTag(tag);
  if (patient == 0) {
    std::printf("ERROR: unable to find patient id for '%s'\n", tag);
    ++counts.errors;
    return true;
  }
  std::string date = DateBeforeT(FieldText(row, "Date"));
  BiometricRecord biometric{};
  biometric.date = date;
  biometric.weight = VitalStatsGrams(TextOrEmpty(FieldText(row, "Weight")));
  for (const LengthColumn& length : kVitalLengths) {
    if (FieldText(row, length.element) != nullptr) biometric.*length.column = Millimetres(row, length.element);
  }
  if (!WriteMeasurement(patient, date, biometric.weight, &biometric)) return false;
  ++counts.inserted;
  return true;
}

template <typename ImportRow>
bool ImportRows(const XmlDocument& table, const char* file, PatientFinder& patients, Counts& counts,
                ImportRow import_row) {
  ProgressLoop progress("Importing the measurements", ExportRowCount(table));
  ExportRows rows(file);
  long long row_number = 0;
  for (const XmlNode* row = FirstExportRow(table); row != nullptr; row = XmlNextSibling(row)) {
    progress.Step();
    rows.Name(++row_number);
    if (!import_row(row, patients, counts)) return false;
  }
  return true;
}

bool LoadTable(XmlDocument& table, const char* file_name) {
  std::printf("Loading BIOMETRIC data from '%s'.\n", file_name);
  if (XmlLoadFile(table, file_name) == 0) return true;
  std::printf("Unable to load biometric data!");
  return false;
}

// The measurements need their animals: says so when no patient exists yet.
bool HavePatients() {
  if (CountPatients() > 0) return true;
  std::printf("No patients found: run the CSAQ_FF patient and rehab imports first!\n");
  return false;
}

}  // namespace

const char* TurtleSpeciesCode(const char* turtle, std::string& tag) {
  tag.clear();
  int blanks_before_tag = 0;
  const char* species = nullptr;
  if (std::strstr(turtle, "Loggerhead ") != nullptr) {
    species = "LOGGER";
    blanks_before_tag = 1;
  } else if (std::strstr(turtle, "Green turtle ") != nullptr) {
    species = "GREENTURTLE";
    blanks_before_tag = 2;
  } else {
    return nullptr;
  }
  const char* rest = turtle;
  for (int i = 0; i < blanks_before_tag && rest != nullptr; ++i) {
    rest = std::strchr(rest, ' ');
    if (rest != nullptr) ++rest;
  }
  if (rest != nullptr) tag = rest;
  return species;
}

const char* SnakeSpeciesCode(const char* snake) {
  for (const CodeByName& entry : kSnakeCodes) {
    if (std::strstr(snake, entry.piece) != nullptr) return entry.code;
  }
  return nullptr;
}

float VitalStatsGrams(const char* weight) {
  float grams = static_cast<float>(ReadNumber(weight, NumberRest::kUnit));
  return LowerAscii(weight).find("kg") != std::string::npos ? grams * 1000.0f : grams;
}

int ImportCsaqFfBiometrics() {
  XmlDocument table;
  if (!LoadTable(table, kTurtleLogFile)) return 1;
  if (!HavePatients()) return 1;
  PatientFinder patients;
  Counts turtles;
  if (!ImportRows(table, kTurtleLogFile, patients, turtles, ImportTurtleRow)) return 1;
  std::printf("%d errors\n", turtles.errors);
  std::printf("Inserted %d records\n", turtles.inserted);

  if (!LoadTable(table, kSnakeTableFile)) return 1;
  Counts snakes;
  if (!ImportRows(table, kSnakeTableFile, patients, snakes, ImportSnakeRow)) return 1;
  std::printf("%d errors\n", snakes.errors);
  std::printf("Inserted %d records\n", snakes.inserted);
  return 0;
}

int ImportCsaqFfVitalStats() {
  XmlDocument husbandry;
  std::printf("Loading VITAL STAT data from '%s'.\n", kFfHusbandryFile);
  if (XmlLoadFile(husbandry, kFfHusbandryFile) != 0) {
    std::printf("Unable to load vital stat data!");
    return 1;
  }
  if (!HavePatients()) return 1;
  PatientFinder patients;
  Counts vitals;
  if (!ImportRows(husbandry, kFfHusbandryFile, patients, vitals, ImportVitalStatsRow)) return 1;
  std::printf("%d errors\n", vitals.errors);
  std::printf("Inserted %d vital records records\n", vitals.inserted);
  return 0;
}
