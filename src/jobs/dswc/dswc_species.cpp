#include "jobs/dswc/dswc_species.h"

#include <cstdio>
#include <cstring>

#include "store/connection.h"
#include "util/strings.h"
#include "util/progress.h"

namespace {

// Species protected by both the state and the federal eagle rules.
constexpr const char* kEagleAbbrevs[] = {"BAEA", "GOEA"};
constexpr int kEagleProtection = 8;

bool IsEagle(const char* abbrev) {
  for (const char* eagle : kEagleAbbrevs) {
    if (std::strcmp(abbrev, eagle) == 0) return true;
  }
  return false;
}

// Writes one species; returns true when it was stored.
bool ImportSpecies(const XmlNode* element) {
  SpeciesRecord species{};
  if (const char* missing = FillDswcSpecies(element, species)) {
    std::printf("Error creating species record for '%s'\n", species.abbrev.c_str());
    std::printf("Attribute '%s' missing, species skipped\n", missing);
    return false;
  }
  if (InsertSpecies(species) != 0) {
    std::printf("Error creating species record for '%s'\n", species.abbrev.c_str());
    std::printf("%s\n", LastDbError());
    return false;
  }
  return true;
}

}  // namespace

const XmlNode* FirstDswcSpecies(const XmlDocument& species_list) {
  return XmlFirstChild(XmlFirstChild(XmlRoot(species_list)));
}

const char* FillDswcSpecies(const XmlNode* element, SpeciesRecord& species) {
  constexpr const char* kRequired[] = {"abbrev", "speciesGroup", "common_name"};
  species.abbrev = XmlAttributeValue(element, "abbrev");
  species.species_group = XmlAttributeValue(element, "speciesGroup");
  species.common_name = XmlAttributeValue(element, "common_name");
  species.info_page = XmlAttributeValue(element, "info_page");
  species.nord = std::strstr(species.common_name.c_str(), "owl") != nullptr ? 'N' : 'D';
  const char* domestic = XmlAttributeValue(element, "domestic");
  species.native = domestic != nullptr && EqualsNoCase(domestic, "yes") ? 'D' : 'Y';
  species.hms = 'N';
  if (IsEagle(species.abbrev.c_str())) {
    species.state_soc = kEagleProtection;
    species.federal_soc = kEagleProtection;
  }
  for (const char* name : kRequired) {
    if (XmlAttributeValue(element, name) == nullptr) return name;
  }
  return nullptr;
}

int ImportDswcSpecies() {
  XmlDocument species_list;
  if (XmlLoadFile(species_list, kDswcSpeciesFile) != 0) {
    std::printf("Unable to parse species file '%s'\n", kDswcSpeciesFile);
    return 1;
  }
  int inserted = 0;
  ProgressLoop progress("Importing the species", static_cast<unsigned long long>(
                                                     XmlChildCount(XmlParent(FirstDswcSpecies(species_list)))));
  for (const XmlNode* element = FirstDswcSpecies(species_list); element != nullptr;
       element = XmlNextSibling(element)) {
    progress.Step();
    if (XmlAttributeIsTrue(element, "dup")) continue;
    if (ImportSpecies(element)) ++inserted;
  }
  std::printf("Inserted %d species records\n", inserted);
  return 0;
}
