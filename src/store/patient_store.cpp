#include "store/patient_store.h"

#include <string>

#include "store/case_numbers.h"
#include "store/connection.h"
#include "util/strings.h"

void ResetPatientRecord(PatientRecord& record) {
  record = {};
  record.final_date = "0000-00-00";
  record.expected_release_date = "0000-00-00";
  record.away_from_date = "0000-00-00";
  record.away_to_date = "0000-00-00";
  record.age = "UNK";
  record.ageIn = "UNK";
  record.sex = "UNK";
}

void ResetFinderInfo(PatientFinderInfo& finder, const char* country, const char* state) {
  finder = {};
  finder.found_country = country;
  finder.presenter_country = country;
  finder.found_district = "NA";
  finder.found_county = "NA";
  finder.presenter_district = "NA";
  finder.presenter_county = "NA";
  finder.found_state = state;
  finder.presenter_state = state;
  finder.presenter_transporter = " ";
}

int InsertPatient(PatientRecord& r) {
  if (ExecuteSql(
          kEscapeTexts,
          "insert into patient(patient_id,name,species,ageIn,age,admission_date,status,sex,flags,location,"
          "final_date,notes,injury_cause,band,expected_release_date,keywords,morph,ideal_weight,away_from_date,"
          "away_to_date,rar,ageRelatedCharacteristics,husbandryNotes,handlerTrainingLevel,species_group,"
          "winter_weight,team,admittedBy,admissionTime,subStatus,microchip,dob,aux_marker) "
          "values('%s','%s','%s','%s','%s','%s','%s','%s',%I64d,'%s','%s','%s','%s','%s','%s','%s','%s',%d,'%s',"
          "'%s','%s','%s','%s',%d,'%s',%d,'%s','%s','%s','%s','%s','%s','%s');",
          {r.patient_id, r.name, r.species, r.ageIn, r.age, r.admission_date, r.status, r.sex, r.flags,
           r.location, r.final_date, r.notes, r.injury_cause, r.band, r.expected_release_date, r.keywords,
           r.morph, r.ideal_weight, r.away_from_date, r.away_to_date, r.rar, r.ageRelatedCharacteristics,
           r.husbandryNotes, r.handlerTrainingLevel, r.species_group, r.winter_weight, r.team, r.admittedBy,
           r.admissionTime, r.subStatus, r.microchip, r.dob, r.aux_marker}) != 0) {
    return 1;
  }
  r.id = static_cast<int32_t>(LastInsertId());
  NoteInsertedCaseNumber(r.patient_id.c_str(), r.id);
  return 0;
}

int UpdatePatient(const PatientRecord& r) {
  return ExecuteSql(
             kEscapeTexts,
             "update patient set patient_id='%s',species='%s',status='%s',ageIn='%s',age='%s',"
             "admission_date='%s',location='%s',final_date='%s',notes='%s',name='%s',flags=%I64d,sex='%s',"
             "injury_cause='%s',band='%s',expected_release_date='%s',keywords='%s',morph='%s',ideal_weight=%d,"
             "away_from_date='%s',away_to_date='%s',rar='%s',ageRelatedCharacteristics='%s',"
             "husbandryNotes='%s',handlerTrainingLevel=%d,species_group='%s',winter_weight=%d,team='%s',"
             "admittedBy='%s',reason_for_euth='%s',subStatus='%s',microchip='%s',dob='%s',aux_marker='%s' "
             "where id=%d;",
             {r.patient_id, r.species, r.status, r.ageIn, r.age, r.admission_date, r.location, r.final_date,
              r.notes, r.name, r.flags, r.sex, r.injury_cause, r.band, r.expected_release_date, r.keywords,
              r.morph, r.ideal_weight, r.away_from_date, r.away_to_date, r.rar, r.ageRelatedCharacteristics,
              r.husbandryNotes, r.handlerTrainingLevel, r.species_group, r.winter_weight, r.team,
              r.admittedBy, r.reason_for_euth, r.subStatus, r.microchip, r.dob, r.aux_marker, r.id}) != 0
             ? 1
             : 0;
}

