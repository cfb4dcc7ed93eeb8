#include "jobs/csaq_ff/csaq_ff_patient_rows.h"

#include <cstdio>
#include <string>

#include "store/connection.h"
#include "store/record_entry_store.h"
#include "util/dates.h"
#include "util/strings.h"

namespace {
constexpr int kNoteWidth = 80;
}

void ResetFfPatient(PatientRecord& patient, PatientFinderInfo& finder, const char* status) {
  ResetPatientRecord(patient);
  patient.status = status;
  ResetFinderInfo(finder, "USA", "NA");
}

bool InsertFfPatient(PatientRecord& patient, const PatientFinderInfo& finder, const char* identity) {
  if (InsertPatient(patient) != 0) {
    std::printf("ERROR: Unable to create patient record for '%s'\n", identity);
    return false;
  }
  if (UpdatePatientFinderInfoByKey(patient.id, finder) != 0) {
    std::printf("ERROR: Unable to update patient finder info for '%s'\n", identity);
    return false;
  }
  return true;
}

void WriteFfImportNote(int patient_key, std::string_view details) {
  std::string note = "Imported into Corvana database\n";
  if (!details.empty()) {
    note += "----------------------------------\n";
    note += details;
  }
  std::string escaped = EscapeSqlText(note);
  WrapLongLines(escaped.data(), kNoteWidth);
  InsertRecordEntry(patient_key, escaped.c_str(), NowTimestamp(), "NA", 0.0f, 0.0f, "NA", '0');
}

int WriteFfDispositionEntry(const PatientRecord& patient) {
  int entry_id = InsertRecordEntry(patient.id, "", patient.final_date.c_str(), "NA", 0.0f, 0.0f, "NA", '0');
  if (entry_id < 0) {
    std::printf("ERROR - Unable to create record entry for patient '%s'!\n", patient.patient_id.c_str());
  }
  return entry_id;
}

bool WriteFfRelease(const PatientRecord& patient, int entry_id, std::string_view comments) {
  ReleaseRecord release{};
  release.patient_id = patient.patient_id;
  release.date = patient.final_date;
  release.how_age = "NA";
  release.how_sex = "NA";
  release.id_type = "None";
  release.tracker_type = "None";
  release.pub_priv = "UNK";
  release.comments = comments.substr(0, 127);
  if (InsertRelease(entry_id, release) == 0) return true;
  std::printf("ERROR - Unable to create release record for patient '%s'!\n", patient.patient_id.c_str());
  return false;
}

bool WriteFfTransfer(const PatientRecord& patient, int entry_id, TransferRecord& transfer) {
  transfer.patient_id = patient.patient_id;
  transfer.date = patient.final_date;
  transfer.reason = "E/S";
  if (InsertTransfer(entry_id, transfer) == 0) return true;
  std::printf("ERROR - Unable to create transfer reoord for patient '%s'!\n", patient.patient_id.c_str());
  return false;
}
