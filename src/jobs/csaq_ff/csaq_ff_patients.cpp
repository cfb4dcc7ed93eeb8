#include "jobs/csaq_ff/csaq_ff_patients.h"

#include <cstdio>
#include <cstring>
#include <optional>
#include <string>
#include <unordered_map>
#include <vector>

#include "jobs/csaq_ff/csaq_ff_animal_table.h"
#include "jobs/csaq_ff/csaq_ff_collection.h"
#include "jobs/csaq_ff/csaq_ff_export.h"
#include "jobs/csaq_ff/csaq_ff_medical.h"
#include "jobs/csaq_ff/csaq_ff_patient_rows.h"
#include "store/record_entry_store.h"
#include "store/reference_store.h"
#include "util/dates.h"
#include "util/progress.h"
#include "util/strings.h"

namespace {

constexpr const char* kGroupsFile = "./Groups.xml";
constexpr const char* kCensusFile = "./HabitatCensus.xml";

// A single animal's identity tag holds this; any other record is a group.
constexpr const char* kSingleMarker = " RS0";
// A larger group is written as one patient carrying its census.
constexpr int kLargestGroupOfPatients = 20;

// Transfers to this park name it in full, with its town.
constexpr const char* kAlligatorPark = "Alligator Adventure";

const char* TextOrEmpty(const char* text) { return text != nullptr ? text : ""; }

// The collection record being read: what every animal it creates starts from.
struct CollectionRecord {
  std::string tag;
  PatientRecord patient;
  PatientFinderInfo finder;
  std::string notes;  // loses the animal's name once an animal has taken it
};

// The husbandry, habitat, census and abbreviation tables, indexed once.
class CollectionSources {
 public:
  CollectionSources(const XmlDocument& husbandry, const XmlDocument& habitat_table, const XmlDocument& census,
                    const XmlDocument& abbreviation_table)
      : habitats(habitat_table), abbreviations(abbreviation_table) {
    for (const XmlNode* row = FirstExportRow(husbandry); row != nullptr; row = XmlNextSibling(row)) {
      if (const char* tag = FieldText(row, kFfIdentityTag)) husbandry_[LowerAscii(tag)].push_back(row);
    }
    for (const XmlNode* row = FirstExportRow(census); row != nullptr; row = XmlNextSibling(row)) {
      if (const char* tag = FieldText(row, kFfIdentityTag)) census_.emplace(LowerAscii(tag), row);
    }
  }

  // The husbandry rows with `tag` (ignoring letter case), in file order.
  const std::vector<const XmlNode*>& HusbandryRows(const std::string& tag) const {
    static const std::vector<const XmlNode*> kNone;
    auto found = husbandry_.find(LowerAscii(tag));
    return found != husbandry_.end() ? found->second : kNone;
  }

  // The first census row with `tag` (ignoring letter case), or null.
  const XmlNode* CensusRow(const std::string& tag) const {
    auto found = census_.find(LowerAscii(tag));
    return found != census_.end() ? found->second : nullptr;
  }

  // The species group stored with `abbrev` (empty for a species without
  // one), or null when there is no such species. Asked of the server once
  // per species.
  const char* SpeciesGroup(const char* abbrev) {
    auto [group, added] = species_groups_.try_emplace(abbrev);
    if (added) {
      SpeciesRecord species{};
      if (GetSpeciesByAbbrev(abbrev, species) == 0) group->second = std::string(species.species_group.view());
    }
    return group->second.has_value() ? group->second->c_str() : nullptr;
  }

  const HabitatIndex habitats;
  const AbbreviationIndex abbreviations;

