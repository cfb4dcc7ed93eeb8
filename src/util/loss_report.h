// Values that did not land as they stood in the input: texts cut to their
// field or column, numbers and dates read only in part, cells a tokenizer
// skipped, lines read in pieces, and what the server itself cut or zeroed
// with only a warning. The readers, the text type and the store report them
// here; the driver shows the summary on stderr and keeps the whole list in a
// file. The stdout log never changes because of it.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>

struct LossEntry {
  std::string table;        // the table written, or the input file read
  std::string column;       // the column, or "column N" / "line" of an input file
  std::string record;       // the case number or the input's line/row; "" when unknown
  std::string what;         // "cut", "read in part", "not a date", "out of range", "empty cell", ...
  std::string as_exported;  // the value as it stood in the input (or as sent)
  std::string as_stored;    // what was stored or read instead
};

// Adds one entry (unless the report is quiet, see below).
void ReportLoss(LossEntry entry);

// The record the run is working on now, for entries that do not know their
// own: readers set it to the input line they read, jobs may name the case.
void SetLossRecord(std::string_view record);
const std::string& LossRecord();

// How many entries the report holds, and dropping those after the first
// `count` (a run that goes through its job again forgets what it will
// report anew).
std::size_t LossCount();
void ForgetLossesAfter(std::size_t count);

// While quiet, ReportLoss keeps nothing (a job going again over what it has
// already done and reported).
void SetLossQuiet(bool quiet);
