#include "xml/xml_arena.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <cstring>

namespace {

struct Wide {
  long double value;
  void* pointer;
};

TEST(XmlArena, PiecesAreAlignedDistinctAndZeroed) {
  XmlArena arena;
  EXPECT_EQ(arena.bytes_reserved(), 0u);  // nothing taken before the first request
  for (int i = 0; i < 1000; ++i) {
    ASSERT_NE(arena.Allocate(static_cast<std::size_t>(i % 7)), nullptr);  // odd sizes, 0 included
    Wide* wide = arena.Create<Wide>();
    ASSERT_NE(wide, nullptr);
    EXPECT_EQ(reinterpret_cast<std::uintptr_t>(wide) % alignof(Wide), 0u);
    EXPECT_EQ(wide->pointer, nullptr);
  }
  EXPECT_NE(arena.Allocate(0), arena.Allocate(0));
}

TEST(XmlArena, LargePieceGetsItsOwnBlockAndTheCurrentOneStaysInUse) {
  XmlArena arena;
  char* small = arena.CopyText("abc", 3);
  std::size_t after_first_block = arena.bytes_reserved();
  char* large = arena.Allocate(1000000);
  ASSERT_NE(large, nullptr);
  std::memset(large, 'x', 1000000);
  EXPECT_GE(arena.bytes_reserved(), after_first_block + 1000000);
  std::size_t after_large = arena.bytes_reserved();
  char* next = arena.CopyText("def", 3);
  EXPECT_EQ(next, small + 4);  // bumped from the first block, not a new one
  EXPECT_EQ(arena.bytes_reserved(), after_large);
  EXPECT_STREQ(small, "abc");
  EXPECT_STREQ(next, "def");
}

TEST(XmlArena, ResetFreesEverythingAndTheArenaServesAgain) {
  XmlArena arena;
  for (int i = 0; i < 100000; ++i) ASSERT_NE(arena.CopyText("row", 3), nullptr);
  EXPECT_GT(arena.bytes_reserved(), 0u);
  arena.Reset();
  EXPECT_EQ(arena.bytes_reserved(), 0u);
  EXPECT_STREQ(arena.CopyText("again", 5), "again");
  EXPECT_STREQ(arena.CopyText(nullptr, 0), "");
}

}  // namespace
