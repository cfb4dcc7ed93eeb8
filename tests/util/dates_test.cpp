#include "util/dates.h"

#include <gtest/gtest.h>

#include <regex>

namespace {

TEST(DatesTest, ParseSlashDate) {
  const std::pair<const char*, const char*> good[] = {
      {"3/4/2011", "2011-03-04"},     {"25/12/2010", "2010-12-25"}, {"13/14/2010", "2010-14-13"},
      {"3/4/11", "2011-03-04"},       {"3/4/99", "2099-03-04"},     {"3/4/1950", "1950-03-04"},
      {"3/4/2016", "2016-03-04"},     {"3/4/2011 10:15", "2011-03-04"}, {"//2011", "2011-00-00"},
      {"0/31/2011", "2011-00-31"},
  };
  for (const auto& [input, expected] : good) {
    Text<11> out{};
    EXPECT_EQ(ParseSlashDate(input, out), 0) << input;
    EXPECT_EQ(out, expected) << input;
  }
  // A month or day of three digits does not fit the field and is never cut into another date.
  for (const char* bad : {"3/4/1949", "3/4/2017", "3-4-2011", "3/4", "", "2011", "5/123/2011", "123/4/2011"}) {
    Text<11> out{};
    out = "untouched";
    EXPECT_EQ(ParseSlashDate(bad, out), 1) << bad;
    EXPECT_EQ(out, "untouched") << bad;
  }
}

TEST(DatesTest, ParseExportDate) {
  const std::pair<const char*, const char*> good[] = {
      {"5/12/2014 10:00:00", "2014-05-12"}, {"5/12/09", "2009-05-12"}, {"5/12/15", "1915-05-12"},
      {"5-12-2014", "2014-05-12"},          {"2014-05-12", "2012-2014-05"}, {"5//12/2014,x", "2014-05-12"},
  };
  for (const auto& [input, expected] : good) {
    char text[32];
    std::snprintf(text, sizeof text, "%s", input);
    Text<16> out{};
    EXPECT_EQ(ParseExportDate(text, out), 0) << input;
    EXPECT_EQ(out, expected) << input;
  }
  char with_time[] = "2014-05-12T00:00:00";
  Text<16> out{};
  EXPECT_EQ(ParseExportDate(with_time, out), 0);
  EXPECT_EQ(out, "2014-05-12");
  EXPECT_STREQ(with_time, "2014-05-12");  // the caller's text is shortened
  for (const char* bad : {"5/12", "5/123/2014", "2014-05-12"}) {  // the last two would need 11 and 12 bytes
    char text[32];
    std::snprintf(text, sizeof text, "%s", bad);
    Text<11> date{};
    date = "untouched";
    EXPECT_EQ(ParseExportDate(text, date), -1) << bad;
    EXPECT_EQ(date, "untouched") << bad;
  }
}

TEST(DatesTest, NowTimestampShape) {
  EXPECT_TRUE(std::regex_match(NowTimestamp(), std::regex(R"(\d{4}-\d\d-\d\d \d\d:\d\d:\d\d)"))) << NowTimestamp();
}

}  // namespace
