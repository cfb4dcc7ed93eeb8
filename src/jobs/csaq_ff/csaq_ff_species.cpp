#include "jobs/csaq_ff/csaq_ff_species.h"

#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <memory>
#include <string>
#include <unordered_set>

#include "jobs/csaq_ff/csaq_ff_export.h"
#include "store/connection.h"
#include "util/pointer_list.h"
#include "util/progress.h"
#include "util/read_losses.h"
#include "util/strings.h"

namespace {

constexpr const char* kScientificNamesFile = "./ScientificNames.xml";
constexpr const char* kNonNativesFile = "./NonNatives.xml";

// The owl whose species row links to an encyclopedia article.
constexpr const char* kOwlAbbrev = "EASO";
constexpr const char* kOwlInfoPage = "https://en.wikipedia.org/wiki/Eastern_screech_owl";

// State or federal listing, set when the row carries the column at all.
constexpr int kListedSoc = 10;

constexpr const char* kHighlyMigratorySpecies[] = {
    "Blue marlin",          "White marlin",           "Longbill spearfish",
    "Atlantic sailfish",    "Swordfish",              "Bluefin tuna",
    "Yellowfin tuna",       "Bigeye tuna",            "Albacore tuna",
    "Blackfin tuna",        "Skipjack tuna",          "Sandbar shark",
    "Silky shark",          "Tiger shark",            "Blacktip shark",
    "Spinnter shark",       "Bull shark",             "Scalloped hammerhead shark",
    "Lemon shark",          "Nurse shark",            "Great hammerhead shark",
    "Finetooth shark",      "Bonnethead shark",       "Blacknose shark",
    "Atlantic sharpnose shark", "Blue shark",         "Porbeagle shark",
    "Oceanic whitetip shark",   "Common thresher shark", "Shortfin maco shark",
    "Sand tiger shark",     "Bigeye thresher shark",  "Night shark",
    "Dusky shark",          "Atlantic angel shark",
};

// One rule of the species groups: every condition given must hold. Phylum
// and class compare ignoring case; `holds`, `lacks` and `whole_name` look at
// the common name in lower case; `abbrev` compares exactly.
struct GroupRule {
  const char* phylum;
  const char* class_name;
  const char* holds;
  const char* lacks;
  const char* whole_name;
  const char* abbrev;
  const char* group;
};

constexpr GroupRule kSpeciesGroupRules[] = {
    {"cnidaria", nullptr, nullptr, nullptr, nullptr, nullptr, "invertebrate"},
    {"annelida", nullptr, nullptr, nullptr, nullptr, nullptr, "invertebrate"},
    {"mollusca", nullptr, nullptr, nullptr, nullptr, nullptr, "invertebrate"},
    {"echinodermata", nullptr, nullptr, nullptr, nullptr, nullptr, "invertebrate"},
    {"arthropoda", nullptr, nullptr, nullptr, nullptr, nullptr, "invertebrate:arthropod"},
    {nullptr, "amphibia", nullptr, nullptr, nullptr, nullptr, "amphibian"},
    {nullptr, "reptilia", "alligator", nullptr, nullptr, nullptr, "reptile:crocadilian"},
    {nullptr, "reptilia", "snake", nullptr, nullptr, nullptr, "reptile:snake"},
    {nullptr, "reptilia", "turtle", nullptr, nullptr, nullptr, "reptile:turtle"},
    {nullptr, "reptilia", nullptr, nullptr, "loggerhead", nullptr, "reptile:turtle"},
    {nullptr, "reptilia", nullptr, nullptr, nullptr, nullptr, "reptile"},
    {nullptr, "aves", nullptr, nullptr, nullptr, "BAEA", "avian:raptor"},
    {nullptr, "aves", nullptr, nullptr, nullptr, "EASO", "avian:raptor"},
    {nullptr, "aves", nullptr, nullptr, nullptr, nullptr, "avian"},
    {nullptr, nullptr, "shark", nullptr, nullptr, nullptr, "fish:elasmobranch:shark"},
    {nullptr, nullptr, "guitar", nullptr, nullptr, nullptr, "fish:elasmobranch:guitarfish"},
    {nullptr, nullptr, "eel", "lemonpeel", nullptr, nullptr, "fish:eel"},
    {nullptr, nullptr, "moray", nullptr, nullptr, nullptr, "fish:eel"},
    {nullptr, nullptr, "ray", "gray", nullptr, nullptr, "fish:elasmobranch:ray"},
    {nullptr, nullptr, "skate", nullptr, nullptr, nullptr, "fish:elasmobranch:skate"},
};
constexpr const char* kDefaultGroup = "fish";

bool RuleFits(const GroupRule& rule, const SpeciesRecord& species, const std::string& name) {
  return (rule.phylum == nullptr || EqualsNoCase(species.phylum.c_str(), rule.phylum)) &&
         (rule.class_name == nullptr || EqualsNoCase(species.class_.c_str(), rule.class_name)) &&
         (rule.holds == nullptr || name.find(rule.holds) != std::string::npos) &&
         (rule.lacks == nullptr || name.find(rule.lacks) == std::string::npos) &&
         (rule.whole_name == nullptr || name == rule.whole_name) &&
         (rule.abbrev == nullptr || species.abbrev == rule.abbrev);
}

// The distinct names of one taxonomic rank; the first spelling met stays. A
// rank a row leaves out counts as the empty name, like any other.
class TaxonomySet {
 public:
  void Add(const char* name) {
    if (!seen_.insert(LowerAscii(name)).second) return;
    names_.Append(std::make_unique<std::string>(name));
  }
  PointerList<std::string>& names() { return names_; }

