// Case numbers (`patient.patient_id`) as the patient table tells them apart,
// and what the store tells the operator about a case number that more than
// one row holds.
//
// Releases and transfers name their patient by case number, and so does
// every statement that addresses a patient by it: two rows with one case
// number share each other's releases and transfers. The server compares the
// column without regard to letter case or trailing blanks (latin1, case-
// insensitive collation), so '00101A' and '00101a ' are one case number.
#pragma once

#include <string>
#include <string_view>
#include <unordered_map>

// The form under which the server finds `case_number` equal to another:
// ASCII letters in lower case, trailing blanks dropped. Two case numbers are
// one when their keys are equal.
std::string CaseNumberKey(std::string_view case_number);

// True when `case_number` is empty or holds nothing but blanks and tabs.
bool IsBlankCaseNumber(std::string_view case_number);

// The case numbers one run of an import job has given, each with the source
// record it went to, so that no two records of the run share one. A hashed
// look-up per record, whatever the size of the input.
class RunCaseNumbers {
 public:
  // Gives `case_number` to the source record named `source` and returns null.
  // When the run already gave the same case number (by CaseNumberKey) to
  // another record, returns that record's name and changes nothing. The
  // returned pointer stays valid as long as this object.
  const std::string* Claim(std::string_view case_number, std::string_view source);

 private:
  std::unordered_map<std::string, std::string> owners_;  // by CaseNumberKey
};

// For the patient row operations: after a patient row with `case_number`
// was inserted under `key`, says on stderr, once per case number, when
// another row already held it: "Note: case number '%s' was already held by
// patient row %d; the new patient row %d has it too\n". The case numbers in
// the table are read once per connection, at the first insert, and every
// insert of the run is added to them.
void NoteInsertedCaseNumber(const char* case_number, int key);

// For the look-ups by case number: when `rows` rows (more than one) hold
// `case_number`, says on stderr, once per case number: "Note: %llu patient
// rows hold case number '%s'; using row %d, the first the server returned\n".
void NoteSharedCaseNumber(const char* case_number, unsigned long long rows, int used_key);
