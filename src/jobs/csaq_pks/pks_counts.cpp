// The census history of the collection: the first counts of the large
// groups as attributes (pass 14), then every later count of
// "./CensusCounts.xml" replayed onto the animals it concerns (pass 15).
#include <cstdio>
#include <cstring>
#include <string>

#include "jobs/csaq_pks/pks_job.h"
#include "jobs/csaq_pks/pks_text.h"
#include "jobs/patient_rows.h"
#include "store/connection.h"
#include "store/disposition_store.h"
#include "store/patient_store.h"
#include "util/line_reader.h"
#include "util/strings.h"
#include "util/tokenizer.h"

namespace {

// The group file's lines are read in pieces of this size; the tail of a
// longer line (a long TaxonInfo) is of no use and is skipped.
constexpr std::size_t kGroupLinePiece = 126;
constexpr int kGroupLineTokens = 6;  // "GROUP:", Local_ID, date, male, female, other

// The patient of a large group, found through the "Group" attribute the
// identifiers pass wrote; -1 when there is none. Attribute names compare
// without regard to letter case.
int FindGroupPatientKey(const char* local_id) {
  SqlResult result = QuerySql(
      kEscapeTexts,
      "select p.id from patient p, attributes a where a.patient_id=p.id and a.name='GROUP' and a.value='%s';",
      {local_id});
  MYSQL_ROW row = result.NextRow();
  return row != nullptr && row[0] != nullptr ? ToInt(row[0]) : -1;
}

int InsertCensusAttribute(int patient_key, const char* date, int male, int female, int other) {
  PatientAttribute census{};
  census.date = date;
  census.name = "Census";
  census.value.Format("Total=%lld, M=%d, F=%d, UNK=%d", static_cast<long long>(male) + female + other, male, female,
                      other);
  return InsertPatientAttribute(patient_key, census);
}

bool SetGroupAttribute(const std::string& line) {
  Tokenizer tokenizer(line);
  char* token[kGroupLineTokens];
  int found = TakeFields(tokenizer, token, kGroupLineTokens, " \n", " \n");
  if (found == 0 || !HasFields(found, kGroupLineTokens, token[1])) return false;
  const char* local_id = token[1];
  int key = FindGroupPatientKey(local_id);
  if (key < 0) {
    std::printf("\tERROR: Unable to get patient pk for '%s'\n", local_id);
    return false;
  }
  if (InsertCensusAttribute(key, token[2], ToInt(token[3]), ToInt(token[4]), ToInt(token[5])) != 0) {
    std::printf("\tERROR: can't create patient attribute record for '%s'\n", local_id);
    return false;
  }
  return true;
}

// ---------------------------------------------------------------------------
// Pass 15

// Ends an animal's stay: status, final date (the date part of `date`) and no
// location; the database row is rewritten from the record.
void CloseAnimal(AnimalRecord& animal, const char* status, const char* date) {
  animal.patient.status = status;
  animal.patient.final_date = date;
  animal.patient.location = "";
  UpdatePatient(animal.patient);
}

void InsertCensusTransfer(const AnimalRecord& animal, int entry_id, const CensusCount& count) {
  TransferRecord transfer;
  ResetUnnamedTransfer(transfer, "USA");
  transfer.patient_id = animal.patient.patient_id;
  if (InsertTransfer(entry_id, transfer) != 0) {
    std::printf("\tERROR: can't create transfer record for '%s'\n", count.local_id);
  }
}

void InsertCensusRelease(const AnimalRecord& animal, int entry_id, const CensusCount& count) {
  ReleaseRecord release{};
  release.patient_id = animal.patient.patient_id;
  release.date = count.census_date;
  release.location = "NA";
  release.city = "NA";
  release.county = "NA";
  release.state = "NA";
  release.country = "USA";
  release.id_type = "None";
  release.tracker_type = "None";
  if (InsertRelease(entry_id, release) != 0) {
    std::printf("\tERROR - Unable to create release record for '%s'!\n", count.local_id);
  }
}

// What the count's type does to one animal that left; `entry_id` is the
// census entry the transfer or release row hangs on.
void DisposeAnimal(AnimalRecord& animal, int entry_id, const CensusCount& count, bool group_patient) {
  const char* date = count.census_date;
  if (count.type == "Death") {
    CloseAnimal(animal, "D", date);
  } else if (count.type == "Missing") {
    CloseAnimal(animal, "MIA", date);
  } else if (count.type == "To Another Institution") {
    CloseAnimal(animal, "T", date);
    InsertCensusTransfer(animal, entry_id, count);
  } else if (count.type == "Released To Wild") {
    CloseAnimal(animal, "R", date);
    InsertCensusRelease(animal, entry_id, count);
  } else if (count.type == "Appeared" && !group_patient) {
    std::printf("\tERROR - APPEARED\n");
  }
}

int InsertCensusEntry(const AnimalRecord& animal, const char* text, const CensusCount& count) {
  int entry_id = InsertRecordEntry(PatientKey(animal), text, count.census_date, "NA", 0, 0, "NA", '0');
  if (entry_id < 1) {
    std::printf("\tERROR: Processing adding record entry for  '%s' '%s'\n", count.local_id, count.census_date);
  }
  return entry_id;
}

// Individuals (and small-group members) that left: as many residents of
// the run as the count says are gone, in table order.
void DisposeIndividuals(ZooImport& job, const AnimalRun& run, const CensusCount& count) {
  int to_remove = job.animals.CountResidentAnimals(count.local_id) - count.group;
  int handled = 0;
  for (int position = run.first; position <= run.last && handled < to_remove; ++position) {
    AnimalRecord& animal = job.animals[position];
    if (animal.patient.status != "PR") continue;
    ++handled;
    if (animal.refused) continue;
    DisposeAnimal(animal, InsertCensusEntry(animal, "", count), count, false);
  }
}

// A group kept as one patient: every count is entered and kept as its
// newest "Census" attribute; the patient leaves when none is left.
void RecordGroupCount(AnimalRecord& group, const CensusCount& count) {
  Text<256> text{};
  text.Format("Census update\n---------------\nType: %s\nMethod: %s\nM=%d, F=%d, UNK=%d, Group=%d, Change=%d",
              count.type.c_str(), count.method.c_str(), count.male, count.female, count.other, count.group,
              count.change);
  int entry_id = InsertCensusEntry(group, EscapeSqlText(text).c_str(), count);
  if (InsertCensusAttribute(PatientKey(group), count.census_date, count.male, count.female, count.other) != 0) {
    std::printf("\tERROR: can't create patient attribute record for '%s'\n", count.local_id);
  }
  if (count.group == 0) DisposeAnimal(group, entry_id, count, true);
}

// Reads the five counts; false when one is missing or is no number.
bool ReadCounts(const XmlNode* record, CensusCount& count) {
  const char* names[] = {"Male", "Female", "Other", "ChangeInCount", "GroupCount"};
  int* fields[] = {&count.male, &count.female, &count.other, &count.change, &count.group};
  const char* texts[5];
  for (int i = 0; i < 5; ++i) {
    texts[i] = XmlChildText(record, names[i]);
    if (texts[i] == nullptr) {
      std::printf("\tERROR: Processing census counts - counts are missing '%s'\n", count.local_id);
      return false;
    }
  }
  for (int i = 0; i < 5; ++i) {
    if (!ReadCount(texts[i], *fields[i])) {
      std::printf("\tERROR: Processing census counts - %s '%s' is no number for '%s'\n", names[i], texts[i],
                  count.local_id);
      return false;
    }
  }
  return true;
}

void WriteCensusCount(ZooImport& job, const XmlNode* record) {
  CensusCount count{};
  count.local_id = XmlChildText(record, "Local_ID");
  count.census_date = XmlChildText(record, "CensusDate");
  if (count.local_id == nullptr || count.census_date == nullptr) {
    std::printf("\tERROR: Missing local id or date\n");
    return;
  }
  AnimalRun run;
  if (!job.animals.FindAnimalRun(count.local_id, run)) {
    std::printf("\tERROR: Processing census counts - cannot find '%s'\n", count.local_id);
    return;
  }
  if (!ReadCounts(record, count)) return;
  bool group_patient = (job.animals[run.first].patient.flags & kFlagGroupOfAnimals) != 0;
  if (count.male == 0 && count.female == 0 && count.other == 0 && count.change == 0) return;
  const char* method = XmlChildText(record, "CensusMethodType");
  count.method = method != nullptr ? method : "Undetermined";
  count.type = XmlChildText(record, "CensusCountQualifierType");

  SettleCountType(count);
  // The job cannot follow animals into or out of another group: they end here.
  if (count.type.view().substr(0, 5) == "Split" || count.type.view().substr(0, 5) == "Merge") {
    for (int position = run.first; position <= run.last; ++position) {
      PatientRecord& patient = job.animals[position].patient;
      patient.status = "EOA";
      patient.location = "";
      UpdatePatient(patient);
    }
    count.type = "";
  }
  if (count.type.empty()) return;
  std::printf("%s %s %s - %d %d %d - %d - %s %d\n", count.local_id, count.census_date, count.method.c_str(),
              count.male, count.female, count.other, count.group, count.type.c_str(), count.change);
  if (group_patient) {
    if (!job.animals[run.first].refused) RecordGroupCount(job.animals[run.first], count);
  } else {
    DisposeIndividuals(job, run, count);
  }
}

}  // namespace

bool SetGroupCensusAttributes(ZooImport&) {
  std::printf("Setting count attributes for GROUPS...\n");
  LineReader reader(kGroupTempFile, kGroupLinePiece);
  int groups = 0;
  if (!reader.is_open()) {
    std::printf("\tERROR: Unable to open group temp file '%s'\n", kGroupTempFile);
  } else {
    std::string line;
    bool tail = false;  // the piece read is the rest of a cut line
    while (reader.ReadLine(line)) {
      bool skip = tail;
      tail = reader.last_was_cut();
      if (!skip && SetGroupAttribute(line)) ++groups;
    }
  }
  std::printf("Set attributes for %d groups\n", groups);
  return true;
}

bool WriteCensusCounts(ZooImport& job) {
  std::printf("Loading census counts...\n");
  if (XmlLoadFile(job.work, kCensusFile) != 0) {
    std::printf("Unable to parse census count file '%s'\n", kCensusFile);
    return false;
  }
  int visited = VisitRecords(job, kCensusFile, [&](const XmlNode* record) { WriteCensusCount(job, record); });
  std::printf("Processed %d census reccords\n", visited);
  return true;
}
