// What the operator reads on stderr after a job, before the log: the rows
// written per table, the statements that failed, the log lines that report a
// problem, and the wall time. It never touches stdout.
#pragma once

#include <string>

#include "store/connection.h"

// The summary as text, one line per item; `job` names the run ("KWRC -
// patient - 2012"), `problem_lines` is the number of log lines reporting an
// error or a warning.
std::string FormatRunSummary(const std::string& job, const StatementTally& tally, unsigned long long problem_lines,
                             double seconds);
