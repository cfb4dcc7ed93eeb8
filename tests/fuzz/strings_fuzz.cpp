// The in-place text operations (trimming, unquoting, wrapping long note
// lines) and the number reading on any text.
#include <cstdint>
#include <string>

#include "fuzz_input.h"
#include "util/strings.h"
#include "util/text.h"

CORVANA_FUZZ_SILENT_STDOUT

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  FuzzInput input(data, size);
  std::string text = input.Next();
  int width = static_cast<int>(input.NextChoice() % 100);
  std::string other = input.Next();

  std::string copy = text;
  DropLeadingSpace(copy.data());
  copy = text;
  TrimLeft(copy.data());
  TrimRight(copy.data());
  copy = text;
  StripQuotes(copy.c_str(), copy.data(), copy.size() + 1);  // in place
  Text<8> small{};
  StripQuotes(text.c_str(), small);
  copy = text;
  WrapLongLines(copy.data(), width);
  copy = text;
  WrapLongLines(copy.data(), 80);
  (void)EqualsNoCase(text.c_str(), other.c_str());
  (void)ToInt(text.c_str());
  return 0;
}
