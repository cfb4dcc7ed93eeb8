#include "driver/ini_file.h"

#include <sys/stat.h>

#include <cerrno>
#include <cstdio>
#include <cstring>
#include <string>

#include "util/line_reader.h"
#include "util/platform.h"
#include "util/strings.h"

IniFile g_config("./CorvanaDataImporter.ini");

namespace {

// Each read takes at most 255 characters; a longer line continues as a line
// of its own.
constexpr std::size_t kMaxRead = 255;

void Trim(std::string& text) {
  const char* space = " \t\n\v\f\r";
  std::size_t end = text.find_last_not_of(space);
  if (end == std::string::npos) {
    text.clear();
    return;
  }
  text.erase(end + 1);
  text.erase(0, text.find_first_not_of(space));
}

}  // namespace

IniFile::IniFile(const char* path) : path_{} { path_ = path; }

int IniFile::IniLoad() {
  // Only a file that is not there at all is created. One that exists but
  // cannot be read holds the operator's settings: it is never replaced.
  struct stat info {};
  if (stat(path_.c_str(), &info) == 0) {
    if (!S_ISREG(info.st_mode)) return 1;
  } else {
    if (errno != ENOENT) return 1;
    // Owner only where that exists, since the file will hold a password.
    if (!CreateNewPrivateFile(path_.c_str(), "\n")) return 1;
  }
  LineReader reader(path_.c_str(), kMaxRead, false);
  if (!reader.is_open()) return 1;

  entries_.clear();
  Text<64> current_section{};
  std::string line;
  while (reader.ReadLine(line)) {
    Trim(line);
    IniEntry entry{};
    if (!line.empty() && line[0] == '[') {
      std::size_t close = line.find(']');
      if (close == std::string::npos) continue;  // an unclosed header is dropped
      std::string name = line.substr(1, close - 1);
      Trim(name);
      current_section = name;
      entry.section = current_section;
    } else if (!line.empty() && line[0] != ';' && line.find('=') != std::string::npos) {
      std::size_t equals = line.find('=');
      std::string key = line.substr(0, equals);
      std::string value = line.substr(equals + 1);
      Trim(key);
      Trim(value);
      entry.section = current_section;
      entry.key = key;
      entry.value = value;
    } else {
      entry.value = line;
    }
    entries_.push_back(entry);
  }
  loaded_ = true;
  return 0;
}

char* IniFile::IniGetString(const char* section, const char* key, const char* fallback, char* out,
                            std::size_t out_size) {
  if (!loaded_) IniLoad();
  const char* found = fallback;
  for (const IniEntry& entry : entries_) {
    if (!entry.key.empty() && entry.section == section && entry.key == key) {
      found = entry.value.c_str();
      break;
    }
  }
  if (out_size > 0) std::snprintf(out, out_size, "%s", found);
  return out;
}

int IniFile::IniGetInt(const char* section, const char* key, int fallback) {
  char fallback_text[16];
  char value[16];
  std::snprintf(fallback_text, sizeof fallback_text, "%d", fallback);
  IniGetString(section, key, fallback_text, value, sizeof value);
  return ToInt(value);
}
