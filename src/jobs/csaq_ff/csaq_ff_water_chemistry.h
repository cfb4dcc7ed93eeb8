// CSAQ_FF water chemistry: each exported water test becomes a dated entry
// in its tank's log (`location_record_entry`) and a `water_quality` row.
// Tests name their tank by the habitat ID of the exported habitats table;
// the label found there names the `location` row the habitat import wrote.
#pragma once

#include "store/measurement_store.h"
#include "xml/xml_document.h"

// Reads "./WaterChem.xml" and "./Habitats.xml". Every problem with a test
// is reported and counted; a bad or missing date is reported but the test is
// still written, with an empty date. Returns 0, or 1 when a file cannot be
// loaded or no location exists yet (nothing is written then).
int ImportCsaqFfWaterChemistry();

// Fills the measures and the person of `reading` from a test row: every
// measure -1 (not measured) except those the row carries, read as decimal
// numbers; the person from "Aquarist" ("?" when the row has none).
void ReadWaterReading(const XmlNode* row, WaterQualityRecord& reading);
