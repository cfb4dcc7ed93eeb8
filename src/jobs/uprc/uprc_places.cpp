#include "jobs/uprc/uprc_places.h"

#include <cstring>
#include <string_view>

#include "util/strings.h"
#include "util/tokenizer.h"

namespace {

// The centre's usual places, first match wins. Names and towns are spelled
// as the centre's existing records have them, typos included, so imported
// rows group with the rows already there. Texts are written as they read
// ("Jackson's Gap"): the store escapes them in the statement.
constexpr UprcPlace kPlaces[] = {
    {"URC", "Upland Raptor Center", "Auburn", "AL"},
    {"URC Education", "Upland Raptor Center", "Auburn", "AL"},
    {"URC Amphitheater", "Upland Raptor Center", "Auburn", "AL"},
    {"Arboretum", "Arboretum", "Auburn", "AL"},
    {"Soccer Complex", "Soccer Complex", "Auburn", "AL"},
    {"AU Main Campus", "Auburn University", "Auburn", "AL"},
    {"Auburn University", "Auburn University", "Auburn", "AL"},
    {"Chewacla State Park", "Chewacla State Park", "Auburn", "AL"},
    {"AWARE ", "AWARE", "Lithonia", "GA"},
    {"AWARE", "AWARE", "Lithonia", "GA"},
    {"AWARE for Release", "AWARE", "Lithonia", "GA"},
    {"AWARE for Education placement", "AWARE", "Lithonia", "GA"},
    {"AWARE for EDU placement", "AWARE", "Lithonia", "GA"},
    {"AWARE for EDU transfer", "AWARE", "Lithonia", "GA"},
    {"Freedom Ranch", "Freedom Ranch", "Purvis", "MS"},
    {"Opelika Wood Duck Heritage Park", "Opelika Wood Duck Heritage Park", "Opelika", "AL"},
    {"Forest Ecology Preserve", "Forest Ecology Preserve", "Auburn", "AL"},
    {"Tuskegee National Forest", "Tuskegee National Forest", "Tuskegee", "AL"},
    {"Beauregard", "Beauregard High School", "Opekika", "AL"},
    {"Beauregard High School", "Beauregard High School", "Opekika", "AL"},
    {"FEP summer camp", "Forest Ecology Preserve", "Auburn", "AL"},
    {"Phenix City", "", "Phenix City", "AL"},
    {"Kiesel Park", "Kiesel Park", "Auburn", "AL"},
    {"Indian Springs School", "Indian Springs School", "Helena", "AL"},
    {"Squam Lake Natural Science Center", "", "", ""},
    {"Montgomery Zoo", "Montgomery Zoo", "Montogmery", "AL"},
    {"Unity College", "Unity College", "Unity", "ME"},
    {"Storybook Farms", "Storybook Farms", "Auburn", "AL"},
    {"Oxbow Meadows", "Owbow Meadows", "Columbus", "GA"},
    {"Wesselman Nature Society", "Wesselman Nature Society", "Evansville", "IN"},
    {"Town Creek Park", "Town Creek Park", "Auburn", "AL"},
    {"Camp ASCCA", "Camp ASCCA", "Jackson's Gap", "AL"},
    {"Lake Guntersville State Park", "Lake Guntersville State Park", "Guntersville", "AL"},
    {"Mary Olive Thomas Tract", "Mary Olive Thomas Tract", "Auburn", "AL"},
    {"Rickwood Caverns", "Rickwood Caverns", "Warrior", "AL"},
    {"Wildlife Recovery Association", "Wildlife Recovery Association", "Shepherd", "MI"},
    {"BHM Zoo", "Birmingham Zoo", "Birmingham", "AL"},
    {"Cochran Mill Nature Center", "Cochran Mill Nature Center", "Palmetto", "GA"},
    {"Wild Adventures Theme Park", "Wild Adventures Theme Park", "Valdosta", "GA"},
    {"Mississippi Sandhill Crane National Wildlife Refuge", "", "", "MI"},
    {"Kennesaw Mountain", "Kennesaw Mountain", "Kennesaw", "GA"},
    {"EAMC", "EAMC", "Opelika", "AL"},
    {"Birmingham Zoo", "Birmingham Zoo", "Birmingham", "AL"},
    {"AU Fisheries", "AU Fisheries", "Auburn", "AL"},
    {"Opelika Sports Complex", "Opelika Sports Complex", "Opelika", "AL"},
    {"Camp McDowell", "Camp McDowell", "Nauvoo", "AL"},
};

// Every row must fit the widths the centre's place list allows: key and name
// 63 characters, town 31, state 7.
constexpr bool RowsFit() {
  for (const UprcPlace& place : kPlaces) {
    if (std::string_view(place.key).size() > 63 || std::string_view(place.name).size() > 63 ||
        std::string_view(place.town).size() > 31 || std::string_view(place.state).size() > 7) {
      return false;
    }
  }
  return true;
}
static_assert(RowsFit(), "a place table row is wider than its column");

void Trim(char* text) {
  TrimLeft(text);
  TrimRight(text);
}

}  // namespace

std::span<const UprcPlace> UprcPlaces() { return kPlaces; }

const UprcPlace* FindUprcPlace(const char* text) {
  for (const UprcPlace& place : kPlaces) {
    if (EqualsNoCase(place.key, text)) return &place;
  }
  return nullptr;
}

void SplitPlaceText(const char* text, Text<64>& name, Text<32>& town, Text<21>& state) {
  Tokenizer tokenizer(text);
  char* part[3];
  int found = TakeFields(tokenizer, part, 3, ",", ",");
  for (int i = 0; i < found; ++i) Trim(part[i]);
  if (found == 3) {
    name = part[0];
    town = part[1];
    state = part[2];
  } else if (found == 2) {
    town = part[0];
    state = part[1];
  } else if (found == 1) {
    state = part[0];
  }
  Trim(name.data());
  Trim(town.data());
  Trim(state.data());
}

void ResolveTransferPlace(const char* text, TransferRecord& transfer) {
  if (std::strstr(text, "Release") != nullptr) transfer.reason = "Continued care";
  if (const UprcPlace* place = FindUprcPlace(text)) {
    transfer.name = place->name;
    transfer.city = place->town;
    transfer.state = place->state;
  } else {
    SplitPlaceText(text, transfer.name, transfer.city, transfer.state);
  }
}

void ResolveReleasePlace(const char* text, ReleaseRecord& release) {
  if (const UprcPlace* place = FindUprcPlace(text)) {
    release.location = place->name;
    release.city = place->town;
    release.state = place->state;
  } else {
    SplitPlaceText(text, release.location, release.city, release.state);
  }
}
