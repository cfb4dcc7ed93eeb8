#include "util/log_watch.h"

#include <cstdio>
#include <cstring>
#include <string>

#include "util/platform.h"
#include "util/progress.h"

namespace {

constexpr const char* kProblemStarts[] = {"ERROR", "Error", "WARNING", "Warning", "Unable",
                                          "Invalid", "Unknown", "Can't", "No "};

// Enough of a line's start to classify it.
constexpr std::size_t kKeep = 16;

struct Watch {
  std::string line_start;  // the first bytes of the line being written
  bool terminal = false;
  unsigned long long problems = 0;
};

Watch g_watch;

void Scan(const char* data, std::size_t size) {
  for (std::size_t i = 0; i < size; ++i) {
    if (data[i] == '\n') {
      if (IsProblemLine(g_watch.line_start.c_str())) ++g_watch.problems;
      g_watch.line_start.clear();
    } else if (g_watch.line_start.size() < kKeep) {
      g_watch.line_start.push_back(data[i]);
    }
  }
}

// Sees each piece of the log on its way out (on Windows from a thread of its
// own, hence the progress line's lock).
void WatchPiece(const char* data, std::size_t size) {
  if (g_watch.terminal) ProgressHide();
  Scan(data, size);
}

}  // namespace

bool IsProblemLine(const char* line) {
  line += std::strspn(line, " \t");
  for (const char* start : kProblemStarts) {
    if (std::strncmp(line, start, std::strlen(start)) == 0) return true;
  }
  return false;
}

void WatchLog() {
  g_watch.terminal = IsTerminal(false);
  // Should the route fail, the log still goes out, only uncounted.
  RouteStdout(WatchPiece, g_watch.terminal);
}

unsigned long long ProblemLines() {
  DrainStdout();
  return g_watch.problems;
}
