#include "store/sql.h"

#include <gtest/gtest.h>

#include <string>

namespace {

std::string Format(const char* statement, std::initializer_list<SqlArg> args, bool expect_ok = true) {
  std::string out;
  std::string error;
  bool ok = FormatSql(out, error, statement, args);
  EXPECT_EQ(ok, expect_ok) << statement << ": " << error;
  return ok ? out : error;
}

TEST(SqlFormatTest, Conversions) {
  Text<8> status{};
  status = "E24";
  EXPECT_EQ(Format("values('%s',%d,%I64d,%f,%.1f,%.2f,'%c','%c','%s');",
                   {status, -7, int64_t{-9223372036854775807} - 1, 2.5f, 0.25, 3.14159, '0', '\0', ""}),
            "values('E24',-7,-9223372036854775808,2.500000,0.2,3.14,'0','','');");
  EXPECT_EQ(Format("date_format(date,'%%Y-%%m-%%d') where id = %d;", {12}),
            "date_format(date,'%Y-%m-%d') where id = 12;");
  EXPECT_EQ(Format("where name like ' - %%';", {}), "where name like ' - %';");
}

TEST(SqlFormatTest, RefusesUnsafeOrMismatchedValues) {
  std::string error = Format("update patient set location='x' where patient_id='%s';", {"x' or '1'='1"}, false);
  EXPECT_NE(error.find("would end its quoted text early"), std::string::npos) << error;
  Format("name='%s'", {"ends with \\"}, false);
  EXPECT_EQ(Format("name='%s'", {"O\\'Neil \\\\ back"}), "name='O\\'Neil \\\\ back'");
  Format("special='%c';", {'\''}, false);
  // Only values inside a quoted literal are checked.
  EXPECT_EQ(Format("where id in (%s);", {"1,2"}), "where id in (1,2);");
  // Values that do not match the conversions.
  Format("id=%d", {"text"}, false);
  Format("name='%s'", {12}, false);
  Format("a=%d,b=%d", {1}, false);
  Format("a=%d", {1, 2}, false);

  // Which texts can stand between single quotes.
  const std::pair<const char*, bool> cases[] = {
      {"", true},      {"plain", true},   {"a\\'b", true}, {"a''b", true},   {"a\\\\", true},
      {"a'b", false},  {"a\\", false},    {"'''", false},  {"a\\\\\\", false}, {"\\\\'", false},
  };
  for (const auto& [value, safe] : cases) EXPECT_EQ(IsSafeLiteral(value), safe) << value;
}

TEST(SqlFormatTest, EscapesTextsInsideLiteralsOnceWhenAsked) {
  auto escaped = [](const char* statement, std::initializer_list<SqlArg> args) {
    std::string out;
    std::string error;
    EXPECT_TRUE(FormatSql(out, error, statement, args, SqlTexts::kEscape)) << statement << ": " << error;
    return out;
  };
  Text<8> field{};
  field = "O'Neil";
  const struct {
    const char* statement;
    std::initializer_list<SqlArg> args;
    const char* expected;
  } cases[] = {
      {"name='%s',special='%c',id=%d;", {field, '\'', 7}, "name='O\\'Neil',special='\\'',id=7;"},
      // Quote, double quote, backslash, line breaks, NUL and Ctrl-Z.
      {"v='%s'", {std::string_view("'\"\\\n\r\0\032", 7)}, "v='\\'\\\"\\\\\\n\\r\\0\\Z'"},
      // A precision cuts the text as it came; its escaped form may be longer.
      {"v='%.3s'", {"a'bcd"}, "v='a\\'b'"},
      // A text escaped before (a wrapped note) is sent as it is.
      {"notes='%s',who='%s'", {AlreadyEscaped("it\\'s"), "it's"}, "notes='it\\'s',who='it\\'s'"},
      // Only values inside a quoted literal are escaped.
      {"where id in (%s) and name like '%%%s';", {"1,2", "O'N"}, "where id in (1,2) and name like '%O\\'N';"},
  };
  for (const auto& c : cases) EXPECT_EQ(escaped(c.statement, c.args), c.expected) << c.statement;
}

}  // namespace
