#include "jobs/sbr/sbr_notes.h"

namespace {

void AppendNoteLine(std::string& notes, const SbrNoteLine& line, char* const* cells) {
  const int columns[] = {line.column, line.second_column};
  int next = 0;
  for (const char* p = line.format; *p != '\0'; ++p) {
    if (p[0] == '%' && p[1] == '%') {
      notes += '%';
      ++p;
    } else if (p[0] == '%' && p[1] == 's') {
      if (next < 2 && columns[next] != SbrNoteLine::kNoColumn) notes += cells[columns[next]];
      ++next;
      ++p;
    } else {
      notes += *p;
    }
  }
}

}  // namespace

void AppendNoteLines(std::string& notes, std::span<const SbrNoteLine> lines, char* const* cells) {
  for (const SbrNoteLine& line : lines) AppendNoteLine(notes, line, cells);
}
