#include "jobs/repairs/cbc_pcv_repair.h"

#include <cmath>
#include <cstdint>
#include <cstdio>
#include <limits>

#include "jobs/repairs/repair_columns.h"
#include "store/connection.h"
#include "store/measurement_store.h"
#include "util/text.h"
#include "util/progress.h"

namespace {

// The corrected count assumes this packed cell volume as normal.
constexpr double kNormalPcv = 45.0;

// One selected `cbc` row with its patient's case number.
struct CbcRow {
  const char* patient_id;
  int id;
  const char* date;
  int record_entry_id;
  int count;
  int corrected_count;
};

CbcRow ReadCbcRow(MYSQL_ROW row) {
  return {ColumnText(row[0]), ColumnInt(row[1]), ColumnText(row[2]),
          ColumnInt(row[3]),  ColumnInt(row[4]), ColumnInt(row[5])};
}

// Converts a whole-number float to an integer type, saturating at its limits
// so that an absurd volume cannot overflow the conversion.
template <typename Int>
Int SaturatedCast(float value) {
  constexpr auto kLow = static_cast<float>(std::numeric_limits<Int>::min());
  constexpr auto kHigh = static_cast<float>(std::numeric_limits<Int>::max());
  if (value <= kLow) return std::numeric_limits<Int>::min();
  if (value >= kHigh) return std::numeric_limits<Int>::max();
  return static_cast<Int>(value);
}

// Sets the row's volume and adds the `pcv` row. Returns false after
// reporting the first failure.
bool WritePcv(const CbcRow& cbc, int pcv) {
  if (ExecuteSql("update cbc set pcv=%d where id=%d;", {pcv, cbc.id}) != 0) {
    std::printf("\tERROR: Unable to update CBC record!\n");
    return false;
  }
  PcvRecord record{};
  record.date = cbc.date;
  record.pcv = static_cast<int16_t>(pcv);  // the caller checked that it fits
  record.ts = -1;
  record.buffy = -1;
  record.serum = "";
  if (InsertPcv(cbc.record_entry_id, record) != 0) {
    std::printf("\tERROR: Unable to insert PCV record!\n");
    return false;
  }
  return true;
}

enum class Outcome { kFixed, kNotFixed, kStop };

// Works out and writes the volume of one row, reporting what it does.
Outcome RepairRow(const CbcRow& cbc) {
  if (cbc.count == cbc.corrected_count) return Outcome::kNotFixed;
  if (cbc.count == 0) {
    // No volume gives a corrected count from a count of 0.
    std::printf("\tERROR: CBC record %d of PatientId=%s, date: %s has count=0 and correctedCount=%d, "
                "PCV not computed\n",
                cbc.id, cbc.patient_id, cbc.date, cbc.corrected_count);
    return Outcome::kNotFixed;
  }
  const auto pcv = static_cast<float>(std::ceil(cbc.corrected_count * kNormalPcv / cbc.count));
  const int pcv_value = SaturatedCast<int>(pcv);
  if (pcv_value > std::numeric_limits<int16_t>::max()) {
    // The `pcv` row could not hold it, and no blood gives such a volume.
    std::printf("\tERROR: CBC record %d of PatientId=%s, date: %s has count=%d and correctedCount=%d, "
                "PCV=%d does not fit, not written\n",
                cbc.id, cbc.patient_id, cbc.date, cbc.count, cbc.corrected_count, pcv_value);
    return Outcome::kNotFixed;
  }
  std::printf("PatientId=%s, date: %s, count=%d,correctedCount=%d, PCV=%d\n", cbc.patient_id, cbc.date,
              cbc.count, cbc.corrected_count, pcv_value);
  // A volume of 0 or less is not written, yet the row counts as fixed.
  if (pcv_value > 0 && !WritePcv(cbc, pcv_value)) return Outcome::kStop;
  return Outcome::kFixed;
}

}  // namespace

int fix_CBC_PCV_Records() {
  std::printf("Fixing CBC/PCV records records\n");
  int found = 0;
  int fixed = 0;
  // Only rows without a volume: a measured one stays as the clinic entered
  // it, and a row this repair filled is not taken again.
  SqlResult result = QuerySql(
      "select p.patient_id,c.id,date_format(c.date,'%%Y-%%m-%%d'),c.record_entry_id,c.count,c.corrected_count "
      "from patient p, record_entry re, cbc c where c.record_entry_id=re.id and re.patient_id=p.id and c.pcv=0;",
      {});
  if (result) {
    ProgressLoop progress("Fixing the CBC and PCV records", result.size());
    while (MYSQL_ROW row = result.NextRow()) {
      progress.Step();
      const Outcome outcome = RepairRow(ReadCbcRow(row));
      if (outcome == Outcome::kStop) break;
      if (outcome == Outcome::kFixed) ++fixed;
      ++found;
    }
  }
  std::printf("Found %d records and fixed/inserted %d records\n", found, fixed);
  return 0;
}
