// The UPRC log's release and transfer places: the centre's usual release
// sites and partner organisations as a fixed table, and free place texts
// ("farm, town, state") for everything else.
#pragma once

#include <span>

#include "store/disposition_store.h"
#include "util/text.h"

// One row of the place table. `name`, `town` and `state` may be empty.
struct UprcPlace {
  const char* key;  // as the log writes it; compared ignoring case
  const char* name;
  const char* town;
  const char* state;
};

// Every row of the table, in lookup order.
std::span<const UprcPlace> UprcPlaces();

// The first row whose key equals `text` ignoring case (blanks count), or
// nullptr when there is none.
const UprcPlace* FindUprcPlace(const char* text);

// Fills the fields from a place text that the table does not know: the text
// is cut at commas (empty parts vanish) and only its first three parts are
// used, filled from the right: three give name, town and state, two give
// town and state, one gives the state. Fields without a part keep what they
// held. Afterwards all three fields are trimmed at both ends.
void SplitPlaceText(const char* text, Text<64>& name, Text<32>& town, Text<21>& state);

// Sets the transfer's `name`, `city` and `state` from the table row of
// `text`, or by SplitPlaceText without one. A text holding "Release"
// (case-sensitive) also makes the `reason` "Continued care".
void ResolveTransferPlace(const char* text, TransferRecord& transfer);

// Sets the release's `location`, `city` and `state` from the table row of
// `text`, or by SplitPlaceText without one.
void ResolveReleasePlace(const char* text, ReleaseRecord& release);
