// What the exported tables ask of db/schema.sql beyond the statements' own
// shapes: latin1 texts kept byte for byte, explicit keys, dates written with
// a 'T' before the time, fractional coordinates.
#include <gtest/gtest.h>

#include "support/test_database.h"

namespace {

using SchemaTest = DatabaseTest;

TEST_F(SchemaTest, KeepsWhatTheExportsCarry) {
  Exec("insert into patient(id,patient_id,presenter_transporter,name,found_lat,found_lon) "
       "values (40,'2014-00001',' ','Caf\xe9 ',34.691667,-76.669998)");
  Exec("insert into location(id,name) values (7,'Jelly Gallery  ')");
  Exec("insert into record_entry(patient_id,date) values (40,'2015-02-10T09:30:00')");
  Exec("insert into biometric(record_entry_id,date) values (1,'2015-02-10T09:30:00')");
  EXPECT_EQ(Rows("select id,concat('[',presenter_transporter,']'),hex(name),found_lat,found_lon from patient"),
            std::vector<std::string>{"40|[ ]|436166E920|34.691667|-76.669998"});
  EXPECT_EQ(Value("select concat(id,'[',name,']') from location"), "7[Jelly Gallery  ]");
  EXPECT_EQ(Value("select date from record_entry"), "2015-02-10 09:30:00");
  EXPECT_EQ(Value("select date from biometric"), "2015-02-10");
}

}  // namespace
