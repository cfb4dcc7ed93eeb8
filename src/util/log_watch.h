// The job's log goes to stdout byte for byte. Watching it on its way lets the
// run tell the operator afterwards, on stderr, how many of its lines report a
// problem, and lets the progress line on a shared terminal step aside before
// each piece of the log is written.
#pragma once

// From now on, everything printed on stdout passes through the watch on its
// way to the same place, unchanged (line by line when it is a terminal).
void WatchLog();

// Lines of the log so far that report an error or a warning: those that
// begin, after blanks and tabs, with "ERROR", "Error", "WARNING", "Warning",
// "Unable", "Invalid", "Unknown", "Can't" or "No ".
unsigned long long ProblemLines();

// True when `line` (without its line feed) reports an error or a warning.
bool IsProblemLine(const char* line);

// While writes wait to be confirmed by the server, the log waits with them:
// a line is shown only once every statement sent before it is known to have
// landed. HoldLog starts holding what is printed from now on (false when
// stdout is not watched, so it cannot be held); ReleaseLog lets through what
// was printed so far; RestartLog forgets what is held and drops, of what the
// job prints from now on, as many bytes as were already shown (the job goes
// through its work again and prints the same log); EndLogHold lets everything
// through and stops holding.
bool HoldLog();
void ReleaseLog();
void RestartLog();
void EndLogHold();