 private:
  std::unordered_map<std::string, std::vector<const XmlNode*>> husbandry_;
  std::unordered_map<std::string, const XmlNode*> census_;
  std::unordered_map<std::string, std::optional<std::string>> species_groups_;
};

// Converts the row's `element` into `out` when it is there. Returns false,
// reporting "Invalid <what>", when it cannot be read.
bool ReadRecordDate(const XmlNode* row, const char* element, const char* what, const std::string& tag,
                    Text<11>& out) {
  const char* text = FieldText(row, element);
  if (text == nullptr) return true;
  std::string copy = text;
  if (ParseExportDate(copy.data(), out) == 0) return true;
  std::printf("\tERROR - Invalid %s '%s' for '%s'!\n", what, text, tag.c_str());
  return false;
}

// Found and admission dates, each falling back on the other dates given.
bool ReadRecordDates(const XmlNode* row, CollectionRecord& record) {
  PatientRecord& patient = record.patient;
  Text<11> date{};
  if (!ReadRecordDate(row, "Collection_x0020_Date", "collection date", record.tag, record.finder.found_date) ||
      !ReadRecordDate(row, "Aquisition_x0020_Dates", "acquisition date", record.tag, patient.admission_date) ||
      !ReadRecordDate(row, "Date", "date", record.tag, date)) {
    return false;
  }
  if (record.finder.found_date.empty() && patient.admission_date.empty() && date.empty()) {
    std::printf("\tERROR - No dates for '%s\n", record.tag.c_str());
    return false;
  }
  if (record.finder.found_date.empty()) record.finder.found_date = date;
  if (patient.admission_date.empty()) patient.admission_date = date;
  if (patient.admission_date.empty()) patient.admission_date = record.finder.found_date;
  return true;
}

// Where and how the animals were collected, and how they are marked.
void ReadCollectionFields(const XmlNode* row, CollectionRecord& record) {
  PatientFinderInfo& finder = record.finder;
  finder.collection_info = std::string_view(TextOrEmpty(FieldText(row, "Place_x0020_of_x0020_Collection"))).substr(0, 127);
  finder.collection_method = FieldText(row, "Gear_x0020_used");
  if (const char* county = FieldText(row, "County")) {
    finder.found_county = CollectionCounty(county);
    finder.presenter_county = finder.found_county;
  }
  if (const char* position = FieldText(row, "LAT_x002F_LON")) {
    ReadCollectionPosition(position, finder.found_lat, finder.found_lon);
  }
  record.patient.microchip = FieldText(row, "pit_x0020_tag_x0020__x0023_");
  if (const char* band = FieldText(row, "Band_x0020__x0023_")) {
    record.patient.band = band;
  } else if (const char* marks = FieldText(row, "Identifying_x0020_Characteristics")) {
    record.patient.band = std::string_view(PlainCollectionText(marks)).substr(0, 62);
  }
  record.notes = TextOrEmpty(FieldText(row, "Notes"));
}

struct WriteCounts {
  int patients = 0;
  int transfers = 0;
  int releases = 0;
};

// Builds the table from the collection records, then writes it.
class CollectionImport {
 public:
  explicit CollectionImport(CollectionSources& sources) : sources_(sources) {}

  // Reads one collection record and creates its animals. Returns true when
  // the record counts as parsed (it got as far as single or group).
  bool ImportRecord(const XmlNode* row) {
    CollectionRecord record;
    if (!ReadRecord(row, record)) return false;
    std::size_t table_size = table_.size();
    PatientNumberCounters counters = counters_;
    if (record.tag.find(kSingleMarker) != std::string::npos) {
      std::printf("\tSINGLE\n");
      if (CreateSingleAnimal(record)) {
        ApplyDispositions(record);
      } else {
        // Nothing of a failed record stays, its case numbers included.
        table_.TruncateTo(table_size);
        counters_ = counters;
      }
    } else {
      std::printf("\tGROUP\n");
      CreateGroup(record);
    }
    return true;
  }

  void WriteAll(WriteCounts& counts) {
    for (std::size_t i = 0; i < table_.size(); ++i) WriteAnimal(table_[i], counts);
  }

  CollectionAnimalTable& table() { return table_; }

