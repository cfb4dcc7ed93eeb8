#include "jobs/sbr/sbr_disposition.h"

#include <strings.h>

#include <cstdio>
#include <cstring>

#include "jobs/sbr/sbr_site.h"
#include "util/dates.h"
#include "util/strings.h"

namespace {

constexpr const char* kOther = "Other";
constexpr const char* kEducationOrShow = "E/S";
constexpr const char* kContinuedCare = "Continued care";

struct Disposition {
  const char* phrase;  // the whole cell, any case; trailing blanks count
  const char* status;
  const char* transfer_reason = "";
  bool egg = false;  // the bird was an egg that never hatched
};

// Tested in order; the first phrase that matches decides.
constexpr Disposition kDispositions[] = {
    {" ", "Reh"},  // the log's empty cell: still in care
    {"Died", "D"},
    {"Died Dead on Arrival", "DOA"},
    {"Died within 24 hrs. Dead on Arrival", "DOA"},
    {"DOA", "DOA"},
    {"Dead on Arrival", "DOA"},
    {"Not Viable (egg)", "DOA", "", true},
    {"Died Died within 24 hrs.", "D24"},
    {"Died within 24 hrs.", "D24"},
    {"Died within 24 hrs. Died", "D24"},
    {"Died Euthanized", "E"},
    {"Euthanized", "E"},
    {"Euthanized ", "E"},
    {"EOA", "EOA"},
    {"Euthanized on arrival", "EOA"},
    {"Euthanized within 24 hrs.", "E24"},
    {"Died within 24 hrs. Euthanized", "E24"},
    {"Euthanized within 24 hrs. Died within 24 hrs.", "E24"},
    {"in care", "Reh"},
    {"pending", "Reh"},
    {"Transferred Placed", "T", kOther},
    {"Placed", "T", kEducationOrShow},
    {"Placed to Habitat for Hooters", "T", kEducationOrShow},
    {"Released", "R"},
    {"Returned to nest", "R"},
    {"Resident", "PR"},
    {"Resident Training Duck", "PR"},
    {"Transfer to Lindsay Wildlife", "T", kContinuedCare},
    {"Transferred to Lindsay", "T", kContinuedCare},
    {"Transferred SouthBay Wildlife Rehabilitation", "T"},
    {"Transferred to California wildlife - Malibu", "T", kContinuedCare},
    {"Transferred to California Wildlife Center", "T", kContinuedCare},
    {"Transferred to Camarillo Wildlife", "T", kContinuedCare},
    {"Transferred to Cordelia", "T"},
    {"Transferred to LA", "T"},
    {"Transferred to PHS", "T", kContinuedCare},
    {"transferred to Santa Barbara Wildlife Care", "T", kContinuedCare},
    {"Transferred to Santa Barbara Wildlife Care Center", "T", kContinuedCare},
    {"Transferred to South Bay Wildlife", "T", kContinuedCare},
    {sbr_site::kToRehabilitatorShort, "T", kContinuedCare},
    {sbr_site::kToRehabilitatorFull, "T", kContinuedCare},
    {sbr_site::kToRehabilitatorPermit, "T", kContinuedCare},
    {"Transferred to Wetlands & Wildlife Center", "T", kContinuedCare},
    {"Transferred to WildCare", "T"},
    {"Transfered", "T", kContinuedCare},
    {"Transferred", "T", kContinuedCare},
    {"Transferred ", "T", kContinuedCare},
};

const Disposition* FindDisposition(const char* phrase) {
  for (const Disposition& disposition : kDispositions) {
    if (strcasecmp(phrase, disposition.phrase) == 0) return &disposition;
  }
  return nullptr;
}

bool HasText(const char* text) { return text != nullptr && std::strlen(text) > 1; }

}  // namespace

int MapSbrDisposition(const char* disposition, const char* final_date_text, const char* place,
                      PatientRecord& patient, TransferRecord& transfer, ReleaseRecord& release,
                      const char* case_number) {
  patient.status = "";
  if (disposition == nullptr || disposition[0] == '\0') return 1;
  const Disposition* known = FindDisposition(disposition);
  if (known == nullptr) return 1;
  patient.status = known->status;
  if (known->transfer_reason[0] != '\0') transfer.reason = known->transfer_reason;
  if (known->egg) {
    patient.age = "Egg";
    patient.ageIn = "Egg";
  }
  // Birds still with the centre have no final date.
  if (patient.status == "Reh" || patient.status == "PR") return 0;

  if (!HasText(final_date_text)) {
    std::printf("ERROR: Missing final date for '%s'\n", case_number);
    return 2;
  }
  if (ParseSlashDate(final_date_text, patient.final_date) != 0) {
    std::printf("ERROR: Invalid final date: '%s' for '%s'\n", final_date_text, case_number);
    return 2;
  }
  if (patient.status == "T" && HasText(place)) StripQuotes(place, transfer.name);
  if (patient.status == "R" && HasText(place)) StripQuotes(place, release.location);
  return 0;
}
