// The measurement jobs' look-up against the statement it replaces, on the
// real server: every generated tag must give the patient that
//   select id from patient where [species='..' and] notes like '%<tag>'
// gives, and the fold must put two bytes together whenever the server's
// LIKE does.
#include <gtest/gtest.h>

#include <algorithm>
#include <cstdio>
#include <random>
#include <set>
#include <string>
#include <utility>
#include <vector>

#include "jobs/csaq_ff/csaq_ff_patient_finder.h"
#include "store/connection.h"
#include "support/test_database.h"

namespace {

class NotesTagFinderTest : public DatabaseTest {};

std::string Hex(const std::string& bytes) {
  std::string hex;
  char pair[3];
  for (unsigned char c : bytes) {
    std::snprintf(pair, sizeof pair, "%02x", c);
    hex += pair;
  }
  return hex;
}

// Pieces of notes and tags: digits, letters of both cases, accented latin1
// letters (with and without an equivalent of their own), the bytes the
// Swedish letters weigh as, LIKE's special characters, a quote, a blank.
const std::vector<std::string> kPieces = {
    "0", "1", "2", "7", "a", "A", "e", "E", "o", "O", "u", "y", "Y", "z", "Z", "-", ".", " ", " ", "[", "]",
    "\\", "%", "_", "'", "\xC0", "\xE0", "\xC4", "\xE4", "\xC5", "\xE5", "\xC6", "\xC9", "\xE9", "\xD6", "\xF6",
    "\xD8", "\xF8", "\xDC", "\xFC", "\xDD", "\xFF", "\xDF", "\xD7",
};

// Letters the collation holds equal, to turn a note's suffix into a tag
// that the server matches without the same bytes.
const std::vector<std::string> kEquivalents = {"aA\xC0\xE0", "eE\xC9\xE9", "oO\xF6", "uU\xFC", "yY\xDC\xFC\xDD",
                                               "\xC4\xE4\xC6\\",  "\xC5\xE5[", "\xD6\xF6]"};

class Generator {
 public:
  std::string Piece() { return kPieces[Pick(kPieces.size())]; }
  std::string Text(std::size_t min, std::size_t max) {
    std::string text;
    for (std::size_t n = min + Pick(max - min + 1); n > 0; --n) text += Piece();
    return text;
  }
  // A text the collation finds equal to `text`, where it can.
  std::string Equivalent(std::string text) {
    for (char& c : text) {
      for (const std::string& set : kEquivalents) {
        if (set.find(c) != std::string::npos && Pick(2) == 0) c = set[Pick(set.size())];
      }
    }
    return text;
  }
  std::size_t Pick(std::size_t n) { return std::uniform_int_distribution<std::size_t>(0, n - 1)(random_); }

