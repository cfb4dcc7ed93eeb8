// Which job a run performs, chosen by organisation code and data type.
#pragma once

#include "jobs/run_options.h"

// Runs the one job that `org_code` and `data_type` select, if any. Import
// rows compare both exactly; repair types are compared ignoring case and
// only when `org_code` is none of the organisations'. The job is handed what
// it reads of `options`. Returns true when a job ran.
bool RunSelectedJob(const char* org_code, const char* data_type, const RunOptions& options);
