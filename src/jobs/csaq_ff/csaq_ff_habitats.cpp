#include "jobs/csaq_ff/csaq_ff_habitats.h"

#include <cstdio>
#include <cstring>
#include <memory>

#include "jobs/csaq_ff/csaq_ff_export.h"
#include "store/reference_store.h"
#include "util/pointer_list.h"
#include "util/progress.h"
#include "util/strings.h"

namespace {

std::unique_ptr<LocationRecord> ReadHabitat(const XmlNode* row) {
  auto habitat = std::make_unique<LocationRecord>();
  habitat->name = FieldText(row, kFfHabitatLabel);
  habitat->flags = CsaqFfHabitatFlags(FieldText(row, "Water"));
  habitat->volume = static_cast<float>(FieldNumber(row, "Tank_x0020_Size_x0020__x0028_gallons_x0029_"));
  habitat->description = FieldText(row, "Description");
  return habitat;
}

int CompareNames(const LocationRecord& a, const LocationRecord& b) {
  return std::strcmp(a.name.c_str(), b.name.c_str());
}

}  // namespace

int32_t CsaqFfHabitatFlags(const char* water) {
  int32_t flags = kLocationHabitat;
  if (water != nullptr && EqualsNoCase(water, "Salt")) flags |= kLocationSaltWater;
  if (water != nullptr && EqualsNoCase(water, "Fresh")) flags |= kLocationFreshWater;
  return flags;
}

int ImportCsaqFfHabitats() {
  XmlDocument habitats;
  std::printf("Loading LOCATION data from '%s'.\n", kFfHabitatsFile);
  if (XmlLoadFile(habitats, kFfHabitatsFile) != 0) {
    std::printf("Unable to parse habitat data!");
    return 1;
  }
  PointerList<LocationRecord> locations(512);
  int parsed = 0;
  ProgressLoop progress("Reading the habitats", ExportRowCount(habitats));
  for (const XmlNode* row = FirstExportRow(habitats); row != nullptr; row = XmlNextSibling(row)) {
    progress.Step();
    locations.Append(ReadHabitat(row));
    ++parsed;
  }
  locations.Sort(CompareNames, 1);
  for (int i = 0; i < locations.Count(); ++i) {
    LocationRecord& location = *locations.At(i);
    location.feed_order = static_cast<float>(i + 1);
    location.display_order = static_cast<float>(i + 1);
    // Labels and descriptions go in unescaped: a quote stops the writing here.
    if (InsertLocation(location) != 0) {
      std::printf("Unable to create location record for '%s'!\n", location.name.c_str());
      break;
    }
  }
  std::printf("Parsed %d location records\n", parsed);
  return 0;
}
