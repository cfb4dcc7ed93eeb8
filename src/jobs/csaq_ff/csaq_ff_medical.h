// The last two passes of the CSAQ_FF patient import, over the husbandry
// table once its animals are patients: "Vital Stats" rows become a weighed
// record entry with a biometric row, "Medical" rows a record entry holding
// the report on every animal of the group concerned. Rows without an
// identity tag or of another type are passed over silently; every problem is
// reported on its row and the pass goes on.
#pragma once

#include "jobs/csaq_ff/csaq_ff_animal_table.h"
#include "xml/xml_document.h"

// Writes the vital statistics of single animals (a specimen count of 1),
// with their units turned into grams and millimetres. Rows whose measures
// are all 0 write nothing.
void CSAQ_LoadVitalStats(const XmlDocument& husbandry, CollectionAnimalTable& animals);

// Writes each medical report (marked special "1") on every animal of the
// first unbroken run of table entries with the row's tag. The report is
// stored whole: "&quot;" removed, bytes above 127 as blanks, escaped, then
// wrapped at 80 columns.
void CSAQ_LoadMedicalRecords(const XmlDocument& husbandry, CollectionAnimalTable& animals);
