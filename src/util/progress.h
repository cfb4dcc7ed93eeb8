// One line of progress on stderr while a job works, for an operator watching
// a long migration: what it is doing (a file, a pass), how far it has got of
// the total, the rate and the time left. It is drawn only when stderr is a
// terminal, at most ten times a second, and redrawn in place; when stderr is
// a file or a pipe nothing at all is written. The job's log on stdout never
// changes: the line is taken away before a log line is written to the same
// terminal (see LogWatch) and cleared before the job ends.
#pragma once

// Starts a new stage: `what` ("Reading 'KWRC_2012.txt'", "Pass 3: moves"),
// `total` units to go (0 when unknown) and the unit's name ("bytes",
// "records").
void ProgressStart(const char* what, unsigned long long total, const char* unit);

// How many units of the current stage are done.
void ProgressUpdate(unsigned long long done);

// How far an input file has been read (`done` of `total` bytes): shown as
// the stage `what` while the file is read. A job's own stage that was shown
// before (a loop over records, a pass) comes back once reading is done.
void ProgressReading(const char* what, unsigned long long done, unsigned long long total);
void ProgressReadingDone(const char* what);

// One more statement sent to the server: shown as the rate beside the stage.
void ProgressStatement();

// Takes the line away (it is drawn again at the next update).
void ProgressHide();

// Takes the line away for good: no stage is shown until the next start.
void ProgressClear();

// True when progress is drawn at all (stderr is a terminal).
bool ProgressShown();

// The progress of one loop over `total` records, shown as the stage `what`.
class ProgressLoop {
 public:
  ProgressLoop(const char* what, unsigned long long total) { ProgressStart(what, total, "records"); }
  ProgressLoop(const ProgressLoop&) = delete;
  ProgressLoop& operator=(const ProgressLoop&) = delete;

  // One more record done.
  void Step() { ProgressUpdate(++done_); }

 private:
  unsigned long long done_ = 0;
};
