#include "jobs/patient_rows.h"

#include <cstdio>

bool InsertPatientWithFinder(PatientRecord& patient, const PatientFinderInfo& finder) {
  const char* patient_id = patient.patient_id.c_str();
  if (InsertPatient(patient) != 0) {
    std::printf("\tERROR - Unable to create patient record for '%s'\n", patient_id);
    return false;
  }
  if (UpdatePatientFinderInfo(patient_id, finder) != 0) {
    std::printf("\tERROR - Unable to update patient finder info for '%s'\n", patient_id);
    return false;
  }
  return true;
}
