// DsWC's conversions: the disposition against the final date, the permanent
// residents, the address book's address, phone and birthday, and a species
// element of the species list.
#include <cstdint>

#include "fuzz_input.h"
#include "jobs/dswc/dswc_address_book.h"
#include "jobs/dswc/dswc_admissions.h"
#include "jobs/dswc/dswc_disposition.h"
#include "jobs/dswc/dswc_species.h"
#include "store/reference_store.h"

CORVANA_FUZZ_SILENT_STDOUT

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  FuzzInput input(data, size);
  PatientRecord patient{};
  patient.patient_id = input.Next();
  patient.admission_date = input.Next();
  DswcReason reason{};
  TransferRecord transfer{};
  const char* disposition = input.NextOrNull();
  MapDswcDisposition(disposition, input.NextOrNull(), patient, reason, transfer);
  ApplyResidentTable(patient);

  AddressBookEntry entry{};
  ParseDswcAddress(input.NextOrNull(), entry);
  ParseDswcPhone(input.NextOrNull(), entry);
  ParseDswcBirthday(input.NextOrNull(), entry.dob);

  // A species list of one element whose attributes come from the input.
  XmlDocument list;
  XmlCreateRoot(list);
  XmlNode* top = XmlNewNode(list, "speciesList");
  XmlNode* element = XmlNewNode(list, "species");
  XmlAppendChild(XmlRoot(list), top);
  XmlAppendChild(top, element);
  for (const char* name : {"abbrev", "speciesGroup", "commonName", "label", "age", "infoPage", "domestic"}) {
    const char* value = input.NextOrNull();
    if (value != nullptr) XmlAddAttribute(element, name, value);
  }
  SpeciesRecord species{};
  FillDswcSpecies(FirstDswcSpecies(list), species);
  LookupDswcSpecies(list, input.NextOrNull(), patient);
  return 0;
}
