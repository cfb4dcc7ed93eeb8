// The free-text places of the zoo-records export: where an animal was
// collected (a capture or rescue note's comment, "United States/North
// Carolina/Bogue Sound") and where it was released. Both read the text by
// fixed tables of the places this aquarium deals with; a place they do not
// know is reported and leaves the fields not yet set as they were.
#pragma once

#include "store/disposition_store.h"
#include "store/patient_store.h"

// Fills the found fields (or, for purchases and donations, the presenter
// fields) from a collection place. The text is cut into tokens at every "/"
// and "," (empty tokens vanish) and only its first 127 characters are read;
// tokens are trimmed, except a fourth one, which replaces found_state as it
// stands. Prints "\tERROR: Unknown country: '%s'\n" or
// "\tERROR: Unknown state: '%s'\n" for a first or second token it does not
// know. Returns 0 when it recognised the place, 1 when not (also when the
// text has no token, or stops before the place is complete).
int ApplyCollectionSite(PatientFinderInfo& finder, const char* place);

// Fills country, state, city, county and location of a release from its
// place: the first token ends at "/", the second too, the third at "/" or
// ","; each is trimmed and only the first 127 characters are read. Prints
// "\tERROR: Unknown release country: '%s'\n" or
// "\tERROR: Unknown release state: '%s'\n". Returns 0 when it recognised the
// place, 1 when not (an empty text changes nothing and gives 1).
int ParseReleasePlace(ReleaseRecord& release, const char* place);
