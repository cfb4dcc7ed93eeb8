#include "jobs/csaq_pks/pks_locations.h"

#include "store/connection.h"

namespace {

struct FixedLocation {
  const char* name;
  const char* description;
};

// Holding areas and teaching stations that moves name but the enclosure
// tree does not list.
constexpr FixedLocation kFixedLocations[] = {
    {"AH15", "Amphibian Holding 15"},
    {"AH16", "Amphibian Holding 16"},
    {"RHH9", "Reptile House Holding 9"},
    {"TBA1", "Temporary Bird Aviary 1"},
    {"TBA2", "Temporary Bird Aviary 2"},
    {"RRH", "Rocky River Holding"},
    {"RR", "Rocky River"},
    {"TBH1", "Temporary Bird Holding 1"},
    {"TBH3-EDU", "Temporary Bird Holding 3 - EDU Office"},
    {"Tactile 1", "Tactile 1"},
    {"Tactile 2", "Tactile 2"},
    {"Tactile 3", "Tactile 3"},
    {"TS1", "Teaching Station 1"},
    {"TS2", "Teaching Station 2"},
    {"TS3", "Teaching Station 3"},
    {"TS4", "Teaching Station 4"},
    {"TSH1", "Teaching Station Holding 1"},
    {"TSH2", "Teaching Station Holding 2"},
};

}  // namespace

void LocationNames::Add(const char* name, const char* description) {
  LocationNameEntry entry{};
  entry.name = name;
  entry.description = description;
  entries_.push_back(entry);
  by_description_.emplace(std::string(entry.description.view()), static_cast<int32_t>(entries_.size() - 1));
  by_name_.emplace(std::string(entry.name.view()), static_cast<int32_t>(entries_.size() - 1));
}

int LocationNames::Load() {
  int rows = 0;
  SqlResult result = QuerySql(kEscapeTexts, "Select name,description from location;", {});
  while (MYSQL_ROW row = result.NextRow()) {
    Add(row[0] != nullptr ? row[0] : "", row[1] != nullptr ? row[1] : "");
    ++rows;
  }
  for (const FixedLocation& fixed : kFixedLocations) Add(fixed.name, fixed.description);
  return rows;
}

const char* LocationNames::FindLocationNameByDescription(const char* enclosure) const {
  auto found = by_description_.find(std::string(enclosure));
  return found != by_description_.end() ? entries_[static_cast<std::size_t>(found->second)].name.c_str() : nullptr;
}

const char* LocationNames::FindLocationName(const char* name) const {
  auto found = by_name_.find(std::string(name));
  return found != by_name_.end() ? entries_[static_cast<std::size_t>(found->second)].name.c_str() : nullptr;
}
