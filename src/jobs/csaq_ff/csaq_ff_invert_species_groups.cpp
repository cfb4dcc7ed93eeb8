#include "jobs/csaq_ff/csaq_ff_invert_species_groups.h"

#include <cstdio>
#include <string>

#include "store/connection.h"
#include "store/reference_store.h"
#include "util/line_reader.h"
#include "util/tokenizer.h"

namespace {

constexpr const char* kSpeciesListFile = "./InvertebrateSpecies.txt";
// A line is read as a 256-byte buffer holds it: 255 characters at a time.
constexpr std::size_t kMaxLine = 255;
constexpr const char* kInvertebrate = "invertebrate";

// Marks the species named by `line`; returns the number of errors.
int MarkSpecies(const std::string& line) {
  Tokenizer tokenizer(line);
  const char* name = tokenizer.Next("\r\n");
  if (name == nullptr) {
    std::printf("\tError: could not parse '%s'\n", line.c_str());
    return 0;
  }
  Text<16> abbrev{};
  if (GetSpeciesAbbrevByCommonName(name, abbrev) != 0) {
    std::printf("\tError: could not find species record for '%s'\n", name);
    return 1;
  }
  std::printf("%s: %s\n", name, abbrev.c_str());
  int errors = 0;
  if (ExecuteSql(kEscapeTexts, "update species set species_group='%s' where abbrev='%s';",
                 {kInvertebrate, abbrev}) != 0) {
    std::printf("\tError: not update species record for '%s'\n", abbrev.c_str());
    ++errors;
  }
  if (ExecuteSql(kEscapeTexts, "update patient set species_group='%s' where species='%s';",
                 {kInvertebrate, abbrev}) != 0) {
    std::printf("\tError: not update patient record for '%s'\n", abbrev.c_str());
    ++errors;
  }
  return errors;
}

}  // namespace

int ImportInvertSpeciesGroups() {
  LineReader reader(kSpeciesListFile, kMaxLine);
  if (!reader.CanRead()) {
    std::printf("Unable to open '%s'\n", kSpeciesListFile);
    return 1;
  }
  if (CountSpecies() == 0) {
    std::printf("No species found: run the CSAQ_FF species import first!\n");
    return 1;
  }
  int lines = 0;
  int errors = 0;
  std::string line;
  while (reader.ReadLine(line)) {
    errors += MarkSpecies(line);
    ++lines;
  }
  std::printf("Read %d lines.  %d errors\n", lines, errors);
  return 0;
}
