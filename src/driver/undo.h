// Reverses the run a journal describes (see store/journal.h), in one
// transaction: deletes the rows it inserted and puts back the rows it changed
// or deleted, then marks the journal as undone.
#pragma once

#include <string>

#include "driver/safe_run.h"

// Undoes the run of the journal at `path` over the open connection, which
// must be the server and database the journal names (`target`). First checks
// that every row it will delete or put back is still as the run left it; when
// one is not (or the journal is already undone), it changes nothing, lists
// them on stderr and returns kExitRefused, unless `force`. Writes a summary
// per table on stderr. Returns 0 when undone.
int UndoRun(const std::string& path, bool force, const ConnectionTarget& target);
