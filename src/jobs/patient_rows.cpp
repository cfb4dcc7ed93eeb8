#include "jobs/patient_rows.h"

#include <cstdio>
#include <string>

#include "store/connection.h"
#include "store/record_entry_store.h"
#include "util/dates.h"

bool InsertPatientWithFinder(PatientRecord& patient, const PatientFinderInfo& finder, const char* shown_as) {
  const char* patient_id = patient.patient_id.c_str();
  if (shown_as == nullptr) shown_as = patient_id;
  if (InsertPatient(patient) != 0) {
    std::printf("\tERROR - Unable to create patient record for '%s'\n", shown_as);
    return false;
  }
  if (UpdatePatientFinderInfoByKey(patient.id, finder) != 0) {
    std::printf("\tERROR - Unable to update patient finder info for '%s'\n", shown_as);
    return false;
  }
  return true;
}

int InsertImportNote(const PatientRecord& patient) {
  std::string note = EscapeSqlText("Patient record imported into Corvana\n-------------------------------------\n");
  return InsertRecordEntry(patient.id, note.c_str(), NowTimestamp(), "NA", 0, 0, "NA", '0');
}

void ResetUnnamedTransfer(TransferRecord& transfer, const char* country) {
  transfer = {};
  transfer.name = "NA";
  transfer.addr = "NA";
  transfer.city = "NA";
  transfer.state = "NA";
  transfer.zip = "NA";
  transfer.county = "NA";
  transfer.permit = "NA";
  transfer.country = country;
  transfer.reason = "E/S";
}
