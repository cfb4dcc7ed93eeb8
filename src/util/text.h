// Fixed-capacity, zero-terminated text fields for the in-memory rows.
//
// A Text<N> holds at most N - 1 bytes and its terminator, exactly like the
// character arrays of the Corvana record layouts. Assigning a longer value
// keeps its first N - 1 bytes: nothing is ever written past the field. The
// type is trivial, so a record made of Text fields can be cleared with `= {}`
// (all zero bytes, every text empty) and copied as plain bytes.
//
// A text that was cut remembers it (`cut`), and the value it was given is
// kept aside (RememberCutText) so that the store can report both when it
// writes the field to its column. A value that fits costs one comparison.
#pragma once

#include <cstdarg>
#include <cstddef>
#include <cstdio>
#include <cstring>
#include <string>
#include <string_view>

// Keeps `given` as the value that was cut to `kept`; what a cut Text field
// held before it was cut is found again by its kept bytes (so a copied record
// still finds it).
void RememberCutText(std::string_view kept, std::string_view given);
// The value that was cut to `kept`; empty when none is known.
std::string CutTextGiven(std::string_view kept);

template <std::size_t N>
struct Text {
  static_assert(N >= 1, "a text field needs room for its terminator");
  static constexpr std::size_t kCapacity = N - 1;  // bytes of text it can hold

  char chars[N];
  // The last Assign or Format got a longer value than the field holds. The
  // in-place utilities (data()) leave it as it is.
  unsigned char cut;  // a flag; not bool, so that a field filled only through data() reads safely

  // Copies at most kCapacity bytes of `value`; a null pointer gives an empty text.
  Text& operator=(const char* value) {
    return Assign(value == nullptr ? std::string_view() : std::string_view(value));
  }
  Text& operator=(std::string_view value) { return Assign(value); }
  // A cut source passes on what it was given, so that the report shows the
  // value as it stood in the input.
  template <std::size_t M>
  Text& operator=(const Text<M>& other) {
    if (!other.cut) return Assign(other.view());
    std::string given = CutTextGiven(other.view());
    Assign(other.view());
    cut = true;
    if (!given.empty()) RememberCutText(view(), given);
    return *this;
  }

  // Copies at most kCapacity bytes; the source may overlap this field.
  Text& Assign(std::string_view value) {
    std::size_t n = value.size() < kCapacity ? value.size() : kCapacity;
    cut = n < value.size();
    // Kept before the move: the value may overlap this field.
    if (cut) RememberCutText(value.substr(0, n), value);
    if (n > 0) std::memmove(chars, value.data(), n);
    chars[n] = '\0';
    return *this;
  }

  // printf into the field, cut at its capacity.
  [[gnu::format(printf, 2, 3)]] Text& Format(const char* format, ...) {
    va_list args;
    va_start(args, format);
    va_list again;
    va_copy(again, args);
    int n = std::vsnprintf(chars, N, format, args);
    va_end(args);
    cut = n > 0 && static_cast<std::size_t>(n) > kCapacity;
    if (cut) {
      std::string whole(static_cast<std::size_t>(n), '\0');
      std::vsnprintf(whole.data(), whole.size() + 1, format, again);
      RememberCutText(std::string_view(chars, kCapacity), whole);
    }
    va_end(again);
    return *this;
  }

  const char* c_str() const { return chars; }
  // For the in-place utilities (TrimRight, EscapeSql, ...); they must respect N.
  char* data() { return chars; }
  std::size_t size() const { return strnlen(chars, N); }
  bool empty() const { return chars[0] == '\0'; }
  std::string_view view() const { return std::string_view(chars, size()); }
  operator std::string_view() const { return view(); }

  bool operator==(std::string_view other) const { return view() == other; }
  bool operator==(const char* other) const { return view() == std::string_view(other); }
  template <std::size_t M>
  bool operator==(const Text<M>& other) const {
    return view() == other.view();
  }
};
