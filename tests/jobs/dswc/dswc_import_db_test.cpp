#include <gtest/gtest.h>

#include <algorithm>
#include <string>
#include <vector>

#include "support/program_run.h"
#include "support/test_database.h"

namespace {

class DswcImportTest : public DatabaseTest {
 protected:
  // Runs one DsWC job in `dir` and returns its log after the connection banner.
  std::string RunJob(const std::string& dir, const std::string& type, const std::string& year) {
    ProgramRun run = RunProgram(dir, {"-org", "DsWC", "-type", type, "-year", year});
    EXPECT_EQ(run.exit_code, 0);
    std::string connected =
        "\n\nCorvanaDataImporter version 1.0 connected successfully to '" + server_.host + ":" + database_ + "'\n";
    EXPECT_EQ(run.output.substr(0, connected.size()), connected);
    return run.output.substr(std::min(connected.size(), run.output.size()));
  }

  std::string SampleDir() {
    std::string dir = MakeTempDir();
    CopySamples("samples/dswc", dir);
    WriteIni(dir);
    return dir;
  }

  std::string AdmissionRows() {
    return Dump(
        {{"patient",
          "patient_id,name,species,species_group,status,location,ageIn,age,sex,flags,admission_date,final_date,"
          "expected_release_date,away_from_date,away_to_date,injury_cause,found_name,found_addr,found_city,"
          "found_state,found_zip,found_county,found_district,found_country,found_crossStreets,found_phone1,"
          "presenter_transporter,presenter_state,presenter_county,presenter_district,presenter_country,donation"},
         {"problems", "patient_id,description,resolved,initial_date"},
         // The import note is dated with the time of the run.
         {"record_entry",
          "patient_id,replace(notes,'\\n','\\\\n'),if(notes like 'Patient record imported%','<now>',date),who,"
          "weight,keel,location,amountFed,special"},
         {"releases",
          "record_entry_id,patient_id,date,how_age,how_sex,band_number,weight,location,city,state,county,country,"
          "id_type,tracker_type,pub_priv"},
         {"transfers", "record_entry_id,patient_id,date,name,addr,city,state,zip,county,permit,reason,country"}});
  }

