#include "jobs/repairs/transfer_repairs.h"

#include <cstdio>
#include <string>
#include <string_view>

#include "jobs/repairs/repair_columns.h"
#include "store/connection.h"
#include "store/patient_store.h"
#include "store/record_entry_store.h"
#include "util/dates.h"
#include "util/text.h"
#include "util/progress.h"

namespace {

constexpr std::string_view kTransferNamePrefix = " - ";

// The date part of the current local time ("YYYY-MM-DD").
Text<20> Today() {
  Text<20> today{};
  std::string_view stamp = NowTimestamp();
  today = stamp.substr(0, stamp.find(' '));
  return today;
}

}  // namespace

int fixTransfers() {
  int count = 0;
  SqlResult result = QuerySql("select id,name from transfers where name like ' - %%';", {});
  if (result) {
    ProgressLoop progress("Fixing the transfer names", result.size());
    while (MYSQL_ROW row = result.NextRow()) {
      progress.Step();
      int id = ColumnInt(row[0]);
      std::string_view name = result.ColumnBytes(row, 1);
      const std::string new_name(
          name.substr(name.size() < kTransferNamePrefix.size() ? name.size() : kTransferNamePrefix.size()));
      // The name comes back as stored: its backslashes and quotes are escaped
      // again, or the server would read them as escapes of its own.
      if (ExecuteSql("update transfers set name='%s' where id=%d;", {EscapeSqlText(new_name), id}) != 0) {
        std::printf("Error updating transfer record %d - '%s'\n", id, new_name.c_str());
        return 1;
      }
      ++count;
    }
  }
  std::printf("Updated %d transfer records\n", count);
  return 0;
}

int fix180DayReports() {
  const Text<20> today = Today();
  std::printf("Fixing 180 day reports\n");
  int count = 0;
  SqlResult result = QuerySql("select id,patient_id from patient where (flags&%I64d)>0;", {kFlagOver180DaysReported});
  if (result) {
    ProgressLoop progress("Fixing the 180-day reports", result.size());
    while (MYSQL_ROW row = result.NextRow()) {
      progress.Step();
      int id = ColumnInt(row[0]);
      const char* patient_id = ColumnText(row[1]);
      PatientAttribute attribute{};
      attribute.name = "Rehab 180 day extension request";
      attribute.value = "";
      attribute.date = today;
      std::printf("Patient id: %s\n", patient_id);
      if (InsertPatientAttribute(id, attribute) != 0) {
        std::printf("Error create patient attribute record %d - '%s'\n", id, patient_id);
        return 1;
      }
      // By key: a case number may be null or hold a backslash, and then
      // addresses no row, so the flag would stay and the next run repeat.
      if (ClearPatientFlagById(id, kFlagOver180DaysReported) != 0) {
        std::printf("Error create patient attribute record %d - '%s'\n", id, patient_id);
        return 1;
      }
      ++count;
    }
  }
  std::printf("Updated %d patient records\n", count);
  return 0;
}
