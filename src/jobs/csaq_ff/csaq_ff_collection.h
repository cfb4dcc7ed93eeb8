// The field conversions of the CSAQ_FF collection records (the exported
// groups and husbandry tables): positions, counties, bands, the animal's name
// inside the notes, disposition words and transfer destinations. Pure
// functions over texts as exported (entity references still encoded).
#pragma once

#include <string>
#include <string_view>

// Reads a "LAT/LON" text. Every character but digits and "." counts as a
// blank; 2 numbers are degrees, 4 degrees and minutes, 6 degrees, minutes and
// seconds, latitude first. The longitude is made negative (west). Returns
// false and sets nothing for any other count of numbers.
bool ReadCollectionPosition(const char* text, float& lat, float& lon);

// A county text cut right after its first " County" (else its first
// " county"): "Carteret County, NC" gives "Carteret County"; a text without
// the word stays whole.
std::string CollectionCounty(std::string_view text);

// `text` without any "&quot;" and with every byte above 127 turned into a
// blank, as the band and the medical notes are stored.
std::string PlainCollectionText(std::string_view text);

// Takes the animal's name out of collection notes: the text between the
// first "&quot;" and the next "&quot;;" after it. The notes then keep only
// what follows that "&quot;;". Returns false, changing nothing, when either
// marker is missing.
bool TakeNameFromNotes(std::string& notes, std::string& name);

// The status a disposition word gives ("Died" -> "D", "Released" -> "R", any
// other word holding "Transfer" -> "T", ...); null when the word changes
// nothing.
const char* DispositionStatus(const char* word);

// Where a transferred animal went: the text after the first transfer phrase
// ("Transfered to ", "Sent to ", ...) found in `notes`, the phrases tried
// in a fixed order; "" when none occurs.
std::string TransferDestination(std::string_view notes);
