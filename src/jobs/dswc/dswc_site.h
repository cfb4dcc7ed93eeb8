// This site's settings: the values the DsWC jobs need that the centre's
// exports do not carry. They are the centre's own fixed facts (who adopts its
// animals, where its transfer partners are, what its permanent residents are
// called) and live here together so they are changed in one place.
#pragma once

namespace dswc_site {

// Adopters named in the disposition column. The first is written alone
// ("Delphine"), the other two as "Adopted by <name>".
inline constexpr const char* kFirstAdopter = "Delphine";
inline constexpr const char* kSecondAdopter = "Marisol";
inline constexpr const char* kThirdAdopter = "Annika";

// Street, town and zip of the transfer partners that have a fixed address.
struct PartnerAddress {
  const char* addr;
  const char* city;
  const char* zip;
};
inline constexpr PartnerAddress kMarinePark = {"7100 Harbor Point Dr", "San Diego", "92109"};
inline constexpr PartnerAddress kCityZoo = {"1450 E Palo Verde Way", "Tucson", "85716"};
inline constexpr PartnerAddress kAnimalCareCenter = {"2750 W Ironwood Ln", "Tucson", "85745"};

// Names of the permanent residents (animals) of the resident table.
inline constexpr const char* kResidentCoyoteA = "Mesquite";
inline constexpr const char* kResidentCoyoteB = "Juniper";
inline constexpr const char* kResidentTenPens = "Saguaro";
inline constexpr const char* kResidentHolding = "Ocotillo";

}  // namespace dswc_site
