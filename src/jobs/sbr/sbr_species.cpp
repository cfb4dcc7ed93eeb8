#include "jobs/sbr/sbr_species.h"

#include <cstdio>
#include <cstring>
#include <string>

#include "jobs/sbr/sbr_conversions.h"
#include "store/connection.h"
#include "store/reference_store.h"
#include "util/line_reader.h"
#include "util/strings.h"
#include "util/tokenizer.h"

namespace {

constexpr const char* kInputFile = "./species.txt";
constexpr std::size_t kMaxLine = 255;

enum Column { kCommonName, kAbbrev, kScientificName, kStateStatus, kFederalStatus, kGroup, kInfoPage, kColumnCount };

// Species of concern codes of the status letters (compared exactly).
struct StatusCode {
  const char* letter;
  int code;
};

constexpr StatusCode kStatusCodes[] = {
    {"T", 8},   // threatened
    {"E", 10},  // endangered
};

int StatusCodeOf(const char* letter) {
  for (const StatusCode& status : kStatusCodes) {
    if (std::strcmp(letter, status.letter) == 0) return status.code;
  }
  return 0;
}

void FillSpecies(char* const column[kColumnCount], SpeciesRecord& species) {
  species = {};
  species.nord = 'D';
  species.native = 'Y';
  species.hms = 'N';
  species.habitat = 'T';

  TrimAndUnquote(column[kCommonName]);
  species.common_name = column[kCommonName];
  species.abbrev = column[kAbbrev];
  if (std::strlen(column[kScientificName]) > 1) species.scientific_name = column[kScientificName];
  species.state_soc = StatusCodeOf(column[kStateStatus]);
  species.federal_soc = StatusCodeOf(column[kFederalStatus]);
  species.species_group = column[kGroup];
  if (std::strlen(column[kInfoPage]) > 1) species.info_page = column[kInfoPage];
}

// Imports one line; true when its species was stored.
bool ImportLine(const std::string& text) {
  Tokenizer tokenizer(text);
  char* column[kColumnCount];
  int found = TakeFields(tokenizer, column, 1, "\t", "\t");
  if (found == 1) found += TakeFields(tokenizer, column + 1, kColumnCount - 1, "\t\r\n", "\t\r\n");
  if (found > 0 && found < kColumnCount) TrimRight(column[0]);  // a line without a tab keeps its line end here
  if (!HasFields(found, kColumnCount, column[kCommonName])) return false;

  SpeciesRecord species;
  FillSpecies(column, species);
  if (species.abbrev.size() < 2) {
    std::printf("ERROR: Invalid or missing abbreviation for '%s'\n", species.common_name.c_str());
    return false;
  }
  if (InsertSpecies(species) != 0) {
    std::printf("\tERROR: Unable to create species record for '%s'\n", species.abbrev.c_str());
    std::printf("\t%s\n", LastDbError());
    return false;
  }
  return true;
}

}  // namespace

int ImportSbrSpecies() {
  std::printf("Loading species data from '%s'\n", kInputFile);
  LineReader reader(kInputFile, kMaxLine);
  if (!reader.CanRead()) {
    std::printf("Unable to open '%s'\n", kInputFile);
    return 1;
  }
  int loaded = 0;
  std::string text;
  reader.ReadLine(text);  // header
  while (reader.ReadLine(text)) {
    if (IsEmptyLine(text)) continue;  // an empty line holds no species; any other goes through
    if (ImportLine(text)) ++loaded;
  }
  std::printf("Loaded %d species\n", loaded);
  return 0;
}
