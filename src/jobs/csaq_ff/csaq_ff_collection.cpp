#include "jobs/csaq_ff/csaq_ff_collection.h"

#include <cstdlib>
#include <cstring>
#include <vector>

#include "util/strings.h"
#include "util/tokenizer.h"

namespace {

struct DispositionWord {
  const char* word;  // compared ignoring letter case
  const char* status;
};

constexpr DispositionWord kDispositionWords[] = {
    {"Died", "D"},       {"Euthanized", "E"}, {"MIA", "MIA"},     {"mia/euth", "MIA"},
    {"eaten/MIA", "MIA"}, {"Died/MIA", "MIA"}, {"Escaped", "ESC"}, {"Released", "R"},
};

// Any other word holding one of these (letter case counting) is a transfer.
constexpr const char* kTransferPieces[] = {"Transfer", "transfer", "trransfer"};
constexpr const char* kTransferStatus = "T";

// Tried in this order; the destination follows the first one found.
constexpr const char* kTransferPhrases[] = {
    "Transfered to ", "Transferred to ",      "transferred to ", "Sent to ",
    "moved to ",      "transferred back to ", "Returned to ",    "Traded to ",
};

constexpr std::string_view kQuot = "&quot;";
constexpr std::string_view kQuotSemicolon = "&quot;;";

}  // namespace

bool ReadCollectionPosition(const char* text, float& lat, float& lon) {
  std::string digits = text;
  for (char& c : digits) {
    if ((c < '0' || c > '9') && c != '.') c = ' ';
  }
  std::vector<double> numbers;
  Tokenizer words(digits);
  for (const char* number = words.Next(" "); number != nullptr; number = words.Next(" ")) {
    numbers.push_back(std::atof(number));
  }
  double latitude = 0;
  double longitude = 0;
  switch (numbers.size()) {
    case 2:
      latitude = numbers[0];
      longitude = numbers[1];
      break;
    case 4:
      latitude = numbers[0] + numbers[1] / 60;
      longitude = numbers[2] + numbers[3] / 60;
      break;
    case 6:
      latitude = numbers[0] + numbers[1] / 60 + numbers[2] / 3600;
      longitude = numbers[3] + numbers[4] / 60 + numbers[5] / 3600;
      break;
    default:
      return false;
  }
  // Every collection site lies west of Greenwich; signs were lost above.
  if (longitude > 0) longitude = -longitude;
  lat = static_cast<float>(latitude);
  lon = static_cast<float>(longitude);
  return true;
}

std::string CollectionCounty(std::string_view text) {
  for (std::string_view word : {std::string_view(" County"), std::string_view(" county")}) {
    std::size_t at = text.find(word);
    if (at != std::string_view::npos) return std::string(text.substr(0, at + word.size()));
  }
  return std::string(text);
}

std::string PlainCollectionText(std::string_view text) {
  std::string plain;
  plain.reserve(text.size());
  for (std::size_t i = 0; i < text.size(); ++i) {
    if (text.substr(i, kQuot.size()) == kQuot) {
      i += kQuot.size() - 1;
      continue;
    }
    unsigned char c = static_cast<unsigned char>(text[i]);
    plain.push_back(c > 127 ? ' ' : text[i]);
  }
  return plain;
}

bool TakeNameFromNotes(std::string& notes, std::string& name) {
  std::size_t open = notes.find(kQuot);
  if (open == std::string::npos) return false;
  std::size_t start = open + kQuot.size();
  std::size_t close = notes.find(kQuotSemicolon, start);
  if (close == std::string::npos) return false;
  name = notes.substr(start, close - start);
  notes.erase(0, close + kQuotSemicolon.size());
  return true;
}

const char* DispositionStatus(const char* word) {
  for (const DispositionWord& known : kDispositionWords) {
    if (EqualsNoCase(known.word, word)) return known.status;
  }
  for (const char* piece : kTransferPieces) {
    if (std::strstr(word, piece) != nullptr) return kTransferStatus;
  }
  return nullptr;
}

std::string TransferDestination(std::string_view notes) {
  for (std::string_view phrase : kTransferPhrases) {
    std::size_t at = notes.find(phrase);
    if (at != std::string_view::npos) return std::string(notes.substr(at + phrase.size()));
  }
  return "";
}
