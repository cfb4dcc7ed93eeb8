#include "util/text_source.h"

#include <gtest/gtest.h>

#include <string>

#include "support/program_run.h"
#include "support/test_database.h"

namespace {

// Reads the whole file through a TextSource in blocks of `block` bytes;
// `notes` receives what it told the operator on stderr.
std::string ReadAll(const std::string& content, std::string& notes, std::size_t block = 7) {
  std::string path = MakeTempDir() + "/input.txt";
  WriteFile(path, content);
  std::string text;
  testing::internal::CaptureStderr();
  {
    TextSource source;
    EXPECT_TRUE(source.Open(path.c_str()));
    std::string buffer(block, '\0');
    while (std::size_t n = source.Read(buffer.data(), block)) text.append(buffer, 0, n);
  }
  notes = testing::internal::GetCapturedStderr();
  std::size_t at = notes.find(path);
  if (at != std::string::npos) notes.replace(at, path.size(), "F");
  return text;
}

TEST(TextSourceTest, UnicodeTextReadsAsTheLatin1TextItHolds) {
  const std::string latin1 = "Case\tName\r\n12\tVillase\xF1or \xE9t\xE9\r\n";
  for (bool little_endian : {true, false}) {
    SCOPED_TRACE(little_endian ? "little-endian" : "big-endian");
    std::string notes;
    EXPECT_EQ(ReadAll(SaveAs(latin1, little_endian ? SavedAs::kUtf16LittleEndian : SavedAs::kUtf16BigEndian), notes), latin1);
    EXPECT_EQ(notes, std::string("Note: 'F' is Unicode text (UTF-16, ") +
                         (little_endian ? "little" : "big") + "-endian) and was read as latin1 text\n");
  }
  // The euro sign and a character outside the first plane (a surrogate pair)
  // each become one '?', counted; a last odd byte is no character.
  std::string notes;
  EXPECT_EQ(ReadAll(std::string("\xFF\xFE" "a\0\xAC\x20" "b\0\x3D\xD8\x00\xDE" "c\0\x41", 15), notes), "a?b?c");
  EXPECT_EQ(notes,
            "Note: 'F' is Unicode text (UTF-16, little-endian) and was read as latin1 text; 2 characters that latin1 "
            "cannot hold became '?'\n");
  // A long file read in blocks of any size loses nothing at the block ends.
  std::string long_text(200003, 'x');
  for (std::size_t i = 0; i < long_text.size(); i += 97) long_text[i] = '\xE9';
  EXPECT_EQ(ReadAll(SaveAs(long_text, SavedAs::kUtf16LittleEndian), notes, 65536), long_text);
}

TEST(TextSourceTest, BytesPassUnchangedAndUtf8IsNamed) {
  const struct {
    std::string content;
    std::string text;
    bool looks_like_utf8;
  } cases[] = {
      {"caf\xE9 \xC0 la carte\n", "caf\xE9 \xC0 la carte\n", false},  // latin1: passes, no note
      {"\xEF\xBB\xBF" "caf\xE9\n", "caf\xE9\n", false},               // a UTF-8 mark is skipped
      {"caf\xC3\xA9 \xE2\x82\xAC\n", "caf\xC3\xA9 \xE2\x82\xAC\n", true},  // UTF-8 passes as its bytes
      {"\xEF\xBB\xBF" "caf\xC3\xA9\n", "caf\xC3\xA9\n", true},
      {"\xC3\xA9 then latin1 \xE9\n", "\xC3\xA9 then latin1 \xE9\n", false},  // one broken sequence: not UTF-8
      {"", "", false},
      {"\xEF\xBB", "\xEF\xBB", false},  // too short to be a mark
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.content);
    std::string notes;
    EXPECT_EQ(ReadAll(c.content, notes), c.text);
    EXPECT_EQ(notes.find("looks like UTF-8") != std::string::npos, c.looks_like_utf8) << notes;
  }
}

}  // namespace
