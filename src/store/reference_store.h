// Reference tables that some jobs fill and others consult: `species` (what a
// patient's species abbreviation names), `location` (enclosures, habitats,
// tanks) and `addressBook` (organisations and people). Every text, written or
// looked up, is escaped here as the statement is formatted: callers hand
// over texts as they came, so a name stored with an apostrophe is found by
// the same name.
#pragma once

#include <cstdint>

#include "util/text.h"

// One row of `species`. A one-character flag left at the zero character is
// written as an empty value.
struct SpeciesRecord {
  int32_t id;  // set by InsertSpecies
  Text<16> abbrev;  // the key patients use
  Text<64> scientific_name;
  Text<64> common_name;
  char nord;
  char native;
  Text<128> info_page;
  Text<66> species_group;
  int32_t cost_category;
  int32_t state_soc;
  int32_t federal_soc;
  Text<24> kingdom;
  Text<24> phylum;
  Text<24> class_;  // column `class`
  Text<24> _order;
  Text<24> family;
  Text<24> genus;
  Text<24> species;
  char hms;
  float value;
  char habitat;
};

// One row of `location`.
struct LocationRecord {
  int32_t id;
  Text<32> name;
  Text<36> dimensions;
  int32_t capacity;
  Text<68> special;
  float feed_order;
  float display_order;
  int32_t flags;
  Text<128> alert;
  int32_t x_coord;
  int32_t y_coord;
  int32_t level;
  Text<32> combo_lock;
  Text<32> curator;
  float volume;
  float flow_rate;
  Text<64> description;
};

// One row of `addressBook`.
struct AddressBookEntry {
  int32_t id;  // set by InsertAddressBookEntry
  Text<64> org;
  Text<32> contactName;
  Text<32> addr;
  Text<32> addr2;
  Text<32> city;
  Text<21> district;  // not written by any statement
  Text<21> state;
  Text<11> zip;
  Text<16> county;
  Text<16> country;
  Text<32> phone1;
  Text<32> phone2;
  Text<32> phone3;
  Text<64> email;
  Text<31> cellProvider;
  int32_t type;
  float lat;
  float lon;
  Text<128> permit;
  Text<64> lookingFor;
  Text<64> availability;
  int32_t daily_availability;
  Text<128> notes;
  Text<11> dob;
  Text<65> webAddress;
};

// Inserts the species, stores its new key in `record.id`, then writes its
// taxonomy. Returns 1 when the insert fails, else the taxonomy update's
// outcome (1 when it failed although the row exists).
int InsertSpecies(SpeciesRecord& record);

// Fills `record` from the species with `abbrev`; columns that are null leave
// the caller's fields as they were. Returns 0 when found, 1 otherwise.
int GetSpeciesByAbbrev(const char* abbrev, SpeciesRecord& record);

// Looks up the abbreviation of the species with this common name (escaped
// here, whole however long). Returns 0 when found; 1 with `abbrev` left as it
// was otherwise.
int GetSpeciesAbbrevByCommonName(const char* common_name, Text<16>& abbrev);

// Inserts the location; its key is not read back (see GetLocationId). 0 or 1.
int InsertLocation(const LocationRecord& record);

// The key of the location named `name`; 0 when none or on failure.
int GetLocationId(const char* name);

// The number of `species` rows; 0 when there are none or the statement failed.
int CountSpecies();

// The number of `location` rows; 0 when there are none or the statement failed.
int CountLocations();

// Inserts the entry and stores its new key in `entry.id`. 0 or 1.
int InsertAddressBookEntry(AddressBookEntry& entry);
