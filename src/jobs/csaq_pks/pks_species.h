// The species of the Corvana database as the zoo-records import sees them:
// read once per run, then looked up by the common name the export writes
// in an animal's TaxonInfo ("<scientific name>/<common name>").
#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

#include "util/text.h"

struct SpeciesCacheEntry {
  Text<32> abbrev;
  Text<64> common_name;
  Text<64> species_group;
};

class SpeciesCache {
 public:
  // Reads "select abbrev,common_name,species_group from species;" into the
  // cache, in the order the server returns the rows (a null column as the
  // empty text). Returns the number of rows; 0, with the cache empty, when
  // the query fails.
  int Load();

  // Adds one entry after those held (Load uses it; tests fill a cache with it).
  void Add(const SpeciesCacheEntry& entry);

  // The first entry whose common_name equals `common_name` exactly (letter
  // case included), or null. Entries from the first one without an abbrev on
  // are never found: a search of the cache ends there.
  const SpeciesCacheEntry* FindByCommonName(std::string_view common_name) const;

 private:
  std::vector<SpeciesCacheEntry> entries_;
  std::unordered_map<std::string, int32_t> by_common_name_;  // first entry of each name
  bool ended_ = false;  // an entry without abbrev was added: later ones stay out of the index
};

// The common name the species table uses for one the export writes: a fixed
// list of renamings, first compared ignoring letter case, then a second list
// compared exactly. A name on neither list comes back unchanged.
std::string_view NormaliseCommonName(std::string_view export_name);

// Looks up the species of a TaxonInfo text: the common name is what follows
// its first "/" (at most 127 characters), normalised as above. Returns true
// with the entry's abbrev and species_group (cut at the fields' widths);
// false when the text has no "/" or no entry has that common name.
bool LookupSpeciesByTaxon(const SpeciesCache& cache, const char* taxon_info, Text<16>& abbrev,
                          Text<64>& species_group);