namespace {

// The four finder statements up to their "where": each is sent with the
// patient's case number or with its key.
constexpr const char* kPresenterColumns =
    "update patient set presenter_name='%s',presenter_org='%s',presenter_addr='%s',"
    "presenter_city='%s',presenter_state='%s',presenter_zip='%s',presenter_county='%s',"
    "presenter_phone1='%s',presenter_phone2='%s',presenter_email='%s',presenter_transporter='%s',"
    "presenter_district='%s',presenter_country='%s'";
constexpr const char* kFoundColumns =
    "update patient set found_name='%s',found_addr='%s',found_city='%s',found_state='%s',"
    "found_zip='%s',found_county='%s',found_phone1='%s',found_phone2='%s',found_email='%s',"
    "found_hx='%s',found_lat=%.6f,found_lon=%.6f,found_date='%s',found_district='%s',"
    "found_country='%s'";
constexpr const char* kDonationColumns =
    "update patient set donation=%.2f,donation_type='%s',donation_details='%s',whenCaptured='%s',"
    "admission_question_1='%s',admission_question_2='%s',admission_question_3='%s',"
    "admission_question_4='%s',admission_question_5='%s',collection_info='%s',"
    "collection_depth=%d,collection_method='%s',collection_water_temp=%.1f";
constexpr const char* kCrossStreetsColumns = "update patient set found_crossStreets='%s',clientId=%d,spillId=%d";

constexpr const char* kWhereCaseNumber = " where patient_id='%s';";
constexpr const char* kWhereKey = " where id=%d;";

// Sends the four finder statements with `where` and its value `row`; stops
// at the first that fails. 0 or 1.
int WriteFinderInfo(const PatientFinderInfo& f, const char* where, SqlArg row) {
  auto statement = [where](const char* columns) { return std::string(columns) + where; };
  if (ExecuteSql(kEscapeTexts, statement(kPresenterColumns).c_str(),
                 {f.presenter_name, f.presenter_org, f.presenter_addr, f.presenter_city, f.presenter_state,
                  f.presenter_zip, f.presenter_county, f.presenter_phone1, f.presenter_phone2,
                  f.presenter_email, f.presenter_transporter, f.presenter_district, f.presenter_country,
                  row}) != 0) {
    return 1;
  }
  if (ExecuteSql(kEscapeTexts, statement(kFoundColumns).c_str(),
                 {f.found_name, f.found_addr, f.found_city, f.found_state, f.found_zip, f.found_county,
                  f.found_phone1, f.found_phone2, f.found_email, f.found_hx, f.found_lat, f.found_lon,
                  f.found_date, f.found_district, f.found_country, row}) != 0) {
    return 1;
  }
  if (ExecuteSql(kEscapeTexts, statement(kDonationColumns).c_str(),
                 {f.donation, f.donation_type, f.donation_details, f.whenCaptured, f.admission_question_1,
                  f.admission_question_2, f.admission_question_3, f.admission_question_4,
                  f.admission_question_5, f.collection_info, f.collection_depth, f.collection_method,
                  f.collection_water_temp, row}) != 0) {
    return 1;
  }
  if (ExecuteSql(kEscapeTexts, statement(kCrossStreetsColumns).c_str(), {f.found_crossStreets, f.clientId, f.spillId, row}) !=
      0) {
    return 1;
  }
  return 0;
}

}  // namespace

int UpdatePatientFinderInfo(const char* patient_id, const PatientFinderInfo& info) {
  return WriteFinderInfo(info, kWhereCaseNumber, patient_id);
}

int UpdatePatientFinderInfoByKey(int key, const PatientFinderInfo& info) {
  return WriteFinderInfo(info, kWhereKey, key);
}

int SetPatientLocation(const char* patient_id, const char* location) {
  return ExecuteSql(kEscapeTexts,
                    "update patient set location='%s' where patient_id='%s';", {location, patient_id}) != 0 ? 1
                                                                                                         : 0;
}

int SetPatientLocationByKey(int key, const char* location) {
  return ExecuteSql(kEscapeTexts, "update patient set location='%s' where id=%d;", {location, key}) != 0 ? 1 : 0;
}

int GetPatientKey(const char* patient_id) {
  SqlResult result = QuerySql(kEscapeTexts, "select id from patient where patient_id='%s';", {patient_id});
  MYSQL_ROW row = result.NextRow();
  int key = row != nullptr && row[0] != nullptr ? ToInt(row[0]) : 0;
  if (result.size() > 1) NoteSharedCaseNumber(patient_id, result.size(), key);
  return key;
}

int CountPatients() { return QueryInt(kEscapeTexts, "select count(*) from patient;", {}, 0); }

int FindPatientByAuxMarker(const char* aux_marker, Text<16>& patient_id, Text<64>& band) {
  SqlResult result = QuerySql(kEscapeTexts,
                              "select id,patient_id,band from patient where aux_marker='%s';", {aux_marker});
  MYSQL_ROW row = result.NextRow();
  if (row == nullptr) return 0;
  CopyColumn(patient_id, row[1]);
  CopyColumn(band, row[2]);
  return row[0] != nullptr ? ToInt(row[0]) : 0;
}

int FindPatientByBand(const char* band, Text<16>& patient_id) {
  SqlResult result = QuerySql(kEscapeTexts, "select id,patient_id from patient where band='%s';", {band});
  MYSQL_ROW row = result.NextRow();
  if (row == nullptr) return 0;
  CopyColumn(patient_id, row[1]);
  return row[0] != nullptr ? ToInt(row[0]) : 0;
}

int ClearPatientFlag(const char* patient_id, int64_t mask) {
  // The server evaluates "&" and "~" as unsigned and would clip a result with
  // bit 63 set when storing it in the signed column; the cast keeps the sign.
  return ExecuteSql(kEscapeTexts,
                    "update patient set flags = cast(flags & ~%I64d as signed) where patient_id='%s';",
                    {mask, patient_id});
}

int ClearPatientFlagById(int id, int64_t mask) {
  // Signed for the same reason as in ClearPatientFlag.
  return ExecuteSql("update patient set flags = cast(flags & ~%I64d as signed) where id=%d;", {mask, id});
}
