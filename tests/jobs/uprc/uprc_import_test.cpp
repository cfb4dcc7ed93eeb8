#include "jobs/uprc/uprc_import.h"

#include <gtest/gtest.h>

#include <string>

#include "util/tokenizer.h"

namespace {

struct Case {
  const char* admitted;
  const char* status_in;
  const char* final_date_in;
  const char* message;  // empty when the line is valid
  const char* status;
  const char* final_date;
  const char* location;
  const char* name;
  bool resident;
};

TEST(UprcImportTest, StatusesAndDates) {
  const Case cases[] = {
      {"1/3/2012", "R", "2/14/2012", "", "R", "2012-02-14", "", "", false},
      {"1/9/2012", "E", "1/9/2012", "", "E24", "2012-01-09", "", "", false},
      {"1/9/2012", "E", "1/10/2012", "", "E", "2012-01-10", "", "", false},
      {"5/1/2012", "D", "5/1/12", "", "D24", "2012-05-01", "", "", false},  // same date, written differently
      {"3/9/2012", "DOA", "3/9/2012", "", "DOA", "2012-03-09", "", "", false},
      {"3/9/2012", "T", "3/9/2012", "", "T", "2012-03-09", "", "", false},
      {"1/20/2012", "PR", "pending", "", "PR", "0000-00-00", "Mews 3", "Athena", true},
      {"1/20/2012", "Reh", "", "", "Reh", "0000-00-00", "Mews 3", "", false},
      {"1/22/2012", "Med", "", "\tWARNING: Animal '12-001 has status = Med\n", "Reh", "0000-00-00", "Mews 3", "",
       false},
      {"5/15/2021", "R", "6/1/2012", "\tERROR - Invalid admission date '5/15/2021' - '12-001'\n", "R",
       "2012-06-01", "", "", false},
      {"5/20/2012", "R", "pending", "\tERROR - Invalid final date 'pending' - '12-001'\n", "R", "0000-00-00", "",
       "", false},
      {"x", "E", "y",
       "\tERROR - Invalid admission date 'x' - '12-001'\n\tERROR - Invalid final date 'y' - '12-001'\n", "E",
       "0000-00-00", "", "", false},
      {"5/22/2012", "Released", "6/30/2012", "\tERROR - Invalid status 'Released' - '12-001'\n", "Rel",
       "2012-06-30", "", "", false},
  };
  for (const Case& c : cases) {
    std::string line = std::string("12-001\tRTHA\t") + c.admitted + "\t Mews 3 \t" + c.status_in + "\t" +
                       (*c.final_date_in ? c.final_date_in : " ") + "\t \t \tEmaciation\t Athena \n";
    Tokenizer tokenizer(line);
    char* column[kUprcColumnCount];
    ASSERT_EQ(TakeFields(tokenizer, column, kUprcColumnCount, "\t", "\t\r\n"), kUprcColumnCount);

    PatientRecord patient;
    PatientFinderInfo finder;
    testing::internal::CaptureStdout();
    bool valid = ReadUprcPatient(column, patient, finder);
    std::string printed = testing::internal::GetCapturedStdout();
    std::string label = std::string(c.status_in) + " " + c.admitted + " " + c.final_date_in;
    EXPECT_EQ(printed, c.message) << label;
    EXPECT_EQ(valid, printed.find("ERROR") == std::string::npos) << label;
    EXPECT_EQ(patient.status, c.status) << label;
    EXPECT_EQ(patient.final_date, c.final_date) << label;
    EXPECT_EQ(patient.location, c.location) << label;
    EXPECT_EQ(patient.name, c.name) << label;
    EXPECT_EQ(patient.flags, c.resident ? int64_t{1} << 46 : 0) << label;
  }
}

}  // namespace
