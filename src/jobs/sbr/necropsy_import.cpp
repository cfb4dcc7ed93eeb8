#include "jobs/sbr/necropsy_import.h"

#include <cstdio>
#include <cstring>
#include <string>

#include "jobs/sbr/sbr_notes.h"
#include "store/connection.h"
#include "store/patient_store.h"
#include "store/record_entry_store.h"
#include "util/dates.h"
#include "util/line_reader.h"
#include "util/progress.h"
#include "util/strings.h"
#include "util/tokenizer.h"

namespace {

constexpr const char* kInputFile = "./Necropsy.txt";
constexpr std::size_t kMaxLine = 4999;

// The report's columns that the import reads, by their index in the line.
enum Column {
  kAirSacs = 1,
  kBillMouth = 2,
  kBrain = 3,
  kCarcassCondition = 4,
  kCaseNumber = 5,
  kCloaca = 6,
  kComments = 7,
  kCulmen = 8,
  kAbnormalities = 9,
  kPostNecropsyDiagnosis = 10,
  kInitialDiagnosis = 11,
  kEsophagus = 14,
  kExaminer = 15,
  kFeathers = 16,
  kFinalDiagnosis = 17,
  kGallBladder = 18,
  kHead = 19,
  kHeart = 20,
  kHistopathology = 21,
  kIntestinalFat = 22,
  kIntestines = 23,
  kKeywords = 24,
  kKidneys = 25,
  kLiver = 26,
  kLungs = 27,
  kMicrobiology = 29,
  kMolting = 30,
  kMusculoskeletal = 31,
  kSqFat = 32,
  kDate = 33,
  kWeight = 34,
  kNutrition = 35,
  kOther = 36,
  kPancreas = 37,
  kParasitology = 38,
  kPectoralMuscle = 39,
  kProventriculus = 40,
  kReproductiveTract = 41,
  kSex = 42,
  kSkin = 43,
  kSpleen = 45,
  kTarsus = 46,
  kThyroidAdrenals = 48,
  kTrachea = 50,
  kVanFranekerScore = 51,
  kVentriculus = 52,
  kColumnCount = 53
};

// Free-text cells that the report writes in double quotes.
constexpr Column kQuotedColumns[] = {kAbnormalities, kPostNecropsyDiagnosis, kInitialDiagnosis, kFinalDiagnosis};

constexpr SbrNoteLine kReportNotes[] = {
    {"***** NECROPSY REPORT *****\n\n"},
    {"Examiner: %s\n\n", kExaminer},
    {"General\n"},
    {"Carcass condition: %s\n", kCarcassCondition},
    {"State of nutrition: %s\n", kNutrition},
    {"Molting: %s\n", kMolting},
    {"van Franeker score: %s\n", kVanFranekerScore},
    {"SQ fat: %s\n", kSqFat},
    {"Intestinal fat: %s\n", kIntestinalFat},
    {"Pectoral muscle: %s\n", kPectoralMuscle},
    {"Tarsus (mm): %s\n", kTarsus},
    {"Culmen (mm): %s\n", kCulmen},
    {"Weight: %s\n\n", kWeight},
    {"Feathers: %s\n", kFeathers},
    {"Skin: %s\n", kSkin},
    {"Musculoskeletal system: %s\n", kMusculoskeletal},
    {"Head: %s\n", kHead},
    {"Bill/mouth: %s\n", kBillMouth},
    {"Heart: %s\n", kHeart},
    {"Lungs: %s\n", kLungs},
    {"Trachea: %s\n", kTrachea},
    {"Air sacs: %s\n", kAirSacs},
    {"Liver: %s\n", kLiver},
    {"Gall bladder: %s\n", kGallBladder},
    {"Esophagus: %s\n", kEsophagus},
    {"Proventriculus: %s\n", kProventriculus},
    {"Ventriculus: %s\n", kVentriculus},
    {"Intestines: %s\n", kIntestines},
    {"Cloaca: %s\n", kCloaca},
    {"Pancreas (color): %s\n", kPancreas},
    {"Spleen (size): %s\n", kSpleen},
    {"Kidneys: %s\n", kKidneys},
    {"Reproductive tract: %s\n", kReproductiveTract},
    {"Thyroid/adrenals: %s\n", kThyroidAdrenals},
    {"Brain: %s\n", kBrain},
    {"Other: %s\n", kOther},
    {"Description of abnormalities:\n%s\n", kAbnormalities},
    {"Diagnosis - Initial summary:\n%s\n", kInitialDiagnosis},
    {"Diagnosis - Post necropsy:\n%s\n", kPostNecropsyDiagnosis},
    {"Comments/Summary:\n%s\n", kComments},
    {"Histopathology tissues: %s\n", kHistopathology},
    {"Microbiology: %s\n", kMicrobiology},
    {"Parasitology: %s\n", kParasitology},
    {"Cytology:\n"},  // filled in by hand later
    {"Keywords: %s\n", kKeywords},
    {"Final diagnosis: %s\n", kFinalDiagnosis},
};

// Imports one whole report; true when its record entry was written.
bool ImportReport(char* const column[kColumnCount]) {
  const char* case_number = column[kCaseNumber];
  Text<11> date{};
  if (column[kDate][0] != '\0' && ParseSlashDate(column[kDate], date) != 0) {
    std::printf("\tERROR: Invalid date - '%s'\n", column[kDate]);
  }
  std::printf("Case #='%s', date='%s', sex='%s', VF score=%d\n", case_number, date.c_str(), column[kSex],
              ToInt(column[kVanFranekerScore]));

  int patient_key = FindPatientByAttribute("Original case number", case_number);
  if (patient_key == 0) {
    std::printf("\tERROR: Unable to find '%s'\n", case_number);
    return false;
  }
  Text<32> when{};
  if (date.empty()) {
    when = NowTimestamp();  // an undated report is dated with the import
  } else {
    when.Format("%s 12:00:00", date.c_str());
  }

  for (Column quoted : kQuotedColumns) {
    char* cell = column[quoted];
    StripQuotes(cell, cell, std::strlen(cell) + 1);
  }
  std::string notes;
  AppendNoteLines(notes, kReportNotes, column);
  WrapLongLines(notes.data(), 80);
  if (InsertRecordEntry(patient_key, EscapeSqlText(notes).c_str(), when.c_str(), "NA", 0, 0, "NA", '0') < 0) {
    std::printf("\tERROR - Unable to create record entry for '%s'!\n", case_number);
    return false;
  }
  return true;
}

// The log shows a cut file as one that ends there; stderr tells the
// operator where and why the reading stopped.
void ReportStop(int found, const char* case_number) {
  std::fflush(stdout);  // keeps the notice after the log lines it follows on a terminal
  ProgressHide();
  std::fprintf(stderr,
               "Note: '%s' was read up to a line with only %d of %d fields (case '%s'); the lines after it "
               "were not read\n",
               kInputFile, found, kColumnCount, case_number);
}

}  // namespace

