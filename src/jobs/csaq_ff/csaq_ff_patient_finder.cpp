#include "jobs/csaq_ff/csaq_ff_patient_finder.h"

#include <algorithm>

#include "store/connection.h"
#include "util/strings.h"

namespace {

// latin1_swedish_ci's weight of every byte, as the server's
// weight_string(_latin1 x'..' collate latin1_swedish_ci) gives it; its LIKE
// compares two bytes by these weights. Letters of either case weigh the
// same, most accented letters as their base letter (Ü as Y), and the
// Swedish letters as the bytes after Z: Å as [, Ä and Æ as \, Ö as ].
constexpr unsigned char kLatin1SwedishWeights[256] = {
    0x00, 0x01, 0x02, 0x03, 0x04, 0x05, 0x06, 0x07, 0x08, 0x09, 0x0A, 0x0B, 0x0C, 0x0D, 0x0E, 0x0F,
    0x10, 0x11, 0x12, 0x13, 0x14, 0x15, 0x16, 0x17, 0x18, 0x19, 0x1A, 0x1B, 0x1C, 0x1D, 0x1E, 0x1F,
    0x20, 0x21, 0x22, 0x23, 0x24, 0x25, 0x26, 0x27, 0x28, 0x29, 0x2A, 0x2B, 0x2C, 0x2D, 0x2E, 0x2F,
    0x30, 0x31, 0x32, 0x33, 0x34, 0x35, 0x36, 0x37, 0x38, 0x39, 0x3A, 0x3B, 0x3C, 0x3D, 0x3E, 0x3F,
    0x40, 0x41, 0x42, 0x43, 0x44, 0x45, 0x46, 0x47, 0x48, 0x49, 0x4A, 0x4B, 0x4C, 0x4D, 0x4E, 0x4F,
    0x50, 0x51, 0x52, 0x53, 0x54, 0x55, 0x56, 0x57, 0x58, 0x59, 0x5A, 0x5B, 0x5C, 0x5D, 0x5E, 0x5F,
    0x60, 0x41, 0x42, 0x43, 0x44, 0x45, 0x46, 0x47, 0x48, 0x49, 0x4A, 0x4B, 0x4C, 0x4D, 0x4E, 0x4F,
    0x50, 0x51, 0x52, 0x53, 0x54, 0x55, 0x56, 0x57, 0x58, 0x59, 0x5A, 0x7B, 0x7C, 0x7D, 0x7E, 0x7F,
    0x80, 0x81, 0x82, 0x83, 0x84, 0x85, 0x86, 0x87, 0x88, 0x89, 0x8A, 0x8B, 0x8C, 0x8D, 0x8E, 0x8F,
    0x90, 0x91, 0x92, 0x93, 0x94, 0x95, 0x96, 0x97, 0x98, 0x99, 0x9A, 0x9B, 0x9C, 0x9D, 0x9E, 0x9F,
    0xA0, 0xA1, 0xA2, 0xA3, 0xA4, 0xA5, 0xA6, 0xA7, 0xA8, 0xA9, 0xAA, 0xAB, 0xAC, 0xAD, 0xAE, 0xAF,
    0xB0, 0xB1, 0xB2, 0xB3, 0xB4, 0xB5, 0xB6, 0xB7, 0xB8, 0xB9, 0xBA, 0xBB, 0xBC, 0xBD, 0xBE, 0xBF,
    0x41, 0x41, 0x41, 0x41, 0x5C, 0x5B, 0x5C, 0x43, 0x45, 0x45, 0x45, 0x45, 0x49, 0x49, 0x49, 0x49,
    0x44, 0x4E, 0x4F, 0x4F, 0x4F, 0x4F, 0x5D, 0xD7, 0xD8, 0x55, 0x55, 0x55, 0x59, 0x59, 0xDE, 0xDF,
    0x41, 0x41, 0x41, 0x41, 0x5C, 0x5B, 0x5C, 0x43, 0x45, 0x45, 0x45, 0x45, 0x49, 0x49, 0x49, 0x49,
    0x44, 0x4E, 0x4F, 0x4F, 0x4F, 0x4F, 0x5D, 0xF7, 0xD8, 0x55, 0x55, 0x55, 0x59, 0x59, 0xDE, 0xFF,
};

// Characters that LIKE or the quoted literal give a meaning of their own
// (wildcards, the escape character, the quote): such a tag is not a plain
// suffix.
bool IsPlainSuffix(std::string_view tag) {
  return !tag.empty() && tag.find_first_of("%_\\'") == std::string_view::npos;
}

// How many candidates one confirming statement names: the first of them is
// almost always the answer, and a short statement keeps the look-up by key.
constexpr std::size_t kConfirmBatch = 200;

}  // namespace

