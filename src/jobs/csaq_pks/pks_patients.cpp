// Patient ids (pass 8) and patient rows (pass 9) for the animals in their
// final order.
#include <cstdio>
#include <string_view>

#include "jobs/csaq_pks/pks_job.h"
#include "store/connection.h"
#include "util/progress.h"
#include "util/strings.h"

namespace {

// Animals the export gives no admission date are filed under this year,
// numbered by their own counter.
constexpr const char* kFallbackAdmissionDate = "2000-01-01";

// Gives the animal its case number; false, reported, when another record of
// the run already has it (the animal is then refused).
bool ClaimCaseNumber(ZooImport& job, AnimalRecord& animal) {
  const std::string* owner = job.case_numbers.Claim(animal.patient.patient_id.view(), animal.localId.view());
  if (owner == nullptr) return true;
  std::printf("\tERROR - case number '%s' of '%s' already belongs to '%s', animal skipped\n",
              animal.patient.patient_id.c_str(), animal.localId.c_str(), owner->c_str());
  animal.refused = true;
  return false;
}

void CreatePatientRecord(ZooImport& job, AnimalRecord& animal, int& undated) {
  PatientRecord& patient = animal.patient;
  if (animal.refused) return;
  if (patient.admission_date.empty()) {
    std::printf("\tERROR - missing admission date for %s \n", animal.localId.c_str());
    std::printf("\t\tSetting admission date to 2000-01-01!\n");
    patient.admission_date = kFallbackAdmissionDate;
    patient.patient_id.Format("2000-%.5d", undated++);
    if (!ClaimCaseNumber(job, animal)) return;
  }
  if (InsertPatient(patient) != 0) {
    std::printf("\tERROR - Unable to create patient record for '%s'\n", patient.patient_id.c_str());
  }
  const PatientFinderInfo& finder = animal.finder;
  if (UpdatePatientFinderInfoByKey(patient.id, finder) != 0) {
    std::printf("\tERROR - Unable to update patient finder info for '%s'\n", patient.patient_id.c_str());
    std::printf("\t'%s', '%s', '%s'\n", finder.found_addr.c_str(), finder.found_city.c_str(),
                finder.found_state.c_str());
  }
}

}  // namespace

bool GeneratePatientIds(ZooImport& job) {
  std::printf("Generating patient id's...\n");
  int previous_year = 0;
  int sequence = 1;
  for (int position = 0; position < job.animals.size(); ++position) {
    PatientRecord& patient = job.animals[position].patient;
    if (patient.admission_date.empty()) continue;
    Text<5> year_text{};
    year_text = patient.admission_date.view().substr(0, 4);
    int year = ToInt(year_text.c_str());
    if (year > previous_year) sequence = 1;
    patient.patient_id.Format("%.4d-%.5d", year, sequence);
    previous_year = year;
    ++sequence;
    ClaimCaseNumber(job, job.animals[position]);
  }
  return true;
}

bool CreatePatientRecords(ZooImport& job) {
  std::printf("Create patient records...\n");
  int undated = 1;
  ProgressLoop progress(job.pass.c_str(), static_cast<unsigned long long>(job.animals.size()));
  for (int position = 0; position < job.animals.size(); ++position) {
    CreatePatientRecord(job, job.animals[position], undated);
    progress.Step();
  }
  // The identifiers' attributes, now that each animal's patient key is known.
  for (const IdentifierAttribute& pending : job.identifier_attributes) {
    if (job.animals[pending.position].refused) continue;
    InsertPatientAttribute(PatientKey(job.animals[pending.position]), pending.attribute);
  }
  job.identifier_attributes = {};
  return true;
}
