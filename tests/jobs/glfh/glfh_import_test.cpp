#include "jobs/glfh/glfh_import.h"

#include <gtest/gtest.h>

#include <string>

namespace {

TEST(GlfhImportTest, LinesAndTheirMessages) {
  struct Case {
    const char* line;
    const char* message;  // empty when the line is accepted
    const char* patient_id = "";
    const char* species = "";
    const char* admitted = "";
    const char* chip = "";
  };
  const std::string long_owner(60, 'o');
  const std::string long_line = long_owner + "\tSaker\t1/4/2012\t1\t101\n";
  const Case cases[] = {
      {"A\tSaker\t1/4/2012\t985\t101\t5550\n", "", "00101", "Saker", "2012-01-04", "985"},
      {"A\tSaker\t25/3/2012\t985\t101\n", "", "00101", "Saker", "2012-03-25", "985"},
      {"A\t\tSaker\t\t4/2/12\t985\t\t101\n", "", "00101", "Saker", "2012-04-02", "985"},  // runs of tabs
      {"", "\tERROR - missing owner name\n"},
      {"\t\t\t", "\tERROR - missing owner name\n"},
      {"Salem\n", "\tERROR - missing species\n"},
      {"Salem\tSaker\n", "\tERROR - missing date\n"},
      {"Salem\tSaker\t4/19/2012\n", "\tERROR - missing chip number\n"},
      {"Yousef Al-Hamrani\tSaker\t3/18/2012\t985\n", "\tERROR - missing patient id for 'Yousef Al-Hamrani'\n"},
      {"A\tSaker\t1/4/2012\t985\t0\t5550\n", "\tERROR - invalid patient id '0'\n"},
      {"A\tSaker\t1/4/2012\t985\tn/a\t5550\n", "\tERROR - invalid patient id 'n/a'\n"},
      {"A\tSaker\t1/4/2012\t985\t-5\t5550\n", "\tERROR - invalid patient id '-5'\n"},
      {"A\tSaker\t1/4/2012\t985\t 0115\t5550\n", "", "00115", "Saker", "2012-01-04", "985"},
      {"A\tSaker\t1/4/2012\t985\t123456\n", "", "123456", "Saker", "2012-01-04", "985"},
      {"A\tSaker\t12.03.2012\t985\t108\t5550\n", "\tERROR - Invalid admission date '12.03.2012' - '00108'\n"},
      {"A\tSaker\t6/12/2017\t985\t114\t5550\n", "\tERROR - Invalid admission date '6/12/2017' - '00114'\n"},
      {"A\tPeregrine Falcon X\t1/4/2012\t985\t101\n", "", "00101", "Peregrine Falco", "2012-01-04", "985"},
      {long_line.c_str(), "", "00101", "Saker", "2012-01-04", "1"},
  };
  for (const Case& c : cases) {
    PatientRecord patient;
    PatientFinderInfo finder;
    testing::internal::CaptureStdout();
    bool accepted = ReadGlfhLine(c.line, patient, finder);
    std::string printed = testing::internal::GetCapturedStdout();
    EXPECT_EQ(printed, c.message) << c.line;
    EXPECT_EQ(accepted, printed.empty()) << c.line;
    if (!accepted) continue;
    EXPECT_EQ(patient.patient_id, c.patient_id) << c.line;
    EXPECT_EQ(patient.species, c.species) << c.line;
    EXPECT_EQ(patient.admission_date, c.admitted) << c.line;
    EXPECT_EQ(patient.microchip, c.chip) << c.line;
  }
  PatientRecord patient;
  PatientFinderInfo finder;
  ReadGlfhLine(long_line, patient, finder);
  EXPECT_EQ(finder.found_name, long_owner.substr(0, 47));  // cut at its field, never past it
}

}  // namespace