int FindPatientByAttribute(const char* name, const char* value) {
  SqlResult result = QuerySql(
      kEscapeTexts,
      "select p.patient_id from attributes a, patient p where a.name='%s' and a.value='%s' and a.patient_id=p.id;",
      {name, value});
  MYSQL_ROW row = result.NextRow();
  if (row == nullptr || row[0] == nullptr) return 0;
  return GetPatientKey(row[0]);
}

void ImportNecropsyReports() {
  std::printf("Loading necropsy data from '%s'\n", kInputFile);
  LineReader reader(kInputFile, kMaxLine);
  if (!reader.CanRead()) {
    std::printf("Unable to open '%s'\n", kInputFile);
    return;
  }
  int imported = 0;
  std::string text;
  reader.ReadLine(text);  // header
  while (reader.ReadLine(text)) {
    while (!text.empty() && (text.back() == '\n' || text.back() == '\r')) text.pop_back();
    Tokenizer tokenizer(text);
    char* column[kColumnCount];
    int found = TakeEveryField(tokenizer, column, kColumnCount, "\t");
    // Reports are exported one per line with every cell; a line that lacks
    // one marks where the file was cut or mangled, so the import ends there
    // as at the end of the file.
    if (found < kColumnCount) {
      ReportStop(found, found > kCaseNumber ? column[kCaseNumber] : "");
      break;
    }
    if (ImportReport(column)) ++imported;
  }
  std::printf("Imported %d necropsy reports\n", imported);
}
