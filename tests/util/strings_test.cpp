#include "util/strings.h"

#include <gtest/gtest.h>

#include <string>

namespace {

struct InPlaceCase {
  void (*operation)(char*);
  const char* input;
  const char* expected;
};

TEST(StringsTest, InPlaceTrimming) {
  const InPlaceCase cases[] = {
      {DropLeadingSpace, "  two", " two"}, {DropLeadingSpace, "\tword", "\tword"}, {DropLeadingSpace, "", ""},
      {TrimLeft, " \t\r\n", ""}, {TrimLeft, "\fword", "\fword"}, {TrimLeft, " \vword", "\vword"},
      {TrimLeft, "\t word ", "word "},
      {TrimRight, "", ""}, {TrimRight, "word \t\r\n", "word"}, {TrimRight, "word\v\f", "word"}, {TrimRight, " \t ", ""},
      {TrimRight, "caf\xe9\xa0", "caf\xe9\xa0"},  // latin1 bytes are never white space
  };
  for (const InPlaceCase& c : cases) {
    char buffer[32];
    std::snprintf(buffer, sizeof buffer, "%s", c.input);
    c.operation(buffer);
    EXPECT_STREQ(buffer, c.expected) << "input '" << c.input << "'";
  }
}

TEST(StringsTest, StripQuotes) {
  const std::pair<const char*, const char*> cases[] = {
      {"\"", ""}, {"ab\"cd", "ab"}, {"\"open ended", "open ended"}, {"\"Wang Li\" and friends", "Wang Li"},
      {"plain text", "plain text"}, {"", ""},
  };
  for (const auto& [source, expected] : cases) {
    char target[32];
    StripQuotes(source, target, sizeof target);
    EXPECT_STREQ(target, expected) << source;
    char same[32];
    std::snprintf(same, sizeof same, "%s", source);
    StripQuotes(same, same, sizeof same);
    EXPECT_STREQ(same, expected) << "in place: " << source;
  }
  Text<6> small{};
  StripQuotes("\"abcdefghij\"", small);
  EXPECT_EQ(small, "abcde");  // cut at the field, never past it
}

TEST(StringsTest, WrapLongLines) {
  // Blanks only at columns 10 and 90 of a 100-character line.
  std::string line(100, 'a');
  line[9] = line[89] = ' ';
  std::string wrapped = line;
  EXPECT_TRUE(WrapLongLines(wrapped.data(), 80));
  line[89] = '\n';
  EXPECT_EQ(wrapped, line);

  // Each existing line is counted on its own; a line without blanks past 80 keeps its length.
  std::string two = std::string(50, 'd') + "\n" + std::string(85, 'e') + "\t" + "tail";
  EXPECT_TRUE(WrapLongLines(two.data(), 80));
  EXPECT_EQ(two, std::string(50, 'd') + "\n" + std::string(85, 'e') + "\n" + "tail");
  std::string no_blank(120, 'f');
  EXPECT_FALSE(WrapLongLines(no_blank.data(), 80));
}

// Hashed look-ups key on LowerAscii where a search compared with
// EqualsNoCase: both must find the same names.
TEST(StringsTest, LowerAsciiKeysMatchWhereEqualsNoCaseDoes) {
  const std::pair<const char*, const char*> cases[] = {
      {"Great Horned Owl", "great horned OWL"}, {"Harris's Hawk", "HARRIS'S HAWK"}, {"", ""},
      {"Caf\xe9", "CAF\xe9"}, {"Caf\xe9", "Caf\xc9"}, {"Owl", "Owl "}, {"A-7B", "a-7b"}, {"[Z]", "[z]"},
  };
  for (const auto& [a, b] : cases) {
    EXPECT_EQ(LowerAscii(a) == LowerAscii(b), EqualsNoCase(a, b)) << "'" << a << "' and '" << b << "'";
  }
  EXPECT_EQ(LowerAscii("Caf\xc9 ZOO@["), "caf\xc9 zoo@[");  // latin1 bytes and neighbours of A-Z pass
}

TEST(StringsTest, ToIntReadsLikeAtoiWithoutOverflow) {
  const std::pair<const char*, int> cases[] = {
      {" 2011x", 2011}, {"-5", -5}, {"abc", 0}, {"99999999999999999999", INT_MAX}, {"-99999999999999999999", INT_MIN}};
  for (const auto& [text, value] : cases) EXPECT_EQ(ToInt(text), value) << text;
}

TEST(TextTest, AssignmentCutsAtCapacity) {
  Text<4> code{};
  code = "E24X";
  EXPECT_EQ(code, "E24");
  code.Format("%d-%.4d", 12, 7);
  EXPECT_EQ(code, "12-");
  code = nullptr;
  EXPECT_TRUE(code.empty());
}

}  // namespace
