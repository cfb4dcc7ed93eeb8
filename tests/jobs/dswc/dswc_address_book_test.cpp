#include "jobs/dswc/dswc_address_book.h"

#include <gtest/gtest.h>

#include <utility>
#include <vector>

namespace {

TEST(DswcAddressBook, Birthdays) {
  const std::vector<std::pair<const char*, const char*>> cases = {
      {"7/4", "0000-07-04"}, {" 3/ 9", "0000-03-09"}, {"7/4/1980", "0000-07-04"}, {"0/4", ""}, {"4/0", ""},
      {"-1/4", ""}, {"7-4", ""}, {"7 /4", ""}, {"7/", ""}, {nullptr, ""},
      {"99999999999/99999999999", "0000-21474"},  // cut to the field, never past it
  };
  for (const auto& [birthday, expected] : cases) {
    Text<11> dob{};
    ParseDswcBirthday(birthday, dob);
    EXPECT_EQ(dob, expected) << (birthday != nullptr ? birthday : "(null)");
  }
}

}  // namespace
