// Rewrites the rows of the enrichment log from the old meaning of their
// columns (`type` and `interactionLevel` as sets of bits) into the new one.
#pragma once

#include <cstdint>
#include <string>

#include "store/measurement_store.h"

// The new values of one enrichment row. The texts grow with what is appended,
// so nothing the old row held is cut here.
struct EnrichmentRewrite {
  int32_t type;  // 'T' (84) or 'E' (69)
  std::string what;  // the old text, then one word per kind of enrichment
  int32_t interactionLevel;  // 0 to 3
  std::string interactionTime;  // with the overall time folded in
  std::string comments;  // with the behaviour folded in; not escaped
};

// The new values for the old row `old`.
EnrichmentRewrite RewriteEnrichment(const EnrichmentRecord& old);

// Rewrites every row of `enrichment`, its texts escaped. A row that cannot be
// read is reported and skipped; so is a row whose `what`, `interactionTime`
// or `comments` could not be read whole (a NUL byte in it) or would not fit
// its column once rewritten: such a row is left as it was, rather than cut.
// A row whose update fails is reported and left with the columns updated
// before the failure. Not idempotent: a second run reads the new values as
// old bits and texts again. Prints the count of fully rewritten rows.
// Returns 0.
int fixEnrichmentRecords();
