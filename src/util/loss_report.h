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
// `count` and the reads still waiting for their column (a run that goes
// through its job again forgets what it will report anew).
std::size_t LossCount();
void ForgetLossesAfter(std::size_t count);
// Entry `index` (below LossCount()), in the order reported.
const LossEntry& LossAt(std::size_t index);

// While quiet, ReportLoss keeps nothing (a job going again over what it has
// already done and reported).
void SetLossQuiet(bool quiet);

// A number or date that a reader took only in part (or otherwise than it
// reads, a two-digit year): the reader knows the text, only the store knows
// the column. It is kept with the value read until the store writes that
// value (ClaimReadInPart) and reports it with its table and column; what no
// write claims is reported with table and column empty when the record
// changes (SetLossRecord with another record) or at FlushReadsInPart.
// `integer`: the reader gave an integer (claimed by an integer column only),
// else a decimal number (claimed by a decimal column only). `source` names
// the value in the input (an export's element; "" for none): the column
// shown when no write claims it.
void NoteNumberReadInPart(std::string_view what, std::string_view as_exported, double value, bool integer,
                          std::string_view source = {});
void NoteTextReadInPart(std::string_view what, std::string_view as_exported, std::string_view as_read);
// True while a read waits to be claimed (the store's cheap test).
bool AnyReadInPart();
// The store formatted a write while reads waited. The next read then
// begins another record: the reads still waiting are reported as they are
// (so that they are not claimed by a later record's values, and a run does
// not look for them in every statement after).
void NoteStatementWhileReadsWait();
// What a statement wrote, for ClaimReadInPart.
enum class WrittenKind { kInteger, kDecimal, kText };

// Reports the oldest waiting read that gave what was written: `number`
// (an integer, or a decimal compared at float precision) or `text`, as
// written to `table`.`column` with `as_stored`, and `record` when the read
// named none. Returns false when none did.
bool ClaimReadInPart(WrittenKind kind, double number, std::string_view text, std::string_view table,
                     std::string_view column, std::string_view as_stored, std::string_view record);
void FlushReadsInPart();

// For the operator, at the end of the run. The entries listed once each
// (an entry reported twice, a field written by an insert and again by an
// update, counts once).
std::size_t DistinctLossCount();
// The short table for stderr: per table and column how many values and of
// what kind, with the first three as "as exported" -> "as stored"; one line
// when nothing was lost. `file` names the whole list ("" for none).
std::string LossSummary(const std::string& file);
// Writes every entry to `path`, tab-separated with a header line (tabs, line
// breaks and backslashes inside values written as \t, \n, \r, \\).
// Returns false when the file cannot be written.
bool WriteLossFile(const std::string& path);
