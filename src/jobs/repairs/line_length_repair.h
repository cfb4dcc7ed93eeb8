// Breaks the long single-line notes that earlier imports wrote into the
// record entries of patients and of locations, so they display well.
#pragma once

// Breaks every note line longer than 80 characters at its first blank or tab
// after column 80, in `record_entry` and then `location_record_entry`. Prints
// "-" before the first row and every hundredth after it, "* (<id>)" for each
// note that changes, and per table the rows checked and adjusted. With
// `test` set nothing is written: the marks and counts show what a real run
// would change. Notes of any length are handled whole, NUL bytes included.
// A failed update is reported with the server's words and the walk goes on.
// Idempotent.
// Returns 0, or 1 when the working buffers cannot be allocated.
int fixLineLengths(bool test);
