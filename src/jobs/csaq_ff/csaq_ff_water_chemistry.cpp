#include "jobs/csaq_ff/csaq_ff_water_chemistry.h"

#include <cstdio>
#include <string>
#include <string_view>
#include <unordered_map>

#include "jobs/csaq_ff/csaq_ff_export.h"
#include "store/connection.h"
#include "store/reference_store.h"
#include "util/dates.h"
#include "util/progress.h"
#include "util/read_losses.h"

namespace {

constexpr const char* kWaterChemFile = "./WaterChem.xml";

struct Measure {
  const char* element;
  float WaterQualityRecord::*column;
};

constexpr Measure kMeasures[] = {
    {"Temperature", &WaterQualityRecord::temp},
    {"PH", &WaterQualityRecord::pH},
    {"Salinity", &WaterQualityRecord::salinity},
    {"DO", &WaterQualityRecord::do_},
    {"NO3", &WaterQualityRecord::no3},
    {"O3", &WaterQualityRecord::residual_ozone},
    {"ORP", &WaterQualityRecord::orp},
    {"Alkalinity", &WaterQualityRecord::alk},
    {"NO2", &WaterQualityRecord::no2},
    {"Cu_x002B__x002B_", &WaterQualityRecord::cu2},
    {"_x0025_Abs", &WaterQualityRecord::percent_abs},
    {"Chlorine", &WaterQualityRecord::chlorine},
    {"Hardness", &WaterQualityRecord::hardness},
    {"Ca_x002B__x002B_", &WaterQualityRecord::ca2},
    {"Phosphate", &WaterQualityRecord::phosphate},
    {"NH3", &WaterQualityRecord::nh3},
};

// Every measure of the record, for the reset to "not measured".
constexpr float WaterQualityRecord::*kAllMeasures[] = {
    &WaterQualityRecord::temp,           &WaterQualityRecord::pH,          &WaterQualityRecord::fecal_coliform,
    &WaterQualityRecord::chlorine,       &WaterQualityRecord::salinity,    &WaterQualityRecord::nh3,
    &WaterQualityRecord::no2,            &WaterQualityRecord::no3,         &WaterQualityRecord::do_,
    &WaterQualityRecord::phosphate,      &WaterQualityRecord::cu2,         &WaterQualityRecord::percent_abs,
    &WaterQualityRecord::hardness,       &WaterQualityRecord::residual_ozone, &WaterQualityRecord::orp,
    &WaterQualityRecord::alk,            &WaterQualityRecord::ca2,         &WaterQualityRecord::copper_sulfate,
    &WaterQualityRecord::chloroquine,    &WaterQualityRecord::kh,          &WaterQualityRecord::nh4,
    &WaterQualityRecord::fe,             &WaterQualityRecord::sio2,        &WaterQualityRecord::co2,
    &WaterQualityRecord::TAN,
};
static_assert(sizeof kAllMeasures / sizeof kAllMeasures[0] == 25);

constexpr float kNotMeasured = -1.0f;

// The tank a test names: "Habitat_x002F_system", else "Habitat"; null when neither.
const char* TestHabitatId(const XmlNode* row) {
  const char* id = FieldText(row, "Habitat_x002F_system");
  return id != nullptr ? id : FieldText(row, "Habitat");
}

// The date of a test that has none. An empty date text at noon would read
// as " 12:00:00", which the server stores as a made-up year.
constexpr const char* kNoDate = "0000-00-00";

// Sets the reading's date; a bad or missing date is reported, counted, and
// leaves the zero date.
void ReadTestDate(const XmlNode* row, const char* id, const char* label, WaterQualityRecord& reading,
                  int& errors) {
  reading.date = kNoDate;
  const char* date = FieldText(row, "Date");
  if (date == nullptr) {
    std::printf("Invalid or missing date for '%s' - '%s'\n", id, label);
    ++errors;
    std::fflush(stdout);
    return;
  }
  std::string text = date;
  if (ParseExportDate(text.data(), reading.date) != 0) {
    std::printf("Invalid date '%s' for habitat '%s' - '%s'\n", date, id, label);
    ++errors;
  } else if (reading.date.empty()) {
    reading.date = kNoDate;  // a text that starts with its time: nothing before the 'T'
  }
}

// Location ids by label, asked of the server once per tank. The habitat
// import stored each label as a location name holds it, so a longer label is
// looked up by that much of it.
class LocationIds {
 public:
  int Find(const char* label) {
    std::string name(std::string_view(label).substr(0, decltype(LocationRecord::name)::kCapacity));
    auto [entry, added] = ids_.try_emplace(name, 0);
    if (added) entry->second = GetLocationId(name.c_str());
    return entry->second;
  }

