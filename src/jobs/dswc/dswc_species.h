// DsWC species import: the centre's species list, an XML export whose
// species elements carry their data as attributes, into the species table.
// The same file gives the admissions import its species labels.
#pragma once

#include "store/reference_store.h"
#include "xml/xml_document.h"

// The species list, read by both the species and the admissions import.
inline constexpr const char* kDswcSpeciesFile = "./species.xml";

// Imports "./species.xml", skipping elements marked dup. Returns 0 after a
// run over the file, 1 when it could not be parsed.
int ImportDswcSpecies();

// The first species element of a loaded list (the first child of the
// document element); walk the rest with XmlNextSibling. Null when none.
const XmlNode* FirstDswcSpecies(const XmlDocument& species_list);

// Fills a cleared `species` from a species element: abbrev, speciesGroup,
// common_name and info_page copied unescaped; nord "N" when the common name
// holds "owl" (case-sensitive), else "D"; native "D" for domestic="yes" (any
// case), else "Y"; hms "N"; state_soc and federal_soc 8 for the abbreviations
// "BAEA" and "GOEA", else 0. Returns null, or the name of the first of the
// three required attributes the element lacks (the record is then
// incomplete and must not be stored).
const char* FillDswcSpecies(const XmlNode* element, SpeciesRecord& species);
