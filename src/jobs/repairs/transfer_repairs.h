// Repairs of rows that earlier imports or the application left in an unwanted
// form: transfer names that begin with " - ", and the old "Greater than 180
// days reported" patient flag, which is now a dated patient attribute.
#pragma once

// Removes the leading " - " from every transfer name that has it (one per
// run: a name that had it twice keeps one); the rest of the name is written
// back escaped, so its quotes and backslashes stay as they were. Prints the
// count. Returns 0 when every selected row was updated (or nothing could be
// selected); 1 at the first failed update, after reporting it; the rows
// changed before stay changed and no count is printed.
int fixTransfers();

// Gives every patient with flag bit 41 set an attribute "Rehab 180 day
// extension request" dated today, then clears that bit and no other, in the
// row of the patient's key (whatever its case number holds). Prints
// each case number and the count. Returns 0 when every flagged patient was
// handled (or nothing could be selected); 1 at the first failure, after
// reporting it; a patient whose attribute was written but whose flag could
// not be cleared gets a second attribute on the next run.
int fix180DayReports();