 private:
  bool ReadRecord(const XmlNode* row, CollectionRecord& record) {
    ResetFfPatient(record.patient, record.finder, "PR");
    record.patient.flags = kFlagResident;
    record.tag = TextOrEmpty(FieldText(row, kFfIdentityTag));
    record.patient.notes.Format("Imported from: %s", record.tag.c_str());
    std::printf("%s\n", record.tag.c_str());
    std::fflush(stdout);

    std::string common_name = ReplaceFirstApos(TextOrEmpty(FieldText(row, kFfCommonName)));
    const char* abbrev = sources_.abbreviations.Find(common_name);
    if (abbrev == nullptr) {
      std::printf("\tERROR - Unable to find species abbreviation for '%s'!\n", common_name.c_str());
      return false;
    }
    record.patient.species = abbrev;
    const char* group = sources_.SpeciesGroup(record.patient.species.c_str());
    if (group == nullptr) {
      std::printf("\tERROR - Unable to find species group for '%s:%s'!\n", abbrev, common_name.c_str());
      return false;
    }
    record.patient.species_group = group;
    if (!ReadRecordDates(row, record)) return false;
    ReadCollectionFields(row, record);
    return true;
  }

  // A new entry of the record, numbered in its admission year, in `location`.
  AnimalEntry& AddAnimal(CollectionRecord& record, const char* location, const char* sex) {
    AnimalEntry animal{};
    animal.identity_tag = record.tag;
    animal.patient = record.patient;
    animal.finder = record.finder;
    counters_.Next(animal.patient.admission_date.c_str(), animal.patient.patient_id);
    animal.patient.status = "PR";
    animal.patient.location = location;
    animal.patient.sex = sex;
    std::string name;
    if (!record.notes.empty() && TakeNameFromNotes(record.notes, name)) animal.patient.name = name;
    animal.notes = record.notes;
    return table_.Add(animal);
  }

  // The animal comes from the first census row counting one animal; later
  // such rows with a later date move it. Returns false when the record fails.
  bool CreateSingleAnimal(CollectionRecord& record) {
    const char* tag = record.tag.c_str();
    bool created = false;
    std::string latest;
    for (const XmlNode* row : sources_.HusbandryRows(record.tag)) {
      const char* type = FieldText(row, kFfDataType);
      if (type == nullptr) {
        std::printf("\tERROR: Type node is null for '%s'.\n", tag);
        return false;
      }
      if (!EqualsNoCase(type, "Census")) continue;
      int unknown = FieldInt(row, "Unknown", 0);
      int males = FieldInt(row, "Male", 0);
      int females = FieldInt(row, "Female", 0);
      if (unknown == 0 && males == 0 && females == 0) {
        const char* dispositioned = FieldText(row, "Number_x0020__x0020_dispositioned");
        if (dispositioned == nullptr) {
          std::printf("\tERROR: Numbers of animals is zero in husbandry record for '%s'.\n", tag);
          return false;
        }
        unknown = ToInt(dispositioned);
      }
      const char* label = sources_.habitats.FirstRowLabel(FieldText(row, "Location"));
      const char* date_text = FieldText(row, "Date");
      if (date_text == nullptr) {
        std::printf("\tERROR: Husbandry record missing date for '%s'.\n", tag);
        return false;
      }
      std::string date = DateBeforeT(date_text);
      // Summed wide: counts near the int limits must not wrap into a total of 1.
      if (static_cast<long long>(unknown) + males + females != 1) continue;
      if (!created) {
        AddAnimal(record, label, unknown > 0 ? "UNK" : males > 0 ? "M" : "F");
        std::printf("\tSetting FIRST location to '%s'\n", label);
        latest = date;
        created = true;
      } else if (date > latest) {
        AnimalEntry* animal = table_.FirstWithTag(record.tag);
        if (animal == nullptr) {
          std::printf("\tERROR: Cannot find animal for location reset '%s'.\n", tag);
          return false;
        }
        animal->patient.location = label;
        std::printf("\tSetting NEW location to '%s'\n", label);
        latest = date;
      }
    }
    return true;
  }

