#include "jobs/sbr/sbr_patients.h"

#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <string>

#include "jobs/patient_rows.h"
#include "jobs/sbr/sbr_conversions.h"
#include "jobs/sbr/sbr_disposition.h"
#include "jobs/sbr/sbr_notes.h"
#include "jobs/sbr/sbr_species_list.h"
#include "store/connection.h"
#include "store/disposition_store.h"
#include "store/measurement_store.h"
#include "store/record_entry_store.h"
#include "util/dates.h"
#include "util/line_reader.h"
#include "util/platform.h"
#include "util/strings.h"
#include "util/tokenizer.h"

namespace {

// This centre's settings: a water-bird rescue in California.
constexpr const char* kCountry = "USA";
constexpr const char* kHomeState = "CA";
constexpr const char* kSpeciesGroup = "avian:waterfowl";
constexpr const char* kOiled = "Oiled";

constexpr std::size_t kMaxLine = 9999;
constexpr std::size_t kMaxProblem = 32;  // longer problems are cut and marked "..."

// The log's columns that the import reads, by their index in the line.
enum SbrColumn {
  kCaseNumber = 0,
  kSpecies = 1,
  kCentre = 2,
  kOiledMarker = 3,
  kSpillName = 4,
  kSpillSigns = 5,
  kSpillArea = 6,
  kSpillType = 7,
  kSpillDepth = 8,
  kSpillPercent = 9,
  kSpillCollectedBy = 10,
  kSpillBand = 11,
  kAgeDescription = 12,
  kAgeSecondChoice = 13,
  kAgeFirstChoice = 14,
  kSex = 15,
  kDateFound = 16,
  kCityFound = 17,
  kAddressFound = 18,
  kPresentingOrg = 19,
  kAdmissionDate = 22,
  kHistory = 23,
  kExaminer = 26,
  kSamplesCollected = 27,
  kAttitude = 28,
  kKeel = 29,
  kAdmissionWeight = 30,
  kTemperature = 31,
  kDehydration = 32,
  kDehydrationDetail = 33,
  kMucousMembranes = 34,
  kAdmissionPcv = 35,
  kAdmissionBuffy = 36,
  kAdmissionTotalSolids = 37,
  kIntakeComments = 39,
  kFluids = 40,
  kNutrition = 41,
  kSupplements = 42,
  kAntibiotics = 43,
  kCns = 44,
  kHeadMouth = 45,
  kEyesEars = 46,
  kHeartLungs = 47,
  kGi = 48,
  kBody = 49,
  kIntegument = 50,
  kWings = 51,
  kFeet = 52,
  kLegs = 53,
  kQuickWash = 54,
  kFirstWash = 55,
  kSecondWash = 56,
  kExitPcv = 57,
  kExitTotalSolids = 58,
  kExitBuffy = 59,
  kExitWeight = 60,
  kTarsus = 61,
  kCulmen = 62,
  kExitNotes = 63,
  kFinalDate = 64,
  kPlace = 66,
  kDisposition = 67,
  kBand = 68,
  kSecondBand = 69,
  kMarkerCode = 71,
  kProblems = 72,
  kColumnCount = 73
};

// The admission record entry's notes, in order; the oiled part only for
// oiled birds.
constexpr SbrNoteLine kAdmissionHeading[] = {{"***** Admission record *****\n\n"}};
constexpr SbrNoteLine kOiledNotes[] = {
    {"***** OILED *****\n"},
    {"Spill name: %s\n", kSpillName},
    {"Spill signs: %s\n", kSpillSigns},
    {"Spill area: %s\n", kSpillArea},
    {"Spill type: %s\n", kSpillType},
    {"Spill depth: %s\n", kSpillDepth},
    {"Spill %%: %s\n", kSpillPercent},
    {"Spill collected by: %s\n", kSpillCollectedBy},
    {"Spill band: %s\n", kSpillBand},
};
constexpr SbrNoteLine kExamNotes[] = {
    {"***** EXAM *****\n"},
    {"History: %s\n", kHistory},
    {"Examiner: %s\n", kExaminer},
    {"Attitude: %s\n", kAttitude},
    {"Temp: %s\n", kTemperature},
    {"Dehydration: %s (%s)\n", kDehydration, kDehydrationDetail},
    {"Mucous membranes: %s\n", kMucousMembranes},
    {"CNS: %s\n", kCns},
    {"Head/mouth: %s\n", kHeadMouth},
    {"Eyes/ears: %s\n", kEyesEars},
    {"Heart/lungs: %s\n", kHeartLungs},
    {"GI: %s\n", kGi},
    {"Body: %s\n", kBody},
    {"Integument: %s\n", kIntegument},
    {"Wings: %s\n", kWings},
    {"Legs: %s\n", kLegs},
    {"Feet: %s\n\n", kFeet},
    {"***** Initial treatment *****\n"},
    {"Fluids: %s\n", kFluids},
    {"Nutrition: %s\n", kNutrition},
    {"Supplements: %s\n", kSupplements},
    {"Abs: %s\n", kAntibiotics},
    {"Quick wash: %s\n", kQuickWash},
    {"First wash: %s\n", kFirstWash},
    {"Second wash: %s\n", kSecondWash},
    {"\nIntake comments: %s\n", kIntakeComments},
    {"Samples collected: %s\n", kSamplesCollected},
};

// What the whole run shares.
struct SbrRun {
  explicit SbrRun(const char* run_region) : region(run_region) {}

