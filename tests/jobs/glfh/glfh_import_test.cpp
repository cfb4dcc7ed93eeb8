#include "jobs/glfh/glfh_import.h"

#include <gtest/gtest.h>

#include <string>

namespace {

TEST(GlfhImportTest, Lines) {
  const std::string owner(60, 'o');  // wider than its field
  const std::string cases[][2] = {  // line, then its message or id|species|admitted|chip|owner
      {"A\t\tSaker\t\t4/2/12\t985\t\t101\n", "00101|Saker|2012-04-02|985|A"},  // a run of tabs is one
      {"A\tPeregrine Falcon X\t1/4/2012\t985\t123456\n", "123456|Peregrine Falco|2012-01-04|985|A"},
      {owner + "\tSaker\t1/4/2012\t1\t7\n", "00007|Saker|2012-01-04|1|" + owner.substr(0, 47)},
      {"", "\tERROR - missing owner name\n"},
      {"\t\t\t", "\tERROR - missing owner name\n"},
      {"A\tSaker\t1/4/2012\t985\t-5\t5550\n", "\tERROR - invalid patient id '-5'\n"},
  };
  for (const auto& [line, expected] : cases) {
    PatientRecord patient;
    PatientFinderInfo finder;
    testing::internal::CaptureStdout();
    const bool accepted = ReadGlfhLine(line, patient, finder);
    const std::string printed = testing::internal::GetCapturedStdout();
    const std::string read = std::string(patient.patient_id.view()) + "|" + std::string(patient.species.view()) +
                             "|" + std::string(patient.admission_date.view()) + "|" +
                             std::string(patient.microchip.view()) + "|" + std::string(finder.found_name.view());
    EXPECT_EQ(accepted ? read : printed, expected) << "'" << line << "'";
    EXPECT_EQ(accepted, printed.empty()) << "'" << line << "'";
  }
}

}  // namespace
