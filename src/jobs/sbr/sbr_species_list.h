// The species a seabird rescue patient can name, looked up by the common name
// the case log writes (after fixing the log's known misspellings).
#pragma once

#include <string>
#include <string_view>
#include <unordered_map>

#include "store/patient_store.h"
#include "xml/xml_document.h"

// The `species` rows of the database, held as an in-memory XML tree: one
// element "species" per row under the root, with the attributes "abbrev",
// "commonName" and "speciesGroup", in the order the rows were added. An index
// by common name answers each look-up without walking the list. Not copyable.
class SbrSpeciesList {
 public:
  SbrSpeciesList();
  SbrSpeciesList(const SbrSpeciesList&) = delete;
  SbrSpeciesList& operator=(const SbrSpeciesList&) = delete;

  // Appends a species. Returns false (nothing added) when a text is null or
  // memory runs out.
  bool Add(const char* abbrev, const char* common_name, const char* species_group);

  // The first species added whose "commonName" equals `common_name` ignoring
  // ASCII letter case, or null. Valid while the list lives.
  const XmlNode* Find(std::string_view common_name) const;

  int size() const { return size_; }

 private:
  XmlDocument document_;
  // Lower-cased common name -> the first element with that name.
  std::unordered_map<std::string, const XmlNode*> first_by_name_;
  int size_ = 0;
};

// Adds every `species` row whose abbreviation, common name and species group
// are all set, in the order the server returns them. When the query fails the
// list stays as it was (then no common name is found).
void LoadSbrSpeciesList(SbrSpeciesList& list);

// Finds the species of `common_name` (its first 31 characters, one spelling
// correction applied, trailing white space cut) and copies its abbreviation
// into `patient.species` and its group into `patient.species_group`.
// Returns 0 when found; 1, leaving both fields alone, when not.
int LookupSbrSpecies(const char* common_name, const SbrSpeciesList& list, PatientRecord& patient);
