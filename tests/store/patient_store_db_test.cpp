#include "store/patient_store.h"

#include <gtest/gtest.h>

#include <string>

#include "store/connection.h"
#include "support/test_database.h"

namespace {

using PatientStoreTest = DatabaseTest;

PatientRecord NewPatient(const char* case_number) {
  PatientRecord p;
  ResetPatientRecord(p);
  p.patient_id = case_number;
  p.admission_date = "2012-04-03";
  return p;
}

template <std::size_t N>
void Fill(Text<N>& field, char c) {
  field = std::string(N - 1, c);
}

TEST_F(PatientStoreTest, RecordsFilledToEveryWidthAreStoredWhole) {
  PatientRecord p = NewPatient("x");
  p.flags = kFlagResident | (int64_t{1} << 63);
  Fill(p.patient_id, 'p');
  Fill(p.notes, 'a');
  Fill(p.ageRelatedCharacteristics, 'b');
  Fill(p.husbandryNotes, 'c');
  Fill(p.band, 'B');
  ASSERT_EQ(InsertPatient(p), 0) << LastDbError();  // well over a kilobyte of statement
  EXPECT_EQ(GetPatientKey(p.patient_id.c_str()), p.id);
  EXPECT_EQ(GetPatientKey("2012-9999"), 0);
  EXPECT_EQ(Rows("select length(notes)+length(husbandryNotes)+length(band)+length(patient_id),flags from patient"),
            (std::vector<std::string>{std::to_string(255 + 255 + 63 + 15) + "|" + std::to_string(p.flags)}));

  PatientFinderInfo f{};
  Fill(f.found_hx, 'h');
  Fill(f.collection_info, 'i');
  f.found_lat = 33.4484f;
  f.spillId = 7;
  ASSERT_EQ(UpdatePatientFinderInfo(p.patient_id.c_str(), f), 0) << LastDbError();
  EXPECT_EQ(Rows("select length(found_hx),length(collection_info),found_lat,spillId from patient"),
            (std::vector<std::string>{"255|255|33.448399|7"}));

  p.reason_for_euth = "poor prognosis";
  ASSERT_EQ(UpdatePatient(p), 0) << LastDbError();
  EXPECT_EQ(Value("select reason_for_euth from patient"), "poor prognosis");
}

TEST_F(PatientStoreTest, QuotedTextsLandWholeAndFindTheirRow) {
  PatientRecord p = NewPatient("LA-16-0'22");
  p.name = "O'Hara";
  p.band = "0807-'2222";
  p.aux_marker = "01A O'K 0305";
  ASSERT_EQ(InsertPatient(p), 0) << LastDbError();
  PatientFinderInfo f{};
  f.found_addr = "9 O'Farrell St";
  f.presenter_org = "St. Mary's " + std::string(52, 'o');  // the column's width, two quotes
  ASSERT_EQ(UpdatePatientFinderInfo(p.patient_id.c_str(), f), 0) << LastDbError();
  EXPECT_EQ(Rows("select patient_id,name,band,found_addr,presenter_org from patient"),
            (std::vector<std::string>{"LA-16-0'22|O'Hara|0807-'2222|9 O'Farrell St|" +
                                      std::string(f.presenter_org.view())}));
  EXPECT_EQ(GetPatientKey("LA-16-0'22"), p.id);
  Text<16> case_number{};
  Text<64> band{};
  EXPECT_EQ(FindPatientByBand("0807-'2222", case_number), p.id);
  EXPECT_EQ(FindPatientByAuxMarker("01A O'K 0305", case_number, band), p.id);
  EXPECT_EQ(band, "0807-'2222");
  EXPECT_EQ(SetPatientLocation("LA-16-0'22", "Pelican's pen"), 0);
  EXPECT_EQ(Value("select location from patient"), "Pelican's pen");
}

TEST_F(PatientStoreTest, LookUpsLocationAndFlags) {
  const int64_t others = static_cast<int64_t>(uint64_t{1} << 63) | kFlagResident | 5;
  Exec("insert into patient(patient_id,band,aux_marker,flags) values ('A1','1807-12345','W12'," +
       std::to_string(others | kFlagOver180DaysReported) + "),('A2','1807-12345','W13',0),('A3',NULL,'W14',0)");
  Text<16> case_number{};
  Text<64> band{};
  EXPECT_EQ(FindPatientByBand("1807-12345", case_number), std::stoi(Value("select min(id) from patient")));
  EXPECT_EQ(case_number, "A1");
  band = "stale";
  EXPECT_GT(FindPatientByAuxMarker("W14", case_number, band), 0);
  EXPECT_EQ(case_number, "A3");
  EXPECT_TRUE(band.empty());  // a null band reads as empty
  case_number = "kept";
  EXPECT_EQ(FindPatientByAuxMarker("none", case_number, band), 0);
  EXPECT_EQ(FindPatientByBand("none", case_number), 0);
  EXPECT_EQ(case_number, "kept");

  EXPECT_EQ(SetPatientLocation("A2", "Mews 3"), 0);
  EXPECT_EQ(ClearPatientFlag("A1", kFlagOver180DaysReported), 0) << LastDbError();  // bit 63 stays
  EXPECT_EQ(Rows("select flags,location from patient order by id"),
            (std::vector<std::string>{std::to_string(others) + "|", "0|Mews 3", "0|"}));
}

// Rows that share a case number (as the server compares it: any letter case,
// trailing blanks) are each written by their key alone, and the operator is
// told once per case number when an insert or a look-up meets another row.
TEST_F(PatientStoreTest, SharedCaseNumbersAreNotedAndRowsWrittenByKey) {
  Exec("insert into patient(patient_id,location) values ('AB-1','Mews 1')");
  const std::string resident = Value("select id from patient");
  testing::internal::CaptureStderr();
  PatientRecord first = NewPatient("ab-1 ");
  PatientRecord second = NewPatient("AB-1");
  PatientRecord other = NewPatient("AB-2");
  ASSERT_EQ(InsertPatient(first), 0) << LastDbError();
  ASSERT_EQ(InsertPatient(second), 0) << LastDbError();
  ASSERT_EQ(InsertPatient(other), 0) << LastDbError();
  EXPECT_EQ(GetPatientKey("AB-1"), std::stoi(resident));
  EXPECT_EQ(GetPatientKey("ab-1"), std::stoi(resident));
  EXPECT_EQ(GetPatientKey("AB-2"), other.id);
  EXPECT_EQ(testing::internal::GetCapturedStderr(),
            "Note: case number 'ab-1 ' was already held by patient row " + resident + "; the new patient row " +
                std::to_string(first.id) + " has it too\n" +
                "Note: 3 patient rows hold case number 'AB-1'; using row " + resident +
                ", the first the server returned\n");

  PatientFinderInfo finder{};
  finder.found_hx = "on the beach";
  EXPECT_EQ(UpdatePatientFinderInfoByKey(first.id, finder), 0) << LastDbError();
  EXPECT_EQ(SetPatientLocationByKey(first.id, "Tank 2"), 0) << LastDbError();
  EXPECT_EQ(Rows("select found_hx,location from patient order by id"),
            (std::vector<std::string>{"|Mews 1", "on the beach|Tank 2", "|", "|"}));
}

}  // namespace
