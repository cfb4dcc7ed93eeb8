// Rewrites the rows of the enrichment log from the old meaning of their
// columns (`type` and `interactionLevel` as sets of bits) into the new one.
#pragma once

#include <cstdint>

#include "store/measurement_store.h"
#include "util/text.h"

// The new values of one enrichment row.
struct EnrichmentRewrite {
  int32_t type;  // 'T' (84) or 'E' (69)
  Text<320> what;  // the old text, then one word per kind of enrichment
  int32_t interactionLevel;  // 0 to 3
  Text<128> interactionTime;  // with the overall time folded in
  Text<1024> comments;  // with the behaviour folded in; not escaped
};

// The new values for the old row `old`. Texts that would not fit are cut.
EnrichmentRewrite RewriteEnrichment(const EnrichmentRecord& old);

// Rewrites every row of `enrichment`. A row that cannot be read, or whose
// update fails (a quote in `what` or `interactionTime`), is reported and
// left with the columns updated before the failure. Not idempotent: a second
// run reads the new values as old bits and texts again. Prints the count of
// fully rewritten rows. Returns 0.
int fixEnrichmentRecords();
