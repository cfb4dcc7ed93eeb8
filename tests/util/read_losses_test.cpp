#include "util/read_losses.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "support/losses.h"
#include "support/test_database.h"
#include "util/line_reader.h"
#include "util/tokenizer.h"

namespace {

enum class Rule { kRunOfTabs, kEveryTab };

struct ReadCase {
  const char* name;
  std::string file;  // after a header line
  int fields;        // the fields the "job" takes
  Rule rule;
  std::size_t piece;  // the reader's read size
  std::vector<std::string> entries;
};

// Reads `file` as a job would (header skipped, each line cut once) and
// returns what was reported, file names without their folder.
std::vector<std::string> ReadAsJob(const ReadCase& c) {
  const std::string dir = MakeTempDir() + "/";
  WriteFile(dir + "in.txt", "header\n" + c.file);
  std::vector<LossEntry> entries;
  WatchReadLosses(&entries);
  {
    LineReader reader((dir + "in.txt").c_str(), c.piece);
    std::string text;
    reader.ReadLine(text);
    while (reader.ReadLine(text)) {
      if (c.rule == Rule::kEveryTab) {
        while (!text.empty() && text.back() == '\n') text.pop_back();
      }
      Tokenizer tokenizer(text);
      char* field[16];
      if (c.rule == Rule::kRunOfTabs) {
        TakeFields(tokenizer, field, c.fields, "\t", "\t\r\n");
      } else {
        TakeEveryField(tokenizer, field, c.fields, "\t");
      }
    }
  }
  WatchReadLosses(nullptr);
  std::vector<std::string> shown;
  for (const LossEntry& e : entries) {
    std::string line = ShowLoss(e);
    for (std::size_t at; (at = line.find(dir)) != std::string::npos;) line.erase(at, dir.size());
    shown.push_back(line);
  }
  return shown;
}

TEST(ReadLossesTest, LinesReadOtherwiseThanTheyLook) {
  const std::string long_line = std::string(12, 'a') + "\t" + std::string(12, 'b');  // 25 characters
  const ReadCase cases[] = {
      {"empty first and third cells, one line later", "a\tb\n\tA\t\tB\tC\n", 5, Rule::kRunOfTabs, 1023,
       {"in.txt|columns 1, 3|in.txt line 3|empty cell|[][A][][B][C]|"
        "every cell after an empty one read one more column to the left (2 in all)"}},
      {"trailing empty cells move nothing", "A\tB\t\t\n", 4, Rule::kRunOfTabs, 1023, {}},
      {"a blank in an unread cell is nothing lost", "A\tB\t \n", 2, Rule::kRunOfTabs, 1023, {}},
      {"more cells than read, empty ones kept", "A\t\tB\tC\t\"x\"\n", 3, Rule::kEveryTab, 1023,
       {"in.txt|column 4|in.txt line 2|extra fields|[C][\"x\"]|not read"}},
      {"empty cells stay with every tab a separator", "A\t\tB\n", 3, Rule::kEveryTab, 1023, {}},
      {"line read in three pieces", long_line + "\nnext\n", 2, Rule::kRunOfTabs, 10,
       {"in.txt|line|in.txt line 2|line read in pieces|25 characters|read as 3 lines of at most 10 characters"}},
      {"line end alone in the second piece", std::string(10, 'x') + "\n", 1, Rule::kRunOfTabs, 10,
       {"in.txt|line|in.txt line 2|line read in pieces|10 characters|read as 2 lines of at most 10 characters"}},
      {"last line cut at the end of the file", std::string(10, 'x') + "yz", 1, Rule::kRunOfTabs, 10,
       {"in.txt|line|in.txt line 2|line read in pieces|12 characters|read as 2 lines of at most 10 characters"}},
  };
  for (const ReadCase& c : cases) EXPECT_EQ(ReadAsJob(c), c.entries) << c.name;
}

// A job that cuts its line twice reports it once; a tokenizer of a copy or
// of a part of a field reports nothing; the record is named while the file
// is read, and no longer after it.
TEST(ReadLossesTest, OnceForTheLineAndNamesItsRecord) {
  std::string dir = MakeTempDir();
  WriteFile(dir + "/in.txt", "header\na\t\tb\tc\"\td\n");
  std::vector<LossEntry> entries;
  WatchReadLosses(&entries);
  std::string record;
  {
    LineReader reader((dir + "/in.txt").c_str(), 100);
    std::string text;
    reader.ReadLine(text);
    ASSERT_TRUE(reader.ReadLine(text));
    record = LossRecord();
    for (int pass = 0; pass < 2; ++pass) {
      Tokenizer tokenizer(text);
      char* field[2];
      TakeFields(tokenizer, field, 2, "\t", "\t");
    }
    std::string copy = text;
    Tokenizer of_copy(copy);
    while (of_copy.Next(" ") != nullptr) continue;
    EXPECT_FALSE(reader.ReadLine(text));
    EXPECT_EQ(LossRecord(), "");
  }
  WatchReadLosses(nullptr);
  EXPECT_EQ(record, dir + "/in.txt line 2");
  ASSERT_EQ(entries.size(), 2u);
  EXPECT_EQ(entries[0].what, "empty cell");
  EXPECT_EQ(entries[1].what + " " + entries[1].as_exported + " " + entries[1].as_stored, "extra fields [c\"][d] not read");

  {
    ExportRows rows("./Animals.xml");
    rows.Name(3);
    EXPECT_EQ(LossRecord(), "Animals.xml row 3");
  }
  EXPECT_EQ(LossRecord(), "");

  EXPECT_EQ(ReportedFileName(".\\UPRC 2012.txt"), "UPRC 2012.txt");
  EXPECT_EQ(ReportedFileName("BandSightings/BandSightings.txt"), "BandSightings/BandSightings.txt");
}

// A Unicode file's characters that latin1 cannot hold are read as '?', as
// before; the report names the line, the cell and the first character.
TEST(ReadLossesTest, CharactersLatin1CannotHold) {
  std::string dir = MakeTempDir();
  std::string utf16 = "\xFF\xFE";
  std::u16string content = u"h\r\nA\tcaf\u00e9\r\nB\t\u4e2d\u6587\r\nC\t\xd83d\xde00\r\n";
  // Past the reader's first blocks of text, where the offsets add up.
  for (int i = 0; i < 1000; ++i) content += std::u16string(100, u'x') + u"\r\n";
  content += u"D\tE\t\u0100\r\n";
  for (char16_t unit : content) {
    utf16 += static_cast<char>(unit & 0xFF);
    utf16 += static_cast<char>(unit >> 8);
  }
  WriteFile(dir + "/in.txt", utf16);
  std::vector<LossEntry> entries;
  WatchReadLosses(&entries);
  std::vector<std::string> lines;
  {
    LineReader reader((dir + "/in.txt").c_str(), 200);
    std::string text;
    while (reader.ReadLine(text)) lines.push_back(text);
  }
  WatchReadLosses(nullptr);
  lines.resize(4);
  EXPECT_EQ(lines, (std::vector<std::string>{"h\n", "A\tcaf\xe9\n", "B\t??\n", "C\t?\n"}));
  ASSERT_EQ(entries.size(), 3u);
  EXPECT_EQ(entries[2].column + " " + entries[2].record + " " + entries[2].as_exported,
            "column 3 " + dir + "/in.txt line 1005 U+0100");
  EXPECT_EQ(ShowLoss(entries[0]),
            dir + "/in.txt|column 2|" + dir + "/in.txt line 3|character not held|U+4E2D and 1 more|? each");
  EXPECT_EQ(ShowLoss(entries[1]),
            dir + "/in.txt|column 2|" + dir + "/in.txt line 4|character not held|a character beyond U+FFFF|?");
}

}  // namespace
