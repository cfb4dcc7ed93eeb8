#include "driver/run_summary.h"

#include <cstdio>

namespace {

// " 12 inserted": a count and what it counts, in a column of its own.
std::string Count(unsigned long long value, const char* what) {
  char text[64];
  std::snprintf(text, sizeof text, " %8llu %s", value, what);
  return text;
}

}  // namespace

std::string FormatRunSummary(const std::string& job, const StatementTally& tally, unsigned long long problem_lines,
                             double seconds) {
  std::string text = "== Summary of " + job + "\n";
  bool any = false;
  std::string rows;
  for (const TableTally& table : tally.tables) {
    if (table.inserted + table.updated + table.deleted == 0) continue;
    any = true;
    char name[40];
    std::snprintf(name, sizeof name, "  %-22s", table.table.c_str());
    rows += name;
    if (table.inserted > 0) rows += Count(table.inserted, "inserted");
    if (table.updated > 0) rows += Count(table.updated, "updated");
    if (table.deleted > 0) rows += Count(table.deleted, "deleted");
    rows += "\n";
  }
  text += any ? "Rows written:\n" + rows : std::string("Rows written: none\n");
  char tail[192];
  std::snprintf(tail, sizeof tail,
                "Statements: %llu sent, %llu failed\n"
                "Log lines reporting an error or a warning: %llu\n"
                "Wall time: %.2f s\n",
                tally.sent, tally.failed, problem_lines, seconds);
  return text + tail;
}
