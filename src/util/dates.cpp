#include "util/dates.h"

#include <cstdio>
#include <cstring>
#include <ctime>

#include "util/loss_report.h"
#include "util/platform.h"
#include "util/strings.h"

namespace {

// Dates are read from a private copy of at most 127 characters.
constexpr std::size_t kWorkingSize = 128;

void CopyWorking(const char* text, char (&work)[kWorkingSize]) {
  std::snprintf(work, sizeof work, "%s", text);
}

// Copies the formatted `date` (`length` bytes, as snprintf counted them) into
// `out` only when all of it fits: a month or day of three digits must not be
// cut into another, plausible date.
bool CopyWhole(const char* date, int length, char* out, std::size_t out_size) {
  if (length < 0 || static_cast<std::size_t>(length) >= out_size || static_cast<std::size_t>(length) >= kWorkingSize) {
    return false;
  }
  std::memcpy(out, date, static_cast<std::size_t>(length) + 1);
  return true;
}

bool IsDigitChar(char c) { return c >= '0' && c <= '9'; }

// A time of day after a date ("10:15", "0:00:00 AM"): what the date columns
// never held, so leaving it is no loss.
bool IsTimeOfDay(const char* text) {
  while (*text == ' ') ++text;
  if (!IsDigitChar(*text)) return false;
  while (IsDigitChar(*text)) ++text;
  if (*text != ':') return false;
  for (; *text != '\0'; ++text) {
    if (!IsDigitChar(*text) && std::strchr(":. APMapm", *text) == nullptr) return false;
  }
  return true;
}

// Tells the loss report how a date was read otherwise than it stood: a year
// under 100 put into a century (`short_year`), or more text after the
// year's digits (`year_text`) than a time of day.
void CheckDateReading(const char* text, bool short_year, const char* year_text, const char* date) {
  const char* p = year_text;
  while (*p == ' ' || *p == '\t') ++p;
  if (*p == '+' || *p == '-') ++p;
  while (IsDigitChar(*p)) ++p;
  if (short_year) {
    NoteTextReadInPart("two-digit year", text, date);
  } else if (*p != '\0' && !IsTimeOfDay(p)) {
    NoteTextReadInPart("read in part", text, date);
  }
}

}  // namespace

int ParseSlashDate(const char* text, char* out, std::size_t out_size) {
  char work[kWorkingSize];
  CopyWorking(text, work);
  char* first = std::strchr(work, '/');
  if (first == nullptr) return 1;
  char* second = std::strchr(first + 1, '/');
  if (second == nullptr) return 1;

  int a = ToInt(work);
  int b = ToInt(first + 1);
  int year = ToInt(second + 1);
  const bool short_year = year < 100;
  if (year < 100) {
    year += 2000;
  } else if (year < 1950 || year > 2016) {
    return 1;
  }
  int month = a;
  int day = b;
  if (a > 12) {
    month = b;
    day = a;
  }
  char date[kWorkingSize];
  int length = std::snprintf(date, sizeof date, "%.4d-%.2d-%.2d", year, month, day);
  if (!CopyWhole(date, length, out, out_size)) return 1;
  CheckDateReading(text, short_year, second + 1, date);
  return 0;
}

int ParseExportDate(char* text, char* out, std::size_t out_size) {
  char work[kWorkingSize];
  CopyWorking(text, work);
  if (char* t = std::strchr(text, 'T')) {
    *t = '\0';
    if (std::strlen(text) >= out_size) return -1;
    std::memcpy(out, text, std::strlen(text) + 1);
    return 0;
  }
  work[std::strcspn(work, " ")] = '\0';
  work[std::strcspn(work, ",")] = '\0';

  const char* separators = std::strchr(work, '/') != nullptr ? "/" : "-";
  char* parts[3];
  int count = 0;
  char* save = nullptr;
  char* part = strtok_r(work, separators, &save);
  for (; part != nullptr && count < 3; part = strtok_r(nullptr, separators, &save)) parts[count++] = part;
  if (count < 3) return -1;

  int month = ToInt(parts[0]);
  int day = ToInt(parts[1]);
  int year = ToInt(parts[2]);
  const bool short_year = year <= 99;
  if (year <= 14) {
    year += 2000;
  } else if (year <= 99) {
    year += 1900;
  }
  char date[kWorkingSize];
  int length = std::snprintf(date, sizeof date, "%d-%.2d-%.2d", year, month, day);
  if (!CopyWhole(date, length, out, out_size)) return -1;
  // What the reading above left out: a fourth part, or words after a blank
  // or comma that are not a time of day.
  const char* after = text + std::strcspn(text, " ,");
  bool more = part != nullptr;
  if (!short_year && (more || (*after != '\0' && !IsTimeOfDay(after + 1)))) {
    NoteTextReadInPart("read in part", text, date);
  } else {
    CheckDateReading(text, short_year, parts[2], date);
  }
  return 0;
}

const char* NowTimestamp() {
  static char stamp[80];  // room for any value the fields can hold
  std::time_t now = std::time(nullptr);
  std::tm local{};
  LocalTime(now, &local);
  std::snprintf(stamp, sizeof stamp, "%.4d-%.2d-%.2d %.2d:%.2d:%.2d", local.tm_year + 1900,
                local.tm_mon + 1, local.tm_mday, local.tm_hour, local.tm_min, local.tm_sec);
  return stamp;
}
