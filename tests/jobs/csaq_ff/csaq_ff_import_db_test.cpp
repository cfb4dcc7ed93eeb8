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

class CsaqFfImportTest : public DatabaseTest {
 protected:
  // Runs one CSAQ_FF job in `dir` and returns its log from the job line on.
  std::string RunJob(const std::string& dir, const std::string& type) {
    ProgramRun run = RunProgram(dir, {"-org", "CSAQ_FF", "-type", type, "-year", "2016"});
    EXPECT_EQ(run.exit_code, 0);
    std::size_t title = run.output.find("\nCSAQ_FF - ");
    return title == std::string::npos ? run.output : run.output.substr(title + 1);
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

  EXPECT_EQ(Value("select count(*) from record_entry where notes like 'Imported into Corvana database%' and "
                  "abs(timestampdiff(second,date,now()))>600"), "0");
  EXPECT_EQ(Value("select count(*) from attributes where name='Census' and "
                  "abs(timestampdiff(second,date,now()))>600"), "0");
  // Every collection patient names a species the species job wrote, and a tank from the habitats table.
  EXPECT_EQ(Value("select count(*) from patient p left join species s on s.abbrev=p.species "
                  "where p.notes like 'Imported from:%' and s.id is null"), "0");
  // The failed lionfish record gave its case number back to the guitarfish after it.
  EXPECT_EQ(Value("select name from patient where patient_id='2014-00004'"), "Banjo");
}

// Every job stops with its message, and writes nothing, while an input or
// the rows it builds on are missing. Files are added one by one.
TEST_F(CsaqFfImportTest, MissingInputsAndPrerequisites) {
  const std::string dir = MakeTempDir();
  WriteIni(dir);
  const std::string species = "Loading SPECIES data from './ScientificNames.xml'.\n";
  const std::string abbreviations = "Loading SPECIES abbreviation data from './SpeciesAbbreviations.xml'.\n";
  const std::string groups = "Loading PATIENT data from './Groups.xml'.\n";
  const std::string husbandry = "Loading HUSBANDRY data from './Husbandry.xml'.\n";
  const std::string habitats = "Loading HABITAT data from './Habitats.xml'.\n";
  const std::string census = "Loading current census data from './HabitatCensus.xml'.\n";
  const std::string water = "Loading WATER CHEMISTRY data from './WaterChem.xml'.\n";
  const std::string logs = "Loading BIOMETRIC data from './LoggerHeadDailyLogs.xml'.\n";
  const std::string vitals = "Loading VITAL STAT data from './Husbandry.xml'.\n";
  const std::string no_patients = "No patients found: run the CSAQ_FF patient and rehab imports first!\n";
  const std::string no_species = "No species found: run the CSAQ_FF species import first!\n";
  const std::vector<std::array<std::string, 3>> cases = {  // sample file added first, job, log after its job line
      {"", "species", species + "Unable to parse species data!"},
      {"", "habitats", "Loading LOCATION data from './Habitats.xml'.\nUnable to parse habitat data!"},
      {"", "water_chemistry", water + "Unable to load water chemistry data!"},
      {"", "patient", groups + "Unable to load patient data!"},
      {"", "rehab", "Loading REHAB data from './SeaTurtleRehabRecords.xml'.\nUnable to load rehab data!"},
      {"", "biometrics", logs + "Unable to load biometric data!"},
      {"", "vital_stats", vitals + "Unable to load vital stat data!"},
      {"", "invert_species_groups", "Unable to open './InvertebrateSpecies.txt'\n"},
      {"ScientificNames.xml", "species", species + "Unable to load nono-native species file!"},
      {"NonNatives.xml", "species", species + abbreviations + "Unable to parse abbreviation data!"},
      {"Groups.xml", "patient", groups + husbandry + "Unable to parse husbandry data!"},
      {"Husbandry.xml", "patient", groups + husbandry + habitats + "Unable to parse habitat data!"},
      {"", "vital_stats", vitals + no_patients},
      {"Habitats.xml", "patient", groups + husbandry + habitats + census + "Unable to parse habitat data!"},
      {"", "water_chemistry", water + "Unable to load water chemistry data!"},
      {"WaterChem.xml", "water_chemistry",
       water + "Loading HABITAT data from './Habitats.xml'.\nNo locations found: run the CSAQ_FF habitats import "
               "first!\n"},
      {"HabitatCensus.xml", "patient",
       groups + husbandry + habitats + census + abbreviations + "Unable to parse abbreviation data!"},
      {"SpeciesAbbreviations.xml", "patient", groups + husbandry + habitats + census + abbreviations + no_species},
      {"LoggerHeadDailyLogs.xml", "biometrics", logs + no_patients},
      {"InvertebrateSpecies.txt", "invert_species_groups", no_species},
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
  const std::string notes(400, 'n');
  WriteFile(dir + "/Groups.xml", "<dataroot><G><Identity_x0020__x0020_Tag>SHARK RS001</Identity_x0020__x0020_Tag>"
                                 "<Common_x0020_Name>Sand tiger shark</Common_x0020_Name><Date>2014-01-02T00:00:00"
                                 "</Date><Notes>" + notes + "</Notes></G></dataroot>");
  WriteFile(dir + "/Husbandry.xml",
            "<dataroot><H><Identity_x0020__x0020_Tag>SHARK RS001</Identity_x0020__x0020_Tag><Data_x0020_Type>Census"
            "</Data_x0020_Type><Date>2014-01-02T00:00:00</Date><Female>1</Female><Location>1</Location>"
            "<Number_x0020_of_x0020_specimens_x0020_in_x0020_group>1</Number_x0020_of_x0020_specimens_x0020_in_x0020_group>"
            "</H><H><Identity_x0020__x0020_Tag>SHARK RS001</Identity_x0020__x0020_Tag><Data_x0020_Type>Medical"
            "</Data_x0020_Type><Date>2014-02-03T10:00:00</Date>"
            "<Number_x0020_of_x0020_specimens_x0020_in_x0020_group>1</Number_x0020_of_x0020_specimens_x0020_in_x0020_group>"
            "<Medical_x0020_Report>" + report + "</Medical_x0020_Report></H></dataroot>");
  WriteFile(dir + "/Habitats.xml",
            "<dataroot><H><ID>1</ID><Habitat_x0020_Label>Living Shipwreck</Habitat_x0020_Label></H></dataroot>");
  WriteFile(dir + "/HabitatCensus.xml", "<dataroot/>");
  WriteFile(dir + "/SpeciesAbbreviations.xml", "<L><S commonName=\"Sand tiger shark\" abbrev=\"SANDTIGER\"/></L>");
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
  const std::string count = "<Number_x0020_of_x0020_specimens_x0020_in_x0020_group>1"
                            "</Number_x0020_of_x0020_specimens_x0020_in_x0020_group>";
  auto husbandry = [&](const std::string& row_tag, const std::string& type, const std::string& fields) {
    return "<H><Identity_x0020__x0020_Tag>" + row_tag + "</Identity_x0020__x0020_Tag><Data_x0020_Type>" + type +
           "</Data_x0020_Type>" + count + fields + "</H>";
  };
  WriteFile(dir + "/Habitats.xml", "<dataroot><H><ID>1</ID><Habitat_x0020_Label>" + label +
                                       "</Habitat_x0020_Label></H><H><ID>2</ID><Habitat_x0020_Label>Herp Room"
                                       "</Habitat_x0020_Label></H></dataroot>");
  WriteFile(dir + "/WaterChem.xml", "<dataroot><W><Habitat>1</Habitat><Date>2015-03-02T00:00:00</Date>"
                                    "<Temperature>24.5</Temperature></W></dataroot>");
  WriteFile(dir + "/SpeciesAbbreviations.xml", "<L><S commonName=\"Loggerhead\" abbrev=\"LOGGER\"/></L>");
  WriteFile(dir + "/HabitatCensus.xml", "<dataroot/>");
  WriteFile(dir + "/Groups.xml",
            "<dataroot><G><Identity_x0020__x0020_Tag>" + tag + "</Identity_x0020__x0020_Tag><Common_x0020_Name>"
            "Loggerhead</Common_x0020_Name><Date>2015-01-05T00:00:00</Date></G><G><Identity_x0020__x0020_Tag>"
            "HUGE RS001</Identity_x0020__x0020_Tag><Common_x0020_Name>Loggerhead</Common_x0020_Name><Date>"
            "2015-01-05T00:00:00</Date></G></dataroot>");
  WriteFile(dir + "/Husbandry.xml",
            "<dataroot>" +
                husbandry(tag, "Census", "<Date>2015-01-05T00:00:00</Date><Male>1</Male><Location>2</Location>") +
                husbandry(tag, "Census", "<Date>2015-02-01T00:00:00</Date><Male>1</Male><Location>1</Location>") +
                husbandry(tag, "Vital Stats", "<Date>2015-03-01T00:00:00</Date><Weight>2 kg</Weight>") +
                husbandry(tag, "Medical", "<Date>2015-04-01T00:00:00</Date><Medical_x0020_Report>Eating well"
                                          "</Medical_x0020_Report>") +
                husbandry(tag, "Disposition", "<Date>2015-06-01T00:00:00</Date><Type_x0020_of_x0020_disposition>"
                                              "Released</Type_x0020_of_x0020_disposition>") +
                husbandry("HUGE RS001", "Census", "<Date>2015-01-05T00:00:00</Date><Unknown>2147483647</Unknown>"
                                                  "<Male>2147483647</Male><Female>3</Female>") +
                "</dataroot>");
  for (const char* type : {"habitats", "water_chemistry"}) RunJob(dir, type);
  EXPECT_EQ(RunJob(dir, "patient"),
            "CSAQ_FF - patient - 2016\n"
            "Loading PATIENT data from './Groups.xml'.\n"
            "Loading HUSBANDRY data from './Husbandry.xml'.\n"
            "Loading HABITAT data from './Habitats.xml'.\n"
            "Loading current census data from './HabitatCensus.xml'.\n"
            "Loading SPECIES abbreviation data from './SpeciesAbbreviations.xml'.\n" +
                tag + "\n\tSINGLE\n\tSetting FIRST location to 'Herp Room'\n\tSetting NEW location to '" + label +
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

}  // namespace
