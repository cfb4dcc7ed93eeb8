#include "jobs/sbr/sbr_species_list.h"

#include <strings.h>

#include "store/connection.h"
#include "util/strings.h"

namespace {

// The log's spellings that differ from the species list, compared whole and
// ignoring case; a key's trailing blank is part of it. "\x92" is the
// typographic apostrophe of Windows text.
struct Correction {
  const char* written;
  const char* species;
};

constexpr Correction kCorrections[] = {
    {"Double-crested Coromorant ", "Double-crested Cormorant"},
    {"Clark's Grebe (hybrid?)", "Clark's Grebe X"},
    {"Sora Rail", "Sora"},
    {"Meadowlark", "Western Meadowlark"},
    {"Ringed Turtle-Dove", "Ringed Turtle Dove"},
    {"Rabbit", "Domestic Rabbit"},
    {"Unidentified Passerine", "Passerine"},
    {"Unidentified Gull", "Gull"},
    {"Aleutian Goose", "Aleutian Canada Goose"},
    {"Ross' Goose", "Ross's Goose"},
    {"Ross\x92 Goose", "Ross's Goose"},
    {"Warbler sp?", "Warbler"},
    {"American Widgen", "American Wigeon"},
    {"American Widgeon", "American Wigeon"},
    {"Shorttailed Shearwater", "Short-tailed Shearwater"},
    {"Domestic Duck (Indian Runner)", "Indian Runner"},
    {"Rufus Crown Sparrow", "Rufous-crowned Sparrow"},
    {"Rufus-crowned Sparrow", "Rufous-crowned Sparrow"},
    {"Clark\x92s Grebe", "Clark's Grebe"},
    {"Heerman's Gull", "Heermann's Gull"},
    {"Pigeon Guillemont", "Pigeon Guillemot"},
    {"Cooper\x92s Hawk", "Cooper's Hawk"},
    {"Wilson\x92s Snipe", "Wilson's Snipe"},
    {"Brant Goose", "Black Brant"},
    {"Brant", "Black Brant"},
    {"Redhead", "Redhead duck"},
    {"Red-eared slider turtle", "Red-eared Slider"},
    {"Greater Snow Goose", "Snow Goose"},
    {"Leach's Storm Petrel", "Leach's Storm-Petrel"},
    {"Rhode Island Chicken", "Domestic chicken"},
    {"Black vented shearwater", "Black-vented shearwater"},
};

}  // namespace

SbrSpeciesList::SbrSpeciesList() { XmlCreateRoot(document_); }

bool SbrSpeciesList::Add(const char* abbrev, const char* common_name, const char* species_group) {
  if (abbrev == nullptr || common_name == nullptr || species_group == nullptr) return false;
  XmlNode* node = XmlNewNode(document_, "species");
  if (node == nullptr || XmlAddAttribute(node, "abbrev", abbrev) != 0 ||
      XmlAddAttribute(node, "commonName", common_name) != 0 ||
      XmlAddAttribute(node, "speciesGroup", species_group) != 0 ||
      XmlAppendChild(XmlRoot(document_), node) != 0) {
    return false;
  }
  first_by_name_.try_emplace(LowerAscii(common_name), node);  // an earlier namesake keeps the name
  ++size_;
  return true;
}

const XmlNode* SbrSpeciesList::Find(std::string_view common_name) const {
  auto found = first_by_name_.find(LowerAscii(common_name));
  return found == first_by_name_.end() ? nullptr : found->second;
}

void LoadSbrSpeciesList(SbrSpeciesList& list) {
  SqlResult result = QuerySql(kEscapeTexts, "select abbrev,common_name,species_group from species;", {});
  while (MYSQL_ROW row = result.NextRow()) {
    if (row[0] != nullptr && row[1] != nullptr && row[2] != nullptr) list.Add(row[0], row[1], row[2]);
  }
}

int LookupSbrSpecies(const char* common_name, const SbrSpeciesList& list, PatientRecord& patient) {
  Text<32> name{};
  name = common_name;
  for (const Correction& correction : kCorrections) {
    if (strcasecmp(name.c_str(), correction.written) == 0) {
      name = correction.species;
      break;
    }
  }
  TrimRight(name.data());
  const XmlNode* species = list.Find(name.view());
  if (species == nullptr) return 1;
  patient.species = XmlAttributeValue(species, "abbrev");
  patient.species_group = XmlAttributeValue(species, "speciesGroup");
  return 0;
}
