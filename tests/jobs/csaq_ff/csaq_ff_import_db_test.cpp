#include <gtest/gtest.h>

#include <array>
#include <string>
#include <utility>
#include <vector>

#include "support/program_run.h"
#include "support/test_database.h"

namespace {

// The jobs in the order the README gives: each builds on the rows of those before it.
const std::vector<std::string> kRunOrder = {"species",  "habitats",   "water_chemistry", "patient",
                                            "rehab",    "biometrics", "vital_stats",     "invert_species_groups"};

// Rows dated with the time of the run show "<now>"; line feeds show as <LF>.
const std::vector<std::pair<std::string, std::string>> kTables = {
    {"species",
     "abbrev,scientific_name,common_name,nord,native,info_page,species_group,cost_category,state_soc,federal_soc,"
     "kingdom,phylum,class,_order,family,genus,species,hms,value,habitat"},
    {"settings", "category,value"},
    {"location", "id,name,flags,feed_order,display_order,volume,description"},
    {"location_record_entry", "location_id,notes,date,who"},
    {"water_quality",
     "location_record_entry_id,location_id,date,who,temp,pH,fecal_coliform,chlorine,salinity,nh3,no2,no3,`do`,"
     "phosphate,cu2,percent_abs,hardness,residual_ozone,orp,alk,ca2,copper_sulfate,chloroquine,kh,nh4,fe,sio2,co2,"
     "TAN"},
    {"patient",
     "id,patient_id,name,species,species_group,status,location,ageIn,age,sex,flags,admission_date,final_date,"
     "expected_release_date,away_from_date,away_to_date,notes,band,microchip,found_date,found_lat,found_lon,"
     "found_county,found_state,found_district,found_country,presenter_county,presenter_state,presenter_district,"
     "presenter_country,concat('[',presenter_transporter,']'),collection_info,collection_method"},
    {"attributes", "patient_id,name,value,if(name='Census','<now>',date)"},
    {"record_entry",
     "id,patient_id,replace(notes,char(10),'<LF>'),if(notes like 'Imported into Corvana database%','<now>',date),"
     "who,weight,keel,location,amountFed,special"},
    {"releases",
     "record_entry_id,patient_id,date,how_age,how_sex,band_number,weight,location,comments,lat,lon,id_type,"
     "tracker_type,pub_priv"},
    {"transfers", "record_entry_id,patient_id,date,name,addr,city,state,zip,county,permit,reason,country"},
    {"biometric",
     "record_entry_id,date,weight,length,fork_length,straight_NPN_length,curved_NPN_length,straight_carapace_width,"
     "curved_carapace_width"},
};

// The jobs' load lines; the patient job's first five in order.
const std::string kSpecies = "Loading SPECIES data from './ScientificNames.xml'.\n";
const std::string kAbbreviations = "Loading SPECIES abbreviation data from './SpeciesAbbreviations.xml'.\n";
const std::string kGroups = "Loading PATIENT data from './Groups.xml'.\n";
const std::string kHusbandry = "Loading HUSBANDRY data from './Husbandry.xml'.\n";
const std::string kHabitats = "Loading HABITAT data from './Habitats.xml'.\n";
const std::string kCensus = "Loading current census data from './HabitatCensus.xml'.\n";
const std::string kWater = "Loading WATER CHEMISTRY data from './WaterChem.xml'.\n";
const std::string kLogs = "Loading BIOMETRIC data from './LoggerHeadDailyLogs.xml'.\n";
const std::string kVitals = "Loading VITAL STAT data from './Husbandry.xml'.\n";
const std::string kNoPatients = "No patients found: run the CSAQ_FF patient and rehab imports first!\n";
const std::string kNoSpecies = "No species found: run the CSAQ_FF species import first!\n";
const std::string kPatientLoads = kGroups + kHusbandry + kHabitats + kCensus + kAbbreviations;

// "<name>text</name>", and the rows of the collection exports built from it.
using S = const std::string&;
std::string Field(S name, S text) { return "<" + name + ">" + text + "</" + name + ">"; }
std::string Habitat(S id, S label) { return "<H>" + Field("ID", id) + Field("Habitat_x0020_Label", label) + "</H>"; }
std::string Group(S tag, S name, S date, S more = "") {
  return "<G>" + Field("Identity_x0020__x0020_Tag", tag) + Field("Common_x0020_Name", name) + Field("Date", date) +
         more + "</G>";
}
std::string Husbandry(S tag, S type, S date, S more) {
  return "<H>" + Field("Identity_x0020__x0020_Tag", tag) + Field("Data_x0020_Type", type) + Field("Date", date) +
         Field("Number_x0020_of_x0020_specimens_x0020_in_x0020_group", "1") + more + "</H>";
}

class CsaqFfImportTest : public DatabaseTest {
 protected:
  // Runs one CSAQ_FF job in `dir` and returns its log from the job line on.
  std::string RunJob(const std::string& dir, const std::string& type) {
    ProgramRun run = RunProgram(dir, {"-org", "CSAQ_FF", "-type", type, "-year", "2016"});
    EXPECT_EQ(run.exit_code, 0);
    std::size_t title = run.output.find("\nCSAQ_FF - ");
    return title == std::string::npos ? run.output : run.output.substr(title + 1);
  }

