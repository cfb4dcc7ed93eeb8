#include "jobs/sbr/sbr_conversions.h"

#include <gtest/gtest.h>

#include <string>

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

// How a description is matched (exact, any case, leading part) and that a code wins; the samples pin the phrases.
TEST(SbrConversions, AgeFromCodesThenDescription) {
  const char* const cases[][4] = {  // description, second-choice code, first-choice code, age
      {"Adult", " ", "HY", "HY"},  {"Adult", "SY", " ", "SY"},  {"Adult", "SY", "A", "SY"},  // codes win
      {nullptr, nullptr, nullptr, "UNK"}, {" ", " ", " ", "UNK"},   {"adult female", " ", " ", "AHY"},
      {"\"ADULT\"", " ", " ", "AHY"},   {"AD", " ", " ", "AHY"},   {"ad", " ", " ", "UNK"},
      {"ASY+", " ", " ", "UNK"},          {"sy/TY", " ", " ", "SY"}, {"ATY female", " ", " ", "ATY"},
      {"Sub-adult Chick", " ", " ", "HY"}, {"sub-adult chick", " ", " ", "UNK"},  // that phrase is exact
      {"1y", " ", " ", "UNK"},            {"nestling, 2 days", " ", " ", "HY"}, {"3 weeks", " ", " ", "UNK"},
  };
  for (const auto& [description, second, first, expected] : cases) {
    Text<15> age{};
    MapSbrAge(age, description, second, first);
    EXPECT_EQ(age, expected) << (description ? description : "(null)") << " / " << (second ? second : "(null)");
  }
  for (const char* sex : {" M", "Unknown", static_cast<const char*>(nullptr)}) {
    Text<11> result{};
    MapSbrSex(sex, result);
    EXPECT_EQ(result, "UNK") << (sex ? sex : "(null)");
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
      {"Crown Beach, Alameda,  94501", "|Crown Beach|Alameda|CA|94501"},  // a zip alone keeps "CA"
      {"Crown Beach, Alameda, OR", "|Crown Beach|Alameda|OR|"},
      {"Crown Beach, Alameda, NV  89501, USA", "|Crown Beach|Alameda|NV|89501, USA"},
      {"", "|||CA|"},
      {"Astoria, OR", "||Astoria|OR|"},  // that sample bird's finder is not written
      {"Astoria, OR 97103", "|Astoria|OR 97103|CA|"},  // only the exact text is the known place
      {"Somewhere along the old coast highway north of the pier", "|Somewhere along the old coast h||CA|"},
      {"  Somewhere along the old coast highway", "|Somewhere along the old coast||CA|"},  // cut, then trimmed
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
      // The samples pin each species' code.
      {"WEGU", "B3X", "1", "kept"}, {"BRPE", "A", "0", "kept"}, {"WEGU", " ", "0", "kept"},
      {"BRPE", "ABCDE", "0", "01A ABCDE 0305"},  // fills the field exactly
      {"BRPE", "ABCDEF", "2", "kept"}, {"brpe", "A7", "1", "kept"},
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
