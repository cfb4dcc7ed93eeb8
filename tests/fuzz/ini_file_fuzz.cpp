// The configuration file read from any bytes: every lookup gives a value cut
// to its buffer, or its fallback.
#include <cstdint>

#include "driver/ini_file.h"
#include "fuzz_input.h"
#include "util/text.h"

CORVANA_FUZZ_SILENT_STDOUT

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const std::string& path = WriteScratchFile(data, size, ".ini");
  IniFile ini(path.c_str());
  Text<64> server{};
  Text<8> small{};
  ini.IniGetString("MYSQL", "Server", "", server);
  ini.IniGetString("MYSQL", "Password", "a fallback longer than the buffer", small);
  ini.IniGetString("", "", "", small);
  (void)ini.IniGetInt("MYSQL", "Port", 3306);
  (void)ini.IniGetInt("MYSQL", "ReconnectSeconds", 60);
  char one[1];
  ini.IniGetString("MYSQL", "Database", "x", one, sizeof one);
  return 0;
}
