// The small INI-style configuration file that holds the connection settings.
// It is loaded on the first lookup (and created with one empty line when it
// does not exist); lookups match section and key exactly, first one wins.
#pragma once

#include <cstddef>
#include <vector>

#include "util/text.h"

// One line of the file as loaded: a section header (section only), a setting
// (all three) or any other line (value only).
struct IniEntry {
  Text<32> section;
  Text<64> key;
  Text<128> value;
};

class IniFile {
 public:
  explicit IniFile(const char* path);

  // Copies into `out` (at most out_size - 1 bytes) the value of the first
  // setting `key` in `section`, or `fallback` when there is none or the file
  // cannot be read. Returns `out`.
  char* IniGetString(const char* section, const char* key, const char* fallback, char* out,
                     std::size_t out_size);

  template <std::size_t N>
  char* IniGetString(const char* section, const char* key, const char* fallback, Text<N>& out) {
    return IniGetString(section, key, fallback, out.data(), N);
  }

  // The setting read as an integer (atoi rules: 3307x gives 3307, abc gives
  // 0), or `fallback` when it is absent.
  int IniGetInt(const char* section, const char* key, int fallback);

  // Loads the file; 0 on success, 1 when it can neither be created nor read
  // (lookups then give their defaults and the next lookup tries again). A
  // missing file is created with one empty line, readable by its owner only;
  // an existing one is never written, even when it cannot be read.
  int IniLoad();

 private:
  Text<256> path_;
  std::vector<IniEntry> entries_;  // in file order
  bool loaded_ = false;
};

// The program's configuration file, "./CorvanaDataImporter.ini".
extern IniFile g_config;
