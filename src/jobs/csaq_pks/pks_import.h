// CSAQ_PKS patient import: the aquarium's zoological-records export (seven XML
// files in the current directory) turned into patients with their notes,
// releases, transfers, measurements, moves and census history.
#pragma once

// Runs the fifteen passes in their fixed order: every animal is built in
// memory first, then written. Needs an empty patient table, and the
// measurements and moves exports (read only after the patient rows are
// written) in place: says so and stops before reading anything otherwise. Writes "./GroupTempFile.txt"
// (one line per group of six or more) and leaves it on disk.
// Returns 0 when every pass ran, 1 when the job stopped early (a missing or
// unreadable export, a patient table that is not empty, no memory left);
// rows already written stay.
int ImportZooRecords();
