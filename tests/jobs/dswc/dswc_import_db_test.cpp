#include <gtest/gtest.h>

#include <array>
#include <string>
#include <utility>
#include <vector>

#include "support/program_run.h"
#include "support/test_database.h"

namespace {

// The import note is dated with the time of the run: checked on its own below.
const std::vector<std::pair<std::string, std::string>> kAdmissions = {
    {"patient",
     "patient_id,name,species,species_group,status,location,ageIn,age,sex,flags,admission_date,final_date,"
     "expected_release_date,away_from_date,away_to_date,injury_cause,found_name,found_addr,found_city,found_state,"
     "found_zip,found_county,found_district,found_country,found_crossStreets,found_phone1,presenter_transporter,"
     "presenter_state,presenter_county,presenter_district,presenter_country,donation"},
    {"problems", "patient_id,description,resolved,initial_date"},
    {"record_entry", "patient_id,replace(notes,'\\n','\\\\n'),if(notes like 'Patient record imported%','<now>',date),"
                     "who,weight,keel,location,amountFed,special"},
    {"releases", "record_entry_id,patient_id,date,how_age,how_sex,band_number,weight,location,city,state,county,"
                 "country,id_type,tracker_type,pub_priv"},
    {"transfers", "record_entry_id,patient_id,date,name,addr,city,state,zip,county,permit,reason,country"}};

class DswcImportTest : public DatabaseTest {
 protected:
  // Runs one DsWC job in `dir` and returns its log from the title line on.
  std::string RunJob(const std::string& dir, const std::string& type, const std::string& year) {
    ProgramRun run = RunProgram(dir, {"-org", "DsWC", "-type", type, "-year", year});
    EXPECT_EQ(run.exit_code, 0);
    // The banner before the title is pinned by the repairs' expected logs; without a title all of it is returned.
    return run.output.substr(run.output.find("\nDsWC - ") + 1);
  }