  const char* region;
  SbrYearCounters counters{};
  SbrSpeciesList species;
};

// One line of the log and the rows it becomes.
struct SbrCase {
  char* column[kColumnCount];
  PatientRecord patient;
  PatientFinderInfo finder;
  TransferRecord transfer;
  ReleaseRecord release;
  PcvRecord admission_pcv;
  PcvRecord exit_pcv;
  float keel;
  bool oiled;

  const char* case_number() const { return column[kCaseNumber]; }
};

// A cell "longer than one character": the export writes an empty cell as a
// single character.
bool HasText(const char* cell) { return std::strlen(cell) > 1; }

void SetDefaults(SbrCase& c) {
  ResetPatientRecord(c.patient);
  c.patient.dob = "0000-00-00";
  c.patient.team = "NA";
  c.patient.status = "Reh";
  c.patient.species_group = kSpeciesGroup;

  ResetFinderInfo(c.finder, kCountry, kHomeState);

  c.transfer = {};
  c.transfer.name = "NA";
  c.transfer.addr = "NA";
  c.transfer.city = "NA";
  c.transfer.zip = "NA";
  c.transfer.county = "NA";
  c.transfer.permit = "NA";
  c.transfer.state = kHomeState;
  c.transfer.country = kCountry;

  c.release = {};
  c.release.county = "NA";
  c.release.state = "NA";
  c.release.country = kCountry;

  c.admission_pcv = {};
  c.exit_pcv = {};
  c.keel = 0;
  c.oiled = false;
}

// A line of the other centre is not this run's; any other centre text is.
bool IsOtherCentre(const char* centre, const char* region) {
  return (std::strcmp(centre, "Los Angeles") == 0 && std::strcmp(region, "LA") != 0) ||
         (std::strcmp(centre, "SF Bay") == 0 && std::strcmp(region, "SF") != 0);
}

bool ReadCaseNumber(SbrRun& run, SbrCase& c) {
  c.patient.notes.Format("Original case #: %s\n", c.case_number());
  if (!MakeSbrPatientId(c.case_number(), run.counters, c.patient.patient_id)) {
    std::printf("ERROR: Invalid or missing ID '%s'\n", c.case_number());
    return false;
  }
  return true;
}

bool ReadSpecies(const SbrRun& run, SbrCase& c) {
  const char* species = c.column[kSpecies];
  if (std::strlen(species) < 2 || LookupSbrSpecies(species, run.species, c.patient) != 0) {
    std::printf("ERROR: Invalid species '%s' for '%s'\n", species, c.case_number());
    return false;
  }
  return true;
}

void ReadAgeAndSex(SbrCase& c) {
  MapSbrAge(c.patient.age, c.column[kAgeDescription], c.column[kAgeSecondChoice], c.column[kAgeFirstChoice]);
  c.patient.ageIn = c.patient.age;
  MapSbrSex(c.column[kSex], c.patient.sex);
}

void ReadFinder(SbrCase& c) {
  ParseSlashDate(c.column[kDateFound], c.finder.found_date);  // an unreadable date is left out

  Text<1024> address{};
  address = c.column[kAddressFound];
  if (address == " ") {
    address = "";
  } else {
    TrimAndUnquote(address.data());
  }
  ParseSbrFoundAddress(address.data(), c.finder);
  if (c.column[kCityFound][0] != '\0') c.finder.found_city = c.column[kCityFound];

  if (HasText(c.column[kPresentingOrg])) StripQuotes(c.column[kPresentingOrg], c.finder.presenter_org);
}

void ReadPcv(const char* pcv, const char* total_solids, const char* buffy, const Text<11>& date, PcvRecord& record) {
  record.pcv = static_cast<int16_t>(ReadInteger(pcv));
  record.ts = static_cast<float>(ReadNumber(total_solids));
  record.buffy = static_cast<float>(ReadNumber(buffy));
  record.date = date;
}

bool ReadAdmission(SbrCase& c) {
  bool valid = true;
  if (ParseSlashDate(c.column[kAdmissionDate], c.patient.admission_date) != 0) {
    std::printf("ERROR: Invalid admission date '%s' for '%s'\n", c.column[kAdmissionDate], c.case_number());
    valid = false;
  }
  if (c.finder.found_date.empty()) c.finder.found_date = c.patient.admission_date;
  c.keel = static_cast<float>(ReadNumber(c.column[kKeel]));
  ReadPcv(c.column[kAdmissionPcv], c.column[kAdmissionTotalSolids], c.column[kAdmissionBuffy],
          c.patient.admission_date, c.admission_pcv);
  return valid;
}

bool ReadDisposition(SbrCase& c) {
  int result = MapSbrDisposition(c.column[kDisposition], c.column[kFinalDate], c.column[kPlace], c.patient,
                                 c.transfer, c.release, c.case_number());
  if (result == 1) {
    std::printf("ERROR: Invalid status '%s' for '%s'\n", c.column[kDisposition], c.case_number());
  }
  ReadPcv(c.column[kExitPcv], c.column[kExitTotalSolids], c.column[kExitBuffy], c.patient.final_date,
          c.exit_pcv);
  return result == 0;
}

void ReadMarkers(SbrCase& c) {
  if (HasText(c.column[kBand])) c.patient.band = c.column[kBand];
  if (HasText(c.column[kSecondBand])) c.patient.band = c.column[kSecondBand];
  switch (MakeSbrAuxMarker(c.column[kMarkerCode], c.patient)) {
    case 1:
      std::printf("WARNING: Invalid species '%s' for aux marker for '%s'\n", c.patient.species.c_str(),
                  c.case_number());
      break;
    case 2:
      std::printf("WARNING: Aux marker '%s' too long for '%s'\n", c.column[kMarkerCode], c.case_number());
      break;
    default:
      break;
  }
}

// Reads the cells after the centre into the records. Returns false when the
// line must not be written; the reason has been printed.
bool ReadCase(SbrCase& c) {
  bool valid = true;
  ReadAgeAndSex(c);
  ReadFinder(c);
  valid = ReadAdmission(c) && valid;
  valid = ReadDisposition(c) && valid;
  ReadMarkers(c);
  char* problems = c.column[kProblems];
  StripQuotes(problems, problems, std::strlen(problems) + 1);
  if (c.patient.status == "PR") c.patient.flags |= kFlagResident;
  c.oiled = std::strcmp(c.column[kOiledMarker], kOiled) == 0;
  return valid;
}

bool WriteAttribute(const SbrCase& c) {
  PatientAttribute attribute{};
  attribute.name = "Original case number";
  attribute.value = c.case_number();
  if (InsertPatientAttribute(c.patient.id, attribute) != 0) {
    std::printf("\tERROR - Unable to create patient attribute for '%s'\n", c.case_number());
    return false;
  }
  return true;
}

// Writes the pieces of the ';' separated list longer than two characters,
// then "Oiled" for an oiled bird whose list does not name it. Returns false
// when a piece failed; the others are still written.
bool WriteProblems(const SbrCase& c) {
  bool written = true;
  bool oiled_listed = false;
  const char* list = c.column[kProblems];
  if (HasText(list)) {
    Tokenizer pieces(list);
    for (char* piece = pieces.Next(";"); piece != nullptr; piece = pieces.Next(";")) {
      std::string problem(piece);
      if (problem.size() <= 2) continue;  // a stray code, not a problem
      if (problem.size() > kMaxProblem) problem = problem.substr(0, kMaxProblem) + "...";
      if (EqualsNoCase(problem.c_str(), kOiled)) {
        problem = kOiled;
        oiled_listed = true;
      }
      if (InsertProblem(c.patient.id, problem.c_str(), 0, c.patient.admission_date.c_str()) < 0) {
        std::printf("\tERROR - Unable to create problem record for patient '%s'!\n", c.case_number());
        written = false;
      }
    }
  }
  if (c.oiled && !oiled_listed) InsertProblem(c.patient.id, kOiled, 0, "");
  return written;
}

// A record entry of this job: nobody and nowhere named. Prints the job's
// message and returns -1 when it could not be written.
int WriteEntry(const SbrCase& c, const std::string& notes, const Text<11>& date, float weight, float keel) {
  Text<32> when{};
  when.Format("%s 12:00:00", date.c_str());
  int id = InsertRecordEntry(c.patient.id, notes.c_str(), when.c_str(), "NA", weight, keel, "NA", '0');
  if (id < 0) std::printf("\tERROR - Unable to create record entry for patient '%s'!\n", c.case_number());
  return id;
}

bool HasPcv(const PcvRecord& pcv) { return pcv.pcv > 0 || pcv.ts > 0.0f; }

// The intake notes, with weight and keel; the admission PCV hangs on it.
bool WriteAdmission(const SbrCase& c) {
  std::string notes;
  AppendNoteLines(notes, kAdmissionHeading, c.column);
  if (c.oiled) AppendNoteLines(notes, kOiledNotes, c.column);
  AppendNoteLines(notes, kExamNotes, c.column);
  WrapLongLines(notes.data(), 80);
  int entry = WriteEntry(c, EscapeSqlText(notes), c.patient.admission_date,
                         ParseWeightGrams(c.column[kAdmissionWeight]), c.keel);
  if (entry < 0) return false;  // nothing to hang the PCV on
  if (HasPcv(c.admission_pcv)) InsertPcv(entry, c.admission_pcv);
  return true;
}

bool WriteTransfer(SbrCase& c) {
  int entry = WriteEntry(c, "", c.patient.final_date, 0, 0);
  if (entry < 0) return false;
  c.transfer.patient_id = c.patient.patient_id;
  c.transfer.date = c.patient.final_date;
  if (InsertTransfer(entry, c.transfer) != 0) {
    std::printf("\tERROR - Unable to create transfer record for patient '%s'!\n", c.case_number());
    return false;
  }
  return true;
}

// The release entry carries the exit weight; the release, the exit PCV and
// the culmen hang on it, each tried even when one before it failed.
bool WriteRelease(SbrCase& c) {
  std::string notes;
  if (HasText(c.column[kExitNotes])) notes += std::string("Exit notes: ") + c.column[kExitNotes] + "\n";
  if (HasText(c.column[kTarsus])) notes += std::string("Tarsus: ") + c.column[kTarsus] + "\n";
  float exit_weight = ParseWeightGrams(c.column[kExitWeight]);
  int entry = WriteEntry(c, EscapeSqlText(notes), c.patient.final_date, exit_weight, 0);
  if (entry < 0) return false;

  bool written = true;
  ReleaseRecord& release = c.release;
  release.patient_id = c.patient.patient_id;
  release.date = c.patient.final_date;
  if (!c.patient.band.empty()) {
    release.id_type = "Leg band";
    release.band_number = c.patient.band;
  } else {
    release.id_type = "None";
  }
  if (!c.patient.aux_marker.empty()) release.aux_marker = c.patient.aux_marker;
  release.tracker_type = "None";
  if (InsertRelease(entry, release) != 0) {
    std::printf("\tERROR - Unable to create release record for patient '%s'!\n", c.case_number());
    written = false;
  }
  if (HasPcv(c.exit_pcv) && InsertPcv(entry, c.exit_pcv) != 0) {
    std::printf("\tERROR - Unable to create PCV record for patient '%s'!\n", c.case_number());
    written = false;
  }
  float culmen = ParseCulmenMm(c.column[kCulmen]);
  if (culmen > 0.0f) {
    BiometricRecord biometric{};
    biometric.date = c.patient.final_date;
    biometric.culmen = culmen;
    biometric.weight = exit_weight;
    if (InsertBiometric(entry, biometric) != 0) {
      std::printf("\tERROR - Unable to create BIOMETRIC record for patient '%s'!\n", c.case_number());
      written = false;
    }
  }
  return written;
}

// Writes the rows of a line that was read whole; each step runs only while
// every step before it succeeded. Returns true when all were written.
bool WriteCase(SbrCase& c) {
  if (!InsertPatientWithFinder(c.patient, c.finder, c.case_number())) return false;
  if (!WriteAttribute(c)) return false;
  if (!WriteProblems(c)) return false;
  if (InsertImportNote(c.patient) < 0) {
    std::printf("\tERROR - Unable to create record entry for patient '%s'!\n", c.case_number());
    return false;
  }
  if (!WriteAdmission(c)) return false;
  if (c.patient.status == "T") return WriteTransfer(c);
  if (c.patient.status == "R") return WriteRelease(c);
  return true;
}

// Imports one line; true when it became a patient with all its rows.
bool ImportLine(const std::string& text, SbrRun& run) {
  SbrCase c;
  SetDefaults(c);
  Tokenizer tokenizer(text);
  int found = TakeFields(tokenizer, c.column, kColumnCount, "\t", "\t\r\n");
  char no_case_number[] = "";
  if (found == 0) c.column[kCaseNumber] = no_case_number;  // tabs only: a line without a single cell
  // On a short line the last cell still holds the line end.
  if (found > 0 && found < kColumnCount) TrimRight(c.column[found - 1]);

  // The case number is taken first, so a refused line keeps its place in
  // the year's numbering.
  bool valid = ReadCaseNumber(run, c);
  if (!HasFields(found, kColumnCount, c.case_number())) return false;
  valid = ReadSpecies(run, c) && valid;
  if (IsOtherCentre(c.column[kCentre], run.region)) return false;
  valid = ReadCase(c) && valid;
  return valid && WriteCase(c);
}

}  // namespace

int ImportSbrPatients(const char* region) {
  Text<64> file_name{};
  file_name.Format("%sSBR_%s.txt", kCurrentFolder, region);
  std::printf("Loading patient data from '%s'\n", file_name.c_str());
  LineReader reader(file_name.c_str(), kMaxLine);
  if (!reader.CanRead()) {
    std::printf("Unable to open '%s'\n", file_name.c_str());
    return 1;
  }
  SbrRun run(region);
  LoadSbrSpeciesList(run.species);

  int imported = 0;
  std::string text;
  reader.ReadLine(text);  // header
  while (reader.ReadLine(text)) {
    if (IsEmptyLine(text)) continue;  // an empty line holds no case; any other goes through
    if (ImportLine(text, run)) ++imported;
  }
  std::printf("Imported %d patients\n", imported);
  return 0;
}