  void ApplyDisposition(AnimalEntry& animal, const char* status, const char* notes, const Text<11>& date) {
    animal.patient.status = status;
    if (animal.patient.status == "T" && notes != nullptr) {
      std::string destination;
      if (std::strlen(notes) < 128) destination = TransferDestination(notes);
      if (destination.empty()) {
        std::printf("\tERROR: missing or unparsable transfer information\n");
      } else {
        animal.destination = destination;
      }
    }
    animal.patient.final_date = date;
    animal.patient.location = "";
  }

  // The "Disposition" rows of a single animal's tag, each ending as many
  // animals of the tag still "PR" as it counts.
  void ApplyDispositions(const CollectionRecord& record) {
    const char* tag = record.tag.c_str();
    for (const XmlNode* row : sources_.HusbandryRows(record.tag)) {
      int count = FieldInt(row, kFfSpecimenCount, 0);
      if (count < 1) {
        std::printf("\tERROR: Number is zero in husbandry record for '%s'.\n", tag);
        continue;
      }
      const char* date_text = FieldText(row, "Date");
      if (date_text == nullptr) {
        std::printf("\tERROR: Missing 'Date' in husbandry record for '%s'.\n", tag);
        continue;
      }
      Text<11> date{};
      std::string copy = date_text;
      ParseExportDate(copy.data(), date);
      const char* type = FieldText(row, kFfDataType);
      if (type == nullptr || !EqualsNoCase(type, "Disposition")) continue;
      const char* notes = FieldText(row, "Notes");
      const char* word = FieldText(row, "Type_x0020_of_x0020_disposition");
      if (word == nullptr) word = notes;
      if (word == nullptr) {
        std::printf("\tERROR: Missing 'Type of Disposition' in husbandry record for '%s'.\n", tag);
        std::fflush(stdout);
        word = "";
      }
      const char* status = DispositionStatus(word);
      for (int i = 0; i < count; ++i) {
        AnimalEntry* animal = table_.FirstAvailable(record.tag);
        if (animal == nullptr) {
          std::printf("\tERROR: no available animal for disposition record '%s'\n", word);
          break;
        }
        // A word that sets no status would find the same animal every time.
        if (status == nullptr) break;
        ApplyDisposition(*animal, status, notes, date);
      }
    }
  }

  // The group's animals, as many as its current census counts, in its tank.
  void CreateGroup(CollectionRecord& record) {
    const XmlNode* census = sources_.CensusRow(record.tag);
    int count = FieldInt(census, kFfSpecimenCount, -1);
    int location = FieldInt(census, "Location", 0);
    const char* label = location >= 1 ? sources_.habitats.LabelWithNumber(location) : nullptr;
    if (census == nullptr || label == nullptr) {
      std::printf("\tERROR - unable to get current census for '%s'\n", record.tag.c_str());
      return;
    }
    std::printf("\tCreating %d animals in %s\n", count, label);
    if (count > kLargestGroupOfPatients) {
      AnimalEntry& group = AddAnimal(record, label, "UNK");
      group.group_size = count;
      group.patient.flags |= kFlagGroupOfAnimals;
      std::printf("\tCreating a group - number = %d\n", count);
      return;
    }
    for (int i = 0; i < count; ++i) AddAnimal(record, label, "UNK");
  }

  void WriteGroupAttributes(const AnimalEntry& animal) {
    PatientAttribute group{};
    group.name = "Group";
    group.value = animal.identity_tag;
    InsertPatientAttribute(animal.patient.id, group);
    if (animal.group_size > 0) {
      PatientAttribute census{};
      census.date = NowTimestamp();
      census.name = "Census";
      census.value.Format("Total=%d, M=%d, F=%d, UNK=%d", animal.group_size, 0, 0, animal.group_size);
      InsertPatientAttribute(animal.patient.id, census);
    }
  }

