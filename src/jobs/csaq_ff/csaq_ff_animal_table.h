// The CSAQ_FF patient import's animals in memory: every animal (or large
// group) the collection records describe, built completely before any row is
// written, then written in creation order. It grows with the export; the
// look-ups by identity tag go through an index, not a scan of the table.
#pragma once

#include <cstddef>
#include <cstdint>
#include <span>
#include <string>
#include <unordered_map>
#include <vector>

#include "store/patient_store.h"
#include "util/text.h"

struct AnimalEntry {
  Text<48> identity_tag;  // the collection record's tag; entries are found by it, ignoring letter case
  PatientRecord patient;  // the row to insert; `patient.id` is set once it is written
  PatientFinderInfo finder;
  Text<128> destination;  // where a transferred animal went
  int32_t group_size;     // set only for a group of more than 20 written as one patient
  Text<256> notes;        // the record's notes without the name part
};

// Tags compare ignoring letter case and as an entry keeps them: a tag longer
// than `identity_tag` holds is matched by its first 47 characters.
class CollectionAnimalTable {
 public:
  // Appends a copy of `entry`; returns the stored one (valid until the next Add).
  AnimalEntry& Add(const AnimalEntry& entry);

  std::size_t size() const { return entries_.size(); }
  AnimalEntry& operator[](std::size_t index) { return entries_[index]; }
  const AnimalEntry& operator[](std::size_t index) const { return entries_[index]; }

  // The first entry with `tag` (ignoring letter case), or null.
  AnimalEntry* FirstWithTag(std::string_view tag);

  // The first entry with `tag` whose status is still "PR", or null. An entry
  // whose status has left "PR" must never return to it: the search goes on
  // from where the last one stopped, so that the dispositions of a tag cost
  // time in proportion to its entries, not to their square.
  AnimalEntry* FirstAvailable(std::string_view tag);

  // The first unbroken run of entries with `tag`: from its first entry to
  // the last one that follows it without an entry of another tag between.
  // Empty when no entry has the tag.
  std::span<AnimalEntry> FirstRun(std::string_view tag);

  // Drops the entries from position `size` on (a record that failed after
  // creating some).
  void TruncateTo(std::size_t size);

 private:
  // The entries of one tag.
  struct Tagged {
    std::vector<std::size_t> positions;  // in entries_, rising
    std::size_t first_available = 0;     // index into positions: none before it is still "PR"
  };

  std::vector<AnimalEntry> entries_;
  std::unordered_map<std::string, Tagged> by_tag_;  // key: the tag cut and in lower case
};

// Case numbers "%d-%05.5d" counted within each admission year.
class PatientNumberCounters {
 public:
  // Gives the next number of the year that `admission_date` starts with
  // (2012-00001, 2012-00002, ...).
  void Next(const char* admission_date, Text<16>& patient_id);

 private:
  std::unordered_map<int, int> last_by_year_;
};
