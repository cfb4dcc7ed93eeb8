// Cuts a source line into fields. The exports use two rules, and a job may
// change the separators from one field to the next (the last field of a line
// often also ends at CR or LF):
//   Next()      - a run of separators counts as one, so an empty cell vanishes
//                 and the later fields move forward (the classic tokenizer);
//   NextField() - every separator ends a field, so empty cells stay.
// A tokenizer of the line a LineReader has just handed out reports, when it
// is destroyed, the empty cells Next() passed over before a field and the
// cells left after the last field taken (util/read_losses.h); the fields
// themselves are the same.
#pragma once

#include <string>
#include <string_view>

#include "util/read_losses.h"

class Tokenizer {
 public:
  // Works on its own copy of `line`; the returned fields live as long as the
  // tokenizer and may be changed in place (trimmed, quotes stripped).
  explicit Tokenizer(std::string_view line)
      : buffer_(line), position_(0), input_(InputLineOf(line)), line_(input_ != nullptr ? line : std::string_view()),
        line_number_(input_ != nullptr ? input_->number : 0) {}
  ~Tokenizer() {
    if (input_ != nullptr && taken_) ReportReading();
  }
  Tokenizer(const Tokenizer&) = delete;
  Tokenizer& operator=(const Tokenizer&) = delete;

  // Skips leading separators and returns the field up to the next separator
  // (which is consumed), or nullptr when only separators are left.
  char* Next(const char* separators);

  // Returns the field up to the next separator, empty when a separator stands
  // right here, or nullptr at the end of the line.
  char* NextField(const char* separators);

  // Everything not yet taken, or nullptr when nothing is left.
  char* Rest();

 private:
  void NoteField(std::size_t start, std::size_t end);
  void ReportReading();

  std::string buffer_;
  std::size_t position_;  // first byte not yet handed out
  bool ended_ = false;    // NextField has handed out the last field

  // Only for a tokenizer of the current input line (otherwise null/empty):
  InputLine* input_;
  std::string_view line_;       // the line as read, to report from
  long long line_number_;       // its number in its file
  bool taken_ = false;          // a field was asked for
  bool skipped_tab_ = false;    // Next() passed over an empty cell
  bool shifted_ = false;        // and a field with a value came after it
  std::size_t last_start_ = 0;  // where the last such field starts
};

// Takes up to `count` fields with Next(): all but the last end at any byte of
// `separators`, the last at any byte of `last_separators`. Returns how many
// fields were there; the missing ones are left null.
int TakeFields(Tokenizer& tokenizer, char** fields, int count, const char* separators,
               const char* last_separators);

// The one "line has too few fields" check: when `found` is below `needed`,
// prints "\tERROR - only %d of %d fields for '%s', line skipped\n" with the
// line's identity (case number, contact) and returns false.
bool HasFields(int found, int needed, const char* identity);

// Takes up to `count` fields with NextField(), so empty cells keep their
// place. Returns how many fields the line has (at most `count`): one more
// than the separators met, so a line whose fields 0..k-1 are each followed
// by a separator gives at least k + 1. The missing fields are left null.
int TakeEveryField(Tokenizer& tokenizer, char** fields, int count, const char* separators);

// True when `line` holds nothing but its line end (or nothing at all): the
// only line a job may pass over in silence. A line of blanks or tabs is not
// empty; it goes through the job like any other and gets its messages.
bool IsEmptyLine(std::string_view line);
