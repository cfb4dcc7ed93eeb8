#include "util/tokenizer.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "support/test_database.h"
#include "util/line_reader.h"

namespace {

std::vector<std::string> All(const char* text, bool keep_empty, const char* separators) {
  Tokenizer tokenizer(text);
  std::vector<std::string> fields;
  while (char* field = keep_empty ? tokenizer.NextField(separators) : tokenizer.Next(separators)) {
    fields.push_back(field);
  }
  return fields;
}

TEST(TokenizerTest, SeparatorRulesAndTakeFields) {
  EXPECT_EQ(All("\ta\t\tb\tc\n", false, "\t\n"), (std::vector<std::string>{"a", "b", "c"}));
  EXPECT_EQ(All("\ta\t\tb\tc", true, "\t"), (std::vector<std::string>{"", "a", "", "b", "c"}));
  EXPECT_TRUE(All("\t\t\n", false, "\t\n").empty());

  Tokenizer tokenizer("one\ttwo\tthree words\r\n");
  char* fields[4];
  EXPECT_EQ(TakeFields(tokenizer, fields, 4, "\t", "\t\r\n"), 3);
  EXPECT_STREQ(fields[2], "three words\r\n");  // not the last field, so it keeps its line end
  EXPECT_EQ(fields[3], nullptr);

  Tokenizer last("a\tb c\r\n");
  char* two[2];
  EXPECT_EQ(TakeFields(last, two, 2, "\t", "\t\r\n"), 2);
  EXPECT_STREQ(two[1], "b c");
}

TEST(TokenizerTest, TakeEveryFieldCountsTheSeparators) {
  const char* const cases[][2] = {  // line, fields found of at most 4, joined by '|'
      {"a\t\tc", "3:a||c"}, {"a\tb\t", "3:a|b|"}, {"", "1:"}, {"a\tb\tc\td\te", "4:a|b|c|d"}, {"\t", "2:|"}};
  for (const auto& [line, expected] : cases) {
    Tokenizer tokenizer(line);
    char* fields[4];
    int found = TakeEveryField(tokenizer, fields, 4, "\t");
    std::string joined = std::to_string(found) + ":";
    for (int i = 0; i < found; ++i) joined += std::string(i > 0 ? "|" : "") + fields[i];
    EXPECT_EQ(joined, expected) << line;
    if (found < 4) {
      EXPECT_EQ(fields[found], nullptr) << line;
    }
  }
  // Only a line with nothing before its line end is empty: blanks and tabs
  // are a line's content.
  EXPECT_TRUE(IsEmptyLine("\r\n"));
  EXPECT_TRUE(IsEmptyLine(""));
  EXPECT_FALSE(IsEmptyLine(" \t\r\n"));
  EXPECT_FALSE(IsEmptyLine("\t\n"));
}

TEST(TokenizerTest, HasFieldsReportsShortLines) {
  testing::internal::CaptureStdout();
  EXPECT_TRUE(HasFields(14, 14, "12345"));
  EXPECT_FALSE(HasFields(9, 14, "12345"));
  EXPECT_EQ(testing::internal::GetCapturedStdout(), "\tERROR - only 9 of 14 fields for '12345', line skipped\n");
}

TEST(LineReaderTest, ReadsWindowsTextMode) {
  std::string dir = MakeTempDir();
  std::string path = dir + "/lines.txt";
  WriteFile(path, "first\r\nsecond\rstill\r\n\xe9t\xe9\n0123456789ABC\nlast\x1aignored");
  LineReader reader(path.c_str(), 10);
  ASSERT_TRUE(reader.is_open());
  std::vector<std::string> lines;
  std::string line;
  testing::internal::CaptureStderr();
  while (reader.ReadLine(line)) lines.push_back(line);
  EXPECT_EQ(lines, (std::vector<std::string>{"first\n", "second\rsti", "ll\n", "\xe9t\xe9\n", "0123456789",
                                             "ABC\n", "last"}));
  // What a Ctrl-Z hides is named on stderr (a lone CR counts as a line end, as
  // in the XML reader); a Ctrl-Z that ends the file is not.
  EXPECT_EQ(testing::internal::GetCapturedStderr(),
            "Note: '" + path + "' ends at a Ctrl-Z (byte 0x1A) on line 6; the 7 bytes after it were not read\n");
  WriteFile(path, "one\r\ntwo\r\n\x1a");
  LineReader dos_export(path.c_str(), 10);
  testing::internal::CaptureStderr();
  while (dos_export.ReadLine(line)) {
  }
  EXPECT_EQ(testing::internal::GetCapturedStderr(), "");
  LineReader missing((dir + "/none.txt").c_str(), 10);
  EXPECT_FALSE(missing.is_open());
  EXPECT_FALSE(missing.ReadLine(line));
}

}  // namespace
