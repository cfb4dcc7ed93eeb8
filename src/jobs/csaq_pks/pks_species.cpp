#include "jobs/csaq_pks/pks_species.h"

#include <cstring>

#include "store/connection.h"

namespace {

struct Renaming {
  const char* export_name;
  const char* species_name;
};

// The export's spellings that the species table writes otherwise; letter
// case does not matter.
constexpr Renaming kRenamingsAnyCase[] = {
    {"Bonnethead", "Bonnethead shark"},
    {"Giant hermit", "Giant hermit crab"},
    {"Jackknife fish", "Jack-knifefish"},
    {"Jackknife-fish", "Jack-knifefish"},
    {"Banded watersnake", "Banded water snake"},
    {"Moon jellyfish", "Moon jelly"},
    {"Yellowbelly slider", "Yellow-bellied slider"},
    {"Chalk sea bass", "Chalk bass"},
    {"Chalk seabass", "Chalk bass"},
    {"Bank seabass", "Bank sea bass"},
    {"Redbelly watersnake", "Red-bellied water snake"},
    {"Red-bellied watersnake", "Red-bellied water snake"},
    {"Sand perch", "Sandperch"},
    {"Tiger salamander", "Eastern tiger salamander"},
    {"Blue tang surgeon", "Blue tang"},
    {"American kestrel/sparrowhawk", "American kestrel"},
};

// Tested after the list above, spelled exactly.
constexpr Renaming kRenamingsExact[] = {
    {"Loggerhead", "Loggerhead turtle"},
    {"Longjawed squirrelfish", "Longjaw squirrelfish"},
    {"Hellbender", "Eastern hellbender"},
    {"Eastern spiny softshelled turtle", "Eastern spiny softshell turtle"},
    {"Spiny softshelled turtle", "Eastern spiny softshell turtle"},
    {"Striped seabass", "Striped bass"},
};

bool SameIgnoringCase(std::string_view a, std::string_view b) {
  if (a.size() != b.size()) return false;
  for (std::size_t i = 0; i < a.size(); ++i) {
    char x = a[i] >= 'A' && a[i] <= 'Z' ? static_cast<char>(a[i] - 'A' + 'a') : a[i];
    char y = b[i] >= 'A' && b[i] <= 'Z' ? static_cast<char>(b[i] - 'A' + 'a') : b[i];
    if (x != y) return false;
  }
  return true;
}

}  // namespace

int SpeciesCache::Load() {
  SqlResult result = QuerySql(kEscapeTexts, "select abbrev,common_name,species_group from species;", {});
  int rows = 0;
  while (MYSQL_ROW row = result.NextRow()) {
    SpeciesCacheEntry entry{};
    CopyColumn(entry.abbrev, row[0]);
    CopyColumn(entry.common_name, row[1]);
    CopyColumn(entry.species_group, row[2]);
    Add(entry);
    ++rows;
  }
  return rows;
}

void SpeciesCache::Add(const SpeciesCacheEntry& entry) {
  entries_.push_back(entry);
  if (entry.abbrev.empty()) ended_ = true;
  if (ended_) return;
  by_common_name_.emplace(std::string(entry.common_name.view()), static_cast<int32_t>(entries_.size() - 1));
}

const SpeciesCacheEntry* SpeciesCache::FindByCommonName(std::string_view common_name) const {
  auto found = by_common_name_.find(std::string(common_name));
  return found != by_common_name_.end() ? &entries_[static_cast<std::size_t>(found->second)] : nullptr;
}

std::string_view NormaliseCommonName(std::string_view export_name) {
  for (const Renaming& renaming : kRenamingsAnyCase) {
    if (SameIgnoringCase(export_name, renaming.export_name)) return renaming.species_name;
  }
  for (const Renaming& renaming : kRenamingsExact) {
    if (export_name == renaming.export_name) return renaming.species_name;
  }
  return export_name;
}

bool LookupSpeciesByTaxon(const SpeciesCache& cache, const char* taxon_info, Text<16>& abbrev,
                          Text<64>& species_group) {
  const char* slash = std::strchr(taxon_info, '/');
  if (slash == nullptr) return false;
  Text<128> common_name{};
  common_name = slash + 1;
  const SpeciesCacheEntry* entry = cache.FindByCommonName(NormaliseCommonName(common_name.view()));
  if (entry == nullptr) return false;
  abbrev = entry->abbrev;
  species_group = entry->species_group;
  return true;
}
