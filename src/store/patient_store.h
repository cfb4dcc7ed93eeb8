// The `patient` table: the in-memory patient row, its finder columns, the
// meaning of the patient flags, and the row operations.
//
// Like every row operation, these escape every text they send as they format
// the statement (kEscapeTexts), so the jobs hand over texts as they came from
// the input, never escaped, and a field's width applies to the text itself.
// The same holds for the look-ups: a case number, band or marker is compared
// as it was stored.
#pragma once

#include <cstdint>

#include "util/text.h"

// Bits of `PatientRecord::flags` that the jobs set or clear.
constexpr int64_t kFlagOver180DaysReported = int64_t{1} << 41;
constexpr int64_t kFlagResident = int64_t{1} << 46;
constexpr int64_t kFlagFosterParent = int64_t{1} << 48;
constexpr int64_t kFlagGroupOfAnimals = int64_t{1} << 52;

// One row of `patient`. Clear it with `= {}` before filling.
struct PatientRecord {
  int32_t id;  // numeric key, set by InsertPatient
  Text<16> patient_id;  // the source's case number
  Text<32> name;
  Text<16> species;  // abbrev of a `species` row
  Text<16> morph;
  Text<4> status;  // disposition code: "R", "T", "E24", "PR", ...
  Text<4> subStatus;
  Text<32> location;
  Text<15> ageIn;
  Text<11> dob;
  Text<15> age;
  Text<11> sex;
  int64_t flags;
  Text<11> admission_date;
  Text<11> final_date;
  Text<32> injury_cause;
  Text<256> notes;
  Text<64> band;
  Text<15> aux_marker;
  Text<32> microchip;
  Text<11> expected_release_date;
  Text<64> keywords;
  int32_t ideal_weight;
  int32_t winter_weight;
  Text<11> away_from_date;
  Text<11> away_to_date;
  Text<64> rar;
  Text<256> ageRelatedCharacteristics;
  Text<256> husbandryNotes;
  int32_t handlerTrainingLevel;
  Text<64> species_group;
  Text<17> team;
  Text<32> admittedBy;
  Text<16> admissionTime;
  Text<35> reason_for_euth;  // written by UpdatePatient only
};

// The presenter, finder, donation and collection columns of a `patient` row,
// written after the row exists.
struct PatientFinderInfo {
  Text<48> presenter_name;
  Text<64> presenter_org;
  Text<32> presenter_addr;
  Text<32> presenter_city;
  Text<21> presenter_district;
  Text<21> presenter_state;
  Text<11> presenter_zip;
  Text<16> presenter_county;
  Text<16> presenter_country;
  Text<20> presenter_phone1;
  Text<20> presenter_phone2;
  Text<64> presenter_email;
  Text<35> presenter_transporter;
  int32_t clientId;
  Text<48> found_name;
  Text<32> found_addr;
  Text<32> found_crossStreets;
  Text<32> found_city;
  Text<21> found_district;
  Text<21> found_state;
  Text<11> found_zip;
  Text<16> found_county;
  Text<16> found_country;
  Text<20> found_phone1;
  Text<20> found_phone2;
  Text<64> found_email;
  Text<256> found_hx;  // history of the find
  float found_lat;
  float found_lon;
  Text<11> found_date;
  Text<17> whenCaptured;
  float donation;
  Text<8> donation_type;
  Text<16> donation_details;
  Text<256> collection_info;
  int32_t collection_depth;
  Text<64> collection_method;
  float collection_water_temp;
  Text<31> admission_question_1;
  Text<31> admission_question_2;
  Text<31> admission_question_3;
  Text<31> admission_question_4;
  Text<32> admission_question_5;
  int32_t spillId;
};

// Clears `record` to zero bytes and sets what every import starts from: no
// final, expected-release or away dates ("0000-00-00"), and "UNK" age class
// at admission, current age class and sex.
void ResetPatientRecord(PatientRecord& record);

// Clears `finder` and sets what the patient imports start from: `country` and
// `state` for both finder and presenter, "NA" district and county, and a
// transporter of one blank.
void ResetFinderInfo(PatientFinderInfo& finder, const char* country, const char* state);

// Inserts the row and stores its new key in `record.id`. Returns 0, or 1 on
// failure (`id` left as it was). When another row already holds the case
// number, says so on stderr (see NoteInsertedCaseNumber) and keeps the row.
int InsertPatient(PatientRecord& record);

// Rewrites every column of the row `record.id` from the record. 0 or 1.
int UpdatePatient(const PatientRecord& record);

// Writes the finder columns of every row with case number `patient_id`, in
// four statements; stops at the first that fails. 0 when all four succeeded,
// else 1.
int UpdatePatientFinderInfo(const char* patient_id, const PatientFinderInfo& info);

// The same statements for the one row with numeric key `key` ("where id=%d"):
// what a job uses for a patient it has just inserted, since another row may
// hold the same case number.
int UpdatePatientFinderInfoByKey(int key, const PatientFinderInfo& info);

// Sets the location of every row with case number `patient_id`. 0 or 1.
int SetPatientLocation(const char* patient_id, const char* location);

// Sets the location of the one row with numeric key `key`. 0 or 1.
int SetPatientLocationByKey(int key, const char* location);

// The numeric key of the row with case number `patient_id`; 0 when there is
// none or the statement failed (0 is never a key). When several rows hold
// it, the first the server returns, with a note on stderr.
int GetPatientKey(const char* patient_id);

// The key of the first row with this auxiliary marker (0 when none); copies
// its case number and band (a null band as empty) into the outputs, which
// are left untouched when there is no row.
int FindPatientByAuxMarker(const char* aux_marker, Text<16>& patient_id, Text<64>& band);

// The key of the first row with this band (0 when none); copies its case
// number into `patient_id`.
int FindPatientByBand(const char* band, Text<16>& patient_id);

// The number of `patient` rows; 0 when there are none or the statement failed.
int CountPatients();

// Clears the bits of `mask` in the row's flags on the server, leaving every
// other bit as it is. Returns 0, or non-zero on failure.
int ClearPatientFlag(const char* patient_id, int64_t mask);

// The same for the row with the numeric key `id`, which reaches every row,
// also one whose case number is null or holds a backslash. 0, or non-zero on
// failure.
int ClearPatientFlagById(int id, int64_t mask);