 private:
  std::unordered_map<std::string, int> ids_;
};

// Writes the tank's log entry and the reading on it; returns true when both were stored.
bool WriteReading(const char* label, int location_id, const WaterQualityRecord& reading, int& errors) {
  std::string noon = std::string(reading.date.view()) + " 12:00:00";
  if (ExecuteSql(kEscapeTexts,
                 "insert into location_record_entry (location_id,notes,date,who) values (%d,'','%s','%s');",
                 {location_id, noon, reading.who}) != 0) {
    std::printf("Unable to create enclosure record entry for  '%s':%d\n", label, location_id);
    ++errors;
    return false;
  }
  int entry_id = static_cast<int>(LastInsertId());
  if (InsertWaterQuality(entry_id, location_id, reading) != 0) {
    std::printf("Unable to create water quality record for  '%s':%d\n", label, location_id);
    ++errors;
    return false;
  }
  return true;
}

}  // namespace

void ReadWaterReading(const XmlNode* row, WaterQualityRecord& reading) {
  for (float WaterQualityRecord::*measure : kAllMeasures) reading.*measure = kNotMeasured;
  const char* who = FieldText(row, "Aquarist");
  reading.who = who != nullptr ? who : "?";
  for (const Measure& measure : kMeasures) {
    if (FieldText(row, measure.element) != nullptr) {
      reading.*measure.column = static_cast<float>(FieldNumber(row, measure.element));
    }
  }
}

int ImportCsaqFfWaterChemistry() {
  XmlDocument tests;
  std::printf("Loading WATER CHEMISTRY data from '%s'.\n", kWaterChemFile);
  if (XmlLoadFile(tests, kWaterChemFile) != 0) {
    std::printf("Unable to load water chemistry data!");
    return 1;
  }
  XmlDocument habitats;
  std::printf("Loading HABITAT data from '%s'.\n", kFfHabitatsFile);
  if (XmlLoadFile(habitats, kFfHabitatsFile) != 0) {
    std::printf("Unable to load habitat data!");
    return 1;
  }
  if (CountLocations() == 0) {
    std::printf("No locations found: run the CSAQ_FF habitats import first!\n");
    return 1;
  }
  const HabitatIndex labels(habitats);
  LocationIds location_ids;
  int errors = 0;
  int inserted = 0;
  ProgressLoop progress("Importing the water tests", ExportRowCount(tests));
  ExportRows rows(kWaterChemFile);
  long long row_number = 0;
  for (const XmlNode* row = FirstExportRow(tests); row != nullptr; row = XmlNextSibling(row)) {
    progress.Step();
    rows.Name(++row_number);
    WaterQualityRecord reading{};
    const char* id = TestHabitatId(row);
    if (id == nullptr) continue;
    const char* label = labels.LabelWithId(id);
    if (label == nullptr) {
      std::printf("Unable to find location for '%s'\n", id);
      ++errors;
      continue;
    }
    ReadTestDate(row, id, label, reading, errors);
    ReadWaterReading(row, reading);
    int location_id = location_ids.Find(label);
    if (location_id == 0) {
      std::printf("Unable to get location id for '%s'\n", label);
      ++errors;
      continue;
    }
    if (WriteReading(label, location_id, reading, errors)) ++inserted;
  }
  std::printf("%d errors\n", errors);
  std::printf("Insert %d records\n", inserted);
  return 0;
}
