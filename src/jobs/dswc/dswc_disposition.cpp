#include "jobs/dswc/dswc_disposition.h"

#include <strings.h>

#include <cstdint>
#include <cstdio>
#include <cstring>

#include "jobs/dswc/dswc_site.h"
#include "util/dates.h"
#include "util/strings.h"

namespace {

// Dispositions of animals that stay with the centre; they have no final date.
struct StayRow {
  const char* phrase;
  const char* status;
  int64_t flags;
};

constexpr StayRow kStayRows[] = {
    {"Pending release", "Reh", 0},
    {" ", "Reh", 0},  // the export's empty cell
    {"Foster", "PR", kFlagFosterParent},
    {"Education", "PR", 0},
    {"DWC Education", "PR", 0},
    {"DWC-Education", "PR", 0},
};

// The animal was never taken in.
constexpr const char* kNotAdmittedPhrases[] = {
    "Could not capture", "Could not catch", "Could not find",
    "Could not get", "Could not get close", "Couldn't get it away from mom",
    "Coyote drug it away", "Coyotes took it", "Did not catch",
    "Did not get", "Flew Away", "Freed ",
    "Freed itself", "Killed by police", "Left Alone",
    "Not Caught", "Unable to capture", "Unable to catch",
    "Unable to dart", "Unable to find", "Unstuck before we arrived",
    "not admitted", "not found", "Ran away",
    "Ran off", "Swam away", "Did not find",
    "Released from yard",
};

// The animal went back to its family or owner: not admitted when that
// happened on the day it came in, a release when it happened later.
constexpr const char* kReturnedPhrases[] = {
    "Found mommy",  "Re-branched",       "Rebranched", "Renested",        "Re-nested",
    "Escaped",      "Found owners",      "Owner found", "Ret to Wild Thing", "Returned",
    "Returned to home", "Put back w/mom", "Released to mother", "Released back to mom",
};

// Where a transferred animal went. A null text keeps the transfer's default.
struct Receiver {
  const char* name = nullptr;
  const char* adopter = nullptr;  // when set, the name is this first name followed by " ?"
  const char* addr = nullptr;
  const char* city = nullptr;
  const char* zip = nullptr;
  const char* county = nullptr;
  const char* state = nullptr;
  const char* permit = nullptr;
  const char* reason = nullptr;
};

constexpr Receiver kDefaultReceiver = {};
constexpr Receiver kContinuedCare = {.reason = "Continued care"};
constexpr Receiver kSecondAdopterHome = {.adopter = dswc_site::kSecondAdopter, .addr = "", .city = "", .zip = "",
                                         .state = "AZ", .permit = "NA", .reason = "Continued care"};
constexpr Receiver kThirdAdopterHome = {.adopter = dswc_site::kThirdAdopter, .addr = "", .city = "", .zip = "",
                                        .state = "AZ", .permit = "NA", .reason = "Continued care"};
constexpr Receiver kMarinePark = {.name = "Sea World",
                                  .addr = dswc_site::kMarinePark.addr,
                                  .city = dswc_site::kMarinePark.city,
                                  .zip = dswc_site::kMarinePark.zip,
                                  .state = "CA",
                                  .permit = "NA",
                                  .reason = "E/S"};
constexpr Receiver kCityZoo = {.name = "Reid Park Zoo",
                               .addr = dswc_site::kCityZoo.addr,
                               .city = dswc_site::kCityZoo.city,
                               .zip = dswc_site::kCityZoo.zip,
                               .county = "Pima",
                               .state = "AZ",
                               .permit = "NA",
                               .reason = "E/S"};
constexpr Receiver kAnimalCareCenter = {.name = "Pima Animal Care Center",
                                        .addr = dswc_site::kAnimalCareCenter.addr,
                                        .city = dswc_site::kAnimalCareCenter.city,
                                        .zip = dswc_site::kAnimalCareCenter.zip,
                                        .county = "Pima",
                                        .state = "AZ",
                                        .permit = "NA",
                                        .reason = "Continued care"};
constexpr Receiver kGameAndFish = {.name = "Arizona Game & Fish",
                                   .addr = "",
                                   .city = "",
                                   .zip = "",
                                   .county = "NA",
                                   .state = "AZ",
                                   .permit = "EXEMPT",
                                   .reason = "Continued care"};

enum class Match {
  kWhole,      // the whole disposition is the phrase
  kPrefix,     // the disposition begins with the phrase
  kAdoptedBy,  // "Adopted by " followed by the phrase, an adopter's first name
};

struct OutcomeRow {
  const char* phrase;
  Match match;
  const char* status;
  const char* same_day_status;  // when admitted and ended on the same date
  const Receiver* receiver;     // set for transfers
};

constexpr OutcomeRow kOutcomeRows[] = {
    {"Euthanasia", Match::kWhole, "E", "E24", nullptr},
    {"Euthanisia", Match::kWhole, "E", "E24", nullptr},
    {"Died", Match::kWhole, "D", "D24", nullptr},
    {"DOA", Match::kWhole, "DOA", "DOA", nullptr},
    {"Released", Match::kWhole, "R", "R", nullptr},
    {"Released ", Match::kWhole, "R", "R", nullptr},
    {"Rel Priv Ranch", Match::kWhole, "R", "R", nullptr},
    {"Released-DWC", Match::kWhole, "R", "R", nullptr},
    {"Released on site", Match::kWhole, "R", "R", nullptr},
    {"Transferred", Match::kPrefix, "T", "T", &kDefaultReceiver},
    {"Adopted", Match::kWhole, "T", "T", &kContinuedCare},
    {"Rehomed", Match::kWhole, "T", "T", &kContinuedCare},
    {"Found home", Match::kWhole, "T", "T", &kContinuedCare},
    {dswc_site::kFirstAdopter, Match::kWhole, "T", "T", &kContinuedCare},
    {dswc_site::kSecondAdopter, Match::kAdoptedBy, "T", "T", &kSecondAdopterHome},
    {"Fostered out", Match::kWhole, "T", "T", &kSecondAdopterHome},
    {dswc_site::kThirdAdopter, Match::kAdoptedBy, "T", "T", &kThirdAdopterHome},
    {"Trans Sea World", Match::kWhole, "T", "T", &kMarinePark},
    {"Trans-Zoo", Match::kWhole, "T", "T", &kCityZoo},
    {"Turned over to PACC", Match::kWhole, "T", "T", &kAnimalCareCenter},
    {"PACC Euthanasia", Match::kWhole, "T", "T", &kAnimalCareCenter},
    {"Released to G & F", Match::kWhole, "T", "T", &kGameAndFish},
    {"Released/Escaped", Match::kWhole, "ESC", "ESC", nullptr},
    {"Self-Released", Match::kWhole, "ESC", "ESC", nullptr},
};

constexpr char kAdoptedBy[] = "Adopted by ";

bool Matches(const OutcomeRow& row, const char* disposition) {
  switch (row.match) {
    case Match::kWhole:
      return EqualsNoCase(row.phrase, disposition);
    case Match::kPrefix:
      return strncasecmp(disposition, row.phrase, std::strlen(row.phrase)) == 0;
    case Match::kAdoptedBy:
      return strncasecmp(disposition, kAdoptedBy, sizeof kAdoptedBy - 1) == 0 &&
             EqualsNoCase(disposition + sizeof kAdoptedBy - 1, row.phrase);
  }
  return false;
}

template <std::size_t N>
bool IsListed(const char* const (&phrases)[N], const char* disposition) {
  for (const char* phrase : phrases) {
    if (EqualsNoCase(phrase, disposition)) return true;
  }
  return false;
}

void ApplyReceiver(const Receiver& receiver, TransferRecord& transfer) {
  auto set = [](auto& field, const char* value) {
    if (value != nullptr) field = value;
  };
  set(transfer.name, receiver.name);
  if (receiver.adopter != nullptr) transfer.name.Format("%s ?", receiver.adopter);
  set(transfer.addr, receiver.addr);
  set(transfer.city, receiver.city);
  set(transfer.zip, receiver.zip);
  set(transfer.county, receiver.county);
  set(transfer.state, receiver.state);
  set(transfer.permit, receiver.permit);
  set(transfer.reason, receiver.reason);
}

struct Resident {
  const char* patient_id;
  const char* name;
  const char* location;
};

constexpr Resident kResidents[] = {
    {"2011-0479", dswc_site::kResidentCoyoteA, "Coyote Run 1"},
    {"2011-0270", dswc_site::kResidentCoyoteB, "Coyote Run 1"},
    {"2009-0302", dswc_site::kResidentTenPens, "Ten Pens 3"},
    {"2009-0445", dswc_site::kResidentHolding, "Holding Pens 7"},
    {"2010-0338", "", "Holding Pens 7"},
};

}  // namespace

