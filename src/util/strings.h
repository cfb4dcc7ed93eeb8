// In-place text operations applied to fields taken from source lines and XML
// texts before they are stored. None of them allocates; all work on bytes, so
// latin1 text passes through untouched (bytes above 127 are never white space).
#pragma once

#include <cstddef>
#include <string>
#include <string_view>

#include "util/text.h"

// Removes one leading blank (0x20) if there is one; a tab or anything else stays.
void DropLeadingSpace(char* text);

// Removes leading blanks, tabs, carriage returns and line feeds (only these four).
void TrimLeft(char* text);

// Removes every trailing white-space character (blank, \t, \n, \v, \f, \r).
void TrimRight(char* text);

// Copies `source` into `target` (at most target_size - 1 bytes) without its
// leading double quote, then ends the target at its first remaining double
// quote. Source and target may be the same buffer.
void StripQuotes(const char* source, char* target, std::size_t target_size);

template <std::size_t N>
void StripQuotes(const char* source, Text<N>& target) {
  StripQuotes(source, target.data(), N);
}

// Breaks lines longer than `width` by turning the first blank or tab past that
// column into a line feed; existing line feeds restart the count. Returns true
// when at least one character was replaced.
bool WrapLongLines(char* text, int width);

// The same over all of `text`, whatever bytes it holds: a NUL byte counts as
// one more character of its line.
bool WrapLongLines(std::string& text, int width);

// True when `a` and `b` are equal ignoring ASCII letter case.
bool EqualsNoCase(const char* a, const char* b);

// `text` with ASCII letters in lower case and every other byte unchanged: the
// key of a hashed look-up that finds what EqualsNoCase would.
std::string LowerAscii(std::string_view text);

// The standard atoi/atol reading (leading white space, optional sign, digits up
// to the first other character, 0 when there are none), without atoi's
// undefined behaviour on overflow: out-of-range values clamp to the int range.
int ToInt(const char* text);

// What may follow a number in its text without anything being lost.
enum class NumberRest {
  kNothing,  // only white space
  kUnit,     // a unit word the caller reads itself ("12 kg", "30cm"), but no more digits
};

// Reads a number from an input text as atof and ToInt do (leading white
// space, digits up to the first other character, 0 when there are none), and
// tells the loss report when the text held more than was read: "1,500" reads
// 1, "12 approx" reads 12, "n/a" reads 0 ("read in part" / "not a number",
// with the text as it stood). An empty or blank text is no loss. `source`
// names the value in the input (an export's element), for the report when
// the store cannot tell the column it went to.
double ReadNumber(const char* text, NumberRest rest = NumberRest::kNothing, std::string_view source = {});
int ReadInteger(const char* text, NumberRest rest = NumberRest::kNothing, std::string_view source = {});
