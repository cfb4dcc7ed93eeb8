#include "jobs/sbr/sbr_conversions.h"

#include <strings.h>

#include <cstdlib>
#include <cstring>
#include <string_view>

#include "jobs/sbr/sbr_site.h"
#include "util/strings.h"

namespace {

enum class Test {
  kEquals,            // whole text, exact
  kEqualsNoCase,      // whole text, any case
  kBeginsWithNoCase,  // first characters, any case
};

bool Passes(const char* text, const char* key, Test test) {
  switch (test) {
    case Test::kEquals:
      return std::strcmp(text, key) == 0;
    case Test::kEqualsNoCase:
      return strcasecmp(text, key) == 0;
    case Test::kBeginsWithNoCase:
      return strncasecmp(text, key, std::strlen(key)) == 0;
  }
  return false;
}

struct AgePhrase {
  const char* key;
  Test test;
  const char* age;
};

// Tested in order; the first that passes decides.
constexpr AgePhrase kAgePhrases[] = {
    {"Adult", Test::kBeginsWithNoCase, "AHY"},
    {"\"Adult", Test::kBeginsWithNoCase, "AHY"},
    {"A", Test::kEquals, "AHY"},
    {"AD", Test::kEquals, "AHY"},
    {"AHY", Test::kBeginsWithNoCase, "AHY"},
    {"ASY", Test::kEqualsNoCase, "ASY"},
    {"SY", Test::kBeginsWithNoCase, "SY"},
    {"SY/ty", Test::kEqualsNoCase, "SY"},
    {"2Y", Test::kEqualsNoCase, "SY"},
    {"2nd winter", Test::kEqualsNoCase, "SY"},
    {"TY", Test::kEqualsNoCase, "TY"},
    {"3Y", Test::kEqualsNoCase, "TY"},
    {"4Y", Test::kEqualsNoCase, "4Y"},
    {"ATY", Test::kBeginsWithNoCase, "ATY"},
    {"Chick", Test::kEqualsNoCase, "HY"},
    {"Chick (downy)", Test::kEqualsNoCase, "HY"},
    {"HY", Test::kEqualsNoCase, "HY"},
    {"FY", Test::kEqualsNoCase, "HY"},
    {"Nestling", Test::kEqualsNoCase, "HY"},
    {"JUV", Test::kEqualsNoCase, "HY"},
    {"Juvenile", Test::kBeginsWithNoCase, "HY"},
    {"Sub-adult Chick", Test::kEquals, "HY"},
    {"Egg", Test::kBeginsWithNoCase, "Egg"},
    {"Fledgling", Test::kBeginsWithNoCase, "HY"},
    {"\"Fledgling", Test::kBeginsWithNoCase, "HY"},
    {"HY", Test::kBeginsWithNoCase, "HY"},
    {"1Y", Test::kEquals, "HY"},
    {"Nestling", Test::kBeginsWithNoCase, "HY"},
    {"SA", Test::kEqualsNoCase, "HY"},
    {"Sub-adult", Test::kEqualsNoCase, "HY"},
    {"Sub Adult Sub-adult", Test::kEqualsNoCase, "HY"},
    {"2 weeks", Test::kEqualsNoCase, "L"},
    {"2 weeks ?", Test::kEqualsNoCase, "L"},
    {"4 weeks", Test::kEqualsNoCase, "L"},
};

// The species that carry colour markers, and the two numbers of their code.
struct MarkedSpecies {
  const char* abbrev;
  int first;
  int second;
};

constexpr MarkedSpecies kMarkedSpecies[] = {
    {"BRPE", 3, 5},  // brown pelican
    {"SNEG", 1, 5},  // snowy egret
    {"BCNH", 5, 6},  // black-crowned night heron
};

constexpr const char* kMarkerPrefix = "01A";

// A code is "longer than one character" in the log's sense: the export
// writes an empty cell as a single character.
bool HasText(const char* text) { return text != nullptr && std::strlen(text) > 1; }

template <std::size_t N>
void AssignTrimmedLeft(Text<N>& field, std::string_view part) {
  std::size_t start = part.find_first_not_of(" \t\r\n");
  field = start == std::string_view::npos ? std::string_view() : part.substr(start);
}

// The part after the second comma of an address: a zip, "state zip" or a state.
void ParseStateAndZip(std::string_view rest, PatientFinderInfo& finder) {
  std::size_t start = rest.find_first_not_of(" \t\r\n");
  rest = start == std::string_view::npos ? std::string_view() : rest.substr(start);
  if (!rest.empty() && rest[0] >= '0' && rest[0] <= '9') {
    AssignTrimmedLeft(finder.found_zip, rest);
  } else if (std::size_t blank = rest.find(' '); blank != std::string_view::npos) {
    AssignTrimmedLeft(finder.found_state, rest.substr(0, blank));
    AssignTrimmedLeft(finder.found_zip, rest.substr(blank + 1));
  } else {
    AssignTrimmedLeft(finder.found_state, rest);
  }
}

float ScaledIfDecimal(const char* text, double factor) {
  double value = ReadNumber(text);
  if (std::strchr(text, '.') != nullptr) value *= factor;
  return static_cast<float>(value);
}

}  // namespace

