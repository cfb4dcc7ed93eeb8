#include "jobs/sbr/sbr_disposition.h"

#include <gtest/gtest.h>

#include <string>

namespace {

constexpr const char* kFinal = "2/20/2016";

struct Row {
  const char* disposition;
  const char* status;  // "" when refused
  const char* reason = "";
  const char* final_date = kFinal;
  int result = 0;
  const char* place = " ";  // the log's empty cell
  const char* transfer_name = "NA";
  const char* release_location = "";
};

// The samples pin most phrases; these are the rules around them: whole-cell matches in any case, a final date only
// for birds that left, the place as receiver or release site, and the refusals.
TEST(SbrDisposition, PhrasesStatusesAndPlaces) {
  const Row rows[] = {
      {" ", "Reh", "", "", 0, "x", "NA"},  // a blank disposition: still in care, no final date read
      {"IN CARE", "Reh", "", nullptr},
      {"Resident Training Duck", "PR", "", " "},
      {"died", "D"},  // the final date is not compared with the admission: no upgrade to "D24" on the same day
      {"dead on arrival", "DOA"},
      {"DIED WITHIN 24 HRS.", "D24"},
      {"Died within 24 hrs", "", "", kFinal, 1},  // the full stop is part of the phrase
      {"Euthanized  ", "", "", kFinal, 1},        // one trailing blank is listed, two are not
      {"Transferred Placed", "T", "Other", kFinal, 0, "Santa Barbara Zoo", "Santa Barbara Zoo"},
      {"placed", "T", "E/S", kFinal, 0, "\"Aquarium\" of the Pacific", "Aquarium"},
      {"TRANSFERRED TO CORDELIA", "T", "", kFinal, 0, " ", "NA"},  // a one-character place keeps the default
      {"Transferred to LA", "T", "", kFinal, 0, nullptr, "NA"},
      {"Transferred to somewhere new", "", "", kFinal, 1},
      {"Released", "R", "", kFinal, 0, "\"Cabrillo Beach\" ramp", "NA", "Cabrillo Beach"},
      {"released", "R", "", kFinal, 0, "x", "NA", ""},
      {"Not Viable (egg)", "DOA"},  // also sets the age
      {"", "", "", kFinal, 1},
      {nullptr, "", "", kFinal, 1},
      {"Released", "R", "", " ", 2},  // the log's empty cell
      {"Released", "R", "", nullptr, 2},
      {"Released", "R", "", "2/30/2019", 2},
      {"Transferred to PHS", "T", "Continued care", "n/a", 2},
  };
  std::string printed;
  for (const Row& row : rows) {
    SCOPED_TRACE(std::string(row.disposition ? row.disposition : "(null)") + " on " +
                 (row.final_date ? row.final_date : "(null)"));
    PatientRecord patient{};
    patient.status = "Reh";
    patient.final_date = "0000-00-00";
    patient.age = patient.ageIn = "AHY";
    TransferRecord transfer{};
    transfer.name = "NA";
    ReleaseRecord release{};
    testing::internal::CaptureStdout();
    int result = MapSbrDisposition(row.disposition, row.final_date, row.place, patient, transfer, release, "LA-16-001");
    printed += testing::internal::GetCapturedStdout();
    EXPECT_EQ(result, row.result);
    EXPECT_EQ(patient.status, row.status);
    EXPECT_EQ(transfer.reason, row.reason);
    bool dated = result == 0 && patient.status != "Reh" && patient.status != "PR";
    EXPECT_EQ(patient.final_date, dated ? "2016-02-20" : "0000-00-00");
    EXPECT_EQ(transfer.name, result == 0 ? row.transfer_name : "NA");
    EXPECT_EQ(release.location, result == 0 ? row.release_location : "");
    const bool egg = row.disposition != nullptr && std::string(row.disposition) == "Not Viable (egg)";
    EXPECT_EQ(patient.age, egg ? "Egg" : "AHY");
    EXPECT_EQ(patient.ageIn, egg ? "Egg" : "AHY");
  }
  EXPECT_EQ(printed,
            "ERROR: Missing final date for 'LA-16-001'\n"
            "ERROR: Missing final date for 'LA-16-001'\n"
            "ERROR: Invalid final date: '2/30/2019' for 'LA-16-001'\n"
            "ERROR: Invalid final date: 'n/a' for 'LA-16-001'\n");
}

}  // namespace