 private:
  PointerList<std::string> names_{256};
  std::unordered_set<std::string> seen_;  // lower-case names already held
};

struct TaxonomySets {
  TaxonomySet kingdoms, phyla, classes, orders, families;
};

// The ranks a row names, with the record field and the set each one feeds.
struct TaxonomyField {
  const char* element;
  Text<24> SpeciesRecord::*field;
  TaxonomySet TaxonomySets::*set;
};

constexpr TaxonomyField kTaxonomyFields[] = {
    {"Kingdom", &SpeciesRecord::kingdom, &TaxonomySets::kingdoms},
    {"Phylum", &SpeciesRecord::phylum, &TaxonomySets::phyla},
    {"Class", &SpeciesRecord::class_, &TaxonomySets::classes},
    {"Order", &SpeciesRecord::_order, &TaxonomySets::orders},
    {"Family", &SpeciesRecord::family, &TaxonomySets::families},
};

// The settings written for each set, in this order.
struct TaxonomyOutput {
  const char* heading;
  const char* category;
  TaxonomySet TaxonomySets::*set;
};

constexpr TaxonomyOutput kTaxonomyOutputs[] = {
    {"\nInserting kingdoms...\n", "Kingdom", &TaxonomySets::kingdoms},
    {"\nInserting phyla...\n", "Phylum", &TaxonomySets::phyla},
    {"\nInserting classes...\n", "Class", &TaxonomySets::classes},
    {"\nInserting orders...\n", "Order", &TaxonomySets::orders},
    {"\nInserting families...\n", "Family", &TaxonomySets::families},
};

const char* TextOrEmpty(const char* text) { return text != nullptr ? text : ""; }

// Fills the record from the row's fields and adds its taxonomy names to the
// sets. Returns the common name ("&apos;" decoded once).
std::string ReadSpeciesFields(const XmlNode* row, SpeciesRecord& species, TaxonomySets& sets) {
  species.scientific_name = TextOrEmpty(FieldText(row, "Scientific_x0020_Name"));
  std::string common_name = ReplaceFirstApos(TextOrEmpty(FieldText(row, kFfCommonName)));
  species.common_name = common_name;
  for (const TaxonomyField& rank : kTaxonomyFields) {
    const char* name = TextOrEmpty(FieldText(row, rank.element));
    species.*rank.field = name;
    (sets.*rank.set).Add(name);
  }
  species.genus = TextOrEmpty(FieldText(row, "Genus"));
  species.federal_soc = FieldText(row, "Federal") != nullptr ? kListedSoc : 0;
  species.state_soc = FieldText(row, "NC_x0020_State") != nullptr ? kListedSoc : 0;
  species.value = static_cast<float>(FieldNumber(row, "val74"));
  species.nord = 'D';
  return common_name;
}

// The common names of the non-native list, compared exactly.
std::unordered_set<std::string> NonNativeNames(const XmlDocument& non_natives) {
  std::unordered_set<std::string> names;
  for (const XmlNode* entry = XmlFirstChild(DocumentElement(non_natives)); entry != nullptr;
       entry = XmlNextSibling(entry)) {
    if (const char* name = XmlNodeText(entry)) names.insert(name);
  }
  return names;
}

void WriteTaxonomySettings(TaxonomySets& sets) {
  for (const TaxonomyOutput& output : kTaxonomyOutputs) {
    std::printf("%s", output.heading);
    PointerList<std::string>& names = (sets.*output.set).names();
    names.Sort([](const std::string& a, const std::string& b) { return std::strcmp(a.c_str(), b.c_str()); }, 1);
    for (int i = 0; i < names.Count(); ++i) {
      // A name the server refuses is left out; the others still go in.
      ExecuteSql(kEscapeTexts, "insert into settings(category,value) values ('Taxonomy_%s','%s');",
                 {output.category, *names.At(i)});
    }
  }
}

}  // namespace

