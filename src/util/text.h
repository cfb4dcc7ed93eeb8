// Fixed-capacity, zero-terminated text fields for the in-memory rows.
//
// A Text<N> holds at most N - 1 bytes and its terminator, exactly like the
// character arrays of the Corvana record layouts. Assigning a longer value
// keeps its first N - 1 bytes: nothing is ever written past the field. The
// type is trivial, so a record made of Text fields can be cleared with `= {}`
// (all zero bytes, every text empty) and copied as plain bytes.
#pragma once

#include <cstdarg>
#include <cstddef>
#include <cstdio>
#include <cstring>
#include <string_view>

template <std::size_t N>
struct Text {
  static_assert(N >= 1, "a text field needs room for its terminator");
  static constexpr std::size_t kCapacity = N - 1;  // bytes of text it can hold

  char chars[N];

  // Copies at most kCapacity bytes of `value`; a null pointer gives an empty text.
  Text& operator=(const char* value) {
    return Assign(value == nullptr ? std::string_view() : std::string_view(value));
  }
  Text& operator=(std::string_view value) { return Assign(value); }
  template <std::size_t M>
  Text& operator=(const Text<M>& other) {
    return Assign(other.view());
  }

  // Copies at most kCapacity bytes; the source may overlap this field.
  Text& Assign(std::string_view value) {
    std::size_t n = value.size() < kCapacity ? value.size() : kCapacity;
    if (n > 0) std::memmove(chars, value.data(), n);
    chars[n] = '\0';
    return *this;
  }

  // printf into the field, cut at its capacity.
  [[gnu::format(printf, 2, 3)]] Text& Format(const char* format, ...) {
    va_list args;
    va_start(args, format);
    std::vsnprintf(chars, N, format, args);
    va_end(args);
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
