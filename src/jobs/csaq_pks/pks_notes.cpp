// The two passes over "./Notes.xml": the first takes the key dates and the
// collection place of each animal into memory (pass 4), the second writes
// the notes as record entries, with a release row for each release (pass 10).
#include <cstdio>
#include <cstring>
#include <string>

#include "jobs/csaq_pks/pks_job.h"
#include "jobs/csaq_pks/pks_places.h"
#include "jobs/csaq_pks/pks_text.h"
#include "store/connection.h"
#include "store/disposition_store.h"
#include "util/strings.h"

namespace {

// Notes kept as text entries of the animal's record, with their type and
// keywords as a heading.
constexpr const char* kGeneralNoteTypes[] = {
    "Animal Care",       "Aquatic",         "General",           "Animal Information",
    "Group Establishment", "Management",    "Transactions",      "Animal Events",
    "Group Establish Location", "Egg Laid Location", "Development", "Sex Information",
    "Communication",     "Husbandry",       "Management Plan",   "Individual Behavior",
    "Diet",
};

// Longer notes are left out of the record and reported instead.
constexpr std::size_t kMaxNoteLength = 100000;
constexpr int kLineWidth = 80;

bool IsGeneralNote(const char* note_type) {
  for (const char* general : kGeneralNoteTypes) {
    if (std::strcmp(note_type, general) == 0) return true;
  }
  return false;
}

// The records system writes "~ Undetermined" where it knows no date.
bool IsUndated(const char* note_date) {
  return note_date == nullptr || std::strcmp(note_date, "~ Undetermined") == 0;
}

// A note's NoteDate as a date, empty when it is missing or undetermined.
Text<11> EventDate(const char* note_date) {
  return IsUndated(note_date) ? Text<11>{} : StripDateQualifier(note_date);
}

// ---------------------------------------------------------------------------
// Pass 4: dates and collection places

enum class NoteEvent {
  kBirth,      // dob; admission too while none is known
  kCollected,  // admission, and the comment says where
  kCaptured,   // admission only
  kReleased,   // final date, status "R"
  kNone,       // a note the second pass writes, or one it skips
  kUnknown,
};

struct NoteEventRule {
  const char* note_type;
  NoteEvent event;
};

constexpr NoteEventRule kNoteEvents[] = {
    {"Birth", NoteEvent::kBirth},
    {"Date Conceived", NoteEvent::kBirth},
    {"Capture From Wild", NoteEvent::kCollected},
    {"Found", NoteEvent::kCollected},
    {"Animal Feeding Log", NoteEvent::kNone},
    {"Release To Wild", NoteEvent::kReleased},
    {"Rescue", NoteEvent::kCollected},
    {"Rescued Date", NoteEvent::kCollected},
    {"Capture", NoteEvent::kCaptured},
    {"Expected Hatch Date", NoteEvent::kNone},
    {"Missing Location", NoteEvent::kNone},
};

NoteEvent FindNoteEvent(const char* note_type) {
  for (const NoteEventRule& rule : kNoteEvents) {
    if (std::strcmp(note_type, rule.note_type) == 0) return rule.event;
  }
  return IsGeneralNote(note_type) ? NoteEvent::kNone : NoteEvent::kUnknown;
}

void ApplyNoteEvent(PatientRecord& patient, PatientFinderInfo& finder, NoteEvent event, const char* note_type,
                    const Text<11>& date, const char* comment) {
  switch (event) {
    case NoteEvent::kBirth:
      patient.dob = date;
      if (patient.admission_date.empty()) patient.admission_date = date;
      break;
    case NoteEvent::kCollected:
      patient.admission_date = date;
      if (comment != nullptr) ApplyCollectionSite(finder, comment);
      break;
    case NoteEvent::kCaptured:
      patient.admission_date = date;
      break;
    case NoteEvent::kReleased:
      patient.final_date = date;
      patient.status = "R";
      break;
    case NoteEvent::kNone:
      break;
    case NoteEvent::kUnknown:
      std::printf("\tERROR: Processing notes - Unknown type '%s'\n", note_type);
      break;
  }
}

void ReadNoteEvent(ZooImport& job, const XmlNode* record) {
  const char* local_id = XmlChildText(record, "Local_ID");
  const char* note_type = XmlChildText(record, "NoteType");
  if (local_id == nullptr || note_type == nullptr) {
    std::printf("\tERROR: Missing local id or type for GAN=%s\n", Shown(XmlChildText(record, "GAN")));
    return;
  }
  AnimalRun run;
  if (!job.animals.FindAnimalRun(local_id, run)) {
    std::printf("\tERROR: Processing notes - cannot find '%s'\n", local_id);
    return;
  }
  const char* note_date = XmlChildText(record, "NoteDate");
  Text<11> date = EventDate(note_date);
  NoteEvent event = FindNoteEvent(note_type);
  const char* comment = XmlChildText(record, "Comment");
  for (int position = run.first; position <= run.last; ++position) {
    AnimalRecord& animal = job.animals[position];
    ApplyNoteEvent(animal.patient, animal.finder, event, note_type, date, comment);
  }
}

// ---------------------------------------------------------------------------
// Pass 10: record entries

enum class NoteEntry {
  kEventType,   // the note type as the entry's text
  kRescued,     // "Rescued"
  kRelease,     // an empty entry carrying a release row
  kFeedingLog,  // the comment under a "Animal Feeding Log" heading
  kGeneral,     // the comment under the type, subtype and keywords
  kNone,
};

struct NoteEntryRule {
  const char* note_type;
  NoteEntry entry;
};

constexpr NoteEntryRule kNoteEntries[] = {
    {"Birth", NoteEntry::kEventType},
    {"Date Conceived", NoteEntry::kEventType},
    {"Capture From Wild", NoteEntry::kEventType},
    {"Found", NoteEntry::kEventType},
    {"Capture", NoteEntry::kEventType},
    {"Rescue", NoteEntry::kRescued},
    {"Rescued Date", NoteEntry::kRescued},
    {"Release To Wild", NoteEntry::kRelease},
    {"Animal Feeding Log", NoteEntry::kFeedingLog},
};

NoteEntry FindNoteEntry(const char* note_type) {
  for (const NoteEntryRule& rule : kNoteEntries) {
    if (std::strcmp(note_type, rule.note_type) == 0) return rule.entry;
  }
  return IsGeneralNote(note_type) ? NoteEntry::kGeneral : NoteEntry::kNone;
}

// The fields of a note record that its entry is made of.
struct Note {
  const char* local_id;
  const char* note_type;
  const char* keywords;
  const char* comment;
  const char* sub_type;
  Text<32> entry_date;  // the note's date at noon
};

bool HasText(const char* text) { return text != nullptr && text[0] != '\0'; }

int InsertNoteEntry(const AnimalRecord& animal, const char* text, const Note& note) {
  return InsertRecordEntry(PatientKey(animal), text, note.entry_date.c_str(), "NA", 0, 0, "NA", '0');
}

// One text entry on every animal of the run; `entry_kind` names the entry
// when the database refuses one.
void InsertTextEntries(ZooImport& job, const AnimalRun& run, const char* text, const Note& note,
                       const char* entry_kind) {
  for (int position = run.first; position <= run.last; ++position) {
    if (job.animals[position].refused) continue;
    if (InsertNoteEntry(job.animals[position], text, note) < 1) {
      std::printf("\tERROR: Creating %s for '%s'\n", entry_kind, note.local_id);
    }
  }
}

// Markup to plain text, escaped for the statement, then broken into lines.
void PrepareNoteText(std::string& text) {
  CleanMarkup(text);
  text = EscapeSqlText(text);
  WrapLongLines(text.data(), kLineWidth);
}

void InsertReleases(ZooImport& job, const AnimalRun& run, const Note& note) {
  for (int position = run.first; position <= run.last; ++position) {
    const AnimalRecord& animal = job.animals[position];
    if (animal.refused) continue;
    int entry_id = InsertNoteEntry(animal, "", note);
    if (entry_id < 1) {
      std::printf("\tERROR: Creating release record entry for '%s'\n", note.local_id);
      continue;
    }
    ReleaseRecord release{};
    release.patient_id = animal.patient.patient_id;
    release.date = animal.patient.final_date;
    release.state = "NC";
    release.country = "USA";
    release.id_type = "None";
    release.tracker_type = "None";
    if (HasText(note.comment)) ParseReleasePlace(release, note.comment);
    if (InsertRelease(entry_id, release) != 0) {
      std::printf("\tERROR - Unable to create release record for patient '%s'!\n", animal.patient.patient_id.c_str());
    }
  }
}

void InsertFeedingLog(ZooImport& job, const AnimalRun& run, const Note& note) {
  if (!HasText(note.comment)) return;
  std::string text = std::string("Animal Feeding Log\n") + note.comment;
  PrepareNoteText(text);
  InsertTextEntries(job, run, text.c_str(), note, "feeding log record entry");
}

void InsertGeneralNote(ZooImport& job, const AnimalRun& run, const Note& note) {
  if (note.sub_type != nullptr && std::strcmp(note.sub_type, "Medical Note (M)") == 0 && note.keywords != nullptr &&
      std::strstr(note.keywords, "Bloodwork") != nullptr) {
    std::printf("\tWARNING: Skipping bloodwork entry for '%s' on '%s'\n", note.local_id, note.entry_date.c_str());
    return;
  }
  std::string text = std::string("Entry type: ") + note.note_type;
  if (HasText(note.sub_type)) text.append(" - ").append(note.sub_type);
  text += '\n';
  if (HasText(note.keywords)) text.append("Keywords: ").append(note.keywords).append("\n");
  text += "---------------------\n";
  if (HasText(note.comment)) text += note.comment;
  if (text.size() > kMaxNoteLength) {
    for (int position = run.first; position <= run.last; ++position) {
      std::printf("\tERROR - very long notes comment (%d) for '%s' on '%s'\n", static_cast<int>(text.size()),
                  note.local_id, note.entry_date.c_str());
    }
    return;
  }
  PrepareNoteText(text);
  InsertTextEntries(job, run, text.c_str(), note, "notes record entry");
}

void WriteNoteEntry(ZooImport& job, const XmlNode* record) {
  Note note{};
  note.local_id = XmlChildText(record, "Local_ID");
  note.note_type = XmlChildText(record, "NoteType");
  if (note.local_id == nullptr || note.note_type == nullptr) {
    std::printf("\tERROR: Missing local id or type for GAN=%s\n", Shown(XmlChildText(record, "GAN")));
    return;
  }
  AnimalRun run;
  if (!job.animals.FindAnimalRun(note.local_id, run)) {
    std::printf("\tERROR: Processing notes - cannot find '%s'\n", note.local_id);
    return;
  }
  // Only a note without a date is left out; any other date text goes to
  // the server as it stands.
  const char* note_date = XmlChildText(record, "NoteDate");
  if (IsUndated(note_date)) {
    std::printf("\tERROR: Processing notes - invalid date '%s'\n", Shown(note_date));
    return;
  }
  note.entry_date.Format("%s 12:00:00", StripDateQualifier(note_date).c_str());
  note.keywords = XmlChildText(record, "Keywords");
  note.comment = XmlChildText(record, "Comment");
  note.sub_type = XmlChildText(record, "NoteSubType");

  switch (FindNoteEntry(note.note_type)) {
    case NoteEntry::kEventType: {
      std::string text = EscapeSqlText(std::string(note.note_type) + "\n");
      InsertTextEntries(job, run, text.c_str(), note, "record entry");
      break;
    }
    case NoteEntry::kRescued:
      InsertTextEntries(job, run, "Rescued", note, "record entry");  // escaped as it is
      break;
    case NoteEntry::kRelease:
      InsertReleases(job, run, note);
      break;
    case NoteEntry::kFeedingLog:
      InsertFeedingLog(job, run, note);
      break;
    case NoteEntry::kGeneral:
      InsertGeneralNote(job, run, note);
      break;
    case NoteEntry::kNone:
      break;
  }
}

// Visits every note record with `visit`.
template <typename Visit>
bool ReadNotes(ZooImport& job, const char* title, Visit visit) {
  std::printf("%s", title);
  if (XmlLoadFile(job.work, kNotesFile) != 0) {
    std::printf("Unable to parse notes file '%s'\n", kNotesFile);
    return false;
  }
  int visited = VisitRecords(job, kNotesFile, [&](const XmlNode* record) { visit(job, record); });
  std::printf("Processed %d notes\n", visited);
  return true;
}

}  // namespace

bool ApplyNoteEvents(ZooImport& job) {
  return ReadNotes(job, "Loading patient notes - FIRST PASS...\n", ReadNoteEvent);
}

bool WriteNoteEntries(ZooImport& job) {
  return ReadNotes(job, "Loading patient notes - SECOND PASS...\n", WriteNoteEntry);
}
