#include "jobs/repairs/line_length_repair.h"

#include <cstdio>
#include <new>
#include <string>

#include "jobs/repairs/repair_columns.h"
#include "store/connection.h"
#include "util/strings.h"
#include "util/progress.h"

namespace {

constexpr int kLineWidth = 80;
constexpr int kProgressEvery = 100;  // rows per progress mark

// Room for a typical note and its escaped form; longer notes grow them.
constexpr std::size_t kInitialBufferSize = 100000;

struct NoteTable {
  const char* heading;
  const char* select;
  const char* update;
  const char* what;  // for the progress line
};

constexpr NoteTable kNoteTables[] = {
    {"Fixing RECORD_ENTRY line lengths\n", "select id,notes from record_entry;",
     "update record_entry set notes='%s' where id=%d;", "Wrapping the record entry notes"},
    {"\nFixing LOCATION RECORD_ENTRY line lengths\n", "select id,notes from location_record_entry;",
     "update location_record_entry set notes='%s' where id=%d;", "Wrapping the location record entry notes"},
};

// Working buffers, reused for every note of the run.
struct NoteBuffers {
  std::string note;
  std::string escaped;
};

// Wraps and, unless `test`, writes back the notes of one table; prints the
// marks and counts.
void WalkTable(const NoteTable& table, bool test, NoteBuffers& buffers) {
  std::printf("%s", table.heading);
  int checked = 0;
  int adjusted = 0;
  SqlResult result = QuerySql(table.select, {});
  if (result) {
    ProgressLoop progress(table.what, result.size());
    while (MYSQL_ROW row = result.NextRow()) {
      progress.Step();
      if (checked % kProgressEvery == 0) std::printf("-");
      int id = ColumnInt(row[0]);
      if (row[1] != nullptr) {
        // All of the column's bytes: a NUL byte inside a note must not end it.
        buffers.note.assign(result.ColumnBytes(row, 1));
        if (WrapLongLines(buffers.note, kLineWidth)) {
          ++adjusted;
          std::printf("* (%d)", id);
          if (!test) {
            buffers.escaped = EscapeSqlText(buffers.note);
            if (ExecuteSql(table.update, {buffers.escaped, id}) != 0) {
              std::printf("\nERROR: Unable to update record %d\n", id);
              std::printf("%s\n", LastDbError());
            }
          }
        }
      }
      ++checked;
    }
  }
  std::printf("\nChecked %d records\n", checked);
  std::printf("Adjusted %d records\n", adjusted);
}

}  // namespace

int fixLineLengths(bool test) {
  NoteBuffers buffers;
  try {
    buffers.note.reserve(kInitialBufferSize);
    buffers.escaped.reserve(2 * kInitialBufferSize);
  } catch (const std::bad_alloc&) {
    std::printf("ERROR: out of memory\n");
    return 1;
  }
  for (const NoteTable& table : kNoteTables) WalkTable(table, test, buffers);
  return 0;
}
