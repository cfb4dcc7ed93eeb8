// SBR patient import: the case log of one region of the seabird rescue,
// "./SBR_<region>.txt". Every admitted bird becomes a patient with its
// finder, its original case number as an attribute, its problems, an import
// note, an admission record entry (intake notes, weight, keel, PCV) and, when
// it was transferred or released, the disposition with its exit measurements.
#pragma once

// Imports the log of `region` ("LA" or "SF"). A line of the other centre is
// passed over once its case number and species are checked (only those may
// report), and keeps its case number, so both regions' runs number a year's
// cases alike. Prints one message per refused line or failed row and
// "Imported %d patients\n" at the end. Needs the species rows (see
// ImportSbrSpecies). Returns 0 after reading the file, 1 when it cannot be
// opened (nothing is written then).
int ImportSbrPatients(const char* region);
