#include "jobs/csaq_pks/pks_places.h"

#include <cstdio>
#include <cstring>

#include "util/strings.h"
#include "util/tokenizer.h"

namespace {

enum class Match { kExact, kContains };

bool Matches(const char* token, const char* text, Match match) {
  return match == Match::kExact ? std::strcmp(token, text) == 0 : std::strstr(token, text) != nullptr;
}

// The next token, trimmed at both ends; null when there is none.
char* NextTrimmed(Tokenizer& tokens, const char* separators) {
  char* token = tokens.Next(separators);
  if (token != nullptr) {
    TrimLeft(token);
    TrimRight(token);
  }
  return token;
}

// ---------------------------------------------------------------------------
// Collection sites

// A place that stands first in the text and says all there is to say.
struct CollectionSite {
  const char* token;
  Match match;
  const char* addr;
  const char* city;
  const char* state;
  const char* county;
};

constexpr CollectionSite kLocalSites[] = {
    {"Fisher Swamp", Match::kExact, "Fisher Swamp", "New Bern", "NC", "Craven"},
    {"Little Swift Creek", Match::kContains, "Little Swift Creek", "Ernul", "NC", "Craven"},
    {"CSAPKS dock", Match::kExact, "CSAPKS dock", "Pine Knoll Shores", "NC", "Carteret"},
    {"Kitt Creek", Match::kExact, "Kitt Creek", "Ernul", "NC", "Craven"},
    {"Bogue Sound", Match::kExact, "Bogue Sound", "", "NC", "Carteret"},
    {"Taylors Creek Beaufort Docks", Match::kExact, "Taylors Creek Beaufort Docks", "Beaufort", "NC", "Carteret"},
};

constexpr const char* kUnitedStates = "United States";
constexpr const char* kCountry = "USA";

// What the token after "United States" names.
enum class SecondKind {
  kState,      // found_state; the next token is the address
  kSupplier,   // the animal was bought or donated: presenter fields
  kFoundCity,  // a town on the coast nearby: found fields, no address
};

struct SecondPlace {
  const char* token;
  Match match;
  SecondKind kind;
  const char* name;  // state code, supplier organisation or town
  const char* city;  // supplier's town (null: left as it is)
  const char* state;
  const char* county;
};

constexpr SecondPlace kSecondPlaces[] = {
    {"North Carolina", Match::kExact, SecondKind::kState, "NC", nullptr, nullptr, nullptr},
    {"Massachusetts", Match::kExact, SecondKind::kState, "MA", nullptr, nullptr, nullptr},
    {"South Carolina", Match::kExact, SecondKind::kState, "SC", nullptr, nullptr, nullptr},
    {"New Jersey", Match::kExact, SecondKind::kState, "NJ", nullptr, nullptr, nullptr},
    {"Pennsylvania", Match::kExact, SecondKind::kState, "PA", nullptr, nullptr, nullptr},
    {"Virginia", Match::kExact, SecondKind::kState, "VA", nullptr, nullptr, nullptr},
    {"Florida", Match::kExact, SecondKind::kState, "FL", nullptr, nullptr, nullptr},
    {"Louisiana", Match::kExact, SecondKind::kState, "LA", nullptr, nullptr, nullptr},
    {"Purchase from Carteret Community College", Match::kExact, SecondKind::kSupplier,
     "Carteret Community College", nullptr, "NC", "Carteret"},
    {"Cape Lookout", Match::kExact, SecondKind::kFoundCity, "Cape Lookout", nullptr, "NC", "Carteret"},
    {"Morehead City", Match::kExact, SecondKind::kFoundCity, "Morehead City", nullptr, "NC", "Carteret"},
    {"Radio Island", Match::kExact, SecondKind::kFoundCity, "Radio Island", nullptr, "NC", "Carteret"},
    {"Purchase from Southeastern Ponds Aquaculture", Match::kContains, SecondKind::kSupplier,
     "Southeastern Ponds Aquaculture", "Currie", "NC", "Pender"},
    {"Purchase from Dynasty Marine Assoc.", Match::kContains, SecondKind::kSupplier, "Dynasty Marine Assoc",
     "Marathon", "FL", "Monroe"},
    {"Donated by UNCW aquaculture facility", Match::kContains, SecondKind::kSupplier,
     "UNCW Aquaculture Facility", "Wilmington", "NC", "New Hanover"},
    {"Emerald Isle", Match::kExact, SecondKind::kFoundCity, "Emerald Isle", nullptr, "NC", "Carteret"},
};

void SetFound(PatientFinderInfo& finder, const char* addr, const char* city, const char* state, const char* county) {
  finder.found_addr = addr;
  finder.found_city = city;
  finder.found_state = state;
  finder.found_county = county;
  finder.found_country = kCountry;
}

// After "United States": the state, the supplier or the town, then (for a
// state) the address and possibly a state written once more.
int ApplyUnitedStatesSite(PatientFinderInfo& finder, Tokenizer& tokens) {
  const char* second = NextTrimmed(tokens, "/,");
  if (second == nullptr) return 1;
  const SecondPlace* place = nullptr;
  for (const SecondPlace& candidate : kSecondPlaces) {
    if (Matches(second, candidate.token, candidate.match)) {
      place = &candidate;
      break;
    }
  }
  if (place == nullptr) {
    std::printf("\tERROR: Unknown state: '%s'\n", second);
    return 1;
  }
  switch (place->kind) {
    case SecondKind::kSupplier:
      finder.presenter_org = place->name;
      if (place->city != nullptr) finder.presenter_city = place->city;
      finder.presenter_state = place->state;
      finder.presenter_county = place->county;
      finder.presenter_country = kCountry;
      return 0;
    case SecondKind::kFoundCity:
      SetFound(finder, "", place->name, place->state, place->county);
      return 0;
    case SecondKind::kState:
      break;
  }
  finder.found_state = place->name;
  const char* address = NextTrimmed(tokens, "/,");
  if (address == nullptr) return 1;
  finder.found_addr = address;
  // Written after the address, the state comes as it stands, blanks and all.
  if (const char* state = tokens.Next("/,")) finder.found_state = state;
  return 0;
}

// ---------------------------------------------------------------------------
// Release places

struct ReleaseState {
  const char* token;
  const char* state;
  const char* city;    // null: the third token is the location instead
  const char* county;  // null: left as it is
};

constexpr ReleaseState kReleaseStates[] = {
    {"North Carolina", "NC", nullptr, nullptr},
    {"Georgia", "GA", nullptr, nullptr},
    {"Louisiana", "LA", nullptr, nullptr},
    {"Southeast", "NC", "Banner Elk", nullptr},
    {"South", "NC", nullptr, "Jones"},
};

}  // namespace

