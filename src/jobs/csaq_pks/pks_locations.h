// The location names the moves of the zoo-records import resolve to: the
// export names an enclosure by its description ("Amphibian Holding 15"), the
// patient row wants the location's short name ("AH15").
#pragma once

#include <cstdint>
#include <string>
#include <unordered_map>
#include <vector>

#include "util/text.h"

struct LocationNameEntry {
  Text<32> name;
  Text<64> description;
};

class LocationNames {
 public:
  // Adds an entry after those held (texts cut at the fields' widths).
  void Add(const char* name, const char* description);

  // Reads "Select name,description from location;" (null columns as empty
  // texts) in the order the server returns the rows, then the holding areas
  // that have no location row of their own. Returns the number of database
  // rows; 0 when the query fails, and the fixed entries are added all the same.
  int Load();

  // The name of the first entry whose description equals `enclosure`
  // exactly, or null when none does.
  const char* FindLocationNameByDescription(const char* enclosure) const;

  // `name` when an entry has that name, or null when none does.
  const char* FindLocationName(const char* name) const;

  int size() const { return static_cast<int>(entries_.size()); }

 private:
  std::vector<LocationNameEntry> entries_;
  std::unordered_map<std::string, int32_t> by_description_;  // first entry of each description
  std::unordered_map<std::string, int32_t> by_name_;         // first entry of each name
};
