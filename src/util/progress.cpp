#include "util/progress.h"

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <mutex>
#include <string>

#include "util/platform.h"

namespace {

using Clock = std::chrono::steady_clock;

constexpr auto kRedrawEvery = std::chrono::milliseconds(100);

struct Stage {
  std::string what;
  std::string unit;
  unsigned long long total = 0;
  unsigned long long done = 0;
  Clock::time_point started;
};

struct Progress {
  bool checked = false;
  bool shown = false;
  bool active = false;  // a stage is running
  bool drawn = false;   // the line is on the screen now
  bool reading = false;  // the stage is an input file being read
  Stage stage;
  Stage saved;  // the job's stage while a file is read; empty when none
  unsigned long long statements = 0;
  unsigned long long stage_statements = 0;  // at the start of the stage
  Clock::time_point last_draw;
};

Progress g_progress;

// On Windows the log watch hides the line from a thread of its own.
std::mutex g_screen;

bool Enabled() {
  if (!g_progress.checked) {
    g_progress.checked = true;
    const char* term = std::getenv("TERM");
    g_progress.shown = IsTerminal(true) && (term == nullptr || std::strcmp(term, "dumb") != 0);
  }
  return g_progress.shown;
}

// "12.3 MB" for bytes, "12,345" for anything else.
std::string Amount(unsigned long long value, const std::string& unit) {
  char text[32];
  if (unit == "bytes") {
    if (value >= 10ull * 1024 * 1024) {
      std::snprintf(text, sizeof text, "%.1f MB", static_cast<double>(value) / (1024.0 * 1024.0));
    } else if (value >= 10ull * 1024) {
      std::snprintf(text, sizeof text, "%.0f kB", static_cast<double>(value) / 1024.0);
    } else {
      std::snprintf(text, sizeof text, "%llu bytes", value);
    }
    return text;
  }
  std::snprintf(text, sizeof text, "%llu", value);
  std::string digits = text;
  for (int at = static_cast<int>(digits.size()) - 3; at > 0; at -= 3) digits.insert(static_cast<std::size_t>(at), ",");
  return digits;
}

void Draw(Clock::time_point now) {
  const Stage& stage = g_progress.stage;
  double seconds = std::chrono::duration<double>(now - stage.started).count();
  std::string line = "\r" + stage.what + ": " + Amount(stage.done, stage.unit);
  if (stage.total > 0) line += " of " + Amount(stage.total, stage.unit);
  if (stage.unit != "bytes") line += " " + stage.unit;
  if (stage.total > 0) {
    char percent[16];
    std::snprintf(percent, sizeof percent, " (%llu%%)", std::min(stage.done, stage.total) * 100 / stage.total);
    line += percent;
  }
  unsigned long long statements = g_progress.statements - g_progress.stage_statements;
  if (seconds > 0.5) {
    char rate[64];
    if (statements > 0) {
      std::snprintf(rate, sizeof rate, ", %.0f statements/s", static_cast<double>(statements) / seconds);
    } else {
      std::snprintf(rate, sizeof rate, ", %s/s", Amount(static_cast<unsigned long long>(
                                                            static_cast<double>(stage.done) / seconds), stage.unit)
                                                     .c_str());
    }
    line += rate;
    if (stage.total > 0 && stage.done > 0 && stage.done < stage.total) {
      double left = seconds * static_cast<double>(stage.total - stage.done) / static_cast<double>(stage.done);
      char eta[48];
      std::snprintf(eta, sizeof eta, ", %d:%02d left", static_cast<int>(left) / 60, static_cast<int>(left) % 60);
      line += eta;
    }
  }
  line += "\x1b[K";  // clears what a longer earlier line left
  std::lock_guard<std::mutex> lock(g_screen);
  std::fwrite(line.data(), 1, line.size(), stderr);
  std::fflush(stderr);
  g_progress.drawn = true;
  g_progress.last_draw = now;
}

void MaybeDraw() {
  if (!g_progress.active) return;
  Clock::time_point now = Clock::now();
  if (now - g_progress.last_draw >= kRedrawEvery) Draw(now);
}

}  // namespace

void ProgressStart(const char* what, unsigned long long total, const char* unit) {
  if (!Enabled()) return;
  g_progress.active = true;
  g_progress.reading = false;
  g_progress.stage = Stage{what, unit, total, 0, Clock::now()};
  g_progress.stage_statements = g_progress.statements;
  MaybeDraw();
}

void ProgressReading(const char* what, unsigned long long done, unsigned long long total) {
  if (!Enabled()) return;
  if (!g_progress.active || g_progress.stage.what != what) {
    // Keep the job's own stage to come back to; a reading stage is not kept.
    if (g_progress.active && !g_progress.reading) g_progress.saved = g_progress.stage;
    g_progress.active = true;
    g_progress.reading = true;
    g_progress.stage = Stage{what, "bytes", total, done, Clock::now()};
    g_progress.stage_statements = g_progress.statements;
  }
  ProgressUpdate(done);
}

void ProgressReadingDone(const char* what) {
  if (!g_progress.active || !g_progress.reading || g_progress.stage.what != what) return;
  g_progress.reading = false;
  if (g_progress.saved.what.empty()) {
    ProgressClear();
    return;
  }
  g_progress.stage = g_progress.saved;
  g_progress.saved = Stage{};
  MaybeDraw();
}

void ProgressUpdate(unsigned long long done) {
  if (!g_progress.active) return;
  g_progress.stage.done = done;
  MaybeDraw();
}

void ProgressStatement() {
  ++g_progress.statements;
  if (g_progress.active) MaybeDraw();
}

void ProgressHide() {
  std::lock_guard<std::mutex> lock(g_screen);
  if (!g_progress.drawn) return;
  std::fputs("\r\x1b[K", stderr);
  std::fflush(stderr);
  g_progress.drawn = false;
}

void ProgressClear() {
  ProgressHide();
  g_progress.active = false;
  g_progress.reading = false;
  g_progress.saved = Stage{};
}

bool ProgressShown() { return Enabled(); }
