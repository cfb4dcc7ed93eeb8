#include "jobs/csaq_pks/pks_enclosures.h"

#include <algorithm>
#include <cstdio>
#include <cstring>
#include <new>
#include <string>
#include <strings.h>
#include <vector>

#include "jobs/csaq_pks/pks_text.h"
#include "store/connection.h"
#include "xml/xml_document.h"

namespace {

constexpr const char* kEnclosureFile = "./EnclosureTree.xml";

constexpr int kImported = 0x1;
constexpr int kExhibit = 0x200;
constexpr int kFreshWater = 0x80;
constexpr int kSaltWater = 0x100;

struct WaterType {
  const char* name;
  int flag;
};

constexpr WaterType kWaterTypes[] = {
    {"Rain Water", kFreshWater},
    {"Seawater", kSaltWater},
    {"Seawater (artificial)", kSaltWater},
    {"Fresh Water", kFreshWater},
    {"Freshwater", kFreshWater},
    {"Estuarine", kSaltWater},
};

// The lake's location carries its full name.
constexpr const char* kFallsLake = "Falls Lake";
constexpr const char* kFallsLakeReservoir = "Falls Lake Reservoir";

// One location from an enclosure record, ready to insert: texts without their
// first apostrophe (the store escapes what is left).
LocationRecord MakeLocation(const char* enclosure, const char* identifier, int flags) {
  LocationRecord location{};
  location.name = identifier[0] != '\0' ? identifier : enclosure;
  location.description = enclosure;
  location.flags = flags;
  DropFirstApostrophe(location.name.data());
  DropFirstApostrophe(location.description.data());
  return location;
}

}  // namespace

int EnclosureFlags(const char* type, const char* category, const char* water_type) {
  int flags = kImported;
  if (std::strcmp(type, "Exhibit") == 0) flags |= kExhibit;
  if (category == nullptr || std::strcmp(category, "Aquatic") != 0 || water_type == nullptr) return flags;
  for (const WaterType& water : kWaterTypes) {
    if (std::strcmp(water_type, water.name) == 0) return flags | water.flag;
  }
  std::printf("\tERROR: Unknown water type: '%s'\n", water_type);
  return flags;
}

int ImportEnclosureTree() {
  XmlDocument tree;
  if (XmlLoadFile(tree, kEnclosureFile) != 0) {
    std::printf("\tERROR: Unable to parse habitat file '%s'\n", kEnclosureFile);
    return 1;
  }
  std::vector<LocationRecord> locations;
  try {
    // The export lists an enclosure again right after itself; only the
    // first of such a repeat is kept.
    std::string previous_enclosure;
    std::string previous_identifier;
    for (const XmlNode* record = XmlFirstChild(XmlFirstChild(XmlRoot(tree))); record != nullptr;
         record = XmlNextSibling(record)) {
      const char* enclosure = XmlChildText(record, "Enclosure");
      const char* identifier = XmlChildText(record, "Identifier");
      const char* type = XmlChildText(record, "Type");
      if (enclosure == nullptr || type == nullptr) {
        std::printf("\tERROR: Missing enclosure name or type\n");
        continue;
      }
      if (identifier == nullptr) identifier = "";
      if (std::strcmp(identifier, kFallsLake) == 0) identifier = kFallsLakeReservoir;
      if (enclosure == previous_enclosure && identifier == previous_identifier) continue;
      int flags = EnclosureFlags(type, XmlChildText(record, "Category"), XmlChildText(record, "CurrentWaterType"));
      locations.push_back(MakeLocation(enclosure, identifier, flags));
      previous_enclosure = enclosure;
      previous_identifier = identifier;
    }
  } catch (const std::bad_alloc&) {
    std::printf("\tERROR: Out of memory\n");
    return 1;
  }
  std::stable_sort(locations.begin(), locations.end(), [](const LocationRecord& a, const LocationRecord& b) {
    return strcasecmp(a.name.c_str(), b.name.c_str()) < 0;
  });
  for (std::size_t i = 0; i < locations.size(); ++i) {
    LocationRecord& location = locations[i];
    location.feed_order = static_cast<float>(i + 1);
    location.display_order = static_cast<float>(i + 1);
    if (InsertLocation(location) != 0) {
      std::printf("\tERROR: Unable to create location: '%s'\n", location.name.c_str());
    }
  }
  std::printf("Processed %d enclosures\n", static_cast<int>(locations.size()));
  return 0;
}