bool IsHighlyMigratorySpecies(const char* common_name) {
  for (const char* name : kHighlyMigratorySpecies) {
    if (EqualsNoCase(name, common_name)) return true;
  }
  return false;
}

const char* CsaqFfSpeciesGroup(const SpeciesRecord& species) {
  std::string name = LowerAscii(species.common_name.view());
  for (const GroupRule& rule : kSpeciesGroupRules) {
    if (RuleFits(rule, species, name)) return rule.group;
  }
  return kDefaultGroup;
}

int ImportCsaqFfSpecies() {
  XmlDocument scientific_names;
  std::printf("Loading SPECIES data from '%s'.\n", kScientificNamesFile);
  if (XmlLoadFile(scientific_names, kScientificNamesFile) != 0) {
    std::printf("Unable to parse species data!");
    return 1;
  }
  XmlDocument non_natives;
  if (XmlLoadFile(non_natives, kNonNativesFile) != 0) {
    std::printf("Unable to load nono-native species file!");
    return 1;
  }
  XmlDocument abbreviations;
  std::printf("Loading SPECIES abbreviation data from '%s'.\n", kFfAbbreviationsFile);
  if (XmlLoadFile(abbreviations, kFfAbbreviationsFile) != 0) {
    std::printf("Unable to parse abbreviation data!");
    return 1;
  }
  const std::unordered_set<std::string> non_native_names = NonNativeNames(non_natives);
  const AbbreviationIndex abbrevs(abbreviations);

  TaxonomySets sets;
  int inserted = 0;
  ProgressLoop progress("Importing the species", ExportRowCount(scientific_names));
  ExportRows rows(kScientificNamesFile);
  long long row_number = 0;
  for (const XmlNode* row = FirstExportRow(scientific_names); row != nullptr; row = XmlNextSibling(row)) {
    progress.Step();
    rows.Name(++row_number);
    SpeciesRecord species{};
    std::string common_name = ReadSpeciesFields(row, species, sets);
    species.hms = IsHighlyMigratorySpecies(common_name.c_str()) ? 'Y' : 'N';
    species.native = non_native_names.count(common_name) > 0 ? 'N' : 'Y';
    const char* abbrev = abbrevs.Find(common_name);
    if (abbrev == nullptr) {
      std::printf("Unable to find abbreviation for '%s'\n", common_name.c_str());
      continue;
    }
    species.abbrev = abbrev;
    species.species_group = CsaqFfSpeciesGroup(species);
    if (species.abbrev == kOwlAbbrev) species.info_page = kOwlInfoPage;
    if (InsertSpecies(species) != 0) {
      std::printf("Unable to create species record for '%s'!\n", species.common_name.c_str());
      break;
    }
    ++inserted;
  }
  std::printf("Inserted %d species records\n", inserted);
  WriteTaxonomySettings(sets);
  return 0;
}
