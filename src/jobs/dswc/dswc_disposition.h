// How the DsWC admissions log's disposition column and case numbers become a
// patient's status, transfer and enclosure. No database work here.
#pragma once

#include "store/disposition_store.h"
#include "store/patient_store.h"
#include "util/text.h"

// Why an animal was not admitted; becomes the last line of its import note.
using DswcReason = Text<128>;

// Maps the disposition (compared ignoring case) onto `patient`:
// - "Pending release" or a single blank: "Reh"; "Foster": "PR" plus the
//   foster-parent flag; the education dispositions: "PR". These need no
//   final date and leave `final_date` and `reason` alone.
// - every other disposition first reads `final_date_text` (month/day/year)
//   into `patient.final_date`; when that fails it prints
//   "\tERROR - Invalid final date '%s' - '%s'\n" and returns 1.
// - animals never taken in: "DNA" with `reason` = the disposition; animals
//   returned to family or owner: the same on the day of admission, else "R";
//   the remaining phrases give "E"/"E24", "D"/"D24", "DOA", "R", "ESC" or
//   "T", a transfer also filling the receiver fields of `transfer` (which the
//   caller has set to its defaults).
// "Same day" compares the texts of `patient.admission_date` and `final_date`.
// Returns 0 when the disposition was accepted; 1 for an unknown one.
// Null texts read as empty.
int MapDswcDisposition(const char* disposition, const char* final_date_text, PatientRecord& patient,
                       DswcReason& reason, TransferRecord& transfer);

// When `patient.patient_id` is one of the centre's permanent residents,
// copies its name into `name` and its enclosure into `location`; any other
// patient is left unchanged.
void ApplyResidentTable(PatientRecord& patient);
