// This rescue's settings: the values its case log refers to by name without
// spelling them out. They are the centre's own facts (a business that often
// calls in birds found on its lot, a private rehabilitator it hands birds
// to) and live here together so they are changed in one place.
#pragma once

namespace sbr_site {

// The car dealership whose lot address finders write; the log's address
// cell begins with exactly this text when the bird was found there.
inline constexpr const char* kDealershipAddressCell = "4420 Coastline Auto Plaza, Oxnard, CA";
inline constexpr const char* kDealershipName = "Coastline Motors";
inline constexpr const char* kDealershipStreet = "4420 Coastline Auto Plaza";
inline constexpr const char* kDealershipTown = "Oxnard";

// The three ways the disposition column names the private rehabilitator:
// initial and surname, full name, full name with permit number.
inline constexpr const char* kToRehabilitatorShort = "Transferred to M. Okafor";
inline constexpr const char* kToRehabilitatorFull = "Transferred to Miriam Okafor";
inline constexpr const char* kToRehabilitatorPermit = "Transferred to Miriam Okafor (permit SC-1187)";

}  // namespace sbr_site
