// CSAQ_FF habitat import: the aquarium's tanks and exhibits, from the
// exported habitats table, into `location` rows numbered alphabetically for
// feeding and display order. The water-chemistry and patient imports read
// the same table again to turn a habitat's ID into the label written here.
#pragma once

#include <cstdint>

// Location flags: every habitat is a location; salt or fresh water on top.
constexpr int32_t kLocationHabitat = 0x1;
constexpr int32_t kLocationFreshWater = 0x80;
constexpr int32_t kLocationSaltWater = 0x100;

// Reads "./Habitats.xml" and writes its rows sorted by label (byte-wise,
// letter case counting). The first failed insert stops the writing. Returns
// 0, or 1 when the file cannot be loaded (nothing is written then).
int ImportCsaqFfHabitats();

// The flags of a habitat whose "Water" text is `water` (null when the row
// has none): "Salt" or "Fresh" in any letter case add their bit.
int32_t CsaqFfHabitatFlags(const char* water);
