#include "jobs/sbr/band_sightings.h"

#include <strings.h>

#include <cctype>
#include <cstdarg>
#include <cstdio>
#include <cstring>
#include <string>

#include "store/measurement_store.h"
#include "store/patient_store.h"
#include "store/record_entry_store.h"
#include "util/dates.h"
#include "util/line_reader.h"
#include "util/strings.h"
#include "util/tokenizer.h"

namespace {

constexpr std::size_t kMaxLine = 2046;

// The report's columns that the import reads. Every column up to the place
// must be followed by a tab; the ones after it may be missing.
enum Column {
  kLabel = 0,
  kFirstName = 2,
  kLastName = 3,
  kContact = 4,
  kSecondContact = 5,
  kStreet = 6,
  kTown = 8,
  kState = 9,
  kZip = 10,
  kDate = 12,
  kMarker = 14,
  kBand = 15,
  kCondition = 16,
  kPlace = 19,
  kComments = 20,
  kColumnCount = 23
};
constexpr int kRequiredColumns = kPlace + 1;

// Markers are put on brown pelicans only, so a sighted marker is read with
// that species' numbers.
constexpr const char* kMarkerPrefix = "01A";
constexpr int kMarkerFirstNumber = 3;
constexpr int kMarkerSecondNumber = 5;

constexpr int kConditionDead = 4;
constexpr int kConditionAlive = 13;
constexpr int kHowSighted = 29;  // seen in the field, band read but bird not caught
constexpr std::size_t kMaxComments = 128;

struct Counts {
  int reports = 0;
  int images = 0;  // the reports' images are not stored
  int errors = 0;
  int skipped = 0;
};

// Prints a message of at most 255 characters: the job's messages were
// always formatted into a line of that size.
[[gnu::format(printf, 1, 2)]] void Report(const char* format, ...) {
  char message[256];
  va_list args;
  va_start(args, format);
  std::vsnprintf(message, sizeof message, format, args);
  va_end(args);
  std::fputs(message, stdout);
}

bool IsValidBand(const char* band) { return std::strlen(band) == 10 && band[4] == '-'; }

// The patient a sighting names, and the band its report carries.
struct Sighted {
  int key = 0;
  Text<16> patient_id{};
  Text<64> band{};
};

Sighted FindSightedPatient(const Text<16>& marker_code, const char* band, bool band_valid) {
  Sighted sighted;
  if (!marker_code.empty()) {
    sighted.key = FindPatientByAuxMarker(marker_code.c_str(), sighted.patient_id, sighted.band);
    if (sighted.key != 0 && sighted.band.empty() && band_valid) sighted.band = band;
  }
  if (sighted.key == 0 && band_valid) {
    sighted.key = FindPatientByBand(band, sighted.patient_id);
    if (sighted.key != 0) sighted.band = band;
  }
  return sighted;
}

void FillReport(char* const column[kColumnCount], const Text<12>& date, const Text<16>& marker_code,
                const Sighted& sighted, BandReportRecord& report) {
  report = {};
  report.date = date;
  report.band = sighted.band;
  report.aux_marker = marker_code;
  report.finder_info.Format("%s %s\n%s\n%s, %s %s\n%s\n%s", column[kFirstName], column[kLastName],
                            column[kStreet], column[kTown], column[kState], column[kZip], column[kSecondContact],
                            column[kContact]);
  StripQuotes(column[kPlace], report.location);
  if (column[kComments] != nullptr) {
    Text<kMaxComments + 1> comments{};
    StripQuotes(column[kComments], comments);
    report.notes = comments;
  }
  report.present_condition = strcasecmp(column[kCondition], "Dead") == 0 ? kConditionDead : kConditionAlive;
  report.how = kHowSighted;
}

void ImportSighting(char* const column[kColumnCount], Counts& counts) {
  Text<12> date{};
  if (ParseSlashDate(column[kDate], date) != 0) {
    ++counts.errors;
    Report("ERROR: invalid date '%s' for sighting on '%s'\n", column[kDate], column[kLabel]);
    return;
  }
  std::string marker(column[kMarker]);
  NormalizeMarkerCode(marker.data());
  marker.resize(std::strlen(marker.c_str()));
  const char* band = column[kBand];
  const bool marker_valid = marker.size() == 3;
  const bool band_valid = IsValidBand(band);
  if (!marker_valid && !band_valid) {
    ++counts.errors;
    Report("ERROR: invalid band numbers '%s' and '%s' for sighting on '%s'\n", marker.c_str(), band,
           column[kLabel]);
    return;
  }
  Text<16> marker_code{};
  if (marker_valid) {
    marker_code.Format("%s %s %.2d%.2d", kMarkerPrefix, marker.c_str(), kMarkerFirstNumber, kMarkerSecondNumber);
  }

  Sighted sighted = FindSightedPatient(marker_code, band, band_valid);
  if (sighted.key == 0) {
    ++counts.skipped;
    Report("NOTE: Unable to find animal with aux marker/band '%s/%s'\n", marker_code.c_str(), band);
    return;
  }
  int entry = InsertRecordEntry(sighted.key, "", NowTimestamp(), "NA", 0, 0, "NA", '0');
  if (entry < 0) {
    ++counts.errors;
    Report("ERROR - Unable to create record entry for band '%s/%s' and patient '%s'!\n", marker_code.c_str(), band,
           sighted.patient_id.c_str());
    return;
  }
  BandReportRecord report;
  FillReport(column, date, marker_code, sighted, report);
  if (InsertBandReport(entry, report) != 0) {
    ++counts.errors;
    Report("ERROR - Unable to create Band Report for '%s/%s' and patient '%s'!\n", marker_code.c_str(), band,
           sighted.patient_id.c_str());
    return;
  }
  ++counts.reports;
  Report("Created Band Report for '%s/%s' and patient '%s'.\n", marker_code.c_str(), band,
         sighted.patient_id.c_str());
}

}  // namespace

void NormalizeMarkerCode(char* marker) {
  for (char* p = marker; *p != '\0'; ++p) *p = static_cast<char>(std::toupper(static_cast<unsigned char>(*p)));
  std::size_t n = std::strlen(marker);
  if (n == 4 && (marker[1] == '-' || marker[1] == ' ')) {
    std::memmove(marker + 1, marker + 2, n - 1);
  } else if (n == 5) {
    marker[1] = marker[2];
    marker[2] = marker[4];
    marker[3] = '\0';
  }
}

void ImportBandSightings(const char* folder, const char* file_name, int /*unused*/) {
  std::string path = std::string(folder) + file_name;
  Counts counts;
  Report("Loading patient data from '%s'\n", path.c_str());
  LineReader reader(path.c_str(), kMaxLine);
  if (!reader.CanRead()) {
    ++counts.errors;
    Report("ERROR: Unable to open '%s'\n", path.c_str());
    return;
  }
  std::string text;
  reader.ReadLine(text);  // header
  while (reader.ReadLine(text)) {
    if (IsEmptyLine(text)) continue;  // an empty line holds no sighting; any other goes through
    while (!text.empty() && (text.back() == '\n' || text.back() == '\r')) text.pop_back();
    Tokenizer tokenizer(text);
    char* column[kColumnCount];
    int found = TakeEveryField(tokenizer, column, kColumnCount, "\t");
    if (!HasFields(found, kRequiredColumns, column[kLabel])) {
      ++counts.errors;
      continue;
    }
    ImportSighting(column, counts);
  }
  Report("Created %d band reports and inserted %d images\nThere were %d errors and %d records were skipped.",
         counts.reports, counts.images, counts.errors, counts.skipped);
}
