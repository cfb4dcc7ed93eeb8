#include "jobs/uprc/uprc_import.h"

#include <gtest/gtest.h>

#include <string>

namespace {

TEST(UprcImportTest, StatusesAndDates) {
  const char* const cases[][5] = {  // admitted, status, final date, then message and status ("" if refused)
      {"5/1/2012", "D", "5/1/12", "", "D24"},   // the same date, written differently
      {"1/20/2012", "PR", "pending", "", "PR"},  // kept birds read no final date
      {"1/22/2012", "Med", "pending", "\tWARNING: Animal '12-001 has status = Med\n", "Reh"},
      {"x", "E", "y",
       "\tERROR - Invalid admission date 'x' - '12-001'\n\tERROR - Invalid final date 'y' - '12-001'\n", ""},
      {"5/22/2012", "Euth", "6/30/2012", "\tERROR - Invalid status 'Euth' - '12-001'\n", ""},  // wider than its field
  };
  for (const auto& [admitted, status_in, final_date, message, status] : cases) {
    std::string cells[kUprcColumnCount] = {"12-001", "RTHA", admitted, " Mews 3 ", status_in, final_date,
                                           " ", " ", "Emaciation", " Athena "};
    char* column[kUprcColumnCount];
    for (int i = 0; i < kUprcColumnCount; ++i) column[i] = cells[i].data();
    PatientRecord patient;
    PatientFinderInfo finder;
    testing::internal::CaptureStdout();
    const bool valid = ReadUprcPatient(column, patient, finder);
    const std::string printed = testing::internal::GetCapturedStdout();
    EXPECT_EQ(printed, message) << status_in << " " << admitted << " " << final_date;
    EXPECT_EQ(valid, printed.find("ERROR") == std::string::npos) << status_in;
    EXPECT_EQ(valid ? patient.status.view() : "", status) << status_in;
  }
}

}  // namespace
