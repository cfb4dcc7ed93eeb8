// The animals of one zoo-records import, held in memory from the animal pass
// to the end of the job: one record per animal, or per group of six or more
// kept whole, each with the patient row and finder columns it will become.
//
// Every later pass finds an animal by the export's Local_ID. The table keeps
// an index of its records by Local_ID, so a look-up costs the same whatever
// the size of the export; it never searches the table record by record.
#pragma once

#include <cstdint>
#include <deque>
#include <string>
#include <unordered_map>
#include <vector>

#include "store/patient_store.h"
#include "util/text.h"

struct AnimalRecord {
  // The export's Local_ID. Several records share one: the members of a small
  // group, or the records of an export that repeats a Local_ID.
  Text<48> localId;
  // `id` is 0 until InsertPatient has stored the row's key, and stays 0 when
  // that insert failed (0 is never a patient key).
  PatientRecord patient;
  PatientFinderInfo finder;
  // Its case number belongs to another record of the run (an animal without
  // an admission date filed as 2000-00001 beside one admitted in 2000): it
  // gets no patient row and no rows of its own.
  bool refused = false;
};

// Positions (0-based, inclusive) of one unbroken run of records that share a
// Local_ID.
struct AnimalRun {
  int first;
  int last;
};

class AnimalTable {
 public:
  // Appends a copy of `record` at position size(). Positions of the records
  // already held do not change, and neither does their memory: references to
  // them stay valid.
  void Append(const AnimalRecord& record);

  int size() const { return static_cast<int>(records_.size()); }
  AnimalRecord& operator[](int position) { return records_[static_cast<std::size_t>(position)]; }
  const AnimalRecord& operator[](int position) const { return records_[static_cast<std::size_t>(position)]; }

  // The run of records whose localId equals `local_id` (exactly, letter case
  // included) that starts at the lowest such position, as far as the records
  // following it still match. A later, separate run with the same Local_ID
  // is never found. Returns false, `run` untouched, when no record matches.
  bool FindAnimalRun(const char* local_id, AnimalRun& run);

  // The number of records in the whole table with this Local_ID whose
  // patient status is "PR".
  int CountResidentAnimals(const char* local_id);

  // Orders the records by patient.admission_date, compared byte by byte
  // (empty dates first); records with equal dates keep their order.
  void SortByAdmissionDate();

 private:
  // Where the positions of one Local_ID's records stand in positions_.
  struct Slice {
    int32_t begin;
    int32_t count;
  };

  // Rebuilds the index after records were appended or moved.
  void Reindex();
  const Slice* FindSlice(const char* local_id);

  // A deque, not a vector: growing never copies the records already held,
  // so a large export never needs room for its table twice.
  std::deque<AnimalRecord> records_;
  // By Local_ID, a slice of positions_ holding its positions in ascending order.
  std::unordered_map<std::string, Slice> by_local_id_;
  std::vector<int32_t> positions_;
  bool index_stale_ = true;  // records appended or moved since the last Reindex
};

// Appends "<label>: <value>\n" to the patient's notes, cut at the field's width.
void AppendNoteLine(PatientRecord& patient, const char* label, const char* value);

// Appends `text` to the patient's band text, after ". " when the band already
// holds something; cut at the field's width.
void AppendBandText(PatientRecord& patient, const char* text);
