#include "jobs/dswc/dswc_disposition.h"

#include <gtest/gtest.h>

#include <cctype>
#include <string>
#include <vector>

#include "jobs/dswc/dswc_site.h"

namespace {

constexpr const char* kAdmitted = "2011-03-01";
constexpr const char* kSameDay = "3/1/2011";
constexpr const char* kLater = "3/4/2011";

struct Mapped {
  int result;
  PatientRecord patient;
  DswcReason reason;
  TransferRecord transfer;
};

// Maps `disposition` for a patient admitted on kAdmitted, with the transfer
// at the defaults the admissions job gives it.
Mapped Map(const std::string& disposition, const char* final_date) {
  Mapped m{};
  m.patient.patient_id = "2011-0001";
  m.patient.admission_date = kAdmitted;
  m.patient.final_date = "0000-00-00";
  m.patient.status = "Reh";
  m.transfer.name = m.transfer.addr = m.transfer.city = "NA";
  m.transfer.zip = m.transfer.county = m.transfer.permit = "NA";
  m.transfer.state = "AZ";
  m.transfer.country = "USA";
  m.transfer.reason = "E/S";
  m.result = MapDswcDisposition(disposition.c_str(), final_date, m.patient, m.reason, m.transfer);
  return m;
}

std::string Upper(std::string text) {
  for (char& c : text) c = static_cast<char>(std::toupper(static_cast<unsigned char>(c)));
  return text;
}

TEST(DswcDisposition, EveryPhraseInAnyCase) {
  struct Group {
    std::vector<const char*> phrases;
    const char* final_date;
    const char* status;
    bool reason_is_phrase;  // the import note says why the animal was not admitted
  };
  const Group groups[] = {
      {{"Pending release", " "}, " ", "Reh", false},
      {{"Foster", "Education", "DWC Education", "DWC-Education"}, " ", "PR", false},
      {{"Could not capture", "Could not catch", "Could not find", "Could not get", "Could not get close",
        "Couldn't get it away from mom", "Coyote drug it away", "Coyotes took it", "Did not catch", "Did not get",
        "Flew Away", "Freed ", "Freed itself", "Killed by police", "Left Alone", "Not Caught", "Unable to capture",
        "Unable to catch", "Unable to dart", "Unable to find", "Unstuck before we arrived", "not admitted",
        "not found", "Ran away", "Ran off", "Swam away", "Did not find", "Released from yard"},
       kLater, "DNA", true},
      {{"Found mommy", "Re-branched", "Rebranched", "Renested", "Re-nested", "Escaped", "Found owners",
        "Owner found", "Ret to Wild Thing", "Returned", "Returned to home", "Put back w/mom", "Released to mother",
        "Released back to mom"},
       kSameDay, "DNA", true},
      {{"Renested", "Escaped", "Released back to mom"}, kLater, "R", false},
      {{"Euthanasia", "Euthanisia"}, kSameDay, "E24", false},
      {{"Euthanasia", "Euthanisia"}, kLater, "E", false},
      {{"Died"}, kSameDay, "D24", false},
      {{"Died"}, kLater, "D", false},
      {{"DOA"}, kSameDay, "DOA", false},
      {{"Released", "Released ", "Rel Priv Ranch", "Released-DWC", "Released on site"}, kSameDay, "R", false},
      {{"Transferred to Sonoran Valley Vet Clinic", "Transferred", "Adopted", "Rehomed", "Found home",
        "Delphine", "Adopted by Marisol", "Fostered out", "Adopted by Annika", "Trans Sea World", "Trans-Zoo",
        "Turned over to PACC", "PACC Euthanasia", "Released to G & F"},
       kSameDay, "T", false},
      {{"Released/Escaped", "Self-Released"}, kLater, "ESC", false},
  };
  for (const Group& group : groups) {
    for (const char* phrase : group.phrases) {
      for (const std::string& written : {std::string(phrase), Upper(phrase)}) {
        Mapped mapped = Map(written, group.final_date);
        EXPECT_EQ(mapped.result, 0) << "'" << written << "'";
        EXPECT_EQ(mapped.patient.status, group.status) << "'" << written << "' on " << group.final_date;
        EXPECT_EQ(mapped.reason, group.reason_is_phrase ? written : "") << "'" << written << "'";
      }
    }
  }
}

TEST(DswcDisposition, DatesFlagsAndRejections) {
  Mapped foster = Map("Foster", "");
  EXPECT_EQ(foster.patient.flags, kFlagFosterParent);
  EXPECT_EQ(foster.patient.final_date, "0000-00-00");  // kept animals have no final date

  EXPECT_EQ(Map("Died", "3/4/11").patient.final_date, "2011-03-04");

  // Near misses of known phrases are unknown.
  for (const char* unknown : {"See vet notes", "Freed", "Released  ", "Adopted by", "Adopted by Bob", "Transfered",
                              "Fostered", ""}) {
    Mapped mapped = Map(unknown, kLater);
    EXPECT_NE(mapped.result, 0) << "'" << unknown << "'";
    EXPECT_EQ(mapped.patient.status, "Reh") << "'" << unknown << "'";
  }

  testing::internal::CaptureStdout();
  Mapped undated = Map("Released", " ");
  Mapped missing = Map("Died", nullptr);
  EXPECT_EQ(testing::internal::GetCapturedStdout(),
            "\tERROR - Invalid final date ' ' - '2011-0001'\n"
            "\tERROR - Invalid final date '' - '2011-0001'\n");
  EXPECT_NE(undated.result, 0);
  EXPECT_NE(missing.result, 0);
  EXPECT_EQ(undated.patient.status, "Reh");
}

TEST(DswcDisposition, TransferReceivers) {
  namespace site = dswc_site;
  auto fields = [](const TransferRecord& t) {
    return std::string(t.name.view()) + "|" + std::string(t.addr.view()) + "|" + std::string(t.city.view()) +
           "|" + std::string(t.zip.view()) + "|" + std::string(t.county.view()) + "|" +
           std::string(t.state.view()) + "|" + std::string(t.permit.view()) + "|" + std::string(t.reason.view()) +
           "|" + std::string(t.country.view());
  };
  auto at = [](const char* name, const site::PartnerAddress& a, const char* rest) {
    return std::string(name) + "|" + a.addr + "|" + a.city + "|" + a.zip + "|" + rest;
  };
  struct Case {
    const char* disposition;
    std::string expected;  // name|addr|city|zip|county|state|permit|reason|country
  };
  const Case cases[] = {
      {"Transferred to Sonoran Valley Vet Clinic", "NA|NA|NA|NA|NA|AZ|NA|E/S|USA"},
      {"delphine", "NA|NA|NA|NA|NA|AZ|NA|Continued care|USA"},
      {"Adopted by Marisol", "Marisol ?||||NA|AZ|NA|Continued care|USA"},
      {"Fostered out", "Marisol ?||||NA|AZ|NA|Continued care|USA"},
      {"adopted by ANNIKA", "Annika ?||||NA|AZ|NA|Continued care|USA"},
      {"Trans Sea World", at("Sea World", site::kMarinePark, "NA|CA|NA|E/S|USA")},
      {"Trans-Zoo", at("Reid Park Zoo", site::kCityZoo, "Pima|AZ|NA|E/S|USA")},
      {"Turned over to PACC", at("Pima Animal Care Center", site::kAnimalCareCenter, "Pima|AZ|NA|Continued care|USA")},
      {"PACC Euthanasia", at("Pima Animal Care Center", site::kAnimalCareCenter, "Pima|AZ|NA|Continued care|USA")},
      {"Released to G & F", "Arizona Game & Fish||||NA|AZ|EXEMPT|Continued care|USA"},
      {"Released", "NA|NA|NA|NA|NA|AZ|NA|E/S|USA"},  // not a transfer: untouched
  };
  for (const Case& c : cases) EXPECT_EQ(fields(Map(c.disposition, kLater).transfer), c.expected) << c.disposition;
}

TEST(DswcDisposition, ResidentTable) {
  namespace site = dswc_site;
  const std::vector<std::vector<const char*>> cases = {  // patient_id, name, location
      {"2011-0479", site::kResidentCoyoteA, "Coyote Run 1"}, {"2011-0270", site::kResidentCoyoteB, "Coyote Run 1"},
      {"2009-0302", site::kResidentTenPens, "Ten Pens 3"},   {"2009-0445", site::kResidentHolding, "Holding Pens 7"},
      {"2010-0338", "", "Holding Pens 7"},                   {"2012-0479", "kept", "Flight Cage"},
      {"2011-479", "kept", "Flight Cage"},
  };
  for (const auto& c : cases) {
    PatientRecord patient{};
    patient.patient_id = c[0];
    patient.name = "kept";
    patient.location = "Flight Cage";
    ApplyResidentTable(patient);
    EXPECT_EQ(patient.name, c[1]) << c[0];
    EXPECT_EQ(patient.location, c[2]) << c[0];
  }
}

}  // namespace
