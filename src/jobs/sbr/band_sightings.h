// Band sighting import: public reports of colour-marked and banded birds seen
// in the wild, matched to the rescue's patients and stored as band reports.
#pragma once

// Turns a colour marker as reporters write it into the code's form: upper
// case, and without the separator of "A-7B" / "A 7B" (4 characters, second
// one "-" or blank) or the two of "A-7-B" (5 characters, second and fourth
// removed). Any other text is only upper-cased.
void NormalizeMarkerCode(char* marker);

// Reads `folder` followed by `file_name`. Each sighting (a valid date and a
// 3-character marker or a 10-character band "nnnn-nnnnn") is matched to a
// patient, by colour marker first and then by band, and written as a band
// report on a new record entry of that patient. Prints a line per sighting
// and the counts at the end (without a final line feed). `unused` is not
// read.
void ImportBandSightings(const char* folder, const char* file_name, int unused);
