#include "jobs/csaq_ff/csaq_ff_animal_table.h"

#include "jobs/csaq_ff/csaq_ff_export.h"
#include "util/strings.h"

namespace {

// The index key of a tag: cut to what an entry keeps of it, so that a tag
// longer than the field still finds the entries made for it, and in lower
// case.
std::string TagKey(std::string_view tag) {
  return LowerAscii(tag.substr(0, decltype(AnimalEntry::identity_tag)::kCapacity));
}

}  // namespace

AnimalEntry& CollectionAnimalTable::Add(const AnimalEntry& entry) {
  by_tag_[TagKey(entry.identity_tag.view())].positions.push_back(entries_.size());
  entries_.push_back(entry);
  return entries_.back();
}

AnimalEntry* CollectionAnimalTable::FirstWithTag(std::string_view tag) {
  auto found = by_tag_.find(TagKey(tag));
  return found != by_tag_.end() ? &entries_[found->second.positions.front()] : nullptr;
}

AnimalEntry* CollectionAnimalTable::FirstAvailable(std::string_view tag) {
  auto found = by_tag_.find(TagKey(tag));
  if (found == by_tag_.end()) return nullptr;
  Tagged& tagged = found->second;
  // Entries before the cursor have left "PR" for good: each is passed once.
  while (tagged.first_available < tagged.positions.size() &&
         entries_[tagged.positions[tagged.first_available]].patient.status != "PR") {
    ++tagged.first_available;
  }
  if (tagged.first_available == tagged.positions.size()) return nullptr;
  return &entries_[tagged.positions[tagged.first_available]];
}

std::span<AnimalEntry> CollectionAnimalTable::FirstRun(std::string_view tag) {
  auto found = by_tag_.find(TagKey(tag));
  if (found == by_tag_.end()) return {};
  const std::vector<std::size_t>& positions = found->second.positions;
  std::size_t first = positions.front();
  std::size_t length = 1;
  while (length < positions.size() && positions[length] == first + length) ++length;
  return std::span<AnimalEntry>(entries_).subspan(first, length);
}

void CollectionAnimalTable::TruncateTo(std::size_t size) {
  for (std::size_t index = size; index < entries_.size(); ++index) {
    auto found = by_tag_.find(TagKey(entries_[index].identity_tag.view()));
    Tagged& tagged = found->second;
    tagged.positions.pop_back();
    if (tagged.first_available > tagged.positions.size()) tagged.first_available = tagged.positions.size();
    if (tagged.positions.empty()) by_tag_.erase(found);
  }
  if (size < entries_.size()) entries_.resize(size);
}

void PatientNumberCounters::Next(const char* admission_date, Text<16>& patient_id) {
  int year = ToInt(admission_date);
  int number = ++last_by_year_[year];
  patient_id.Format("%d-%05d", year, number);
}
