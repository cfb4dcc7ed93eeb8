#include "util/log_watch.h"

#include <gtest/gtest.h>

namespace {

// The summary counts the log lines the jobs print for what they could not do.
TEST(LogWatchTest, ProblemLines) {
  for (const char* problem : {"\tERROR - Unable to create patient record for '2012-0001'", "ERROR: invalid phone",
                              "Error creating species record for 'X'", "\tWARNING: Animal 'A has status = Med",
                              "Unable to open './KWRC_2012.txt'", "Invalid final date 'pending' - '012013'",
                              "Unknown outcome 'Adopted", "No species found: run the CSAQ_FF species import first!",
                              "  \tCan't find it"}) {
    EXPECT_TRUE(IsProblemLine(problem)) << problem;
  }
  for (const char* fine : {"Imported 17 records", "Addr: 'KWRC', District: 'Haidan'", "12001", "",
                           "Loading patient data from './UPRC 2012.txt'", "Notes: none", "\tSINGLE"}) {
    EXPECT_FALSE(IsProblemLine(fine)) << fine;
  }
}

}  // namespace
