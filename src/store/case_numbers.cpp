#include "store/case_numbers.h"

#include <cstdio>
#include <unordered_set>

#include "store/connection.h"
#include "util/strings.h"

namespace {

// The case numbers of the patient table as this connection knows them: read
// once, at its first insert, so that a run checks each new patient with a
// hashed look-up rather than a statement.
struct KnownCaseNumbers {
  unsigned connection = 0;  // StoreGeneration() when read; 0 before
  std::unordered_map<std::string, int> first_key;  // by CaseNumberKey
  std::unordered_set<std::string> noted;  // case numbers already reported as shared
  std::unordered_set<std::string> inserted_noted;  // ... as held by an earlier row
};

KnownCaseNumbers& Inserted() {
  static KnownCaseNumbers known;
  // A new pass of a batched run reads the table again (its answer comes from
  // the run's record), as the first pass did; what was noted stays noted.
  if (known.connection != StoreGeneration()) {
    known.first_key.clear();
    known.connection = StoreGeneration();
    SqlResult result = QuerySql("select id,patient_id from patient order by id;", {});
    for (MYSQL_ROW row = result.NextRow(); row != nullptr; row = result.NextRow()) {
      if (row[0] != nullptr && row[1] != nullptr) known.first_key.try_emplace(CaseNumberKey(row[1]), ToInt(row[0]));
    }
  }
  return known;
}

// Only the case numbers reported; a look-up never needs the whole table.
KnownCaseNumbers& LookedUp() {
  static KnownCaseNumbers known;
  if (known.connection != ConnectionCount()) {
    known = {};
    known.connection = ConnectionCount();
  }
  return known;
}

}  // namespace

std::string CaseNumberKey(std::string_view case_number) {
  std::size_t end = case_number.size();
  while (end > 0 && case_number[end - 1] == ' ') --end;
  return LowerAscii(case_number.substr(0, end));
}

bool IsBlankCaseNumber(std::string_view case_number) {
  return case_number.find_first_not_of(" \t") == std::string_view::npos;
}

const std::string* RunCaseNumbers::Claim(std::string_view case_number, std::string_view source) {
  auto [owner, added] = owners_.try_emplace(CaseNumberKey(case_number), source);
  return added ? nullptr : &owner->second;
}

void NoteInsertedCaseNumber(const char* case_number, int key) {
  KnownCaseNumbers& known = Inserted();
  std::string number_key = CaseNumberKey(case_number);
  auto [holder, added] = known.first_key.try_emplace(number_key, key);
  if (added || holder->second == key || !LookedUp().inserted_noted.insert(number_key).second) return;
  std::fprintf(stderr, "Note: case number '%s' was already held by patient row %d; the new patient row %d has it too\n",
               case_number, holder->second, key);
}

void NoteSharedCaseNumber(const char* case_number, unsigned long long rows, int used_key) {
  if (!LookedUp().noted.insert(CaseNumberKey(case_number)).second) return;
  std::fprintf(stderr, "Note: %llu patient rows hold case number '%s'; using row %d, the first the server returned\n",
               rows, case_number, used_key);
}
