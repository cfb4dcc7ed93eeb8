#include "jobs/sbr/sbr_conversions.h"

#include <gtest/gtest.h>

#include <string>

#include "jobs/sbr/sbr_site.h"

namespace {

TEST(SbrConversions, PatientIdsNumberEachYearInFileOrder) {
  const char* const cases[][2] = {  // case number, patient id ("" when refused)
      {"LA-16-001", "2016-0001"}, {"SF-16-001", "2016-0002"},  // both centres share a year
      {"LA-15-9", "2015-0001"},   {"LA-O9-3", "2009-0001"},    // a letter O typed for the zero
      {"LA-o9-4", "2000-0001"},   // only a capital O is read as zero; "o9" reads as 0
      {"LA-2016-7", "2016-0003"}, {"LA-00-1", "2000-0002"},  {"LA--5", "2000-0003"},  // empty year: 0
      {"LA-17-001", ""},          {"LA-1999-1", ""},         // no counter outside 2000..2016
      {"LA16001", ""},            {"LA-16", ""},             {"", ""},
      {"LA-16-001-very-long-case-number", "2016-0004"},
      {"LAXXXXXXXXXXXXXXXXXXXXXXXXXXXXXXXXX-16-1", ""},  // the dashes lie beyond 31 characters
  };
  SbrYearCounters counters{};
  for (const auto& [case_number, expected] : cases) {
    Text<16> patient_id{};
    patient_id = "kept";
    bool made = MakeSbrPatientId(case_number, counters, patient_id);
    EXPECT_EQ(made, expected[0] != '\0') << case_number;
    EXPECT_EQ(patient_id, made ? expected : "kept") << case_number;
  }
  EXPECT_EQ(counters.taken[16], 4);
  EXPECT_EQ(counters.taken[0], 3);
}

TEST(SbrConversions, AgeFromCodesThenDescription) {
  const char* const cases[][4] = {  // description, second-choice code, first-choice code, age
      {"Adult", " ", "HY", "HY"},  {"Adult", "SY", " ", "SY"},  {"Adult", "SY", "A", "SY"},  // codes win
      {nullptr, nullptr, nullptr, "UNK"}, {"", " ", " ", "UNK"}, {" ", " ", " ", "UNK"},
      {"adult female", " ", " ", "AHY"}, {"\"ADULT\"", " ", " ", "AHY"}, {"A", " ", " ", "AHY"},
      {"AD", " ", " ", "AHY"},           {"ad", " ", " ", "UNK"},        {"ahy?", " ", " ", "AHY"},
      {"asy", " ", " ", "ASY"},          {"ASY+", " ", " ", "UNK"},      {"sy/TY", " ", " ", "SY"},
      {"2nd Winter", " ", " ", "SY"},    {"2y", " ", " ", "SY"},         {"ty", " ", " ", "TY"},
      {"3Y", " ", " ", "TY"},            {"4y", " ", " ", "4Y"},         {"ATY female", " ", " ", "ATY"},
      {"chick (DOWNY)", " ", " ", "HY"}, {"Nestling", " ", " ", "HY"},   {"nestling, 2 days", " ", " ", "HY"},
      {"juv", " ", " ", "HY"},           {"Juvenile male", " ", " ", "HY"}, {"fy", " ", " ", "HY"},
      {"Sub-adult Chick", " ", " ", "HY"}, {"sub-adult chick", " ", " ", "UNK"},  // that phrase is exact
      {"egg (pipped)", " ", " ", "Egg"}, {"fledgling", " ", " ", "HY"},  {"\"Fledgling\"", " ", " ", "HY"},
      {"HY female", " ", " ", "HY"},     {"1Y", " ", " ", "HY"},         {"1y", " ", " ", "UNK"},
      {"sa", " ", " ", "HY"},
      {"sub adult sub-ADULT", " ", " ", "HY"}, {"Sub-adult", " ", " ", "HY"},
      {"2 Weeks ?", " ", " ", "L"},      {"4 weeks", " ", " ", "L"},     {"3 weeks", " ", " ", "UNK"},
      {"Hatch year", " ", " ", "UNK"},
  };
  for (const auto& [description, second, first, expected] : cases) {
    Text<15> age{};
    MapSbrAge(age, description, second, first);
    EXPECT_EQ(age, expected) << (description ? description : "(null)") << " / " << (second ? second : "(null)")
                             << " / " << (first ? first : "(null)");
  }
}

TEST(SbrConversions, SexFromFirstLetter) {
  const char* const cases[][2] = {{"male", "M"}, {"M", "M"}, {"Female", "F"}, {"f", "F"},
                                  {"", "UNK"},   {" M", "UNK"}, {"Unknown", "UNK"}, {nullptr, "UNK"}};
  for (const auto& [sex, expected] : cases) {
    Text<11> result{};
    MapSbrSex(sex, result);
    EXPECT_EQ(result, expected) << (sex ? sex : "(null)");
  }
}

TEST(SbrConversions, TrimAndUnquoteTakesOneQuoteAtEachEnd) {
  const char* const cases[][2] = {
      {"  \"Eared Grebe\" \r\n", "Eared Grebe"}, {"Clark's Grebe\"", "Clark's Grebe"},
      {"\"Brant", "Brant"}, {"\"\"Brant\"\"", "\"Brant\""}, {"\"", ""}, {"", ""}, {" \t ", ""},
      {"\f\"x\"", "\f\"x"},  // a form feed is not trimmed at the front, so that quote stays
  };
  for (const auto& [input, expected] : cases) {
    std::string text(input);
    TrimAndUnquote(text.data());
    EXPECT_EQ(std::string(text.c_str()), expected) << input;
  }
}

TEST(SbrConversions, FoundAddressParts) {
  struct Row {
    const char* address;
    const char* expected;  // name|addr|city|state|zip
  };
  const Row rows[] = {
      {"Berth 46, San Pedro, CA 90731", "|Berth 46|San Pedro|CA|90731"},
      {"Crown Beach, Alameda,  94501", "|Crown Beach|Alameda|CA|94501"},  // a zip alone keeps "CA"
      {"Crown Beach, Alameda, OR", "|Crown Beach|Alameda|OR|"},
      {"Crown Beach, Alameda, NV  89501, USA", "|Crown Beach|Alameda|NV|89501, USA"},
      {"Pier J, Long Beach", "|Pier J|Long Beach|CA|"},
      {"Malibu Lagoon", "|Malibu Lagoon||CA|"},
      {"", "|||CA|"},
      {"Astoria, OR", "||Astoria|OR|"},
      {"Astoria, OR 97103", "|Astoria|OR 97103|CA|"},  // only the exact text is the known place
      {sbr_site::kDealershipAddressCell, "Coastline Motors|4420 Coastline Auto Plaza|Oxnard|CA|"},
      {"4420 Coastline Auto Plaza, Oxnard, CA 93030", "Coastline Motors|4420 Coastline Auto Plaza|Oxnard|CA|"},
      {"Somewhere along the old coast highway north of the pier", "|Somewhere along the old coast h||CA|"},
      {"  Somewhere along the old coast highway", "|Somewhere along the old coast||CA|"},  // cut, then trimmed
      {"  Near the pier", "|Near the pier||CA|"},
      {"A very long street name that runs on and on, Town", "|A very long street name that ru|Town|CA|"},
  };
  for (const Row& row : rows) {
    PatientFinderInfo finder{};
    finder.found_state = "CA";  // the job's default
    std::string address(row.address);
    ParseSbrFoundAddress(address.data(), finder);
    std::string parts = std::string(finder.found_name.view()) + "|" + std::string(finder.found_addr.view()) + "|" +
                        std::string(finder.found_city.view()) + "|" + std::string(finder.found_state.view()) + "|" +
                        std::string(finder.found_zip.view());
    EXPECT_EQ(parts, row.expected) << row.address;
  }
}

TEST(SbrConversions, AuxMarkerBySpecies) {
  const char* const cases[][4] = {  // species, marker, result, aux_marker afterwards
      {"BRPE", "A7", "0", "01A A7 0305"},  {"SNEG", "K12", "0", "01A K12 0105"}, {"BCNH", "Z05", "0", "01A Z05 0506"},
      {"WEGU", "B3X", "1", "kept"},        {"BRPE", "A", "0", "kept"},           {"WEGU", " ", "0", "kept"},
      {"BRPE", "ABCDE", "0", "01A ABCDE 0305"},  // fills the field exactly
      {"BRPE", "ABCDEF", "2", "kept"},     {"brpe", "A7", "1", "kept"},
  };
  for (const auto& [species, marker, result, expected] : cases) {
    PatientRecord patient{};
    patient.species = species;
    patient.aux_marker = "kept";
    EXPECT_EQ(MakeSbrAuxMarker(marker, patient), std::stoi(result)) << species << " " << marker;
    EXPECT_EQ(patient.aux_marker, expected) << species << " " << marker;
  }
  PatientRecord patient{};
  patient.species = "BRPE";
  EXPECT_EQ(MakeSbrAuxMarker(nullptr, patient), 0);
  EXPECT_TRUE(patient.aux_marker.empty());
}

TEST(SbrConversions, WeightAndCulmenUnits) {
  struct Row {
    const char* text;
    float grams;
    float millimetres;
  };
  const Row rows[] = {{"850", 850, 850},   {"1.2", 1200, 12},  {"5.4", 5400, 54},  {"3.2 kg", 3200, 32},
                      {"540g", 540, 540},  {" ", 0, 0},        {"", 0, 0},         {"n/a", 0, 0},
                      {".5", 500, 5},      {"1,200", 1, 1},    {"-2", -2, -2}};
  for (const Row& row : rows) {
    EXPECT_FLOAT_EQ(ParseWeightGrams(row.text), row.grams) << row.text;
    EXPECT_FLOAT_EQ(ParseCulmenMm(row.text), row.millimetres) << row.text;
  }
}

}  // namespace
