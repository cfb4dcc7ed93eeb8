#include "store/server_warnings.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "store/connection.h"
#include "support/losses.h"
#include "support/test_database.h"

namespace {

class ServerWarningsTest : public DatabaseTest {
 protected:
  void SetUp() override {
    DatabaseTest::SetUp();
    Forget();
    Exec("create table w (id int auto_increment primary key, label varchar(5), small tinyint, day date, "
         "count int, note varchar(20)) engine=InnoDB");
  }
  void TearDown() override {
    Forget();
    DatabaseTest::TearDown();
  }
  static void Forget() {
    ForgetLossesAfter(0);
    SetLossRecord("");
  }
};

// Under the application's permissive mode the server keeps what it can and
// only warns: each warning becomes an entry naming the value sent, and the
// write's own key and row count still answer after the warnings were read.
TEST_F(ServerWarningsTest, WhatTheServerCutOrZeroedIsReported) {
  const unsigned long long sent = Tally().sent;
  SetLossRecord("2012-0007");
  ASSERT_EQ(ExecuteSql(kEscapeTexts, "insert into w(label,small,day,count,note) values('%s',%d,'%s','%s','%s');",
                       {"O'Hara County", 300, "2015-02-30", "12 boxes", "fine"}),
            0)
      << LastDbError();
  EXPECT_EQ(LastInsertId(), 1);
  EXPECT_EQ(AffectedRows(), 1u);
  SetLossRecord("2012-0008");
  // No date ('' is the application's "none") and clean values: nothing to
  // report, and, the table's date and number columns known, not asked for.
  auto show_warnings_sent = [] {
    SqlResult status = QueryDirect("show session status like 'Com_show_warnings'");
    MYSQL_ROW row = status.NextRow();
    return row != nullptr && row[1] != nullptr ? std::string(row[1]) : std::string("?");
  };
  const std::string asked = show_warnings_sent();
  ASSERT_EQ(ExecuteSql(kEscapeTexts, "insert into w(label,day) values('%s','%s');", {"ok", ""}), 0);
  EXPECT_EQ(LastInsertId(), 2);
  EXPECT_EQ(show_warnings_sent(), asked);
  ASSERT_EQ(ExecuteSql(kEscapeTexts, "update w set small=%d, note='%s' where id in (1,2);", {-1000, "x"}), 0);
  EXPECT_EQ(AffectedRows(), 2u);
  EXPECT_EQ(Tally().sent, sent + 3) << "SHOW WARNINGS is not one of the run's statements";
  EXPECT_EQ(ReportedLosses(), (std::vector<std::string>{
                           "w|label|2012-0007|cut|O'Hara County|(cut by the server)",
                           "w|small|2012-0007|out of range|300|(the column's limit)",
                           "w|day|2012-0007|not a date|2015-02-30|0000-00-00",
                           "w|count|2012-0007|read in part|12 boxes|12",
                           "w|small|2012-0008|out of range|-1000|(the column's limit)",
                           "w|small|2012-0008|out of range|-1000|(the column's limit)",
                       }));
  EXPECT_EQ(Rows("select label, small, day, count from w order by id"),
            (std::vector<std::string>{"O'Har|-128|0000-00-00|12", "ok|-128|0000-00-00|NULL"}));
}

// The reporting works on warnings fetched by another sender: a statement of
// several rows picks each value by the row the warning names.
TEST_F(ServerWarningsTest, SeveralRowsOfOneStatement) {
  std::string statement = "insert into w(label,small) values ('short',1),('much too long',2),('ok',999)";
  ASSERT_EQ(ExecuteDirect(statement), 0);
  SqlResult warnings = QueryDirect("SHOW WARNINGS");
  ReportServerWarnings(statement, warnings);
  EXPECT_EQ(ReportedLosses(), (std::vector<std::string>{"w|label||cut|much too long|(cut by the server)",
                                                 "w|small||out of range|999|(the column's limit)"}));
}

}  // namespace
