// CSAQ_PKS habitat import: the aquarium's enclosure list ("./EnclosureTree.xml")
// as location rows, which the patient import's moves resolve their
// enclosure names against.
#pragma once

#include "store/reference_store.h"

// Writes one location per distinct enclosure, in order of name ignoring
// letter case (equal names keep their order), with feed and display order
// numbered from 1. The name is the enclosure's Identifier, or its Enclosure
// text when it has none; the description is the Enclosure text, which the
// moves look up. Returns 0 after a complete run, 1 when the file cannot be
// loaded (nothing is written then).
int ImportEnclosureTree();

// The location flags of an enclosure: always 0x1; 0x200 for an exhibit;
// for an aquatic enclosure 0x80 (fresh water) or 0x100 (salt or brackish
// water) by its water type. An aquatic enclosure's water type that is none
// of these is reported and adds no flag.
int EnclosureFlags(const char* type, const char* category, const char* water_type);
