// How the seabird rescue's disposition phrase, final date and place become a
// patient's status, final date and transfer or release. No database work.
#pragma once

#include "store/disposition_store.h"
#include "store/patient_store.h"

// Maps `disposition` (compared whole, ignoring case; a single blank means
// the bird is still in care) onto `patient.status` and, for some transfers,
// `transfer.reason`; "Not Viable (egg)" also sets `age` and `ageIn` to "Egg".
// "Reh" and "PR" need no final date and keep `final_date` as it was. Every
// other status reads `final_date_text` (month/day/year) into
// `patient.final_date`, and then a transfer takes `place` as its `name` and
// a release as its `location` (each unquoted, unescaped; only when `place`
// is longer than one character). Returns:
//   0 when accepted;
//   1 for a missing, empty or unknown disposition (status left empty; the
//     caller reports it);
//   2 after printing "ERROR: Missing final date for '%s'\n" (a final date
//     shorter than two characters) or "ERROR: Invalid final date: '%s' for
//     '%s'\n", with `case_number`.
// Null texts read as missing.
int MapSbrDisposition(const char* disposition, const char* final_date_text, const char* place,
                      PatientRecord& patient, TransferRecord& transfer, ReleaseRecord& release,
                      const char* case_number);
