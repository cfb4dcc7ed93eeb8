#include "util/text.h"

#include <string>
#include <unordered_map>

namespace {

// What each cut value was given, by the bytes it kept. Grows only with the
// values that were cut, which the loss report lists anyway.
std::unordered_map<std::string, std::string>& CutTexts() {
  static std::unordered_map<std::string, std::string> given_by_kept;
  return given_by_kept;
}

}  // namespace

void RememberCutText(std::string_view kept, std::string_view given) {
  CutTexts()[std::string(kept)] = std::string(given);
}

std::string CutTextGiven(std::string_view kept) {
  auto found = CutTexts().find(std::string(kept));
  return found != CutTexts().end() ? found->second : std::string();
}
