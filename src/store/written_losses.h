// The program's own losses, reported as a statement is formatted: a Text
// field that was cut when it was filled, and a number or date that a reader
// took only in part (see loss_report.h), each named with the table and the
// column that the statement writes it to.
#pragma once

#include <cstddef>
#include <string>
#include <vector>

#include "store/sql.h"

// One value of a formatted statement: its argument, where its conversion
// stands in the format, and where its text stands in the statement.
struct FormattedValue {
  const SqlArg* arg;
  std::size_t format_offset;
  std::size_t begin;
  std::size_t end;
};

// The record an entry of `statement` belongs to: the run's LossRecord(),
// else the case number the statement writes or names in its condition (its
// patient_id), else "".
// The case number a statement names (its patient_id value or condition), or "".
std::string RecordInStatement(const std::string& statement);
std::string RecordOfStatement(const std::string& statement);

// Reports the cut texts among `values` and claims the waiting reads they
// wrote. Values outside a written column (a WHERE clause, a SELECT) report
// nothing.
void ReportWrittenLosses(const char* format, const std::string& statement, const std::vector<FormattedValue>& values);
