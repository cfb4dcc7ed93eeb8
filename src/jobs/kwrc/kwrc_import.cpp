#include "jobs/kwrc/kwrc_import.h"

#include <cstdio>
#include <cstring>
#include <string>

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
constexpr int kFieldCount = 14;

struct Outcome {
  const char* word;
  const char* status;
  const char* same_day_status;  // when admitted and ended on the same date
};

constexpr Outcome kOutcomes[] = {
    {"Release", "R", "R"},
    {"Euthanasia", "E", "E24"},
    {"Death", "D", "D24"},
    {"Escape", "ESC", "ESC"},
    {"transferred", "T", "T"},
};

// The columns of one source line, numbered from 1 as in the export.
struct KwrcLine {
  char* field[kFieldCount + 1];
  const char* case_number() const { return field[1]; }
};

void FillPatient(const KwrcLine& line, PatientRecord& patient, PatientFinderInfo& finder) {
  ResetPatientRecord(patient);
  finder = {};
  finder.presenter_country = "CHINA";

  if (std::strlen(line.field[1]) == 5) {
    patient.patient_id.Format("0%s", line.field[1]);
  } else {
    patient.patient_id = line.field[1];
  }
  patient.species = line.field[2];
  patient.band = line.field[4];
  patient.injury_cause = line.field[14];
}

void FillFinder(const KwrcLine& line, PatientFinderInfo& finder) {
  Text<256> address{};
  StripQuotes(line.field[7], address);
  Text<64> street{};
  Text<32> city{}, district{}, province{}, country{};
  SplitKwrcAddress(address.c_str(), street, city, district, province, country);
  finder.found_addr = street;
  finder.found_district = district;
  finder.found_city = city;
  finder.found_state = province;
  finder.found_country = country;
  StripQuotes(line.field[8], finder.found_hx);
}

// The first problem ends at ';', every later one at ','.
void WriteProblems(const KwrcLine& line, const PatientRecord& patient) {
  Text<256> list{};
  StripQuotes(line.field[13], list);
  Tokenizer problems(list.view());
  const char* separators = ";";
  for (char* piece = problems.Next(separators); piece != nullptr; piece = problems.Next(separators)) {
    separators = ",";
    Text<128> problem{};
    problem = piece;
    if (InsertProblem(patient.id, problem.c_str(), 0, "") < 0) {
      std::printf("Unable to create problem record for '%s'\n", patient.patient_id.c_str());
    }
  }
}

int WriteSummaryEntry(const KwrcLine& line, const PatientRecord& patient) {
  Text<256> summary{};
  StripQuotes(line.field[12], summary);
  Text<1024> notes{};
  notes.Format("Data imported into Corvana for previous database\n"
               "--------------------------------------------------\n"
               "Clinical summary: %s",
               summary.c_str());
  Text<32> date{};
  date.Format("%s 12:00:00", patient.admission_date.c_str());
  return InsertRecordEntry(patient.id, EscapeSqlText(notes).c_str(), date.c_str(), "NA", 0, 0, "NA", '0');
}

int WriteRelease(const KwrcLine& line, const PatientRecord& patient, int record_entry_id) {
  ReleaseRecord release{};
  release.patient_id = patient.patient_id;
  release.date = patient.final_date;
  release.how_age = "NA";
  release.how_sex = "NA";
  release.tracker_type = "None";
  release.pub_priv = "UNK";

  Text<256> site{};
  StripQuotes(line.field[11], site);
  Text<64> street{};
  Text<32> city{}, district{}, province{}, country{};
  SplitKwrcAddress(site.c_str(), street, city, district, province, country);
  std::string location(street.view());
  if (!district.empty()) {
    if (!location.empty()) location += ", ";
    location += district.view();
    location += " District";
  }
  release.location = location;
  release.city = city;
  release.state = province;
  release.country = country;

  if (patient.band == "UNK") {
    release.band_number = "NO BAND";
    release.id_type = "None";
  } else {
    Text<32> band{};
    band = patient.band;
    release.band_number = band.view().substr(0, 15);
    release.id_type = "Leg band";
  }
  return InsertRelease(record_entry_id, release);
}

int WriteTransfer(const KwrcLine& line, const PatientRecord& patient, int record_entry_id) {
  TransferRecord transfer{};
  transfer.patient_id = patient.patient_id;
  transfer.date = patient.final_date;
  transfer.reason = "E/S";
  transfer.name = line.field[11];
  transfer.country = "CHINA";
  return InsertTransfer(record_entry_id, transfer);
}

// The case number goes to one case only: a blank one, or one that an earlier
// case of the file already has (a 16-character number cut to 15), would make
// the two animals share releases and transfers. False, reported, when taken.
bool ClaimCaseNumber(const KwrcLine& line, const PatientRecord& patient, long long line_number,
                     RunCaseNumbers& case_numbers) {
  if (IsBlankCaseNumber(patient.patient_id.view())) {
    std::printf("\tERROR - blank case number on line %lld, line skipped\n", line_number);
    return false;
  }
  if (const std::string* owner = case_numbers.Claim(patient.patient_id.view(), line.case_number())) {
    std::printf("\tERROR - case number '%s' of '%s' already belongs to '%s', line skipped\n",
                patient.patient_id.c_str(), line.case_number(), owner->c_str());
    return false;
  }
  return true;
}

