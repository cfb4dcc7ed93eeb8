// The date parsers on any text and into every field width: a date either
// fits its field whole or leaves it untouched.
#include <cstdint>
#include <cstring>

#include "fuzz_input.h"
#include "util/dates.h"
#include "util/text.h"

CORVANA_FUZZ_SILENT_STDOUT

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  FuzzInput input(data, size);
  char* text = input.Next();
  std::size_t width = 1 + input.NextChoice() % 24;
  char out[24];
  std::memset(out, 'x', sizeof out);
  ParseSlashDate(text, out, width);
  Text<11> date{};
  ParseSlashDate(text, date);
  ParseExportDate(text, out, width);  // ends `text` at its first 'T'
  ParseExportDate(text, date);
  return 0;
}
