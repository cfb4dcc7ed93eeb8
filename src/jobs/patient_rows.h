// Steps that several patient imports share, with the messages they share.
#pragma once

#include "store/patient_store.h"

// Inserts the patient, then writes its finder columns. Prints
// "\tERROR - Unable to create patient record for '%s'\n" or
// "\tERROR - Unable to update patient finder info for '%s'\n" with the case
// number and returns false at the first failure (a patient row already
// written stays); true when both were written.
bool InsertPatientWithFinder(PatientRecord& patient, const PatientFinderInfo& finder);
