// DsWC admissions import: one year of the centre's admissions log,
// "./<year>Admissions.txt", into patients with their finder, problem, import
// note and, by disposition, a release or a transfer. Needs the species rows
// written by the DsWC species import and reads "./species.xml" for the labels.
#pragma once

#include "store/patient_store.h"
#include "xml/xml_document.h"

// Imports the file of `year` (the year 2014 has a donation column
// after the disposition). Reports every rejected line and ends with the
// count of imported patients. Returns 0 after a run over the file, 1 when
// the admissions file or the species list cannot be read.
int ImportDswcAdmissions(int year);

// Finds the first species element of `species_list` whose "label" equals
// `label` ignoring case (elements without a label are passed over) and copies
// its "abbrev" into `species`, "speciesGroup" into `species_group` and, when
// it has one, "age" into `age` and `ageIn`. Returns 0 when found, 1 when not
// (the record is then unchanged). A null label is never found.
int LookupDswcSpecies(const XmlDocument& species_list, const char* label, PatientRecord& patient);

// The same on the species list the admissions import loaded for this run.
int LookupDswcSpecies(const char* label, PatientRecord& patient);
