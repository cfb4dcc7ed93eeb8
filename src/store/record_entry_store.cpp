#include "store/record_entry_store.h"

#include <cctype>
#include <cstring>
#include <string>

#include "store/connection.h"
#include "util/strings.h"

namespace {

// The "Non-problems" setting in lower case, kept whole once read (read again
// on a new connection or a new pass of a batched run, as the job's first
// look-up did).
std::string g_non_problems;
unsigned g_non_problems_read = 0;  // StoreGeneration() when read

std::string ToLower(std::string text) {
  for (char& c : text) c = static_cast<char>(std::tolower(static_cast<unsigned char>(c)));
  return text;
}

}  // namespace

int InsertRecordEntry(int patient_key, const char* notes, const char* date, const char* who, float weight,
                      float keel, const char* location, char special) {
  if (ExecuteSql(kEscapeTexts,
                 "insert into record_entry (patient_id,notes,date,who,weight,keel,location,amountFed,special) "
                 "values (%d,'%s','%s','%s',%f,%.1f,'%s',%d,'%c');",
                 {patient_key, AlreadyEscaped(notes), date, who, weight, keel, location, -1, special}) != 0) {
    return -1;
  }
  return static_cast<int>(LastInsertId());
}

int InsertProblem(int patient_key, const char* description, unsigned char resolved, const char* initial_date) {
  int stored_resolved = IsNonProblem(description) ? 1 : resolved;
  if (ExecuteSql(kEscapeTexts,
                 "insert into problems (patient_id,description,resolved,initial_date) values (%d,'%s',%d,'%s');",
                 {patient_key, description, stored_resolved, initial_date}) != 0) {
    return -1;
  }
  return static_cast<int>(LastInsertId());
}

bool IsNonProblem(const char* description) {
  if (g_non_problems.empty() || g_non_problems_read != StoreGeneration()) {
    g_non_problems_read = StoreGeneration();
    GetSetting("Non-problems", g_non_problems);
    g_non_problems = ToLower(g_non_problems);
  }
  return g_non_problems.find(ToLower(description)) != std::string::npos;
}

int GetSetting(const char* category, std::string& value) {
  value.clear();
  SqlResult result = QuerySql(kEscapeTexts, "select value from settings where category='%s';", {category});
  MYSQL_ROW row = result.NextRow();
  if (row == nullptr) return 1;
  if (row[0] != nullptr) value = row[0];
  return 0;
}

int InsertPatientAttribute(int patient_key, const PatientAttribute& attribute) {
  return ExecuteSql(kEscapeTexts,
                    "insert into attributes (patient_id,name,value,date) values (%d,'%s','%s','%s');",
                    {patient_key, attribute.name, attribute.value, attribute.date}) != 0
             ? 1
             : 0;
}

int GetPatientAttribute(int patient_key, const char* name, Text<128>& value) {
  value = "";
  SqlResult result = QuerySql(
      kEscapeTexts,
      "select value from attributes where patient_id=%d and name='%s' order by date desc,id desc;",
      {patient_key, name});
  MYSQL_ROW row = result.NextRow();
  if (row != nullptr && row[0] != nullptr) value = row[0];
  return 0;
}

int GetCensusCounts(int patient_key, int& total, int& males, int& females, int& unknown) {
  Text<128> census{};
  GetPatientAttribute(patient_key, "Census", census);
  int* counts[] = {&total, &males, &females, &unknown};
  const char* position = census.c_str();
  for (int* count : counts) {
    const char* equals = std::strchr(position, '=');
    if (equals == nullptr) return 1;
    *count = ToInt(equals + 1);
    position = equals + 1;
  }
  return 0;
}
