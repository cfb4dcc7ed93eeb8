#include "util/log_watch.h"

#include <cstdio>
#include <algorithm>
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
  bool routed = false;
  unsigned long long problems = 0;
};

Watch g_watch;

// The log's gate while writes wait in a batch: the run's commands reach it
// in the stream itself (a NUL byte and a letter, which printf of a text never
// writes), so that on Windows, where a thread of its own sees the stream, they
// apply exactly where they were written.
struct Gate {
  bool holding = false;
  bool command_next = false;  // a NUL ended the last piece
  std::string held;           // written by the job, not yet let through
  unsigned long long shown = 0;     // let through since holding began
  unsigned long long received = 0;  // written in this pass since holding began
};

Gate g_gate;

constexpr char kHold = 'H';
constexpr char kRelease = 'R';
constexpr char kNewPass = 'N';
constexpr char kEnd = 'E';

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

void LetThrough(const char* data, std::size_t size) {
  if (size == 0) return;
  if (g_watch.terminal) ProgressHide();
  Scan(data, size);
  WriteRealStdout(data, size);
}

void Obey(char command) {
  switch (command) {
    case kHold:
      g_gate = Gate{};
      g_gate.holding = true;
      break;
    case kRelease:
    case kEnd:
      LetThrough(g_gate.held.data(), g_gate.held.size());
      g_gate.shown += g_gate.held.size();
      g_gate.held.clear();
      if (command == kEnd) g_gate = Gate{};
      break;
    case kNewPass:
      g_gate.held.clear();
      g_gate.received = 0;
      break;
    default:
      break;
  }
}

// Takes the job's bytes while holding: those a new pass writes again are
// dropped, the rest wait for the release.
void Hold(const char* data, std::size_t size) {
  if (g_gate.received < g_gate.shown) {
    std::size_t again = static_cast<std::size_t>(std::min<unsigned long long>(size, g_gate.shown - g_gate.received));
    g_gate.received += again;
    data += again;
    size -= again;
  }
  g_gate.received += size;
  g_gate.held.append(data, size);
}

// Sees each piece of the log on its way out (on Windows from a thread of its
// own, hence the progress line's lock).
void WatchPiece(const char* data, std::size_t size) {
  std::size_t start = 0;
  if (g_gate.command_next && size > 0) {
    g_gate.command_next = false;
    Obey(data[0]);
    start = 1;
  }
  for (std::size_t i = start; i < size; ++i) {
    if (data[i] != '\0') continue;
    if (g_gate.holding) {
      Hold(data + start, i - start);
    } else {
      LetThrough(data + start, i - start);
    }
    if (i + 1 < size) {
      Obey(data[i + 1]);
    } else {
      g_gate.command_next = true;
    }
    start = i + 2;
    i = start - 1;
  }
  if (start >= size) return;
  if (g_gate.holding) {
    Hold(data + start, size - start);
  } else {
    LetThrough(data + start, size - start);
  }
}

void Command(char command) {
  const char bytes[2] = {'\0', command};
  std::fwrite(bytes, 1, 2, stdout);
  std::fflush(stdout);
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
  g_watch.routed = RouteStdout(WatchPiece, g_watch.terminal);
}

bool HoldLog() {
  if (!g_watch.routed) return false;
  Command(kHold);
  return true;
}

void ReleaseLog() {
  if (g_watch.routed) Command(kRelease);
}

void RestartLog() {
  if (g_watch.routed) Command(kNewPass);
}

void EndLogHold() {
  if (g_watch.routed) Command(kEnd);
}

unsigned long long ProblemLines() {
  DrainStdout();
  return g_watch.problems;
}
