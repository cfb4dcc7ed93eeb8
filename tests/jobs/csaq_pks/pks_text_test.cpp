#include "jobs/csaq_pks/pks_text.h"

#include <gtest/gtest.h>

#include <string>

namespace {

TEST(PksTextTest, DatesAndNumbers) {
  const std::pair<const char*, const char*> qualified[] = {
      {"2014-07-02T00:00:00", "2014-07-02"},  // the samples pin "~ before " and "~ from "
      {"~ after 2012-05-01", "~ after 20"},      // not a qualifier it knows
      {"x ~ from 2009-06-15", "m 2009-06-"},      // taken to stand at the start
      {"", ""},
  };
  for (const auto& [note_date, date] : qualified) EXPECT_EQ(StripDateQualifier(note_date), date) << note_date;

  const std::pair<const char*, int> counts[] = {{"12", 12}, {" -3", -3}, {"+4 animals", 4}, {"7.9", 7}};
  for (const auto& [text, value] : counts) {
    int read = 99;
    EXPECT_TRUE(ReadCount(text, read)) << text;
    EXPECT_EQ(read, value) << text;
  }
  for (const char* text : {"", "one", "-", " x1"}) {
    int read = 99;
    EXPECT_FALSE(ReadCount(text, read)) << text;
    EXPECT_EQ(read, 99) << text;
  }
  double value = 0;
  EXPECT_TRUE(ReadDecimal("2.5 kg", value));
  EXPECT_EQ(value, 2.5);
  for (const char* text : {"n/a", "", "nan", "inf"}) EXPECT_FALSE(ReadDecimal(text, value)) << text;
}

TEST(PksTextTest, DropFirstApostrophe) {
  const std::pair<const char*, const char*> cases[] = {
      {"a'b'c", "ab'c"}, {"'", ""}, {"none", "none"}};  // the samples pin a name with one
  for (const auto& [text, result] : cases) {
    std::string buffer = text;
    DropFirstApostrophe(buffer.data());
    EXPECT_STREQ(buffer.c_str(), result);
    std::string whole = text;
    DropFirstApostrophe(whole);
    EXPECT_EQ(whole, result);
  }
}

// The replacements it is built from come with it; the samples pin the paragraphs, lists, tables and quotes.
TEST(PksTextTest, CleanMarkup) {
  const std::pair<const char*, const char*> cases[] = {
      {"&lt;div&gt;&lt;strong&gt;A&lt;/strong&gt;&amp;nbsp;&lt;em&gt;b&lt;/em&gt;&lt;/div&gt;", "A b"},
      {"&lt;span class=&quot;c&quot;&gt;kept&lt;/span&gt; &lt;pre&gt;code", "kept code"},
      {"a &lt; b &amp;amp; c", "a &lt; b &amp;amp; c"},  // entities outside the list stay
      {"&lt;p no end", "&lt;p no end"}, {"&lt;td x=1&gt;A&lt;td&gt;B&lt;td no end", "AB&lt;td no end"},
  };
  for (const auto& [markup, plain] : cases) {
    std::string text = markup;
    CleanMarkup(text);
    EXPECT_EQ(text, plain) << markup;
  }
}

}  // namespace
