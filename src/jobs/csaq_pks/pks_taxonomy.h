// CSAQ_PKS taxonomy repair: fills in the kingdom-to-species taxonomy of
// species rows that lack it, from the tab-separated "./MissingTaxonomy.txt"
// (a header line, then: common name, an unused field, kingdom, phylum,
// class, order, family, genus, species).
#pragma once

// Updates the first species row of each line's common name. Fields are cut
// at tabs, and a run of tabs counts as one, so an empty field shifts the
// later ones forward. A line with fewer than nine fields is reported and
// skipped; a blank line is skipped silently. Returns 0 when the file could
// be read, 1 when it cannot be opened.
int RepairTaxonomy();

// The id of the first species row with this common name (escaped here), or
// 0 when there is none or the query fails.
int FindSpeciesIdByCommonName(const char* common_name);

// Writes the seven taxonomy texts (kingdom to species, sent as they are:
// not escaped) into species row `id`. Returns 0, or non-zero on failure.
int UpdateSpeciesTaxonomy(int id, const char* const taxonomy[7]);
