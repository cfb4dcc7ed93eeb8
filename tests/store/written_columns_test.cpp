#include "store/written_columns.h"

#include <gtest/gtest.h>

#include <string>

namespace {

// Where each conversion of a statement's format goes: the column named in
// the insert's list at the value's position, or before '=' in a SET list;
// nothing in a WHERE clause or a read.
TEST(WrittenColumnsTest, ColumnOfEachConversion) {
  struct Case {
    const char* format;
    const char* columns;  // the column of each %, in order, "-" for none
  };
  const Case cases[] = {
      {"insert into patient(patient_id,name,flags) values('%s','%s',%I64d);", "patient_id name flags"},
      {"INSERT INTO `settings` (`category`, value) VALUES ('Taxonomy_%s', '%s')", "category value"},
      {"insert into t(a,b,c) values(now(),'x, (y)',%d)", "c"},
      {"insert into t(a,b) values('%s',%d),('%s',%d)", "a b a b"},
      {"insert ignore into t set a='%s', b = %.2f", "a b"},
      {"update patient set presenter_name='%s',found_lat=%.6f where patient_id='%s';", "presenter_name found_lat -"},
      {"update patient set notes=concat(notes,'%s'),t.x=%d where id=%d limit 1", "notes x -"},
      {"select id from patient where patient_id='%s'", "-"},
      {"delete from patient where id=%d", "-"},
      {"insert into t values('%s')", "-"},
  };
  for (const Case& c : cases) {
    std::string format = c.format;
    WrittenColumns written = SplitWrittenColumns(format);
    std::string found;
    for (std::size_t at = format.find('%'); at != std::string::npos; at = format.find('%', at + 1)) {
      std::string column = ColumnAt(written, at);
      found += (found.empty() ? "" : " ") + (column.empty() ? std::string("-") : column);
    }
    EXPECT_EQ(found, c.columns) << c.format;
  }
}

// The value a sent statement gave a column, as the server's warnings name it.
TEST(WrittenColumnsTest, ValueOfColumn) {
  struct Case {
    const char* statement;
    const char* column;
    std::size_t row;
    bool named;
    const char* value;
  };
  const Case cases[] = {
      {"insert into patient(patient_id,`Found_County`,flags) values('2012-1','New Hanover County',3)", "found_county",
       0, true, "New Hanover County"},
      {"insert into patient(patient_id,flags) values('2012-1',3)", "FLAGS", 0, true, "3"},
      {"insert into t(a,b) values('one, two',1),('it\\'s \\\\ ''x''\\n',2)", "a", 1, true, "it's \\ 'x'\n"},
      {"insert into t(a,b) values('x',1),('y',2)", "a", 2, false, ""},
      {"insert into t(a,b) values('x',1)", "a", 3, true, "x"},  // one row: the value of every row
      {"update patient set dob='', notes='a=b, c' where id=4", "dob", 0, true, ""},
      {"update patient set dob='', notes='a=b, c' where id=4", "notes", 0, true, "a=b, c"},
      {"update patient set dob='' where notes='x'", "notes", 0, false, ""},
      {"select a from t", "a", 0, false, ""},
  };
  for (const Case& c : cases) {
    std::string value = "stale";
    EXPECT_EQ(ValueOfColumn(c.statement, c.column, c.row, value), c.named) << c.statement;
    EXPECT_EQ(value, c.value) << c.statement;
  }
}

}  // namespace
