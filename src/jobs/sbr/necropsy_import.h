// Necropsy import: the rescue's post-mortem reports, "./Necropsy.txt", each
// added as one record entry to the patient whose "Original case number"
// attribute (written by the SBR patient import) is the report's case number.
#pragma once

// The numeric key of the patient that has an attribute `name` with `value`
// (the first the server returns); 0 when there is none or the statement
// failed. Name and value are sent unescaped, so a quote in either finds
// nothing.
int FindPatientByAttribute(const char* name, const char* value);

// Imports the reports: prints a progress line per report, a message per
// report that could not be written, and "Imported %d necropsy reports\n".
// A line with fewer than the 53 cells stops the import there, as the end of
// the file would (the log says nothing more; a note on stderr says why).
void ImportNecropsyReports();