// Imports one case; returns true when every row of it was written.
bool ImportCase(const KwrcLine& line, long long line_number, RunCaseNumbers& case_numbers) {
  PatientRecord patient;
  PatientFinderInfo finder;
  FillPatient(line, patient, finder);

  if (ParseSlashDate(line.field[3], patient.admission_date) != 0) {
    std::printf("Invalid admission date '%s' - '%s'\n", line.field[3], patient.patient_id.c_str());
    return false;
  }
  if (ParseSlashDate(line.field[10], patient.final_date) != 0) {
    std::printf("Invalid final date '%s' - '%s'\n", line.field[10], patient.patient_id.c_str());
    return false;
  }
  MapKwrcOutcome(patient, line.field[9]);
  FillFinder(line, finder);

  if (!ClaimCaseNumber(line, patient, line_number, case_numbers)) return false;
  if (InsertPatient(patient) != 0) {
    std::printf("Unable to create patient record for '%s'\n", patient.patient_id.c_str());
    return false;
  }
  if (UpdatePatientFinderInfoByKey(patient.id, finder) != 0) {
    std::printf("Unable to update patient finder info for '%s'\n", patient.patient_id.c_str());
    return false;
  }
  WriteProblems(line, patient);

  int record_entry_id = WriteSummaryEntry(line, patient);
  if (record_entry_id == -1) {
    std::printf("Error creating record entry for patient id '%s'\n", patient.patient_id.c_str());
    return false;
  }
  if (patient.status == "R") {
    if (WriteRelease(line, patient, record_entry_id) != 0) {
      std::printf("Error creating release record for patient id '%s'\n", patient.patient_id.c_str());
      return false;
    }
  } else if (patient.status == "T") {
    if (WriteTransfer(line, patient, record_entry_id) != 0) {
      std::printf("Error creating transfer record for id '%s'\n", patient.patient_id.c_str());
      return false;
    }
  }
  return true;
}

}  // namespace

int MapKwrcOutcome(PatientRecord& record, const char* outcome) {
  for (const Outcome& known : kOutcomes) {
    if (EqualsNoCase(known.word, outcome)) {
      record.status = record.admission_date == record.final_date ? known.same_day_status : known.status;
      return 0;
    }
  }
  std::printf("Unknown outcome '%s\n", outcome);
  return 0;
}

int SplitKwrcAddress(const char* address, Text<64>& street, Text<32>& city, Text<32>& district,
                     Text<32>& province, Text<32>& country) {
  street = "";
  city = "";
  district = "";
  province = "";
  country = "CHINA";
  if (std::strcmp(address, "KWRC") == 0) {
    street = "KWRC";
    district = "Haidan";
    province = "Beijing";
  } else {
    Text<128> copy{};
    copy = address;
    char* text = copy.data();
    // The named part follows the first comma; without one the whole rest is it.
    auto split = [&](char* keyword, Text<32>& named) {
      *keyword = '\0';
      char* comma = std::strchr(text, ',');
      if (comma == nullptr) {
        named = text;
      } else {
        *comma = '\0';
        street = text;
        named = comma + 1;
      }
    };
    if (char* keyword = std::strstr(text, "District")) {
      province = "Beijing";
      city = "Beijing";
      split(keyword, district);
    } else if (char* province_keyword = std::strstr(text, "Province")) {
      split(province_keyword, province);
    } else {
      street = text;
    }
  }
  DropLeadingSpace(district.data());
  TrimRight(district.data());
  DropLeadingSpace(province.data());
  TrimRight(province.data());
  std::printf("Addr: '%s', District: '%s', Province: '%s'\n", street.c_str(), district.c_str(), province.c_str());
  return 0;
}

int ImportKwrcYear(int year) {
  Text<64> file_name{};
  file_name.Format("KWRC_%d.txt", year);
  LineReader reader(file_name.c_str(), kMaxLine);
  if (!reader.CanRead()) {
    std::printf("Unable to open '%s'!", file_name.c_str());
    return 1;
  }
  std::printf("Loading KWRC data for %d...\n", year);
  int imported = 0;
  RunCaseNumbers case_numbers;
  std::string text;
  reader.ReadLine(text);  // header
  while (reader.ReadLine(text)) {
    if (IsEmptyLine(text)) continue;  // an empty line holds no case; any other goes through
    Tokenizer tokenizer(text);
    KwrcLine line{};
    int found = TakeFields(tokenizer, line.field + 1, kFieldCount, "\t\r\n", "\t\r\n");
    if (line.field[9] != nullptr) TrimRight(line.field[9]);
    std::printf("%s\n", found > 0 ? line.case_number() : "");
    if (!HasFields(found, kFieldCount, line.case_number())) continue;
    if (ImportCase(line, reader.line_number(), case_numbers)) ++imported;
  }
  std::printf("Imported %d records\n", imported);
  return 0;
}
