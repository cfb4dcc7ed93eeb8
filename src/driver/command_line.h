// The table-driven option parser that names the job of a run: "-org", "-type",
// "-year" and the optional "-region", and the options of a safe migration. It prints nothing; IsValid() tells the
// entry point whether every required option was given.
#pragma once

#include <cstddef>
#include <cstdint>

#include "util/text.h"

enum OptionType : int32_t {
  kOptionFlag = 1,     // takes no value; stores the integer 1
  kOptionLong = 2,     // atol of the next word
  kOptionDouble = 3,   // atof of the next word
  kOptionString = 4,   // the next word, whole
};

enum OptionState : int8_t {
  kOptionOptional = 0,  // optional and not yet seen
  kOptionRequired = 1,  // required and not yet seen
  kOptionSeen = 2,
};

struct OptionSpec {
  char name[32];  // the option word with its leading "-"
  int8_t state;  // OptionState; set to kOptionSeen when taken, never back
  int32_t type;  // OptionType
  void* destination;  // int32_t, int32_t, double or char[destination_size]
  std::size_t destination_size;  // for strings: the buffer's size, terminator included
};

// The run's settings, filled by the parser; they start zeroed.
extern Text<32> OrgCode;
extern Text<32> DataType;
extern int32_t Year;
extern Text<32> Region;
// The options of a safe migration: "-dry-run" (everything rolled back),
// "-atomic" (one transaction), "-undo JOURNAL" (reverse a run), "-force"
// (undo over later changes), "-again" (repeat an import already made).
extern int32_t DryRun;
extern int32_t Atomic;
extern Text<256> UndoJournal;
extern int32_t Force;
extern int32_t Again;

// The process-wide option table over those settings, and its entry count.
extern OptionSpec g_options[];
extern const int kOptionCount;

class CommandLine {
 public:
  // Parses argv[1..argc-1] against `table`, changing its `state` fields in
  // place. Unknown words are skipped; a value-taking option as the last word
  // is left unseen; the word after a value-taking option is always its value.
  // A string value longer than its destination is refused (left unseen), so
  // the run stops at the usage text rather than choose a job by a cut name.
  CommandLine(int argc, const char* const* argv, OptionSpec* table, int count);

  // True when no required option is still unseen.
  bool IsValid() const;

 private:
  OptionSpec* table_;
  int count_;
};
