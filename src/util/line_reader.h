// Reads the lines of a text file exported on Windows, the way that system's
// text mode reads them: CR LF comes back as LF, a Ctrl-Z ends the file (with
// a notice on stderr when anything follows it), every other byte (latin1
// included) passes unchanged.
#pragma once

#include <cstddef>
#include <string>

#include "util/read_losses.h"
#include "util/text_stream.h"

class LineReader {
 public:
  // Opens `path` for reading; is_open() tells whether that worked. A line is
  // returned in pieces of at most `max_chars` characters, as a fixed read
  // buffer would deliver it. Unicode files are read as the latin1 text they
  // hold (see TextSource). With `show_progress`, the file is one of the
  // run's inputs (not the configuration file): reading it is shown as the
  // run's progress, each line it hands out names the record of the loss
  // report ("FILE line N") and is the current input line that a Tokenizer
  // reports on, and a line read in pieces or holding characters latin1
  // cannot hold (a Unicode file's) is reported (util/read_losses.h).
  LineReader(const char* path, std::size_t max_chars, bool show_progress = true);
  ~LineReader();
  LineReader(const LineReader&) = delete;
  LineReader& operator=(const LineReader&) = delete;

  bool is_open() const { return stream_.is_open(); }

  // True when the file is open and can be read: a directory, say, opens but
  // fails its first read. Reads the first block ahead (ReadLine still
  // returns every line), so call it before reading, in place of is_open().
  bool CanRead();

  // Reads the next line (or the next piece of an over-long line) into `line`,
  // its line feed included when one ended it. Returns false at end of file.
  // `line` must stay unchanged at its start while a Tokenizer cuts it, for
  // that tokenizer to recognise it (shortening it at the end is fine).
  bool ReadLine(std::string& line);

  // True when the last ReadLine stopped at the length limit, not at a line end.
  bool last_was_cut() const { return last_was_cut_; }

  // The line of the file (counted from 1) that the last ReadLine's text
  // began on, as the log names a source line.
  long long line_number() const { return last_line_; }

 private:
  // Tells the loss report about the line just read: names it, makes it the
  // current input line, and reports it when it was read in pieces. `read`
  // is false at the end of the file.
  void NoteLine(const std::string& line, bool read);
  // Reports the characters of `line` that came out as '?'.
  void NoteReplaced(const std::string& line);

  long long line_ = 1;  // line of the file the next byte belongs to
  long long last_line_ = 0;
  TextStream stream_;
  const std::size_t max_chars_;
  bool last_was_cut_ = false;

  const bool reports_;        // an input of the run, whose lines are reported
  std::string name_;          // the file's name in the report
  std::string record_;        // "NAME line N" of the current line
  std::size_t record_prefix_ = 0;  // the length of "NAME line "
  InputLine input_;
  unsigned long long line_offset_ = 0;     // where the last line read starts in the text
  std::size_t next_replacement_ = 0;       // the first of stream_.replacements() not yet reported
  long long pieces_ = 0;                   // pieces of the current line read so far, all cut
  unsigned long long piece_chars_ = 0;     // characters in them
};
