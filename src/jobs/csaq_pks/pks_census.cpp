#include "jobs/csaq_pks/pks_census.h"

#include <cstdio>
#include <cstring>

#include "jobs/csaq_pks/pks_text.h"

namespace {

// Types the census pass acts on as they are written.
constexpr const char* kKeptTypes[] = {"To Another Institution", "Death", "Released To Wild", "Missing", "Appeared"};

// Types the job cannot follow: the count is shown with the reason.
struct UnfollowedType {
  const char* type;
  const char* message;
};

constexpr UnfollowedType kUnfollowedTypes[] = {
    {"Merge Another Individual/Group", "\tERROR - unable to process merges\n"},
    {"Split A Group/Individual", "\tERROR - unable to process splits\n"},
};

}  // namespace

void InitialCensus::Index(const XmlNode* first_record) {
  first_record_.clear();
  for (const XmlNode* record = first_record; record != nullptr; record = XmlNextSibling(record)) {
    if (const char* local_id = XmlChildText(record, "Local_ID")) first_record_.emplace(local_id, record);
  }
}

bool InitialCensus::Read(const char* local_id, InitialCounts& counts) const {
  auto found = first_record_.find(local_id);
  if (found == first_record_.end()) return false;
  const XmlNode* record = found->second;
  const char* date = XmlChildText(record, "CensusDate");
  if (date == nullptr) {
    std::printf("\tERROR - census date missing for '%s'\n", local_id);
    return false;
  }
  counts.date = date;
  if (char* t = std::strchr(counts.date.data(), 'T')) *t = '\0';
  int* fields[] = {&counts.male, &counts.female, &counts.other};
  const char* names[] = {"Male", "Female", "Other"};
  for (int i = 0; i < 3; ++i) {
    *fields[i] = 0;
    const char* text = XmlChildText(record, names[i]);
    if (text != nullptr && !ReadCount(text, *fields[i])) {
      std::printf("\tERROR - census count %s '%s' is no number for '%s'\n", names[i], text, local_id);
      return false;
    }
  }
  return true;
}

void SettleCountType(CensusCount& count) {
  if (count.type.empty()) {
    if (count.change < 0 || (count.change == 0 && count.method == "Removal From Group")) {
      count.type = "Death";
    } else if (count.change > 0) {
      std::printf("\tERROR: Unknown change type, delta > 0\n");
    }
    return;
  }
  for (const UnfollowedType& unfollowed : kUnfollowedTypes) {
    if (count.type == unfollowed.type) {
      std::printf("%s %s %s - %d %d %d - %s %d\n", count.local_id, count.census_date, count.method.c_str(),
                  count.male, count.female, count.other, count.type.c_str(), count.change);
      std::printf("%s", unfollowed.message);
      return;
    }
  }
  for (const char* kept : kKeptTypes) {
    if (count.type == kept) return;
  }
  if (count.type == "Close Out") {
    count.type = "Death";
    return;
  }
  std::printf("\tERROR: Unknown count type '%s'\n", count.type.c_str());
  count.type = "";
}
