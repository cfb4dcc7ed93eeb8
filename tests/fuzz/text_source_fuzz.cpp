// Decoding any file as the jobs read it (UTF-16 of either byte order, a
// UTF-8 mark, bytes): reads of every size stay inside their buffer.
#include <cstdint>

#include "fuzz_input.h"
#include "util/text_source.h"

CORVANA_FUZZ_SILENT_STDOUT

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  if (size == 0) return 0;
  // The first byte picks the read size; an odd one cuts UTF-16 units apart.
  std::size_t chunk = 1 + data[0] % 17;
  const std::string& path = WriteScratchFile(data + 1, size - 1, ".txt");
  char buffer[17];
  TextSource source;
  if (source.Open(path.c_str(), false)) {
    while (source.Read(buffer, chunk) > 0) {
      (void)source.position();
    }
    source.Close();
  }
  TextSource rest;
  if (rest.Open(path.c_str(), false)) {
    rest.Read(buffer, 1);
    (void)rest.CountRest();
  }
  return 0;
}
