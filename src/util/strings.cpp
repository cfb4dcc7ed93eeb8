#include "util/strings.h"

#include <climits>
#include <cstdlib>
#include <cstring>
#include <strings.h>

#include "util/loss_report.h"

namespace {

bool IsClassicSpace(unsigned char c) {
  return c == ' ' || c == '\t' || c == '\n' || c == '\v' || c == '\f' || c == '\r';
}

}  // namespace

void DropLeadingSpace(char* text) {
  if (text[0] == ' ') std::memmove(text, text + 1, std::strlen(text));
}

void TrimLeft(char* text) {
  std::size_t skip = std::strspn(text, " \t\r\n");
  if (skip > 0) std::memmove(text, text + skip, std::strlen(text + skip) + 1);
}

void TrimRight(char* text) {
  std::size_t n = std::strlen(text);
  while (n > 0 && IsClassicSpace(static_cast<unsigned char>(text[n - 1]))) --n;
  text[n] = '\0';
}

void StripQuotes(const char* source, char* target, std::size_t target_size) {
  if (target_size == 0) return;
  if (source[0] == '"') ++source;
  std::size_t n = std::strlen(source);
  if (n >= target_size) n = target_size - 1;
  std::memmove(target, source, n);
  target[n] = '\0';
  if (char* quote = std::strchr(target, '"')) *quote = '\0';
}

namespace {

bool WrapBytes(char* text, std::size_t length, int width) {
  bool changed = false;
  int column = 0;
  for (char* p = text; p != text + length; ++p) {
    if (*p == '\n') {
      column = 0;
      continue;
    }
    ++column;
    if (column > width && (*p == ' ' || *p == '\t')) {
      *p = '\n';
      column = 0;
      changed = true;
    }
  }
  return changed;
}

}  // namespace

bool WrapLongLines(char* text, int width) { return WrapBytes(text, std::strlen(text), width); }

bool WrapLongLines(std::string& text, int width) { return WrapBytes(text.data(), text.size(), width); }

bool EqualsNoCase(const char* a, const char* b) { return strcasecmp(a, b) == 0; }

std::string LowerAscii(std::string_view text) {
  std::string lower(text);
  for (char& c : lower) {
    if (c >= 'A' && c <= 'Z') c = static_cast<char>(c - 'A' + 'a');
  }
  return lower;
}

int ToInt(const char* text) {
  long long value = std::strtoll(text, nullptr, 10);
  if (value > INT_MAX) return INT_MAX;
  if (value < INT_MIN) return INT_MIN;
  return static_cast<int>(value);
}

namespace {

bool IsAsciiLetter(char c) { return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z'); }

// Tells the loss report when `text` held more than its number, which ended
// at `end` (`text` itself when there was none).
void CheckNumberRest(const char* text, const char* end, NumberRest rest, double value, bool integer,
                     std::string_view source) {
  const char* p = end;
  while (IsClassicSpace(static_cast<unsigned char>(*p))) ++p;
  if (*p == '\0') return;  // white space after the number, or a blank cell: nothing lost
  if (end == text) {
    NoteNumberReadInPart("not a number", text, value, integer, source);
    return;
  }
  if (rest == NumberRest::kUnit && IsAsciiLetter(*p) && std::strpbrk(p, "0123456789") == nullptr) return;
  NoteNumberReadInPart("read in part", text, value, integer, source);
}

}  // namespace

double ReadNumber(const char* text, NumberRest rest, std::string_view source) {
  char* end = nullptr;
  double value = std::strtod(text, &end);
  if (*end != '\0') CheckNumberRest(text, end, rest, value, false, source);
  return value;
}

int ReadInteger(const char* text, NumberRest rest, std::string_view source) {
  char* end = nullptr;
  long long value = std::strtoll(text, &end, 10);
  int clamped = value > INT_MAX ? INT_MAX : value < INT_MIN ? INT_MIN : static_cast<int>(value);
  if (*end != '\0') CheckNumberRest(text, end, rest, clamped, true, source);
  return clamped;
}
