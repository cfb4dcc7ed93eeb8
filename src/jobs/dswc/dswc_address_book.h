// DsWC address book import: the centre's contact list, "./AddressBook.txt"
// (tab-delimited, one header line), into the address book.
#pragma once

#include "store/reference_store.h"
#include "util/text.h"

// Imports the contact list. A line whose phone has no kind marker, or whose
// insert fails, is reported and skipped. Returns 0 after a run over the
// file, 1 when it cannot be opened.
int ImportDswcAddressBook();

// Cuts "street, city, state zip" into `addr`, `city`, `state` and `zip`
// (the parts that are there; each cut to its field). The city keeps the blank
// after its comma. A null text sets nothing.
void ParseDswcAddress(const char* address, AddressBookEntry& entry);

// Stores a phone written with its kind: " (Cell)" and " (Text)" go to
// `phone1`, " (Home)" to `phone2`, " (Work)" to `phone3` (the first of these
// markers found, in that order, decides), cut before the marker and without
// one leading blank. Returns 0 for a stored phone and for no phone (null or
// a single blank); 1 for a phone without a marker (nothing is stored).
int ParseDswcPhone(const char* phone, AddressBookEntry& entry);

// Reads a birthday written month/day ("7/4") into `dob` as "0000-07-04", a
// date without a year. Anything else, or a month or day that is not above 0,
// leaves `dob` unchanged. A null text is no birthday.
void ParseDswcBirthday(const char* birthday, Text<11>& dob);