  std::string Status(const std::string& patient_id) {
    return Value("select status from patient where patient_id='" + patient_id + "'");
  }
};

TEST_F(DswcImportTest, SpeciesList) {
  std::string dir = SampleDir();
  ExpectMatchesFile(RunJob(dir, "species", "2011"), "jobs/dswc/expected/species.log");
  ExpectMatchesFile(Dump({{"species",
                           "abbrev,scientific_name,common_name,nord,native,info_page,species_group,cost_category,"
                           "state_soc,federal_soc,kingdom,class,hms,value,habitat"}}),
                    "jobs/dswc/expected/species.rows");

  EXPECT_EQ(Value("select count(*) from species where abbrev in ('GAQU','MODO','DECO')"), "3");  // dups skipped
  EXPECT_EQ(Value("select group_concat(nord order by id) from species where abbrev in ('GHOW','BUOW','DOPE')"),
            "D,N,N");
}

TEST_F(DswcImportTest, AdmissionsOf2011AfterSpecies) {
  std::string dir = SampleDir();
  RunJob(dir, "species", "2011");
  ExpectMatchesFile(RunJob(dir, "patient", "2011"), "jobs/dswc/expected/admissions_2011.log");
  ExpectMatchesFile(AdmissionRows(), "jobs/dswc/expected/admissions_2011.rows");

  // Every patient names a species row the species job wrote.
  EXPECT_EQ(Value("select count(*) from patient p left join species s on s.abbrev=p.species where s.id is null"),
            "0");
  EXPECT_EQ(Rows("select name,location,status,flags from patient where patient_id='2011-0479'"),
            (std::vector<std::string>{"Mesquite|Coyote Run 1|PR|" + std::to_string((1LL << 46) | (1LL << 48))}));
  EXPECT_EQ(Status("2011-0031"), "D24");
  EXPECT_EQ(Status("2011-0027"), "D");
  EXPECT_EQ(Value("select substring_index(r.notes,'\\n',-1) from record_entry r join patient p on p.id=r.patient_id"
                  " where p.patient_id='2011-0291'"),
            "Did not admit because: Renested");
  EXPECT_EQ(Value("select date from releases where patient_id='2011-0298'"), "2011-08-20");
  EXPECT_EQ(Value("select count(*) from patient where patient_id in ('2011-0455','2011-0461','2011-0466',"
                  "'2011-0470','2011-0474','2011-0477')"),
            "0");
  EXPECT_EQ(Value("select count(*) from record_entry where notes like 'Patient record imported%'"
                  " and abs(timestampdiff(second,date,now()))>600"),
            "0");
}

TEST_F(DswcImportTest, AdmissionsOf2014WithDonations) {
  std::string dir = SampleDir();
  RunJob(dir, "species", "2014");
  ExpectMatchesFile(RunJob(dir, "patient", "2014"), "jobs/dswc/expected/admissions_2014.log");
  ExpectMatchesFile(AdmissionRows(), "jobs/dswc/expected/admissions_2014.rows");

  EXPECT_EQ(Rows("select patient_id,donation from patient where patient_id in "
                 "('2014-0008','2014-0015','2014-0034','2014-0049') order by patient_id"),
            (std::vector<std::string>{"2014-0008|25", "2014-0015|0", "2014-0034|0", "2014-0049|50"}));
}

TEST_F(DswcImportTest, AddressBook) {
  std::string dir = SampleDir();
  ExpectMatchesFile(RunJob(dir, "address_book", "2011"), "jobs/dswc/expected/address_book.log");
  ExpectMatchesFile(Dump({{"addressBook",
                           "org,contactName,addr,addr2,city,state,zip,county,country,phone1,phone2,phone3,email,"
                           "cellProvider,type,permit,dob,webAddress"}}),
                    "jobs/dswc/expected/address_book.rows");

  EXPECT_EQ(Rows("select phone1,phone2,phone3,dob from addressBook where contactName='Dana R Whitcomb'"),
            (std::vector<std::string>{"520-555-0112||520-555-0190|0000-07-04"}));
  EXPECT_EQ(Value("select count(*) from addressBook where contactName=' Castellanos'"), "1");
  EXPECT_EQ(Value("select count(*) from addressBook where contactName like '%Haverford' or contactName like "
                  "'%Marwick' or contactName like '%Rourke'"),
            "0");
}

TEST_F(DswcImportTest, MissingInputFiles) {
  struct Case {
    std::vector<std::string> files;  // sample files copied into the directory
    std::string type;
    std::string log;
  };
  const Case cases[] = {
      {{}, "species", "Unable to parse species file './species.xml'\n"},
      {{}, "patient", "Loading patient data from './2011Admissions.txt'\nUnable to open './2011Admissions.txt'\n"},
      {{"2011Admissions.txt"}, "patient",
       "Loading patient data from './2011Admissions.txt'\nUnable to parse species file './species.xml'\n"},
      {{"species.xml", "2011Admissions.txt"}, "address_book",
       "Loading address book data from './AddressBook.txt'\nUnable to open './AddressBook.txt'\n"},
  };
  for (const Case& c : cases) {
    std::string dir = MakeTempDir();
    WriteIni(dir);
    for (const std::string& file : c.files) {
      WriteFile(dir + "/" + file, ReadFile(std::string(CORVANA_SOURCE_DIR) + "/samples/dswc/" + file));
    }
    EXPECT_EQ(RunJob(dir, c.type, "2011"), "DsWC - " + c.type + " - 2011\n" + c.log) << c.type;
  }
  EXPECT_EQ(Value("select count(*) from patient"), "0");
}

}  // namespace