bool MakeSbrPatientId(const char* case_number, SbrYearCounters& counters, Text<16>& patient_id) {
  Text<32> work{};
  work = case_number;
  char* first_dash = std::strchr(work.data(), '-');
  if (first_dash == nullptr) return false;
  char* second_dash = std::strchr(first_dash + 1, '-');
  if (second_dash == nullptr) return false;
  *second_dash = '\0';
  char* year_text = first_dash + 1;
  if (second_dash - year_text == 2 && year_text[0] == 'O') year_text[0] = '0';  // "O9" typed for "09"
  int year = ToInt(year_text);
  if (year < kSbrFirstYear) year += kSbrFirstYear;
  if (year < kSbrFirstYear || year > kSbrLastYear) return false;
  int32_t& taken = counters.taken[year - kSbrFirstYear];
  ++taken;
  patient_id.Format("%d-%.4d", year, taken);  // at least four digits, as "%04.4d" writes them
  return true;
}

void MapSbrAge(Text<15>& age, const char* description, const char* second_choice, const char* first_choice) {
  age = "UNK";
  if (HasText(first_choice)) {
    age = first_choice;
    return;
  }
  if (HasText(second_choice)) {
    age = second_choice;
    return;
  }
  if (description == nullptr || description[0] == '\0' || std::strcmp(description, " ") == 0) return;
  for (const AgePhrase& phrase : kAgePhrases) {
    if (Passes(description, phrase.key, phrase.test)) {
      age = phrase.age;
      return;
    }
  }
}

void MapSbrSex(const char* sex, Text<11>& result) {
  char first = sex != nullptr ? sex[0] : '\0';
  if (first == 'M' || first == 'm') {
    result = "M";
  } else if (first == 'F' || first == 'f') {
    result = "F";
  } else {
    result = "UNK";
  }
}

void TrimAndUnquote(char* text) {
  TrimLeft(text);
  TrimRight(text);
  std::size_t n = std::strlen(text);
  if (n > 0 && text[n - 1] == '"') text[--n] = '\0';
  if (text[0] == '"') std::memmove(text, text + 1, n);
}

void ParseSbrFoundAddress(char* address, PatientFinderInfo& finder) {
  std::string_view text(address);
  if (text == "Astoria, OR") {
    finder.found_city = "Astoria";
    finder.found_state = "OR";
    return;
  }
  if (text.starts_with(sbr_site::kDealershipAddressCell)) {
    finder.found_name = sbr_site::kDealershipName;
    finder.found_addr = sbr_site::kDealershipStreet;
    finder.found_city = sbr_site::kDealershipTown;
    finder.found_state = "CA";
    return;
  }
  std::size_t first_comma = text.find(',');
  if (first_comma == std::string_view::npos) {
    // The whole cell is cut to the street field first and only then trimmed,
    // so leading blanks take room from the street.
    AssignTrimmedLeft(finder.found_addr, text.substr(0, finder.found_addr.kCapacity));
    finder.found_state = "CA";
    return;
  }
  AssignTrimmedLeft(finder.found_addr, text.substr(0, first_comma));
  std::size_t second_comma = text.find(',', first_comma + 1);
  if (second_comma == std::string_view::npos) {
    AssignTrimmedLeft(finder.found_city, text.substr(first_comma + 1));
    finder.found_state = "CA";
    return;
  }
  AssignTrimmedLeft(finder.found_city, text.substr(first_comma + 1, second_comma - first_comma - 1));
  ParseStateAndZip(text.substr(second_comma + 1), finder);
}

int MakeSbrAuxMarker(const char* marker, PatientRecord& patient) {
  if (marker == nullptr || std::strlen(marker) < 2) return 0;
  for (const MarkedSpecies& species : kMarkedSpecies) {
    if (patient.species != species.abbrev) continue;
    Text<64> code{};
    code.Format("%s %s %.2d%.2d", kMarkerPrefix, marker, species.first, species.second);
    // A cut code would name another bird's marker.
    if (code.size() > patient.aux_marker.kCapacity) return 2;
    patient.aux_marker = code;
    return 0;
  }
  return 1;
}

float ParseWeightGrams(const char* text) { return ScaledIfDecimal(text, 1000); }

float ParseCulmenMm(const char* text) { return ScaledIfDecimal(text, 10); }
