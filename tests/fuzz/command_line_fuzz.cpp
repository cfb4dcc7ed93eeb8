// The option parser on any words: values land cut or refused, never past
// their destination, and the table's states only move to "seen".
#include <cstdint>
#include <cstring>
#include <vector>

#include "driver/command_line.h"
#include "fuzz_input.h"

namespace {

// A table of every option type, with destinations of its own.
struct Settings {
  int32_t flag;
  int32_t number;
  double decimal;
  char name[8];
  char one[1];
};

}  // namespace

CORVANA_FUZZ_SILENT_STDOUT

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  FuzzInput input(data, size);
  std::vector<const char*> argv{"CorvanaDataImporter"};
  for (std::size_t i = 0; i < input.count() && i < 64; ++i) argv.push_back(input.Next());

  // The program's own table, from a clean start each time.
  static const std::vector<OptionSpec> pristine(g_options, g_options + kOptionCount);
  std::memcpy(g_options, pristine.data(), sizeof(OptionSpec) * pristine.size());
  OrgCode = "";
  DataType = "";
  Region = "";
  UndoJournal = "";
  CommandLine program(static_cast<int>(argv.size()), argv.data(), g_options, kOptionCount);
  (void)program.IsValid();

  Settings settings{};
  OptionSpec table[] = {
      {"-f", kOptionRequired, kOptionFlag, &settings.flag, sizeof settings.flag},
      {"-n", kOptionOptional, kOptionLong, &settings.number, sizeof settings.number},
      {"-d", kOptionOptional, kOptionDouble, &settings.decimal, sizeof settings.decimal},
      {"-s", kOptionRequired, kOptionString, settings.name, sizeof settings.name},
      {"-org", kOptionOptional, kOptionString, settings.one, sizeof settings.one},
  };
  CommandLine own(static_cast<int>(argv.size()), argv.data(), table, 5);
  (void)own.IsValid();
  return 0;
}
