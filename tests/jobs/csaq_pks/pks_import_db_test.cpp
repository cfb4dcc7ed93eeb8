#include <gtest/gtest.h>

#include <cstdio>
#include <string>
#include <utility>
#include <vector>

#include "support/program_run.h"
#include "support/test_database.h"

namespace {

const std::vector<std::pair<std::string, std::string>> kTables = {
    {"location", "name,description,flags,feed_order,display_order"},
    {"species", "abbrev,common_name,species_group,kingdom,phylum,class,_order,family,genus,species"},
    {"patient",
     "id,patient_id,name,species,species_group,status,location,ageIn,age,sex,flags,admission_date,final_date,dob,"
     "expected_release_date,away_from_date,away_to_date,band,microchip,replace(notes,'\\n','\\\\n'),found_addr,"
     "found_city,found_state,found_county,found_country,found_district,presenter_org,presenter_city,presenter_state,"
     "presenter_county,presenter_country,presenter_district,concat('[',presenter_transporter,']')"},
    {"record_entry", "id,patient_id,replace(notes,'\\n','\\\\n'),date,who,weight,keel,location,amountFed,special"},
    {"attributes", "patient_id,name,value,date"},
    {"releases",
     "record_entry_id,patient_id,date,how_age,how_sex,band_number,location,city,county,state,country,id_type,"
     "tracker_type,pub_priv"},
    {"transfers", "record_entry_id,patient_id,date,name,addr,city,state,zip,county,permit,reason,country"},
    {"biometric",
     "record_entry_id,date,weight,wc,length,girth,straight_NPN_length,curved_NPN_length,straight_carapace_width,"
     "curved_carapace_width"}};

// An export file: each record's fields inside an element named `name`.
std::string Table(const std::string& name, const std::vector<std::string>& records) {
  std::string xml = "<dataroot>\r\n";
  for (const std::string& record : records) xml += "<" + name + ">" + record + "</" + name + ">\r\n";
  return xml + "</dataroot>\r\n";
}

std::string Field(const std::string& name, const std::string& text) { return "<" + name + ">" + text + "</" + name + ">"; }

// The patient import's seven exports, each empty unless given.
void WriteExports(const std::string& dir, const std::vector<std::pair<std::string, std::vector<std::string>>>& given) {
  for (const char* name : {"CensusCounts", "Animals", "Notes", "Transactions", "Identifiers", "Measurements",
                           "EnclosureMoves"}) {
    std::vector<std::string> records;
    for (const auto& [file, rows] : given) {
      if (file == name) records = rows;
    }
    WriteFile(dir + "/" + name + ".xml", Table(name, records));
  }
}

class PksImportTest : public DatabaseTest {
 protected:
  // Runs one CSAQ_PKS job in `dir`; returns its log from the job line on.
  std::string RunJob(const std::string& dir, const std::string& type) {
    ProgramRun run = RunProgram(dir, {"-org", "CSAQ_PKS", "-type", type, "-year", "2015"});
    EXPECT_EQ(run.exit_code, 0);
    return run.output.substr(run.output.find("\nCSAQ_PKS - ") + 1);
  }

  // A scratch copy of the samples with this test's database.
  std::string SampleDir() {
    std::string dir = MakeTempDir();
    CopySamples("samples/csaq_pks", dir);
    WriteIni(dir);
    return dir;
  }

