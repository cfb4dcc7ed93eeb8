#include "util/input_end.h"

#include <cstdio>

#include "util/progress.h"

void ReportCtrlZ(const char* file_name, long long line, unsigned long long unread) {
  if (unread == 0) return;
  std::fflush(stdout);  // keeps the notice after the log lines it follows on a terminal
  ProgressHide();
  std::fprintf(stderr, "Note: '%s' ends at a Ctrl-Z (byte 0x1A) on line %lld; the %llu byte%s after it %s not read\n",
               file_name, line, unread, unread == 1 ? "" : "s", unread == 1 ? "was" : "were");
}
