// CSAQ_FF patient and group import: the aquarium's collection records (one
// per single animal, whose identity tag holds " RS0", or per group of one
// species) into patients. The whole CollectionAnimalTable is built in memory
// from the groups, husbandry, habitat and census tables first; then every
// animal is written with its finder columns, a "Group" attribute, an import
// note and, when it was released or transferred, that disposition; finally
// the husbandry vital statistics and medical reports are added.
#pragma once

// Reads "./Groups.xml", "./Husbandry.xml", "./Habitats.xml",
// "./HabitatCensus.xml" and "./SpeciesAbbreviations.xml". A collection
// record with a problem is reported and leaves nothing in the table; a
// problem while writing one animal leaves only that animal incomplete.
// Returns 0, or 1 when a file cannot be loaded or the species or locations
// are missing (nothing is written then).
int ImportCsaqFfPatients();
