// Which job a run performs, chosen by organisation code and data type.
#pragma once

#include <string>
#include <vector>

#include "jobs/run_options.h"

// What the run's safety checks and its journal need to know of a job before
// it runs.
struct JobDescription {
  std::vector<std::string> tables;  // every table the job may write
  std::vector<std::string> inputs;  // its input files, relative to the current directory
};

// Describes the job that `org_code` and `data_type` select (see
// RunSelectedJob). Returns false when no job would run.
bool DescribeSelectedJob(const char* org_code, const char* data_type, const RunOptions& options,
                         JobDescription& job);

// Runs the one job that `org_code` and `data_type` select, if any. Import
// rows compare both exactly; repair types are compared ignoring case and
// only when `org_code` is none of the organisations'. The job is handed what
// it reads of `options`. Returns true when a job ran.
bool RunSelectedJob(const char* org_code, const char* data_type, const RunOptions& options);
