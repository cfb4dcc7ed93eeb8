// CSAQ_FF invertebrate species groups: a repair that marks the species named
// in a plain list, one common name per line, as invertebrates, both the
// species rows and the patients of those species.
#pragma once

// Reads "./InvertebrateSpecies.txt" in pieces of at most 255 characters, each
// handled as a line. Names without a species row and failed updates are
// reported and counted as errors. Returns 0, or 1 when the file cannot be
// opened or no species exist yet.
int ImportInvertSpeciesGroups();
