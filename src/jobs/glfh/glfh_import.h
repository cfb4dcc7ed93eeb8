// GLFH patient import: the register of a bird clinic for owned falcons,
// "./GLFH_Patients.txt". Every bird becomes a patient with its owner as both
// finder and presenter, and one note-only record entry marking the import.
#pragma once

#include <string_view>

#include "store/patient_store.h"

// Imports the register. Returns 0 after reading it, 1 when it cannot be
// opened. Prints one message per skipped line and the count at the end.
int ImportGlfhPatients();

// Clears both records, sets the clinic's defaults and fills them from one
// register line (tab-separated, a run of tabs counting as one; the last field
// keeps the line's line feed). The patient number becomes a case number of
// five digits at least ("42" gives "00042"). Texts longer than their fields
// are cut.
// Returns false after printing the line's message when the owner, species,
// date, chip or patient number is missing, the number is invalid, or the
// admission date cannot be read.
bool ReadGlfhLine(std::string_view line, PatientRecord& patient, PatientFinderInfo& finder);
