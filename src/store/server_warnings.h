// What the server cut, zeroed or refused to hold in a write it accepted:
// under the application's permissive sql_mode it only warns. Each warning
// goes to the loss report with the table, the column (from the warning's
// text), what happened, the value the statement sent for that column, and
// the record the run is on (LossRecord()).
#pragma once

#include <string>

#include "store/connection.h"

// Reports the rows of a SHOW WARNINGS (level, code, message) that followed
// the write `statement`. Notes are skipped; a warning that names no column
// is reported with its message as what happened. For a statement that
// writes several rows, the row a warning names picks the value.
// `record_when_sent`: the run's record (LossRecord()) when the statement was
// formatted, for warnings heard later (a batch); nullptr: the current one.
void ReportServerWarnings(const std::string& statement, SqlResult& warnings,
                          const std::string* record_when_sent = nullptr);

// After the write `statement` succeeded with `warning_count` warnings: asks
// for them (one round trip, outside the run's statement counts) and reports
// them. Does nothing for a statement that is not a write (its result set is
// still to be read), nor when the warnings are as many as the statement's
// empty texts for dates and numbers (the application's "none", which loses
// nothing): the columns that warn for them are read once per table, after
// its first warnings.
void HearServerWarnings(const std::string& statement, unsigned warning_count);
