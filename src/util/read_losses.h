// What the line reader and the tokenizer tell the loss report about lines
// that were read otherwise than they look:
//   - "empty cell": a run of tabs is one separator for Tokenizer::Next, so an
//     empty cell vanishes and every later field moves one place left;
//   - "extra fields": the line has cells after the last field its job reads
//     (a tab inside a quoted text gives one more);
//   - "line read in pieces": the line is longer than its job reads at once,
//     and each piece went through the job as a line of its own;
//   - "character not held": a Unicode file's character that latin1 cannot
//     hold was read as '?'.
// The reading itself never changes; these only add entries to the report
// (util/loss_report.h), each naming the file and line ("FILE line N").
//
// A LineReader makes each line it hands out the current input line; a
// Tokenizer built on that very text (the same first byte) watches how it is
// cut and reports when it is destroyed. Tokenizers of anything else (a copy,
// a part of a field) report nothing. Each line is reported at most once per
// kind, however often its job cuts it.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

#include "util/loss_report.h"

// The line a LineReader handed out last.
struct InputLine {
  const char* file = nullptr;    // its file, as the report names it (see ReportedFileName)
  long long number = 0;          // its line number, from 1
  const char* text = nullptr;    // the first byte of the caller's copy of it
  bool cells_reported = false;   // its empty cells are in the report
  bool fields_reported = false;  // its extra fields are in the report
};

// Makes `line` the current input line (null: there is none).
void SetCurrentInputLine(InputLine* line);
// Forgets `line` when it is the current one (its reader is going away).
void DropCurrentInputLine(const InputLine* line);

// The current input line when `text` starts at its first byte, else null.
InputLine* InputLineOf(std::string_view text);

// The name the report gives the file `path`: without a leading "./" or ".\".
std::string_view ReportedFileName(std::string_view path);

// Reports the empty cells of `text`, the current line, that come before the
// byte `field_start` (the start of the last field its job took): every
// later field was read that many places left.
void ReportEmptyCells(InputLine& line, std::string_view text, std::size_t field_start);

// Reports what `text` holds from byte `unread` on, when anything but blanks,
// tabs and line ends: cells its job does not read.
void ReportExtraFields(InputLine& line, std::string_view text, std::size_t unread);

// Reports that line `number` of `file`, `length` characters without its line
// end, was read as `pieces` lines of at most `piece_size` characters.
void ReportLineInPieces(const char* file, long long number, unsigned long long length, long long pieces,
                        std::size_t piece_size);

// Reports that `count` characters of the current line, the first in
// `column` with the code point `code_point` (0: beyond U+FFFF), came out as
// '?' because latin1, the database's character set, cannot hold them.
void ReportCharactersNotHeld(const InputLine& line, int column, unsigned code_point, std::size_t count);

// Names the rows of an XML export as the records of the loss report while a
// job walks them ("FILE row N", rows counted from 1), and forgets the name
// when it goes away. No allocation per row.
class ExportRows {
 public:
  explicit ExportRows(const char* file);
  ~ExportRows();
  ExportRows(const ExportRows&) = delete;
  ExportRows& operator=(const ExportRows&) = delete;

  // Makes row `row` the record entries belong to.
  void Name(long long row);

 private:
  std::string record_;
  std::size_t prefix_;  // the length of "FILE row "
};

// For tests: while `entries` is not null, every entry reported here is also
// added to it.
void WatchReadLosses(std::vector<LossEntry>* entries);
