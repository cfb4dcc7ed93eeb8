// Reads the lines of a text file exported on Windows, the way that system's
// text mode reads them: CR LF comes back as LF, a Ctrl-Z ends the file (with
// a notice on stderr when anything follows it), every other byte (latin1
// included) passes unchanged.
#pragma once

#include <cstddef>
#include <string>

#include "util/text_stream.h"

class LineReader {
 public:
  // Opens `path` for reading; is_open() tells whether that worked. A line is
  // returned in pieces of at most `max_chars` characters, as a fixed read
  // buffer would deliver it. Unicode files are read as the latin1 text they
  // hold (see TextSource). With `show_progress`, reading the file is shown
  // as the run's progress (an input, not the configuration file).
  LineReader(const char* path, std::size_t max_chars, bool show_progress = true);
  LineReader(const LineReader&) = delete;
  LineReader& operator=(const LineReader&) = delete;

  bool is_open() const { return stream_.is_open(); }

  // True when the file is open and can be read: a directory, say, opens but
  // fails its first read. Reads the first block ahead (ReadLine still
  // returns every line), so call it before reading, in place of is_open().
  bool CanRead();

  // Reads the next line (or the next piece of an over-long line) into `line`,
  // its line feed included when one ended it. Returns false at end of file.
  bool ReadLine(std::string& line);

  // True when the last ReadLine stopped at the length limit, not at a line end.
  bool last_was_cut() const { return last_was_cut_; }

  // The line of the file (counted from 1) that the last ReadLine's text
  // began on, as the log names a source line.
  long long line_number() const { return last_line_; }

 private:
  long long line_ = 1;  // line of the file the next byte belongs to
  long long last_line_ = 0;
  TextStream stream_;
  const std::size_t max_chars_;
  bool last_was_cut_ = false;
};
