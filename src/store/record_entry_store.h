// A patient's history besides the patient row: dated record entries (on which
// releases, transfers and measurements hang), the problem list, and named
// attributes, plus the one application setting the problem list needs. All
// refer to the patient by its numeric key. Every text is escaped here as the
// statement is formatted, except the notes of a record entry, which the
// caller escapes (EscapeSqlText) before wrapping them, so that the stored
// line breaks stay where the wrapping put them.
#pragma once

#include <string>

#include "util/text.h"

// One row of `attributes` to be written.
struct PatientAttribute {
  Text<20> date;  // a date, or a date and time
  Text<32> name;
  Text<64> value;
};

// Writes a record entry (amountFed always -1). `notes` must be escaped already
// (EscapeSqlText), exactly once; every other text is escaped here. `date` is
// a date and time such as "2012-03-04 12:00:00"; `who` and `location` are
// "NA" when nobody or nowhere is named; `special` is one character (the zero
// character is written as an empty value). Returns the new entry's id, or -1
// on failure.
int InsertRecordEntry(int patient_key, const char* notes, const char* date, const char* who, float weight,
                      float keel, const char* location, char special);

// Writes a problem; a description listed in the "Non-problems" setting is
// written as resolved whatever `resolved` says. Returns the new id, or -1.
int InsertProblem(int patient_key, const char* description, unsigned char resolved, const char* initial_date);

// True when `description` (any case) occurs anywhere in the "Non-problems"
// setting, which is read once per run (again while it is missing or empty).
// The empty description is always a non-problem.
bool IsNonProblem(const char* description);

// Copies the value of the setting `category` into `value` (a null value as
// empty). Returns 0 when found, 1 otherwise with `value` empty.
template <std::size_t N>
int GetSetting(const char* category, Text<N>& value);
int GetSetting(const char* category, std::string& value);

// Writes an attribute of the patient. 0 or 1.
int InsertPatientAttribute(int patient_key, const PatientAttribute& attribute);

// Copies the newest value of attribute `name` (the later-inserted of two on
// the same date) into `value`; empty when there is none. Returns 0.
int GetPatientAttribute(int patient_key, const char* name, Text<128>& value);

// Reads the newest "Census" attribute ("Total=%d, M=%d, F=%d, UNK=%d"; only
// the positions of the '=' signs matter). Returns 0 when all four counts were
// read; 1 at the first missing '=', with the counts read so far stored.
int GetCensusCounts(int patient_key, int& total, int& males, int& females, int& unknown);

template <std::size_t N>
int GetSetting(const char* category, Text<N>& value) {
  std::string text;
  int result = GetSetting(category, text);
  value = text;
  return result;
}
