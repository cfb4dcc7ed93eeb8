#include "jobs/sbr/sbr_disposition.h"

#include <gtest/gtest.h>

#include <string>

#include "jobs/sbr/sbr_site.h"

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

std::string Describe(const Row& row) {
  return std::string("'") + (row.disposition ? row.disposition : "(null)") + "' on '" +
         (row.final_date ? row.final_date : "(null)") + "' at '" + (row.place ? row.place : "(null)") + "'";
}

TEST(SbrDisposition, PhrasesStatusesAndPlaces) {
  const Row rows[] = {
      // Still with the centre: no final date read, none needed.
      {" ", "Reh", "", "", 0, "x", "NA"},
      {"IN CARE", "Reh", "", nullptr},
      {"pending", "Reh", "", "garbage"},
      {"Resident Training Duck", "PR", "", " "},
      // Deaths, each needing a final date; no status changes on the day of admission.
      {"died", "D"},
      {"Died Dead on Arrival", "DOA"},
      {"dead on arrival", "DOA"},
      {"Died within 24 hrs. Dead on Arrival", "DOA"},
      {"Died Died within 24 hrs.", "D24"},
      {"DIED WITHIN 24 HRS.", "D24"},
      {"Died within 24 hrs", "", "", kFinal, 1},  // the full stop is part of the phrase
      {"Euthanized ", "E"},
      {"Euthanized  ", "", "", kFinal, 1},  // one trailing blank is listed, two are not
      {"Died Euthanized", "E"},
      {"eoa", "EOA"},
      {"Euthanized within 24 hrs. Died within 24 hrs.", "E24"},
      {"Died within 24 hrs. Euthanized", "E24"},
      // Transfers: reason by phrase, the place as the receiver's name.
      {"Transferred Placed", "T", "Other", kFinal, 0, "Santa Barbara Zoo", "Santa Barbara Zoo"},
      {"placed", "T", "E/S", kFinal, 0, "\"Aquarium\" of the Pacific", "Aquarium"},
      {"Placed to Habitat for Hooters", "T", "E/S"},
      {"Transfer to Lindsay Wildlife", "T", "Continued care", kFinal, 0, "O'Neill Sea Odyssey", "O'Neill Sea Odyssey"},
      {"Transferred SouthBay Wildlife Rehabilitation", "T"},
      {"Transferred to WildCare", "T", "", kFinal, 0, "WildCare, San Rafael", "WildCare, San Rafael"},
      {"TRANSFERRED TO CORDELIA", "T", "", kFinal, 0, " ", "NA"},  // a one-character place keeps the default
      {"Transferred to LA", "T", "", kFinal, 0, nullptr, "NA"},
      {sbr_site::kToRehabilitatorShort, "T", "Continued care"},
      {sbr_site::kToRehabilitatorFull, "T", "Continued care"},
      {sbr_site::kToRehabilitatorPermit, "T", "Continued care"},
      {"Transferred to Wetlands & Wildlife Center", "T", "Continued care"},
      {"Transfered", "T", "Continued care"},
      {"Transferred ", "T", "Continued care"},
      {"Transferred to somewhere new", "", "", kFinal, 1},
      // Releases: the place as the release site, unquoted.
      {"Released", "R", "", kFinal, 0, "\"Cabrillo Beach\" ramp", "NA", "Cabrillo Beach"},
      {"Returned to nest", "R", "", kFinal, 0, "Anacapa Island", "NA", "Anacapa Island"},
      {"released", "R", "", kFinal, 0, "x", "NA", ""},
      // The egg row also sets the age; unknown and empty phrases are refused.
      {"Not Viable (egg)", "DOA"},
      {"Escaped", "", "", kFinal, 1},
      {"", "", "", kFinal, 1},
      {nullptr, "", "", kFinal, 1},
      // The final date: missing, short, unreadable.
      {"Released", "R", "", " ", 2},
      {"Released", "R", "", nullptr, 2},
      {"Released", "R", "", "2/30/2019", 2},
      {"Transferred to PHS", "T", "Continued care", "n/a", 2},
  };
  std::string printed;
  for (const Row& row : rows) {
    SCOPED_TRACE(Describe(row));
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
