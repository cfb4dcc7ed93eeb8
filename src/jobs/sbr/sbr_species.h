// SBR species import: the rescue's species list, "./species.txt", into the
// `species` table. Run it before the patient import, which finds each bird's
// species by its common name.
#pragma once

// Inserts one species per line: common name (trimmed and unquoted),
// abbreviation, scientific name, state and federal status ("T" threatened,
// "E" endangered), species group and information page. Prints one message
// per refused line or failed insert and "Loaded %d species\n" at the end.
// Returns 0 after reading the file, 1 when it cannot be opened.
int ImportSbrSpecies();
