// What a run does around its job for a safe migration: the dry run (one
// transaction rolled back at the end), the atomic run (one transaction
// committed only when the job ends normally), the journal of every run that
// may write, and the guard against importing the same files twice.
#pragma once

#include <string>

#include "driver/dispatch.h"

// Where the run is connected, as the journal names it.
struct ConnectionTarget {
  std::string server;    // "host:port"
  std::string database;
};

// The exit codes a safe run adds to 0 and 1.
constexpr int kExitRefused = 2;       // a check refused the run, or an undo found later changes
constexpr int kExitNothingWritten = 3;  // an atomic or dry run ended early: the server rolled it back

// The folder, relative to the current directory, that holds the journals.
constexpr const char* kJournalFolder = "./CorvanaDataImporter-journal";

struct SafeRunOptions {
  bool dry_run = false;
  bool atomic = false;
  bool again = false;
  std::string org;
  std::string type;
  int year = 0;
  std::string region;
};

// Runs before the job, after the job line: checks that every table the job
// writes can roll back (dry and atomic runs), looks for a journal of the same
// import already made (unless `again`), opens the run's transaction and its
// journal, naming it on stderr. Returns 0 to go on with the job, or the exit
// code of a refusal (the reason is on stderr).
int BeginSafeRun(const SafeRunOptions& options, const JobDescription& job, const ConnectionTarget& target);

// Runs after the job: rolls a dry run back, commits an atomic run, and ends
// the journal. Returns the exit code (0, or kExitNothingWritten when the
// commit failed). `summary_note` gets a line for the operator's summary.
int EndSafeRun(std::string& summary_note);

// The journal of a completed, not undone run of the same job on the same
// files against the same server and database, among `folder`'s journals;
// "" when there is none. `files` are "name", "size", "sha256" triples.
std::string FindEarlierImport(const std::string& folder, const ConnectionTarget& target, const SafeRunOptions& options,
                              const std::vector<std::string>& files);

// Where the loss report of the run that BeginSafeRun began is kept: beside
// its journal, named like it with ".losses.tsv" ("-dry-run.losses.tsv" for a
// dry run, which has no journal); "" before a run began.
const std::string& LossFilePath();
