#include "jobs/csaq_pks/pks_animals.h"

#include <algorithm>
#include <numeric>
#include <string_view>

void AnimalTable::Append(const AnimalRecord& record) {
  records_.push_back(record);
  index_stale_ = true;
}

void AnimalTable::Reindex() {
  // Two sweeps in table order: count each Local_ID's records, then place
  // their positions, which therefore stand in ascending order in each slice.
  by_local_id_.clear();
  for (const AnimalRecord& record : records_) ++by_local_id_[std::string(record.localId.view())].count;
  int32_t begin = 0;
  for (auto& [local_id, slice] : by_local_id_) {
    slice.begin = begin;
    begin += slice.count;
    slice.count = 0;
  }
  positions_.assign(records_.size(), 0);
  for (int position = 0; position < size(); ++position) {
    Slice& slice = by_local_id_[std::string(records_[static_cast<std::size_t>(position)].localId.view())];
    positions_[static_cast<std::size_t>(slice.begin + slice.count++)] = position;
  }
  index_stale_ = false;
}

const AnimalTable::Slice* AnimalTable::FindSlice(const char* local_id) {
  if (index_stale_) Reindex();
  auto found = by_local_id_.find(std::string(local_id));
  return found != by_local_id_.end() ? &found->second : nullptr;
}

bool AnimalTable::FindAnimalRun(const char* local_id, AnimalRun& run) {
  const Slice* slice = FindSlice(local_id);
  if (slice == nullptr) return false;
  const int32_t* positions = positions_.data() + slice->begin;
  // The first run ends where the next record with this Local_ID is not the
  // table's next record.
  int i = 0;
  while (i + 1 < slice->count && positions[i + 1] == positions[i] + 1) ++i;
  run.first = positions[0];
  run.last = positions[i];
  return true;
}

int AnimalTable::CountResidentAnimals(const char* local_id) {
  const Slice* slice = FindSlice(local_id);
  if (slice == nullptr) return 0;
  int residents = 0;
  for (int32_t i = 0; i < slice->count; ++i) {
    if ((*this)[positions_[static_cast<std::size_t>(slice->begin + i)]].patient.status == "PR") ++residents;
  }
  return residents;
}

void AnimalTable::SortByAdmissionDate() {
  // Sorts positions, then moves each record once along the cycles of the
  // permutation: no second copy of the table is needed.
  std::vector<int32_t> order(records_.size());
  std::iota(order.begin(), order.end(), 0);
  std::stable_sort(order.begin(), order.end(), [this](int32_t a, int32_t b) {
    return (*this)[a].patient.admission_date.view() < (*this)[b].patient.admission_date.view();
  });
  for (int32_t start = 0; start < size(); ++start) {
    if (order[static_cast<std::size_t>(start)] == start) continue;
    AnimalRecord held = (*this)[start];
    int32_t to = start;
    for (;;) {
      int32_t from = order[static_cast<std::size_t>(to)];
      order[static_cast<std::size_t>(to)] = to;  // placed
      if (from == start) {
        (*this)[to] = held;
        break;
      }
      (*this)[to] = (*this)[from];
      to = from;
    }
  }
  index_stale_ = true;
}

void AppendNoteLine(PatientRecord& patient, const char* label, const char* value) {
  std::string notes(patient.notes.view());
  notes.append(label).append(": ").append(value).append("\n");
  patient.notes = notes;
}

void AppendBandText(PatientRecord& patient, const char* text) {
  std::string band(patient.band.view());
  if (!band.empty()) band += ". ";
  band += text;
  patient.band = band;
}