  std::string CountRows() {
    return Value("select concat((select count(*) from patient),' ',(select count(*) from record_entry),' ',"
                 "(select count(*) from attributes),' ',(select count(*) from location))");
  }
};

// The three jobs in the order the README gives, on the samples: every message and every row.
TEST_F(PksImportTest, SampleJobsInRunOrder) {
  std::string dir = SampleDir();
  Exec(ReadFile(dir + "/species.sql"));
  std::string log;
  for (const char* job : {"habitats", "patient", "taxonomy"}) log += RunJob(dir, job);
  ExpectMatchesFile(log, "jobs/csaq_pks/expected/sample.log");
  ExpectMatchesFile(Dump(kTables), "jobs/csaq_pks/expected/sample.rows");
  ExpectMatchesFile(ReadFile(dir + "/GroupTempFile.txt"), "jobs/csaq_pks/expected/GroupTempFile.txt");

  // The kestrel's patient insert fails on its name: its rows go to key 0, which no patient has.
  EXPECT_EQ(Value("select count(*) from record_entry r left join patient p on p.id=r.patient_id "
                  "where p.id is null and r.patient_id<>0"),
            "0");
}

TEST_F(PksImportTest, NeedsAnEmptyPatientTable) {
  std::string dir = SampleDir();
  Exec("insert into patient (patient_id) values ('2010-00001')");
  EXPECT_EQ(RunJob(dir, "patient"),
            "CSAQ_PKS - patient - 2015\n"
            "\tERROR: The patient table already holds 1 patients: this import needs an empty patient table\n");
  EXPECT_EQ(CountRows(), "1 0 0 0");
  EXPECT_EQ(ReadFile(dir + "/GroupTempFile.txt"), "");
}

// A missing export stops its job with its message before any row is written; so does one that cannot be parsed,
// also when its pass comes after the first row.
TEST_F(PksImportTest, MissingOrBrokenExports) {
  const std::string loaded = "Loading census data...\nLoaded 0 species\nLoading patient data...\n";
  struct Case {
    const char* file;
    const char* job;
    bool also_broken;
    std::string log_end;
  };
  const Case cases[] = {
      {"CensusCounts.xml", "patient", true, "Loading census data...\nUnable to parse census file './CensusCounts.xml'\n"},
      {"Animals.xml", "patient", true, loaded + "\tERROR: Unable to parse animal file './Animals.xml'\n"},
      {"Notes.xml", "patient", true,
       "Processed 21 animals\nLoading patient notes - FIRST PASS...\nUnable to parse notes file './Notes.xml'\n"},
      {"Transactions.xml", "patient", true,
       "Loading patient transactions...\nUnable to parse transactions file './Transactions.xml'\n"},
      {"Identifiers.xml", "patient", true,
       "Loading patient identifiers...\nUnable to parse identifiers file './Identifiers.xml'\n"},
      // Read after the first patient row: checked before any.
      {"Measurements.xml", "patient", true,
       "CSAQ_PKS - patient - 2015\nUnable to parse measurements file './Measurements.xml'\n"},
      {"EnclosureMoves.xml", "patient", true,
       "CSAQ_PKS - patient - 2015\nUnable to parse enclosure moves file './EnclosureMoves.xml'\n"},
      {"EnclosureTree.xml", "habitats", true,
       "CSAQ_PKS - habitats - 2015\n\tERROR: Unable to parse habitat file './EnclosureTree.xml'\n"},
      {"MissingTaxonomy.txt", "taxonomy", false,
       "CSAQ_PKS - taxonomy - 2015\nUnable to open './MissingTaxonomy.txt'\n"},
  };
  // Ways an export fails to parse, each near its end, after most records.
  const std::pair<const char*, std::string (*)(std::string)> corruptions[] = {
      {"missing", nullptr},
      {"with its document element left open",
       [](std::string xml) { return xml.substr(0, xml.rfind("</dataroot>")); }},
      {"with a tag without a name", [](std::string xml) { return xml.insert(xml.rfind("</dataroot>"), "< >"); }},
      {"with an unquoted attribute",
       [](std::string xml) { return xml.insert(xml.rfind("</dataroot>"), "<Note kind=late/>"); }},
  };
  std::string all_rows;
  for (const auto& [table, columns] : kTables) all_rows += std::string(all_rows.empty() ? "" : "+") +
                                                             "(select count(*) from " + table + ")";
  for (const Case& c : cases) {
    for (const auto& [how, corrupt] : corruptions) {
      if (corrupt != nullptr && !c.also_broken) continue;
      std::string dir = SampleDir();
      std::string path = dir + "/" + c.file;
      if (corrupt != nullptr) {
        WriteFile(path, corrupt(ReadFile(path)));
      } else {
        std::remove(path.c_str());
      }
      std::string log = RunJob(dir, c.job);
      ASSERT_GE(log.size(), c.log_end.size()) << c.file << " " << how << ":\n" << log;
      EXPECT_EQ(log.substr(log.size() - c.log_end.size()), c.log_end) << c.file << " " << how;
      EXPECT_EQ(Value("select " + all_rows), "0") << c.file << " " << how;
    }
  }
}

// Hostile input: every record is reported or stored, the job runs to its end.
TEST_F(PksImportTest, BadInputIsReportedAndTheJobGoesOn) {
  std::string dir = SampleDir();
  const auto& table = Table;
  const std::string long_id(60, 'L');
  const std::string long_note(100001, 'n');
  WriteFile(dir + "/Animals.xml",
            table("Animals", {"<Local_ID>B1</Local_ID><TaxonInfo>Odd</TaxonInfo>",
                              "<Local_ID>G9</Local_ID><TaxonInfo>x/y</TaxonInfo>"
                              "<CurrentAccessionType>Group of Animals</CurrentAccessionType>",
                              "<Local_ID>" + long_id + "</Local_ID><TaxonInfo>x/y</TaxonInfo>"}));
  WriteFile(dir + "/CensusCounts.xml",
            table("CensusCounts", {"<Local_ID>G9</Local_ID><CensusDate>2012-01-01</CensusDate>"
                                   "<Male>2147483647</Male><Female>-2147483648</Female>",
                                   "<Local_ID>B1</Local_ID><CensusDate>2013-01-01</CensusDate><Male>x</Male>"
                                   "<Female>0</Female><Other>0</Other><GroupCount>0</GroupCount>"
                                   "<ChangeInCount>-1</ChangeInCount>"}));
  WriteFile(dir + "/Notes.xml",
            table("Notes", {"<GAN>1</GAN><Local_ID>B1</Local_ID><NoteType>General</NoteType>"
                            "<NoteDate>2012-02-02</NoteDate><Comment>" + long_note + "</Comment>",
                            "<Local_ID>B1</Local_ID><NoteType>Diet</NoteType><NoteDate>2012-02-03</NoteDate>"
                            "<Comment>O'Neil said \"no\" \\ ok</Comment>",
                            "<Local_ID>B1</Local_ID><NoteType>Capture</NoteType><NoteDate>2012-02-01</NoteDate>",
                            "<Local_ID>" + long_id + "</Local_ID><NoteType>Capture</NoteType>"}));
  WriteFile(dir + "/Measurements.xml",
            table("Measurements", {"<GAN>7</GAN><Local_ID>B1</Local_ID><MeasurementDate>2012-02-02</MeasurementDate>"
                                   "<MeasurementTypeName>Live weight</MeasurementTypeName>"
                                   "<MeasurementValueEntered>1e400</MeasurementValueEntered>"
                                   "<UnitOfMeasurement>gram</UnitOfMeasurement>"}));
  const std::string long_enclosure = "Tank'" + std::string(300, 'e');
  WriteFile(dir + "/EnclosureMoves.xml",
            table("EnclosureMoves", {"<Local_ID>B1</Local_ID><EnclosureName>" + long_enclosure +
                                     "</EnclosureName><MovedInDate>2012-02-04</MovedInDate>"}));
  for (const char* empty : {"/Transactions.xml", "/Identifiers.xml"}) {
    WriteFile(dir + empty, "<dataroot/>");
  }
  std::string log = RunJob(dir, "patient");
  const std::string expected_lines[] = {"\tERROR: Unable to lookup species: 'Odd'\n",
      "\tERROR - very long notes comment (100043) for 'B1' on '2012-02-02 12:00:00'\n",
      "\tERROR: Processing notes - cannot find '" + long_id + "'\n",
      "\tERROR - measurement value '1e400' is no number for GAN=7\n",
      "\tERROR: Can't find name for enclosure 'Tank" + std::string(300, 'e') + "'\n",
      "\tERROR: Processing census counts - Male 'x' is no number for 'B1'\n", "Processed 2 census reccords\n"};
  for (const std::string& line : expected_lines) {
    EXPECT_NE(log.find(line), std::string::npos) << line << "\nin:\n" << log.substr(0, 3000);
  }
  // Five group members at most from counts that only add up to less than six.
  EXPECT_EQ(Value("select count(*) from patient where notes like '%G9%'"), "5");
  // An enclosure name has no width of its own: the move's entry holds it whole.
  EXPECT_EQ(Value("select notes from record_entry where notes like 'Move To: %'"),
            "Move To: Tank" + std::string(300, 'e'));
  EXPECT_EQ(Value("select notes from record_entry where notes like 'Entry type: Diet%'"),
            "Entry type: Diet\n---------------------\nO'Neil said \"no\" \\ ok");
}

// Dates go to the server as the export writes them, cut only where the job
// cuts them: no record is left out for an unpadded or qualified date.
TEST_F(PksImportTest, DatesAreTakenAsTheyStand) {
  std::string dir = MakeTempDir();
  WriteIni(dir);
  Exec("insert into location(name,description) values ('ST-A','Shark Tank A');"
       "insert into species(abbrev,common_name,species_group) values ('PIGF','Pigfish','fish')");
  auto counts = [](const std::string& id, const std::string& date, const std::string& other, int change) {
    return Field("Local_ID", id) + Field("CensusDate", date) + Field("Male", "0") + Field("Female", "0") +
           Field("Other", other) + Field("GroupCount", other) + Field("ChangeInCount", std::to_string(change)) +
           (change < 0 ? Field("CensusCountQualifierType", "Death") : "");
  };
  auto animal = [](const std::string& id, const std::string& more) {
    return Field("Local_ID", id) + Field("TaxonInfo", "Fish/Pigfish") + more;
  };
  WriteExports(
      dir, {{"Animals", {animal("A1", ""), animal("A2", ""),
                         animal("G1", Field("CurrentAccessionType", "Group of Animals"))}},
            {"CensusCounts",
             {counts("G1", "2012-3-10T00:00:00", "7", 0), counts("A2", "2015-1-20T00:00:00", "0", -1),
              counts("G1", "2016-2-1T00:00:00", "0", -7)}},
            {"Notes",
             {Field("Local_ID", "A1") + Field("NoteType", "Capture") + Field("NoteDate", "~ from 2011-6-2T00:00:00"),
              Field("Local_ID", "A2") + Field("NoteType", "Birth") + Field("NoteDate", "2010-7-4")}},
            {"Transactions",
             {Field("Local_ID", "A1") + Field("TransactionType", "Disposition") +
              Field("TransactionDate", "2014-2-3T00:00:00") + Field("EventType", "Death")}},
            {"Identifiers",
             {Field("Local_ID", "G1") + Field("IdentifierType", "Local ID") + Field("IdentifierValue", "G1")}},
            {"Measurements",
             {Field("GAN", "1") + Field("Local_ID", "A1") + Field("MeasurementDate", "2013-4-2T10:15:00+05:00") +
              Field("MeasurementTypeName", "Live weight") + Field("MeasurementValueEntered", "500") +
              Field("UnitOfMeasurement", "gram")}},
            {"EnclosureMoves",
             {Field("Local_ID", "A2") + Field("EnclosureName", "Shark Tank A") + Field("MovedInDate", "2013-4-5")}}});
  std::string log = RunJob(dir, "patient");
  for (const char* refused : {"invalid date", "is no date", "cannot find", "Unable"}) {
    EXPECT_EQ(log.find(refused), std::string::npos) << refused << " in:\n" << log;
  }
  // The group is kept whole; its first census date is cut at its 'T'.
  EXPECT_EQ(ReadFile(dir + "/GroupTempFile.txt"), "GROUP: G1 2012-3-10 0 0 7 Fish/Pigfish\n");
  EXPECT_EQ(Rows("select patient_id,status,admission_date,final_date,dob,location from patient order by id"),
            (std::vector<std::string>{"2000-00001|D|2000-01-01|2016-02-01|0000-00-00|",
                                      "2010-00001|D|2010-07-04|2015-01-20|2010-07-04|",
                                      "2011-00001|D|2011-06-02|2014-02-03|0000-00-00|"}));
  EXPECT_EQ(Rows("select p.patient_id,r.notes,r.date,r.weight from record_entry r join patient p on p.id=r.patient_id "
                 "order by r.id"),
            (std::vector<std::string>{"2011-00001|Capture\n|2011-06-02 00:00:00|0",  // "2011-6-2T0 12:00:00"
                                      "2010-00001|Birth\n|2010-07-04 12:00:00|0",
                                      "2011-00001||2013-04-02 10:15:00|500",
                                      "2010-00001|Move To: Shark Tank A|2013-04-05 12:00:00|0",
                                      "2010-00001||2015-01-20 00:00:00|0",
                                      "2000-00001|Census update\n---------------\nType: Death\nMethod: Undetermined\n"
                                      "M=0, F=0, UNK=0, Group=0, Change=-7|2016-02-01 00:00:00|0"}));
  EXPECT_EQ(Value("select date from biometric"), "2013-04-02");
  EXPECT_EQ(Rows("select value,date from attributes where name='Census' order by id"),
            (std::vector<std::string>{"Total=7, M=0, F=0, UNK=7|2012-03-10 00:00:00",
                                      "Total=0, M=0, F=0, UNK=0|2016-02-01 00:00:00"}));
}

// A move to "Falls Lake" finds the lake's row whether the enclosure import
// wrote it (named "Falls Lake Reservoir", described "Falls Lake") or the
// application holds a location described "Falls Lake Reservoir", which is
// preferred as before.
TEST_F(PksImportTest, MoveToFallsLakeFindsTheLake) {
  const std::string lake = Field("Enclosure", "Falls Lake") + Field("Identifier", "Falls Lake") +
                           Field("Category", "Aquatic") + Field("Type", "Exhibit");
  struct Case {
    const char* entered;  // a location row of the application, or ""
    const char* location;
  };
  const Case cases[] = {
      {"", "Falls Lake Reservoir"},
      {"insert into location(name,description) values ('FLR','Falls Lake Reservoir')", "FLR"},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.location);
    TearDown();
    SetUp();
    std::string dir = MakeTempDir();
    WriteIni(dir);
    if (c.entered[0] != '\0') Exec(c.entered);
    WriteFile(dir + "/EnclosureTree.xml", Table("EnclosureTree", {lake}));
    EXPECT_EQ(RunJob(dir, "habitats"), "CSAQ_PKS - habitats - 2015\nProcessed 1 enclosures\n");
    WriteExports(dir, {{"Animals", {Field("Local_ID", "A1") + Field("TaxonInfo", "Fish/Pigfish")}},
                       {"EnclosureMoves", {Field("Local_ID", "A1") + Field("EnclosureName", "Falls Lake") +
                                           Field("MovedInDate", "2012-07-20")}}});
    std::string log = RunJob(dir, "patient");
    EXPECT_NE(log.find("\tWARNING: Modifying location: 'Falls Lake'\n"), std::string::npos) << log;
    EXPECT_EQ(log.find("Can't find name"), std::string::npos) << log;
    EXPECT_EQ(Value("select location from patient"), c.location);
    EXPECT_EQ(Value("select notes from record_entry"), "Move To: Falls Lake Reservoir");
  }
}

}  // namespace