  // The patient job's inputs for one species: habitats, groups and husbandry rows, no current census.
  void WritePatientInputs(const std::string& dir, const std::string& name, const std::string& abbrev,
                          const std::string& habitats, const std::string& groups, const std::string& husbandry) {
    WriteFile(dir + "/Habitats.xml", "<dataroot>" + habitats + "</dataroot>");
    WriteFile(dir + "/HabitatCensus.xml", "<dataroot/>");
    WriteFile(dir + "/SpeciesAbbreviations.xml", "<L><S commonName=\"" + name + "\" abbrev=\"" + abbrev + "\"/></L>");
    WriteFile(dir + "/Groups.xml", "<dataroot>" + groups + "</dataroot>");
    WriteFile(dir + "/Husbandry.xml", "<dataroot>" + husbandry + "</dataroot>");
  }

  std::string SampleDir() {
    std::string dir = MakeTempDir();
    CopySamples("samples/csaq_ff", dir);
    WriteIni(dir);
    return dir;
  }
};

TEST_F(CsaqFfImportTest, SampleExportsInOrder) {
  std::string dir = SampleDir(), log;
  for (const std::string& type : kRunOrder) log += RunJob(dir, type);
  ExpectMatchesFile(log, "jobs/csaq_ff/expected/run_in_order.log");
  ExpectMatchesFile(Dump(kTables), "jobs/csaq_ff/expected/run_in_order.rows");
  // The rows show "<now>" for these dates; they are the run's time.
  EXPECT_EQ(Value("select count(*) from record_entry where notes like 'Imported into Corvana database%' and "
                  "abs(timestampdiff(second,date,now()))>600"), "0");
  EXPECT_EQ(Value("select count(*) from attributes where name='Census' and "
                  "abs(timestampdiff(second,date,now()))>600"), "0");
}

// Every job stops with its message, and writes nothing, while an input or
// the rows it builds on are missing. Files are added one by one.
TEST_F(CsaqFfImportTest, MissingInputsAndPrerequisites) {
  const std::string dir = MakeTempDir();
  WriteIni(dir);
  const std::vector<std::array<std::string, 3>> cases = {  // sample file added first, job, log after its job line
      {"", "species", kSpecies + "Unable to parse species data!"},
      {"", "habitats", "Loading LOCATION data from './Habitats.xml'.\nUnable to parse habitat data!"},
      {"", "water_chemistry", kWater + "Unable to load water chemistry data!"},
      {"", "patient", kGroups + "Unable to load patient data!"},
      {"", "rehab", "Loading REHAB data from './SeaTurtleRehabRecords.xml'.\nUnable to load rehab data!"},
      {"", "biometrics", kLogs + "Unable to load biometric data!"},
      {"", "vital_stats", kVitals + "Unable to load vital stat data!"},
      {"", "invert_species_groups", "Unable to open './InvertebrateSpecies.txt'\n"},
      {"ScientificNames.xml", "species", kSpecies + "Unable to load nono-native species file!"},
      {"NonNatives.xml", "species", kSpecies + kAbbreviations + "Unable to parse abbreviation data!"},
      {"Groups.xml", "patient", kGroups + kHusbandry + "Unable to parse husbandry data!"},
      {"Husbandry.xml", "patient", kGroups + kHusbandry + kHabitats + "Unable to parse habitat data!"},
      {"", "vital_stats", kVitals + kNoPatients},
      {"Habitats.xml", "patient", kGroups + kHusbandry + kHabitats + kCensus + "Unable to parse habitat data!"},
      {"", "water_chemistry", kWater + "Unable to load water chemistry data!"},
      {"WaterChem.xml", "water_chemistry",
       kWater + kHabitats + "No locations found: run the CSAQ_FF habitats import first!\n"},
      {"HabitatCensus.xml", "patient", kPatientLoads + "Unable to parse abbreviation data!"},
      {"SpeciesAbbreviations.xml", "patient", kPatientLoads + kNoSpecies},
      {"LoggerHeadDailyLogs.xml", "biometrics", kLogs + kNoPatients},
      {"InvertebrateSpecies.txt", "invert_species_groups", kNoSpecies},
  };
  for (const auto& [file, type, log] : cases) {
    if (!file.empty()) WriteFile(dir + "/" + file, ReadFile(CORVANA_SOURCE_DIR "/samples/csaq_ff/" + file));
    EXPECT_EQ(RunJob(dir, type), "CSAQ_FF - " + type + " - 2016\n" + log) << type << " after " << file;
  }
  for (const char* table : {"species", "settings", "location", "patient", "record_entry", "location_record_entry"}) {
    EXPECT_EQ(Value(std::string("select count(*) from ") + table), "0") << table;
  }
}

// A note of any length goes in whole: nothing is cut or written past an end.
TEST_F(CsaqFfImportTest, LongTextsAreStoredWhole) {
  const std::string dir = MakeTempDir();
  WriteIni(dir);
  Exec("insert into species(abbrev,common_name,species_group) values ('SANDTIGER','Sand tiger shark','fish');"
       "insert into location(name) values ('Living Shipwreck')");
  std::string report;
  for (int i = 0; report.size() < 100000; ++i) {
    report += "Line " + std::to_string(i) + " with &quot;quotes&quot;, O'Hara's \xe9 note. ";
  }
  report += "End.";
  const std::string shark = "SHARK RS001";
  WritePatientInputs(dir, "Sand tiger shark", "SANDTIGER", Habitat("1", "Living Shipwreck"),
                     Group(shark, "Sand tiger shark", "2014-01-02T00:00:00", Field("Notes", std::string(400, 'n'))),
                     Husbandry(shark, "Census", "2014-01-02T00:00:00", Field("Female", "1") + Field("Location", "1")) +
                         Husbandry(shark, "Medical", "2014-02-03T10:00:00", Field("Medical_x0020_Report", report)));
  RunJob(dir, "patient");

  std::string plain = "*** MEDICAL RECORD ENTRY ***\n" + report;
  for (std::size_t at; (at = plain.find("&quot;")) != std::string::npos;) plain.erase(at, 6);
  for (char& c : plain) c = c == '\xe9' ? ' ' : c;
  EXPECT_EQ(Value("select length(notes) from record_entry where special='1'"), std::to_string(plain.size()));
  // Wrapping only turns blanks into line feeds.
  std::string flat = plain;
  for (char& c : flat) c = c == '\n' ? ' ' : c;
  EXPECT_EQ(Value("select replace(notes,char(10),' ') from record_entry where special='1'"), flat);
  // The entry's own notes are kept to 255 characters.
  EXPECT_EQ(Value("select length(notes) from record_entry where notes like 'Imported into Corvana database%'"),
            std::to_string(31 + 35 + 255));
}

// Names longer than the fields that keep them still lead to their rows: a
// habitat label cut to a location name, an identity tag cut to an animal's.
// Census counts near the int limits are added up without wrapping.
TEST_F(CsaqFfImportTest, LongNamesAndHugeCounts) {
  const std::string dir = MakeTempDir();
  WriteIni(dir);
  Exec("insert into species(abbrev,common_name,species_group) values ('LOGGER','Loggerhead','reptile:turtle')");
  const std::string label = "Outer Banks shipwreck gallery, lower deck";  // 41 characters
  const std::string tag = "Juvenile loggerhead from the 2015 cold-stun event RS001";  // 55
  WriteFile(dir + "/WaterChem.xml", "<dataroot><W><Habitat>1</Habitat><Date>2015-03-02T00:00:00</Date>"
                                    "<Temperature>24.5</Temperature></W></dataroot>");
  WritePatientInputs(
      dir, "Loggerhead", "LOGGER", Habitat("1", label) + Habitat("2", "Herp Room"),
      Group(tag, "Loggerhead", "2015-01-05T00:00:00") + Group("HUGE RS001", "Loggerhead", "2015-01-05T00:00:00"),
      Husbandry(tag, "Census", "2015-01-05T00:00:00", Field("Male", "1") + Field("Location", "2")) +
          Husbandry(tag, "Census", "2015-02-01T00:00:00", Field("Male", "1") + Field("Location", "1")) +
          Husbandry(tag, "Vital Stats", "2015-03-01T00:00:00", Field("Weight", "2 kg")) +
          Husbandry(tag, "Medical", "2015-04-01T00:00:00", Field("Medical_x0020_Report", "Eating well")) +
          Husbandry(tag, "Disposition", "2015-06-01T00:00:00", Field("Type_x0020_of_x0020_disposition", "Released")) +
          Husbandry("HUGE RS001", "Census", "2015-01-05T00:00:00",
                    Field("Unknown", "2147483647") + Field("Male", "2147483647") + Field("Female", "3")));
  for (const char* type : {"habitats", "water_chemistry"}) RunJob(dir, type);
  EXPECT_EQ(RunJob(dir, "patient"),
            "CSAQ_FF - patient - 2016\n" + kPatientLoads + tag +
                "\n\tSINGLE\n\tSetting FIRST location to 'Herp Room'\n\tSetting NEW location to '" + label +
                "'\nHUGE RS001\n\tSINGLE\n"
                "Parsed 2 group records\nInserted 1 PATIENT records\nInserted 0 TRANSFER records\n"
                "Inserted 1 RELEASE records\n");
  EXPECT_EQ(Rows("select l.name,w.temp from water_quality w join location l on l.id=w.location_id"),
            (std::vector<std::string>{label.substr(0, 31) + "|24.5"}));
  EXPECT_EQ(Rows("select patient_id,status,final_date from patient"),
            (std::vector<std::string>{"2015-00001|R|2015-06-01"}));
  EXPECT_EQ(Rows("select b.weight,r.special from biometric b join record_entry r on r.id=b.record_entry_id"),
            (std::vector<std::string>{"2000|0"}));
  EXPECT_EQ(Value("select count(*) from record_entry where special='1' and notes like '%Eating well'"), "1");
}

// A species row without a group (empty or null) is still the animals'
// species: they are imported with an empty group. Only a species that has
// no row stops its record.
TEST_F(CsaqFfImportTest, SpeciesWithoutAGroupGetsItsAnimals) {
  const std::string dir = MakeTempDir();
  WriteIni(dir);
  Exec("insert into species(abbrev,common_name,species_group) values ('PIGFISH','Pigfish',''),('SPOT','Spot',NULL);"
       "insert into location(name) values ('Tank 1')");
  const std::pair<std::string, std::string> kinds[] = {{"Pigfish", "PIGFISH"}, {"Spot", "SPOT"}, {"Red drum", "RDRUM"}};
  std::string abbreviations, groups, census;
  for (const auto& [name, abbrev] : kinds) {
    abbreviations += "<S commonName=\"" + name + "\" abbrev=\"" + abbrev + "\"/>";
    groups += Group(name + " school", name, "2014-01-02T00:00:00");
    census += "<C>" + Field("Identity_x0020__x0020_Tag", name + " school") +
              Field("Number_x0020_of_x0020_specimens_x0020_in_x0020_group", "2") + Field("Location", "1") + "</C>";
  }
  WriteFile(dir + "/Habitats.xml", "<dataroot>" + Habitat("1", "Tank 1") + "</dataroot>");
  WriteFile(dir + "/HabitatCensus.xml", "<dataroot>" + census + "</dataroot>");
  WriteFile(dir + "/SpeciesAbbreviations.xml", "<L>" + abbreviations + "</L>");
  WriteFile(dir + "/Groups.xml", "<dataroot>" + groups + "</dataroot>");
  WriteFile(dir + "/Husbandry.xml", "<dataroot/>");
  EXPECT_EQ(RunJob(dir, "patient"),
            "CSAQ_FF - patient - 2016\n" + kPatientLoads +
                "Pigfish school\n\tGROUP\n\tCreating 2 animals in Tank 1\n"
                "Spot school\n\tGROUP\n\tCreating 2 animals in Tank 1\n"
                "Red drum school\n\tERROR - Unable to find species group for 'RDRUM:Red drum'!\n"
                "Parsed 2 group records\nInserted 4 PATIENT records\nInserted 0 TRANSFER records\n"
                "Inserted 0 RELEASE records\n");
  EXPECT_EQ(Rows("select patient_id,species,concat('[',species_group,']'),location from patient order by id"),
            (std::vector<std::string>{"2014-00001|PIGFISH|[]|Tank 1", "2014-00002|PIGFISH|[]|Tank 1",
                                      "2014-00003|SPOT|[]|Tank 1", "2014-00004|SPOT|[]|Tank 1"}));
}

// A water test without a readable date is kept at the zero date, at noon in
// the tank's log: never at a year made up from an empty date.
TEST_F(CsaqFfImportTest, UndatedWaterTestsAreStoredAtTheZeroDate) {
  const std::string dir = MakeTempDir();
  WriteIni(dir);
  Exec("insert into location(name) values ('Tank 1')");
  WriteFile(dir + "/Habitats.xml", "<dataroot>" + Habitat("1", "Tank 1") + "</dataroot>");
  std::string tests;
  for (const char* date : {"", "<Date>2015-13</Date>", "<Date>T09:30:00</Date>", "<Date>2015-03-02T00:00:00</Date>"}) {
    tests += std::string("<W><Habitat>1</Habitat>") + date + "<Temperature>20</Temperature></W>";
  }
  WriteFile(dir + "/WaterChem.xml", "<dataroot>" + tests + "</dataroot>");
  EXPECT_EQ(RunJob(dir, "water_chemistry"),
            "CSAQ_FF - water_chemistry - 2016\n" + kWater + kHabitats +
                "Invalid or missing date for '1' - 'Tank 1'\nInvalid date '2015-13' for habitat '1' - 'Tank 1'\n"
                "2 errors\nInsert 4 records\n");
  EXPECT_EQ(Rows("select e.date,w.date,w.temp from location_record_entry e "
                 "join water_quality w on w.location_record_entry_id=e.id order by e.id"),
            (std::vector<std::string>{"0000-00-00 12:00:00|0000-00-00 00:00:00|20",
                                      "0000-00-00 12:00:00|0000-00-00 00:00:00|20",
                                      "0000-00-00 12:00:00|0000-00-00 00:00:00|20",
                                      "2015-03-02 12:00:00|2015-03-02 00:00:00|20"}));
}

}  // namespace
