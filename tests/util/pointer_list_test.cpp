#include "util/pointer_list.h"

#include <gtest/gtest.h>

#include <cstring>
#include <memory>
#include <string>
#include <vector>

namespace {

std::vector<std::string> Items(const PointerList<std::string>& list) {
  std::vector<std::string> items;
  for (int i = 0; i < list.Count(); ++i) items.push_back(*list.At(i));
  return items;
}

PointerList<std::string> ListOf(const std::vector<std::string>& texts, int capacity) {
  PointerList<std::string> list(capacity);
  for (const std::string& text : texts) list.Append(std::make_unique<std::string>(text));
  return list;
}

// The array grows by a tenth of the initial capacity (at least one slot), one step at a time.
TEST(PointerListTest, GrowsByItsStep) {
  const int cases[][3] = {  // initial capacity, appends, capacity after them
      {5, 5, 5}, {5, 6, 6}, {5, 8, 8}, {256, 257, 281}, {256, 282, 306}, {512, 513, 563}, {0, 3, 3}, {-4, 1, 1},
  };
  for (const auto& [initial, appends, capacity] : cases) {
    PointerList<std::string> list(initial);
    for (int i = 0; i < appends; ++i) EXPECT_EQ(list.Append(std::make_unique<std::string>(std::to_string(i))), 0);
    EXPECT_EQ(list.Count(), appends) << initial;
    EXPECT_EQ(list.Capacity(), capacity) << initial << " after " << appends;
    EXPECT_EQ(*list.At(appends - 1), std::to_string(appends - 1));  // nothing lost in a move
  }
}

TEST(PointerListTest, AtOutsideTheItemsIsNull) {
  PointerList<std::string> list = ListOf({"a", "b"}, 10);
  list.Append(nullptr);  // never held
  EXPECT_EQ(list.Count(), 2);
  for (int index : {-1, 2, 9, 10, 1000}) EXPECT_EQ(list.At(index), nullptr) << index;
}

TEST(PointerListTest, FindTextIgnoresCaseAndTakesTheFirst) {
  PointerList<std::string> list = ListOf({"Chordata", "Mollusca", "CHORDATA"}, 4);
  EXPECT_EQ(PointerListFindText(list, "CHORDATA"), list.At(0));
  EXPECT_EQ(PointerListFindText(list, "mollusca"), list.At(1));
  EXPECT_EQ(PointerListFindText(list, "Chordat"), nullptr);
}

// A stable sort: equal items keep the order they were appended in.
TEST(PointerListTest, SortsStablyEitherWay) {
  auto bytes = [](const std::string& a, const std::string& b) { return std::strcmp(a.c_str(), b.c_str()); };
  auto first_letter = [](const std::string& a, const std::string& b) { return a[0] - b[0]; };
  PointerList<std::string> letters = ListOf({"b", "A", "a", "B"}, 4);
  letters.Sort(bytes, 1);
  EXPECT_EQ(Items(letters), (std::vector<std::string>{"A", "B", "a", "b"}));
  letters.Sort(bytes, 0);
  EXPECT_EQ(Items(letters), (std::vector<std::string>{"b", "a", "B", "A"}));
  letters.Sort(bytes, 2);  // no such direction: unchanged
  EXPECT_EQ(Items(letters), (std::vector<std::string>{"b", "a", "B", "A"}));

  PointerList<std::string> words = ListOf({"t2", "a1", "t1", "a2", "t3"}, 2);
  words.Sort(first_letter, 1);
  EXPECT_EQ(Items(words), (std::vector<std::string>{"a1", "a2", "t2", "t1", "t3"}));
  words.Sort(first_letter, 0);
  EXPECT_EQ(Items(words), (std::vector<std::string>{"t2", "t1", "t3", "a1", "a2"}));
}

}  // namespace