int ApplyCollectionSite(PatientFinderInfo& finder, const char* place) {
  Text<128> copy{};
  copy = place;
  Tokenizer tokens(copy.view());
  const char* first = NextTrimmed(tokens, "/,");
  if (first == nullptr) return 1;
  for (const CollectionSite& site : kLocalSites) {
    if (Matches(first, site.token, site.match)) {
      SetFound(finder, site.addr, site.city, site.state, site.county);
      return 0;
    }
  }
  if (std::strcmp(first, kUnitedStates) != 0) {
    std::printf("\tERROR: Unknown country: '%s'\n", first);
    return 1;
  }
  finder.found_country = kCountry;
  return ApplyUnitedStatesSite(finder, tokens);
}

int ParseReleasePlace(ReleaseRecord& release, const char* place) {
  Text<128> copy{};
  copy = place;
  Tokenizer tokens(copy.view());
  const char* first = NextTrimmed(tokens, "/");
  if (first == nullptr) return 1;
  if (std::strcmp(first, "Atlantic Ocean") == 0) {
    release.country = kCountry;
    release.state = "NC";
    release.location = "Atlantic Ocean";
    return 0;
  }
  if (std::strcmp(first, kUnitedStates) != 0) {
    std::printf("\tERROR: Unknown release country: '%s'\n", first);
    return 1;
  }
  release.country = kCountry;
  const char* second = NextTrimmed(tokens, "/");
  if (second == nullptr || second[0] == '\0') return 0;
  for (const ReleaseState& state : kReleaseStates) {
    if (std::strcmp(second, state.token) != 0) continue;
    release.state = state.state;
    if (state.city != nullptr) {
      release.city = state.city;
    } else if (state.county != nullptr) {
      release.county = state.county;
    } else {
      const char* location = NextTrimmed(tokens, "/,");
      if (location != nullptr && location[0] != '\0') release.location = location;
    }
    return 0;
  }
  std::printf("\tERROR: Unknown release state: '%s'\n", second);
  return 1;
}