 private:
  std::mt19937 random_{20261125};
};

// The original statement's rows, all of them, in the order the server gives.
std::vector<int> ServerRows(const char* species, const std::string& tag) {
  SqlResult result =
      species != nullptr
          ? QuerySql(kEscapeTexts, "select id from patient where species='%s' and notes like '%%%s';", {species, tag})
          : QuerySql(kEscapeTexts, "select id from patient where notes like '%%%s';", {tag});
  std::vector<int> ids;
  while (MYSQL_ROW row = result.NextRow()) ids.push_back(std::atoi(row[0]));
  return ids;
}

TEST_F(NotesTagFinderTest, GivesTheRowTheServersStatementGivesForEveryGeneratedTag) {
  Generator generate;
  // Notes end with one of a small pool of suffixes, so that many tags match
  // several patients; some end with a blank or hold a zero byte.
  std::vector<std::string> suffixes;
  for (int i = 0; i < 150; ++i) suffixes.push_back(generate.Text(1, 4));
  const std::vector<std::string> species = {"LOGGER", "logger", "LOGGER ", "GREENTURTLE", "YRATSNAKE"};
  constexpr int kPatients = 1500;
  std::vector<int> ids;
  for (int id = 1; id <= kPatients; ++id) ids.push_back(id * 3);
  std::shuffle(ids.begin(), ids.end(), std::mt19937(7));  // inserted out of key order
  std::vector<std::string> notes;
  std::string insert = "insert into patient (id, species, notes) values ";
  for (int i = 0; i < kPatients; ++i) {
    std::string note = generate.Text(0, 6) + suffixes[generate.Pick(suffixes.size())];
    if (generate.Pick(10) == 0) note += " ";
    if (generate.Pick(100) == 0) note.insert(generate.Pick(note.size() + 1), 1, '\0');
    notes.push_back(note);
    insert += (i > 0 ? ",(" : "(") + std::to_string(ids[i]) + ",'" + species[generate.Pick(species.size())] +
              "',x'" + Hex(note) + "')";
  }
  Exec(insert);

  NotesTagFinder finder;
  int several = 0;
  int found = 0;
  constexpr int kTags = 4000;
  for (int i = 0; i < kTags; ++i) {
    std::string tag;
    switch (generate.Pick(4)) {
      case 0:
        tag = generate.Text(1, 5);
        break;
      case 1:
        tag = suffixes[generate.Pick(suffixes.size())];
        break;
      default: {
        const std::string& note = notes[generate.Pick(notes.size())];
        tag = generate.Equivalent(note.substr(note.size() - std::min(note.size(), 1 + generate.Pick(6))));
        if (tag.find('\0') != std::string::npos) tag = tag.substr(tag.find('\0') + 1);  // tags are C texts
        break;
      }
    }
    if (generate.Pick(8) == 0) tag += " ";
    if (tag.empty()) continue;
    const char* code = generate.Pick(3) == 0 ? "LOGGER" : nullptr;
    std::vector<int> rows = ServerRows(code, tag);
    // The server returns the rows of both statements in key order.
    ASSERT_TRUE(std::is_sorted(rows.begin(), rows.end())) << "tag '" << tag << "'";
    int expected = rows.empty() ? 0 : rows.front();
    ASSERT_EQ(finder.Find(code, tag), expected) << "tag '" << tag << "' (" << tag.size() << " bytes)"
                                                << (code != nullptr ? " of LOGGER" : "");
    several += rows.size() > 1;
    found += !rows.empty();
  }
  // The generated cases reach what they are meant to.
  EXPECT_GT(found, kTags / 3);
  EXPECT_GT(several, kTags / 10);
  EXPECT_LT(found, kTags);
}

TEST_F(NotesTagFinderTest, FoldsTwoBytesTogetherExactlyWhenTheServersLikeMatchesThem) {
  Exec("create table bytes (b int primary key, c varchar(1) character set latin1 collate latin1_swedish_ci)");
  std::string insert = "insert into bytes values ";
  for (int b = 0; b < 256; ++b) {
    char hex[8];
    std::snprintf(hex, sizeof hex, "x'%02x'", b);
    insert += (b > 0 ? ",(" : "(") + std::to_string(b) + "," + hex + ")";
  }
  Exec(insert);
  // The pattern byte stands for itself except LIKE's own characters.
  std::set<std::pair<int, int>> server;
  for (const std::string& row :
       Rows("select t.b, p.b from bytes t join bytes p on t.c like p.c where p.b not in (37, 92, 95)")) {
    server.emplace(std::stoi(row), std::stoi(row.substr(row.find('|') + 1)));
  }
  for (int text = 0; text < 256; ++text) {
    for (int pattern = 0; pattern < 256; ++pattern) {
      if (pattern == '%' || pattern == '_' || pattern == '\\') continue;
      bool folded_equal = NotesTagFinder::Fold(std::string(1, static_cast<char>(text))) ==
                          NotesTagFinder::Fold(std::string(1, static_cast<char>(pattern)));
      EXPECT_EQ(folded_equal, server.count({text, pattern}) == 1) << "bytes " << text << " and " << pattern;
    }
  }
}

}  // namespace
