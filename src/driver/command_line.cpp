#include "driver/command_line.h"

#include <cstdlib>
#include <cstring>

#include "util/strings.h"

Text<32> OrgCode{};
Text<32> DataType{};
int32_t Year = 0;
Text<32> Region{};
int32_t DryRun = 0;
int32_t Atomic = 0;
Text<256> UndoJournal{};
int32_t Force = 0;
int32_t Again = 0;

OptionSpec g_options[] = {
    {"-org", kOptionRequired, kOptionString, OrgCode.data(), sizeof OrgCode.chars},
    {"-type", kOptionRequired, kOptionString, DataType.data(), sizeof DataType.chars},
    {"-year", kOptionRequired, kOptionLong, &Year, sizeof Year},
    {"-region", kOptionOptional, kOptionString, Region.data(), sizeof Region.chars},
    {"-dry-run", kOptionOptional, kOptionFlag, &DryRun, sizeof DryRun},
    {"-atomic", kOptionOptional, kOptionFlag, &Atomic, sizeof Atomic},
    {"-undo", kOptionOptional, kOptionString, UndoJournal.data(), sizeof UndoJournal.chars},
    {"-force", kOptionOptional, kOptionFlag, &Force, sizeof Force},
    {"-again", kOptionOptional, kOptionFlag, &Again, sizeof Again},
};
const int kOptionCount = sizeof g_options / sizeof g_options[0];

CommandLine::CommandLine(int argc, const char* const* argv, OptionSpec* table, int count)
    : table_(table), count_(count) {
  for (int i = 1; i < argc; ++i) {
    OptionSpec* option = nullptr;
    for (int k = 0; k < count_ && option == nullptr; ++k) {
      if (std::strcmp(table_[k].name, argv[i]) == 0) option = &table_[k];
    }
    if (option == nullptr) continue;
    if (option->type == kOptionFlag) {
      *static_cast<int32_t*>(option->destination) = 1;
      option->state = kOptionSeen;
      continue;
    }
    if (option->type < kOptionLong || option->type > kOptionString || i >= argc - 1) continue;
    const char* value = argv[++i];
    switch (option->type) {
      case kOptionLong:
        *static_cast<int32_t*>(option->destination) = ToInt(value);
        option->state = kOptionSeen;
        break;
      case kOptionDouble:
        *static_cast<double*>(option->destination) = std::atof(value);
        option->state = kOptionSeen;
        break;
      case kOptionString:
        if (std::strlen(value) < option->destination_size) {
          std::memcpy(option->destination, value, std::strlen(value) + 1);
          option->state = kOptionSeen;
        }
        break;
    }
  }
}

bool CommandLine::IsValid() const {
  for (int k = 0; k < count_; ++k) {
    if (table_[k].state == kOptionRequired) return false;
  }
  return true;
}
