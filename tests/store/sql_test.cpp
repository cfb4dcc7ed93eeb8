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

namespace {

TEST(SqlStatementTest, SplitsVerbTableAndCondition) {
  const struct {
    const char* statement;
    const char* verb;
    const char* table;
    const char* where;
  } cases[] = {
      {"insert into patient(patient_id,name) values ('2012-0001','x');", "insert", "patient", ""},
      {"INSERT INTO `addressBook` (org) values (17)", "insert", "addressBook", ""},
      {"update patient set name='a where b' where patient_id='2012-0001';", "update", "patient",
       "patient_id='2012-0001'"},
      {"update patient set location='' where status != 'PR'", "update", "patient", "status != 'PR'"},
      {"update enrichment set what='it''s where' where id=4;", "update", "enrichment", "id=4"},
      {"update cbc set pcv=3", "update", "cbc", ""},
      {"delete from db.transfers where id = 2 ;", "delete", "transfers", "id = 2"},
      {"update record_entry set notes='back\\' where x' where id=9;", "update", "record_entry", "id=9"},
      {"select id from patient where id=1", "select", "", ""},
  };
  for (const auto& c : cases) {
    StatementParts parts = SplitStatement(c.statement);
    EXPECT_EQ(parts.verb, c.verb) << c.statement;
    EXPECT_EQ(parts.table, c.table) << c.statement;
    EXPECT_EQ(parts.where, c.where) << c.statement;
  }
  EXPECT_TRUE(SplitStatement("update t set a=1 where b=2 order by c limit 1").has_order_or_limit);
  EXPECT_EQ(SplitStatement("update t set a=1 where b=2 order by c limit 1").where, "b=2");
}

TEST(SqlStatementTest, StatementsThatEndATransaction) {
  for (const char* statement : {"create table x (a int)", "DROP TABLE x", "alter table patient add x int",
                                "truncate patient", "lock tables patient write", "commit", "ROLLBACK",
                                "start transaction", "set autocommit=1", "SET @@autocommit = 1", "rename table a to b"}) {
    EXPECT_TRUE(CommitsImplicitly(SplitStatement(statement), statement)) << statement;
  }
  for (const char* statement : {"insert into species (abbrev) values ('create')", "update t set a='drop'",
                                "select * from patient", "set @x = 1", "delete from t where id=1"}) {
    EXPECT_FALSE(CommitsImplicitly(SplitStatement(statement), statement)) << statement;
  }
}

}  // namespace
