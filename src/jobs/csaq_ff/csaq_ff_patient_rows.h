// Steps that the CSAQ_FF patient and rehabilitation imports share: the
// record every animal starts from, the patient row with its finder columns,
// the import note, and the dated release or transfer. Each prints the
// failure message the operators know from both jobs.
#pragma once

#include <string_view>

#include "store/disposition_store.h"
#include "store/patient_store.h"

// Clears both records and sets what every CSAQ_FF animal starts from: no
// final, expected-release or away dates, "UNK" age and sex, `status`, and
// finder and presenter in the "USA" with "NA" district, county and state.
void ResetFfPatient(PatientRecord& patient, PatientFinderInfo& finder, const char* status);

// Inserts the patient, then writes its finder columns. On failure prints
// "ERROR: Unable to create patient record for '%s'\n" or
// "ERROR: Unable to update patient finder info for '%s'\n" with `identity`
// and returns false (a patient row already written stays).
bool InsertFfPatient(PatientRecord& patient, const PatientFinderInfo& finder, const char* identity);

// Writes the note that marks the import, dated now: "Imported into Corvana
// database\n", then a line of dashes and `details` when there are any. The
// whole is escaped first and then wrapped at 80 columns, so the escapes count
// toward the width. A failure is not reported.
void WriteFfImportNote(int patient_key, std::string_view details);

// Writes the record entry dated with the patient's final date that a release
// or transfer hangs on. Returns its id; on failure prints
// "ERROR - Unable to create record entry for patient '%s'!\n" with the case
// number and returns -1.
int WriteFfDispositionEntry(const PatientRecord& patient);

// Writes a release on the final date ("NA" age and sex determination, no
// marker or tracker, site "UNK") with `comments`. Returns true when stored;
// otherwise prints "ERROR - Unable to create release record for patient '%s'!\n".
bool WriteFfRelease(const PatientRecord& patient, int entry_id, std::string_view comments);

// Writes `transfer` (its patient, date and reason are set here). Returns
// true when stored; otherwise prints
// "ERROR - Unable to create transfer reoord for patient '%s'!\n".
bool WriteFfTransfer(const PatientRecord& patient, int entry_id, TransferRecord& transfer);
