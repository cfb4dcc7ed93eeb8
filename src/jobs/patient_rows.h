// Steps that several patient imports share, with the messages they share.
#pragma once

#include "store/disposition_store.h"
#include "store/patient_store.h"

// Inserts the patient, then writes its finder columns. Prints
// "\tERROR - Unable to create patient record for '%s'\n" or
// "\tERROR - Unable to update patient finder info for '%s'\n" with
// `shown_as` (the patient's `patient_id` when null) and returns false at the
// first failure (a patient row already written stays); true when both were
// written.
bool InsertPatientWithFinder(PatientRecord& patient, const PatientFinderInfo& finder,
                             const char* shown_as = nullptr);

// Writes the record entry that marks a patient as imported: "Patient record
// imported into Corvana" and a line of dashes, dated with the time of the
// run. Returns the entry's id, or -1 when it could not be written.
int InsertImportNote(const PatientRecord& patient);

// Clears `transfer` for a receiver that the source does not name: every
// place field "NA", reason "E/S", in `country`.
void ResetUnnamedTransfer(TransferRecord& transfer, const char* country);
