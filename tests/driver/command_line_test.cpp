#include "driver/command_line.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace {

// A fresh copy of the program's option table over local settings.
struct Parsed {
  Text<32> org{};
  Text<32> type{};
  int32_t year = 0;
  Text<32> region{};
  bool valid = false;
};

Parsed Parse(std::vector<const char*> words) {
  Parsed p;
  OptionSpec table[] = {
      {"-org", kOptionRequired, kOptionString, p.org.data(), sizeof p.org.chars},
      {"-type", kOptionRequired, kOptionString, p.type.data(), sizeof p.type.chars},
      {"-year", kOptionRequired, kOptionLong, &p.year, sizeof p.year},
      {"-region", kOptionOptional, kOptionString, p.region.data(), sizeof p.region.chars},
  };
  words.insert(words.begin(), "CorvanaDataImporter");
  CommandLine command_line(static_cast<int>(words.size()), words.data(), table, 4);
  p.valid = command_line.IsValid();
  return p;
}

TEST(CommandLineTest, ValidRuns) {
  Parsed p = Parse({"-org", "KWRC", "-type", "x", "-year", "2011"});
  EXPECT_TRUE(p.valid);
  EXPECT_EQ(p.org, "KWRC");
  EXPECT_EQ(p.type, "x");
  EXPECT_EQ(p.year, 2011);
  EXPECT_TRUE(p.region.empty());

  p = Parse({"-year", "2011", "extra", "-org", "KWRC", "-type", "x", "-region", "LA"});
  EXPECT_TRUE(p.valid);
  EXPECT_EQ(p.region, "LA");

  p = Parse({"-org", "A", "-type", "t", "-year", "1", "-org", "B"});
  EXPECT_EQ(p.org, "B");  // the last occurrence wins
}

TEST(CommandLineTest, YearValuesAreReadLikeAtol) {
  const std::pair<const char*, int32_t> cases[] = {{"2011x", 2011}, {"-5", -5}, {"abc", 0}};
  for (const auto& [word, year] : cases) {
    Parsed p = Parse({"-org", "KWRC", "-type", "x", "-year", word});
    EXPECT_TRUE(p.valid) << word;
    EXPECT_EQ(p.year, year) << word;
  }
}

TEST(CommandLineTest, InvalidRuns) {
  const std::vector<std::vector<const char*>> cases = {
      {},
      {"-org", "KWRC", "-type", "x", "-year"},                 // the year has no value
      {"-org", "-type", "patient", "-year", "2011"},           // -type becomes the organisation
      {"-ORG", "KWRC", "-type", "x", "-year", "2011"},         // option words are case-sensitive
      {"-org=KWRC", "-type", "x", "-year", "2011"},
      {"-org", "ABCDEFGHIJKLMNOPQRSTUVWXYZ0123456", "-type", "x", "-year", "2011"},  // 33 characters
  };
  for (const auto& words : cases) {
    EXPECT_FALSE(Parse(words).valid) << (words.empty() ? "(none)" : words[0]);
  }
  Parsed p = Parse({"-org", "-type", "patient", "-year", "2011"});
  EXPECT_EQ(p.org, "-type");
  Parsed longest = Parse({"-org", "ABCDEFGHIJKLMNOPQRSTUVWXYZ01234", "-type", "x", "-year", "1"});
  EXPECT_TRUE(longest.valid);  // 31 characters fit
}

}  // namespace
