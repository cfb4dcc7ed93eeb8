#include "store/connection.h"

#include <gtest/gtest.h>

#include <string>

#include "store/patient_store.h"
#include "support/scratch_server.h"
#include "support/test_database.h"

namespace {

using ConnectionTest = DatabaseTest;

TEST_F(ConnectionTest, ConnectFailures) {
  CloseDatabase();
  auto connect = [&](const char* database, const char* password, int port) {
    return ConnectDatabase(server_.host.c_str(), database, server_.user.c_str(), password, port);
  };
  EXPECT_EQ(connect(database_.c_str(), server_.password.c_str(), 1), 1);  // nothing listens on port 1
  EXPECT_EQ(connect("no_such_database", server_.password.c_str(), server_.port), 1);
  EXPECT_EQ(connect(database_.c_str(), "wrong password", server_.port), 1);
  EXPECT_EQ(connect(database_.c_str(), server_.password.c_str(), server_.port), 0);
}

TEST_F(ConnectionTest, EscapeSql) {
  const std::pair<const char*, const char*> cases[] = {
      {"", ""},
      {"O'Neil", "O\\'Neil"},
      {"C:\\exports", "C:\\\\exports"},
      {"two\nlines \"quoted\"\r", "two\\nlines \\\"quoted\\\"\\r"},
  };
  for (const auto& [input, expected] : cases) {
    char buffer[64];
    std::snprintf(buffer, sizeof buffer, "%s", input);
    EXPECT_STREQ(EscapeSql(buffer), expected);
    EXPECT_EQ(EscapeSqlText(input), expected);
  }
  // The escape of the statements agrees with the client library's for every byte.
  std::string every_byte;
  for (int c = 0; c < 256; ++c) every_byte.push_back(static_cast<char>(c));
  std::string escaped;
  AppendEscapedSql(escaped, every_byte);
  EXPECT_EQ(escaped, EscapeSqlText(every_byte));
}

TEST_F(ConnectionTest, AQuotedCaseNumberChangesNoOtherRow) {
  Exec("insert into patient(patient_id,location) values ('2012-0001','Flight pen'),('2012-0002','ICU'),"
       "('O''Hara-1','Yard')");
  // The store escapes it: the statement runs, names no row but its own.
  EXPECT_EQ(SetPatientLocation("x' or '1'='1", "Clinic"), 0) << LastDbError();
  EXPECT_EQ(SetPatientLocation("O'Hara-1", "Clinic's pen"), 0) << LastDbError();
  EXPECT_EQ(Rows("select location from patient order by id"),
            (std::vector<std::string>{"Flight pen", "ICU", "Clinic's pen"}));

  // The safety net for a text that missed its escape: refused before sending.
  for (int texts_escaped = 0; texts_escaped < 2; ++texts_escaped) {
    const char* statement = "update patient set location='%s';";
    int result = texts_escaped ? ExecuteSql(kEscapeTexts, statement, {AlreadyEscaped("x' or '1'='1")})
                               : ExecuteSql(statement, {"x' or '1'='1"});
    EXPECT_EQ(result, 1);
    EXPECT_NE(std::string(LastDbError()).find("quoted text early"), std::string::npos) << LastDbError();
  }
  EXPECT_EQ(Value("select count(*) from patient where location='Clinic'"), "0");

  // A server error is reported in the server's words.
  EXPECT_NE(ExecuteSql("update no_such_table set a=1;", {}), 0);
  EXPECT_NE(std::string(LastDbError()).find("no_such_table"), std::string::npos) << LastDbError();
}

TEST_F(ConnectionTest, QueryResults) {
  Exec("insert into settings(category,value) values ('a','1'),('b',NULL)");
  SqlResult result = QuerySql("select category,value from settings order by category;", {});
  ASSERT_TRUE(result);
  std::vector<std::string> rows;
  while (MYSQL_ROW row = result.NextRow()) rows.push_back(std::string(row[0]) + "|" + (row[1] ? row[1] : "NULL"));
  EXPECT_EQ(rows, (std::vector<std::string>{"a|1", "b|NULL"}));
  EXPECT_FALSE(QuerySql("select nonsense from nowhere;", {}));
}

// Inside the run's transaction a statement that would commit it is refused
// unsent, a failing statement fails alone, and a rollback takes back the rest.
TEST_F(ConnectionTest, RunTransactionRefusesImplicitCommits) {
  ASSERT_EQ(BeginRunTransaction(), 0);
  EXPECT_EQ(ExecuteSql("insert into settings(category,value) values ('a','1');", {}), 0);
  EXPECT_NE(ExecuteSql("insert into no_such_table values (1);", {}), 0);
  for (const char* statement : {"create table x (a int);", "commit;", "lock tables settings write;"}) {
    EXPECT_EQ(ExecuteSql(statement, {}), 1) << statement;
    EXPECT_NE(std::string(LastDbError()).find("would end the run's transaction"), std::string::npos) << LastDbError();
  }
  EXPECT_EQ(QueryInt("select count(*) from settings;", {}, -1), 1);
  EXPECT_EQ(Value("select count(*) from settings"), "0");  // not committed
  EXPECT_EQ(EndRunTransaction(false), 0);
  EXPECT_EQ(QueryInt("select count(*) from settings;", {}, -1), 0);
  EXPECT_EQ(Rows("show tables like 'x'").size(), 0u);
}

using ConnectionOnStockServerTest = OnStockServer<ConnectionTest>;

// The session runs in the permissive mode, also after the library reconnected
// by itself, so a zero date still lands.
TEST_F(ConnectionOnStockServerTest, PermissiveModeHoldsAcrossReconnects) {
  auto session_mode = [] {
    SqlResult result = QuerySql("select @@session.sql_mode, connection_id();", {});
    MYSQL_ROW row = result.NextRow();
    return row != nullptr ? std::string(row[0]) + "|" + row[1] : std::string("no row");
  };
  std::string before = session_mode();
  ASSERT_EQ(before.substr(0, before.find('|')), kCorvanaSqlMode);
  EXPECT_NE(SqlModeNotice().find("STRICT_TRANS_TABLES"), std::string::npos) << SqlModeNotice();

  Exec("kill " + before.substr(before.find('|') + 1));
  QuerySql("select 1;", {});  // finds the link gone; the next statement reconnects
  std::string after = session_mode();
  EXPECT_NE(after, before);  // another connection
  EXPECT_EQ(after.substr(0, after.find('|')), kCorvanaSqlMode);
  EXPECT_EQ(ExecuteSql("insert into patient(patient_id,final_date) values('2012-0001','0000-00-00');", {}), 0)
      << LastDbError();
}

}  // namespace
