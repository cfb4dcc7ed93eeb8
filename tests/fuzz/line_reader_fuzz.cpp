// Line reading and field cutting on any file: every line (or piece of an
// over-long one) is cut into fields by both rules without leaving the line,
// and what the loss report hears of it (empty cells, extra fields, pieces)
// stays inside the line too.
#include <cstdint>
#include <string>

#include "fuzz_input.h"
#include "util/line_reader.h"
#include "util/loss_report.h"
#include "util/tokenizer.h"

CORVANA_FUZZ_SILENT_STDOUT

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  if (size == 0) return 0;
  // The first byte picks the line length limit (small ones cut lines often).
  std::size_t max_chars = 1 + data[0] % 64;
  if (data[0] >= 192) max_chars = 4096;
  const std::string& path = WriteScratchFile(data + 1, size - 1, ".txt");
  LineReader reader(path.c_str(), max_chars, true);
  std::string line;
  while (reader.ReadLine(line)) {
    (void)reader.last_was_cut();
    (void)IsEmptyLine(line);

    Tokenizer runs(line);
    char* fields[12] = {};
    int found = TakeFields(runs, fields, 12, "\t", "\t\r\n");
    HasFields(found, 12, fields[0] != nullptr ? fields[0] : "");
    (void)runs.Rest();

    Tokenizer cells(line);
    char* every[12] = {};
    (void)TakeEveryField(cells, every, 12, "\t\n");
    (void)cells.NextField("\t");
    (void)cells.Rest();

    Tokenizer mixed(line);
    while (mixed.Next(",") != nullptr && mixed.NextField("/\t") != nullptr) {
    }
  }
  ForgetLossesAfter(0);  // one input's entries at a time
  return 0;
}