std::string NotesTagFinder::Fold(std::string_view text) {
  std::string folded(text);
  for (char& c : folded) c = static_cast<char>(kLatin1SwedishWeights[static_cast<unsigned char>(c)]);
  return folded;
}

int NotesTagFinder::Find(const char* species, std::string_view tag) {
  if (!loaded_) Load();
  if (!usable_ || !IsPlainSuffix(tag)) return Scan(species, tag);
  std::string key = Fold(tag);
  std::reverse(key.begin(), key.end());
  std::vector<int> candidates = unread_;
  auto first = std::lower_bound(entries_.begin(), entries_.end(), key,
                                [](const Entry& entry, const std::string& k) { return entry.reversed < k; });
  for (auto it = first; it != entries_.end() && it->reversed.compare(0, key.size(), key) == 0; ++it) {
    candidates.push_back(it->id);
  }
  std::sort(candidates.begin(), candidates.end());
  return Confirm(species, tag, candidates);
}

void NotesTagFinder::Load() {
  loaded_ = true;
  // The measurement jobs insert no patient, so one reading serves the run.
  SqlResult result = QuerySql("select id, notes, length(notes) from patient;", {});
  if (!result) return;
  entries_.reserve(result.size());
  while (MYSQL_ROW row = result.NextRow()) {
    if (row[0] == nullptr || row[1] == nullptr) continue;  // null notes match no LIKE
    int id = ToInt(row[0]);
    std::string_view notes(row[1]);
    if (row[2] == nullptr || notes.size() != static_cast<std::size_t>(ToInt(row[2]))) {
      unread_.push_back(id);
      continue;
    }
    std::string reversed = Fold(notes);
    std::reverse(reversed.begin(), reversed.end());
    entries_.push_back({std::move(reversed), id});
  }
  std::sort(entries_.begin(), entries_.end(), [](const Entry& a, const Entry& b) {
    return a.reversed != b.reversed ? a.reversed < b.reversed : a.id < b.id;
  });
  usable_ = true;
}

int NotesTagFinder::Scan(const char* species, std::string_view tag) {
  if (species != nullptr) {
    return QueryInt(kEscapeTexts, "select id from patient where species='%s' and notes like '%%%s';",
                    {species, tag}, 0);
  }
  return QueryInt(kEscapeTexts, "select id from patient where notes like '%%%s';", {tag}, 0);
}

int NotesTagFinder::Confirm(const char* species, std::string_view tag, const std::vector<int>& candidates) {
  for (std::size_t start = 0; start < candidates.size(); start += kConfirmBatch) {
    std::size_t end = std::min(candidates.size(), start + kConfirmBatch);
    // The primary key, named: left to itself the optimizer may read every
    // patient of the species through its index.
    std::string statement = "select id from patient force index (primary) where id in (";
    for (std::size_t i = start; i < end; ++i) {
      if (i > start) statement += ',';
      statement += std::to_string(candidates[i]);
    }
    SqlResult result;
    if (species != nullptr) {
      statement += ") and species='%s' and notes like '%%%s';";
      result = QuerySql(kEscapeTexts, statement.c_str(), {species, tag});
    } else {
      statement += ") and notes like '%%%s';";
      result = QuerySql(kEscapeTexts, statement.c_str(), {tag});
    }
    int first = 0;
    while (MYSQL_ROW row = result.NextRow()) {
      int id = row[0] != nullptr ? ToInt(row[0]) : 0;
      if (id != 0 && (first == 0 || id < first)) first = id;
    }
    if (first != 0) return first;
  }
  return 0;
}
