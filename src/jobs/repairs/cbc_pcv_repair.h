// Works the packed cell volume back out of blood count rows that carry only
// the count corrected for it (corrected = count * PCV / 45), stores it in the
// row and adds the matching `pcv` row to the same record entry.
#pragma once

// Repairs every `cbc` row whose `pcv` is 0 and whose count and corrected
// count differ: prints the values, and for a volume above 0 sets the row's
// `pcv` and inserts a `pcv` row (total solids and buffy coat -1, not
// measured). A row with a measured volume is not selected, so a second run
// changes nothing. A row with a count of 0 has no volume, and a volume above
// 32767 does not fit the `pcv` row; both are reported and not written. The
// first failed write is reported and ends the walk. Prints the counts of rows
// found and fixed. Returns 0.
int fix_CBC_PCV_Records();
