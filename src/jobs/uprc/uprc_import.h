// UPRC patient import: one year of the raptor centre's patient log,
// "./UPRC <year>.txt". Every bird becomes a patient with its problems, an
// import note and, when it was released or transferred, the disposition.
#pragma once

#include "store/patient_store.h"

// The log's columns, in file order.
enum UprcColumn {
  kUprcNumber,
  kUprcSpecies,
  kUprcAdmitted,
  kUprcEnclosure,
  kUprcStatus,
  kUprcFinalDate,
  kUprcReleasePlace,
  kUprcTransferPlace,
  kUprcProblems,
  kUprcName,
  kUprcColumnCount
};

// Imports the log of `year`. Returns 0 after reading it, 1 when it
// cannot be opened. Prints one message per failure and the count at the end.
int ImportUprcPatients(int year);

// Clears both records, sets the centre's defaults and fills the patient from
// the ten columns of one line (all present; the enclosure and name columns
// are trimmed in place). Status "Med" becomes "Reh" with a warning; "PR" and
// "Reh" take the enclosure (and "PR" the name and the resident flag); every
// other status takes the final date, "E" and "D" becoming "E24" and "D24"
// when it equals the admission date. Returns false after printing the
// message when a date cannot be read or the status does not fit its field.
bool ReadUprcPatient(char* const column[kUprcColumnCount], PatientRecord& patient, PatientFinderInfo& finder);
