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
  // Any order, stray words skipped, the last occurrence wins.
  Parsed p = Parse({"-year", "2011x", "extra", "-org", "A", "-type", "x", "-region", "LA", "-org", "KWRC"});
  EXPECT_TRUE(p.valid);
  EXPECT_EQ(p.org, "KWRC");
  EXPECT_EQ(p.type, "x");
  EXPECT_EQ(p.year, 2011);  // the year is read like atol
  EXPECT_EQ(p.region, "LA");
  for (const auto& [word, year] : {std::pair{"-5", -5}, std::pair{"abc", 0}}) {
    p = Parse({"-org", "K", "-type", "x", "-year", word});
    EXPECT_TRUE(p.valid) << word;
    EXPECT_EQ(p.year, year) << word;
  }
  EXPECT_TRUE(Parse({"-org", "ABCDEFGHIJKLMNOPQRSTUVWXYZ01234", "-type", "x", "-year", "1"}).valid);  // 31 fit
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
}

}  // namespace