  // Runs the jobs `types` in order on the samples; the last one's log and the rows of `tables` must then match
  // expected/<name>.log and expected/<name>.rows.
  void RunAndCompare(const std::vector<std::string>& types, const std::string& year, const std::string& name,
                     const std::vector<std::pair<std::string, std::string>>& tables,
                     const SavedAs* species_list_saved_as = nullptr) {
    std::string dir = MakeTempDir(), log;
    CopySamples("samples/dswc", dir);
    if (species_list_saved_as != nullptr) {
      WriteFile(dir + "/species.xml", SaveAs(ReadFile(dir + "/species.xml"), *species_list_saved_as));
    }
    WriteIni(dir);
    for (const std::string& type : types) log = RunJob(dir, type, year);
    ExpectMatchesFile(log, "jobs/dswc/expected/" + name + ".log");
    ExpectMatchesFile(Dump(tables), "jobs/dswc/expected/" + name + ".rows");
  }
};

TEST_F(DswcImportTest, SpeciesList) {
  RunAndCompare({"species"}, "2011", "species",
                {{"species", "abbrev,scientific_name,common_name,nord,native,info_page,species_group,cost_category,"
                             "state_soc,federal_soc,kingdom,class,hms,value,habitat"}});
  // A repeated abbreviation is skipped, not stored twice.
  EXPECT_EQ(Value("select count(*) from species where abbrev in ('GAQU','MODO','DECO')"), "3");
}

TEST_F(DswcImportTest, AdmissionsOf2011AfterSpecies) {
  RunAndCompare({"species", "patient"}, "2011", "admissions_2011", kAdmissions);
  // Every patient names a species row the species job wrote.
  EXPECT_EQ(Value("select count(*) from patient p left join species s on s.abbrev=p.species where s.id is null"), "0");
  // The "Patient record imported" note is dated with the time of the run.
  EXPECT_EQ(Value("select count(*) from record_entry where notes like 'Patient record imported%' and "
                  "abs(timestampdiff(second,date,now()))>600"), "0");
}

// The XML reader reads a species list saved as Unicode text, or with a UTF-8
// mark, as the same list.
TEST_F(DswcImportTest, SpeciesListSavedAsUnicode) {
  for (SavedAs encoding : {SavedAs::kUtf16LittleEndian, SavedAs::kUtf16BigEndian, SavedAs::kUtf8Mark}) {
    Exec("delete from species");
    RunAndCompare({"species"}, "2011", "species",
                  {{"species", "abbrev,scientific_name,common_name,nord,native,info_page,species_group,cost_category,"
                               "state_soc,federal_soc,kingdom,class,hms,value,habitat"}},
                  &encoding);
  }
}

TEST_F(DswcImportTest, AdmissionsOf2014AfterSpecies) {
  RunAndCompare({"species", "patient"}, "2014", "admissions_2014", kAdmissions);
}

TEST_F(DswcImportTest, AddressBook) {
  RunAndCompare({"address_book"}, "2011", "address_book",
                {{"addressBook", "org,replace(contactName,'\\n','\\\\n'),addr,addr2,city,state,zip,county,country,"
                                 "phone1,phone2,phone3,replace(email,'\\n','\\\\n'),cellProvider,type,permit,dob,"
                                 "webAddress"}});
}

// Fields end at tabs only: whichever column ends the line keeps its line feed
// (CR LF read as LF), and a birthday read as "%d/%d" does not mind it.
TEST_F(DswcImportTest, LastFieldOfALineKeepsItsLineFeed) {
  std::string dir = MakeTempDir();
  WriteIni(dir);
  WriteFile(dir + "/AddressBook.txt",
            "Last\tFirst\tMiddle\tAddress\tPhone 1\tPhone 2\tPhone 3\tE-mail\tBirthday\r\n"
            "Quill\tAda\tM\t1 Main St, Tucson, AZ 85701\t520-555-0100 (Cell)\t \t \tada@example.com\r\n"
            "Reyes\tLuis\tP\t2 Oak St, Tucson, AZ 85702\t520-555-0101 (Home)\t \t \tluis@example.com\t7/4\r\n"
            "Castellanos\r\n"
            "\r\n"
            " \t \t \t \t \t \t \t \t \r\n");  // blanks only: a contact like any other row
  EXPECT_EQ(RunJob(dir, "address_book", "2011"),
            "DsWC - address_book - 2011\nLoading address book data from './AddressBook.txt'\nImported 4 entries\n");
  EXPECT_EQ(Rows("select contactName, email, dob from addressBook order by id"),
            (std::vector<std::string>{"Ada M Quill|ada@example.com\n|0000-00-00",
                                      "Luis P Reyes|luis@example.com|0000-07-04", " Castellanos\n||0000-00-00",
                                      "     | |0000-00-00"}));
}

// One directory that gains an input file before some runs; no run imports anything.
TEST_F(DswcImportTest, MissingInputFiles) {
  const std::string dir = MakeTempDir(), loading = "Loading patient data from './2011Admissions.txt'\n";
  WriteIni(dir);
  const std::vector<std::array<std::string, 3>> cases = {  // sample file added first, job, log after its title
      {"", "species", "Unable to parse species file './species.xml'\n"},
      {"", "patient", loading + "Unable to open './2011Admissions.txt'\n"},
      {"2011Admissions.txt", "patient", loading + "Unable to parse species file './species.xml'\n"},
      {"species.xml", "address_book",
       "Loading address book data from './AddressBook.txt'\nUnable to open './AddressBook.txt'\n"}};
  for (const auto& [file, type, log] : cases) {
    if (!file.empty()) WriteFile(dir + "/" + file, ReadFile(CORVANA_SOURCE_DIR "/samples/dswc/" + file));
    EXPECT_EQ(RunJob(dir, type, "2011"), "DsWC - " + type + " - 2011\n" + log);
  }
  EXPECT_EQ(Value("select count(*) from patient"), "0");
}

}  // namespace
