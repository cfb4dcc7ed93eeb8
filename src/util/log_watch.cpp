#include "util/log_watch.h"

#include <unistd.h>

#include <cerrno>
#include <cstdio>
#include <cstring>
#include <string>

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

ssize_t WriteThrough(void*, const char* data, std::size_t size) {
  if (g_watch.terminal) ProgressHide();
  Scan(data, size);
  std::size_t written = 0;
  while (written < size) {
    ssize_t n = write(STDOUT_FILENO, data + written, size - written);
    if (n < 0 && errno == EINTR) continue;
    if (n <= 0) return written > 0 ? static_cast<ssize_t>(written) : -1;
    written += static_cast<std::size_t>(n);
  }
  return static_cast<ssize_t>(size);
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
  std::fflush(stdout);
  cookie_io_functions_t functions{nullptr, WriteThrough, nullptr, nullptr};
  std::FILE* watched = fopencookie(nullptr, "w", functions);
  if (watched == nullptr) return;  // the log still goes out, only uncounted
  g_watch.terminal = isatty(STDOUT_FILENO) == 1;
  setvbuf(watched, nullptr, g_watch.terminal ? _IOLBF : _IOFBF, 64 * 1024);
  stdout = watched;
}

unsigned long long ProblemLines() {
  std::fflush(stdout);
  return g_watch.problems;
}