  // The transfer site a destination names: the park in full, anything else
  // by its first 31 characters.
  static void FillTransferSite(const Text<128>& destination, TransferRecord& transfer) {
    if (destination.view().starts_with(kAlligatorPark)) {
      transfer.name = kAlligatorPark;
      transfer.city = "Myrtle Beach";
      transfer.state = "SC";
    } else {
      transfer.name = destination.view().substr(0, 31);
    }
  }

  void WriteAnimal(AnimalEntry& animal, WriteCounts& counts) {
    PatientRecord& patient = animal.patient;
    if (!InsertFfPatient(patient, animal.finder, patient.patient_id.c_str())) return;
    WriteGroupAttributes(animal);
    WriteFfImportNote(patient.id, animal.notes.view());
    if (patient.status == "R" || patient.status == "T") {
      int entry_id = WriteFfDispositionEntry(patient);
      if (entry_id < 0) return;
      if (patient.status == "R") {
        if (!WriteFfRelease(patient, entry_id, animal.destination.view())) return;
        ++counts.releases;
      } else {
        TransferRecord transfer{};
        FillTransferSite(animal.destination, transfer);
        if (!WriteFfTransfer(patient, entry_id, transfer)) return;
        ++counts.transfers;
      }
    }
    ++counts.patients;
  }

  CollectionSources& sources_;
  CollectionAnimalTable table_;
  PatientNumberCounters counters_;
};

// Loads one input, announcing it with `what`; prints `failure` when it cannot be read.
bool LoadInput(XmlDocument& document, const char* what, const char* file_name, const char* failure) {
  std::printf("Loading %s data from '%s'.\n", what, file_name);
  if (XmlLoadFile(document, file_name) == 0) return true;
  std::printf("%s", failure);
  return false;
}

// The animals need their species and tanks: says so when either is missing.
bool HavePrerequisites() {
  if (CountSpecies() == 0) {
    std::printf("No species found: run the CSAQ_FF species import first!\n");
    return false;
  }
  if (CountLocations() == 0) {
    std::printf("No locations found: run the CSAQ_FF habitats import first!\n");
    return false;
  }
  return true;
}

}  // namespace

int ImportCsaqFfPatients() {
  XmlDocument groups, husbandry, habitats, census, abbreviations;
  if (!LoadInput(groups, "PATIENT", kGroupsFile, "Unable to load patient data!") ||
      !LoadInput(husbandry, "HUSBANDRY", kFfHusbandryFile, "Unable to parse husbandry data!") ||
      !LoadInput(habitats, "HABITAT", kFfHabitatsFile, "Unable to parse habitat data!") ||
      !LoadInput(census, "current census", kCensusFile, "Unable to parse habitat data!") ||
      !LoadInput(abbreviations, "SPECIES abbreviation", kFfAbbreviationsFile, "Unable to parse abbreviation data!") ||
      !HavePrerequisites()) {
    return 1;
  }
  CollectionSources sources(husbandry, habitats, census, abbreviations);
  CollectionImport import(sources);
  int parsed = 0;
  ProgressLoop progress("Importing the collection records", ExportRowCount(groups));
  for (const XmlNode* row = FirstExportRow(groups); row != nullptr; row = XmlNextSibling(row)) {
    progress.Step();
    if (import.ImportRecord(row)) ++parsed;
  }
  WriteCounts counts;
  import.WriteAll(counts);
  CSAQ_LoadVitalStats(husbandry, import.table());
  CSAQ_LoadMedicalRecords(husbandry, import.table());
  std::printf("Parsed %d group records\n", parsed);
  std::printf("Inserted %d PATIENT records\n", counts.patients);
  std::printf("Inserted %d TRANSFER records\n", counts.transfers);
  std::printf("Inserted %d RELEASE records\n", counts.releases);
  return 0;
}
