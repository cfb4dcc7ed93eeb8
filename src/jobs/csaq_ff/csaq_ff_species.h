// CSAQ_FF species import: the aquarium's exported scientific-names table
// into `species` rows (group, native and highly-migratory flags, state and
// federal status), and its distinct kingdoms, phyla, classes, orders and
// families into "Taxonomy_..." settings. The patient import later finds
// these species by abbreviation.
#pragma once

#include "store/reference_store.h"

// Reads "./ScientificNames.xml", "./NonNatives.xml" and
// "./SpeciesAbbreviations.xml". A row without an abbreviation is reported and
// skipped; the first failed insert stops the rows (the taxonomy names read up
// to then are still written). Returns 0, or 1 when a file cannot be loaded
// (nothing is written then).
int ImportCsaqFfSpecies();

// True when `common_name` is one of the highly migratory species (any letter case).
bool IsHighlyMigratorySpecies(const char* common_name);

// The species group of a filled record, from its phylum, class, common name
// and abbreviation; the first rule that fits wins, "fish" when none does.
const char* CsaqFfSpeciesGroup(const SpeciesRecord& species);