int MapDswcDisposition(const char* disposition, const char* final_date_text, PatientRecord& patient,
                       DswcReason& reason, TransferRecord& transfer) {
  if (disposition == nullptr) disposition = "";
  if (final_date_text == nullptr) final_date_text = "";

  for (const StayRow& row : kStayRows) {
    if (EqualsNoCase(row.phrase, disposition)) {
      patient.status = row.status;
      patient.flags |= row.flags;
      return 0;
    }
  }

  if (ParseSlashDate(final_date_text, patient.final_date) != 0) {
    std::printf("\tERROR - Invalid final date '%s' - '%s'\n", final_date_text, patient.patient_id.c_str());
    return 1;
  }
  reason = "";
  const bool same_day = patient.admission_date == patient.final_date;

  if (IsListed(kNotAdmittedPhrases, disposition)) {
    reason = disposition;
    patient.status = "DNA";
    return 0;
  }
  if (IsListed(kReturnedPhrases, disposition)) {
    if (same_day) {
      reason = disposition;
      patient.status = "DNA";
    } else {
      patient.status = "R";
    }
    return 0;
  }
  for (const OutcomeRow& row : kOutcomeRows) {
    if (!Matches(row, disposition)) continue;
    patient.status = same_day ? row.same_day_status : row.status;
    if (row.receiver != nullptr) ApplyReceiver(*row.receiver, transfer);
    return 0;
  }
  return 1;
}

void ApplyResidentTable(PatientRecord& patient) {
  for (const Resident& resident : kResidents) {
    if (patient.patient_id == resident.patient_id) {
      patient.name = resident.name;
      patient.location = resident.location;
      return;
    }
  }
}
