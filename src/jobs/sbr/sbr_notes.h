// The labelled note texts that the SBR jobs build from the cells of one
// source line (the admission record, the necropsy report): each note is a
// table of lines, each line a label format and the columns it shows.
#pragma once

#include <span>
#include <string>

// One line of a note: `format` holds "%s" where a column's cell goes and
// "%%" for a percent sign; `column` and `second_column` are indexes into the
// line's cells, or kNoColumn.
struct SbrNoteLine {
  static constexpr int kNoColumn = -1;
  const char* format;
  int column = kNoColumn;
  int second_column = kNoColumn;
};

// Appends each line of `lines`, filled with its cells of `cells`, to `notes`.
// Every line is written whatever its cells hold (an empty cell leaves the
// label alone); nothing is cut, however long a cell is. The cells the lines
// name must exist.
void AppendNoteLines(std::string& notes, std::span<const SbrNoteLine> lines, char* const* cells);
