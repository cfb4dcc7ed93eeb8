// KWRC yearly import: one year of closed cases from "KWRC_<year>.txt", a
// tab-delimited export whose addresses are Chinese place descriptions.
#pragma once

#include "store/patient_store.h"
#include "util/text.h"

// Imports the file of `year`. Returns 0 after reading it, 1 when it
// cannot be opened.
int ImportKwrcYear(int year);

// Sets `record.status` from the outcome word (any case): "R", "E"/"E24",
// "D"/"D24" (the 24-hour codes when admission and final dates are the same
// text), "ESC", "T"; an unknown word leaves it empty and is reported.
// Returns 0.
int MapKwrcOutcome(PatientRecord& record, const char* outcome);

// Splits a place description into street, city, district and province (the
// country is always "CHINA"): "<street>, <name> District" is in Beijing,
// "<village>, <name> Province" names a province, "KWRC" is the centre's own
// site, anything else is a street. Prints the parts. Returns 0.
int SplitKwrcAddress(const char* address, Text<64>& street, Text<32>& city, Text<32>& district,
                     Text<32>& province, Text<32>& country);
