// CSAQ_FF sea-turtle rehabilitation import: one rehabilitation patient per
// stranding, with the stranding place and position as finder columns, the
// stranding number as an attribute, an import note carrying the case's
// issues, and a release or transfer when the case ended so. Case numbers
// are counted within 2016, one per row read.
#pragma once

// Reads "./SeaTurtleRehabRecords.xml". A row with a problem is reported and
// skipped, its case number left unused. Returns 0, or 1 when the file cannot
// be loaded.
int ImportCsaqFfRehab();

// The species code of a turtle's common name (any letter case): "GREENTURT",
// "KEMPRIDLEY" or "LOGGER"; "" for any other name.
const char* RehabSpeciesCode(const char* common_name);

// True when `place` is one of the places the aquarium transferred turtles to.
bool IsKnownTransferLocation(const char* place);
