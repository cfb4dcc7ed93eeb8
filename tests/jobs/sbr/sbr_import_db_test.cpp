#include <gtest/gtest.h>

#include <array>
#include <filesystem>
#include <string>
#include <utility>
#include <vector>

#include "support/program_run.h"
#include "support/test_database.h"

namespace {

// Record entries written during the run (import notes, sightings, undated
// reports) show "<now>" instead of their time.
constexpr const char* kEntryColumns =
    "patient_id,replace(notes,'\\n','\\\\n'),if(date>'2020-01-01','<now>',date),who,weight,keel,location,"
    "amountFed,special";

const std::vector<std::pair<std::string, std::string>> kPatientTables = {
    {"patient",
     "patient_id,name,species,species_group,status,ageIn,age,sex,flags,admission_date,final_date,dob,team,"
     "expected_release_date,away_from_date,away_to_date,band,aux_marker,replace(notes,'\\n','\\\\n'),found_name,"
     "found_addr,found_city,found_state,found_zip,found_county,found_district,found_country,found_date,"
     "presenter_org,presenter_state,presenter_county,presenter_district,presenter_country,presenter_transporter"},
    {"attributes", "patient_id,name,value,date"},
    {"problems", "patient_id,description,resolved,initial_date"},
    {"record_entry", kEntryColumns},
    {"pcv", "record_entry_id,date,pcv,ts,buffy,serum"},
    {"biometric", "record_entry_id,date,weight,wc,culmen,length"},
    {"transfers", "record_entry_id,patient_id,date,name,addr,city,state,zip,county,permit,reason,country"},
    {"releases",
     "record_entry_id,patient_id,date,how_age,how_sex,band_number,aux_marker,weight,location,city,state,county,"
     "country,id_type,tracker_type,pub_priv"}};

class SbrImportTest : public DatabaseTest {
 protected:
  // Runs one SBR job in `dir` and returns its log from the job line on.
  // Its notices on stderr go to `errors` when given.
  std::string RunJob(const std::string& dir, const std::string& org, const std::string& type,
                     const std::string& region = "", std::string* errors = nullptr) {
    std::vector<std::string> args = {"-org", org, "-type", type, "-year", "2016"};
    if (!region.empty()) args.insert(args.end(), {"-region", region});
    ProgramRun run = RunProgram(dir, args);
    EXPECT_EQ(run.exit_code, 0);
    if (errors != nullptr) *errors = run.errors;
    return run.output.substr(run.output.find("\n" + org + " - ") + 1);
  }

  // A scratch copy of the samples with this test's database.
  std::string SampleDir() {
    std::string dir = MakeTempDir();
    CopySamples("samples/sbr", dir);
    WriteIni(dir);
    return dir;
  }

  // The species list and the LA patients, which the later LA jobs build on; returns the entries so far.
  std::string LaPatients(const std::string& dir) {
    RunJob(dir, "SBR_LA", "species");
    RunJob(dir, "SBR_LA", "patient", "LA");
    return Value("select count(*) from record_entry");
  }

  // The species list, then one centre's patients: the whole log and every row.
  void ExpectCentre(const std::string& region, const std::string& name) {
    std::string dir = SampleDir();
    RunJob(dir, "SBR_" + region, "species");
    ExpectMatchesFile(RunJob(dir, "SBR_" + region, "patient", region), "jobs/sbr/expected/patients_" + name + ".log");
    ExpectMatchesFile(Dump(kPatientTables), "jobs/sbr/expected/patients_" + name + ".rows");
    // Import notes are dated with the time of the run.
    EXPECT_EQ(Value("select count(*) from record_entry where notes like 'Patient record imported%' and "
                    "abs(timestampdiff(second,date,now()))>600"),
              "0");
  }

  // Every row of a query, one per line.
  std::string Lines(const std::string& sql) {
    std::string text;
    for (const std::string& row : Rows(sql)) text += row + "\n";
    return text;
  }
};

TEST_F(SbrImportTest, SpeciesList) {
  std::string dir = SampleDir();
  ExpectMatchesFile(RunJob(dir, "SBR_LA", "species"), "jobs/sbr/expected/species.log");
  ExpectMatchesFile(Dump({{"species",
                           "abbrev,scientific_name,common_name,nord,native,info_page,species_group,cost_category,"
                           "state_soc,federal_soc,kingdom,phylum,class,_order,family,genus,species,hms,value,"
                           "habitat"}}),
                    "jobs/sbr/expected/species.rows");
}

TEST_F(SbrImportTest, LosAngelesPatientsAfterSpecies) { ExpectCentre("LA", "la"); }

TEST_F(SbrImportTest, SanFranciscoPatientsAfterSpecies) { ExpectCentre("SF", "sf"); }

TEST_F(SbrImportTest, BandSightingsAfterPatients) {
  std::string dir = SampleDir();
  const std::string before = LaPatients(dir);
  ExpectMatchesFile(RunJob(dir, "SBR_LA", "band_sightings"), "jobs/sbr/expected/band_sightings.log");
  ExpectMatchesFile(
      Dump({{"band_report",
             "record_entry_id,date,lat,lon,replace(finder_info,'\\n','\\\\n'),location,notes,present_condition,"
             "how,band,aux_marker"}}) +
          Lines("select concat_ws('|',p.patient_id,r.id,r.notes,if(r.date>'2020-01-01','<now>',r.date),r.who,"
                "r.weight,r.keel,r.location,r.amountFed,r.special) from record_entry r join patient p on "
                "p.id=r.patient_id where r.id>" + before + " order by r.id"),
      "jobs/sbr/expected/band_sightings.rows");
}

TEST_F(SbrImportTest, NecropsyReportsAfterPatients) {
  std::string dir = SampleDir();
  const std::string before = LaPatients(dir);
  std::string errors;
  // The cut line ends the log as the end of the file would; stderr says where it stopped.
  ExpectMatchesFile(RunJob(dir, "SBR_LA", "necropsy", "", &errors), "jobs/sbr/expected/necropsy.log");
  EXPECT_NE(errors.find("Note: './Necropsy.txt' was read up to a line with only 8 of 53 fields (case 'LA-16-026')"),
            std::string::npos)
      << errors;
  ExpectMatchesFile(Lines("select concat_ws('|',p.patient_id,replace(r.notes,'\\n','\\\\n'),"
                          "if(r.date>'2020-01-01','<now>',r.date),r.who,r.weight,r.keel,r.location,r.amountFed,"
                          "r.special) from record_entry r join patient p on p.id=r.patient_id where r.id>" +
                          before + " order by r.id"),
                    "jobs/sbr/expected/necropsy.rows");
}

// One directory without input files; no job writes anything, a plain "SBR" runs none.
TEST_F(SbrImportTest, MissingInputFilesAndUnknownOrganisation) {
  const std::string dir = MakeTempDir();
  WriteIni(dir);
  const std::vector<std::array<std::string, 4>> cases = {  // org, type, region, log after the job line
      {"SBR_LA", "species", "", "Loading species data from './species.txt'\nUnable to open './species.txt'\n"},
      {"SBR_SF", "patient", "SF", "Loading patient data from './SBR_SF.txt'\nUnable to open './SBR_SF.txt'\n"},
      {"SBR_LA", "patient", "", "Loading patient data from './SBR_.txt'\nUnable to open './SBR_.txt'\n"},
      {"SBR_SF", "band_sightings", "",
       "Loading patient data from './BandSightings/BandSightings.txt'\n"
       "ERROR: Unable to open './BandSightings/BandSightings.txt'\n"},
      {"SBR_LA", "necropsy", "", "Loading necropsy data from './Necropsy.txt'\nUnable to open './Necropsy.txt'\n"},
      {"SBR", "patient", "LA", ""},
      {"SBR_LA", "Patient", "LA", ""},
  };
  for (const auto& [org, type, region, log] : cases) {
    EXPECT_EQ(RunJob(dir, org, type, region), org + " - " + type + " - 2016\n" + log);
  }
  EXPECT_EQ(Value("select count(*) from species"), "0");
}

// Short lines never read past their cells; headers alone give zero counts.
TEST_F(SbrImportTest, ShortAndEmptyFiles) {
  const std::string dir = MakeTempDir();
  WriteIni(dir);
  std::filesystem::create_directory(dir + "/BandSightings");
  WriteFile(dir + "/species.txt", "header\r\nAuklet\r\n\r\nPuffin\tTUPU\tFratercula cirrhata\r\n");
  WriteFile(dir + "/SBR_LA.txt", "header\nLA-16-001\n\nLA-16-002\tBrown Pelican\tLos Angeles");
  WriteFile(dir + "/BandSightings/BandSightings.txt", "header\n\nlabel\n");
  WriteFile(dir + "/Necropsy.txt", "header\n");
  EXPECT_EQ(RunJob(dir, "SBR_LA", "species"),
            "SBR_LA - species - 2016\nLoading species data from './species.txt'\n"
            "\tERROR - only 1 of 7 fields for 'Auklet', line skipped\n"
            "\tERROR - only 3 of 7 fields for 'Puffin', line skipped\nLoaded 0 species\n");
  EXPECT_EQ(RunJob(dir, "SBR_LA", "patient", "LA"),
            "SBR_LA - patient - 2016\nLoading patient data from './SBR_LA.txt'\n"
            "\tERROR - only 1 of 73 fields for 'LA-16-001', line skipped\n"
            "\tERROR - only 3 of 73 fields for 'LA-16-002', line skipped\nImported 0 patients\n");
  EXPECT_EQ(RunJob(dir, "SBR_LA", "band_sightings"),
            "SBR_LA - band_sightings - 2016\nLoading patient data from './BandSightings/BandSightings.txt'\n"
            "\tERROR - only 1 of 20 fields for 'label', line skipped\n"
            "Created 0 band reports and inserted 0 images\nThere were 1 errors and 0 records were skipped.");
  EXPECT_EQ(RunJob(dir, "SBR_LA", "necropsy"),
            "SBR_LA - necropsy - 2016\nLoading necropsy data from './Necropsy.txt'\nImported 0 necropsy reports\n");
  EXPECT_EQ(Value("select count(*) from species") + Value("select count(*) from patient"), "00");
}

// Apostrophes in every text of a case that used to be sent unescaped (case
// number, city, address, organisation, bands, places, problems, notes): each
// lands whole, and the case keeps every row of its record.
TEST_F(SbrImportTest, ApostrophesLandWholeWithTheWholeRecord) {
  std::string dir = SampleDir();
  auto line = [](const char* case_number, const char* disposition, const char* place) {
    std::vector<std::string> cells(73, " ");
    cells[0] = case_number;
    cells[1] = "American Widgeon";
    cells[2] = "Los Angeles";
    cells[15] = "Unknown";
    cells[17] = "O'Neill's Landing";
    cells[18] = "9 O'Farrell St, Ventura";
    cells[19] = "\"St. Mary's Wildlife Friends\"";
    cells[22] = "2/3/2016";
    cells[23] = "Found on the pier's end";
    cells[26] = "Dr. O'Rhee";
    cells[30] = "540";
    cells[61] = "6'2";
    cells[63] = "Flew off to Ma's cove";
    cells[64] = "3/1/2016";
    cells[66] = place;
    cells[67] = disposition;
    cells[68] = "1125-'4567";
    cells[72] = "\"Pelican's hook wound;fisherman's line\"";
    std::string text;
    for (const std::string& cell : cells) text += (text.empty() ? "" : "\t") + cell;
    return text + "\n";
  };
  WriteFile(dir + "/SBR_LA.txt", "header\n" + line("LA-16-0'50", "Released", "Miller's Pond") +
                                     line("LA-16-0'51", "Transferred SouthBay Wildlife Rehabilitation",
                                          "\"St. Mary's Sanctuary\""));
  RunJob(dir, "SBR_LA", "species");
  EXPECT_EQ(RunJob(dir, "SBR_LA", "patient", "LA"),
            "SBR_LA - patient - 2016\nLoading patient data from './SBR_LA.txt'\nImported 2 patients\n");
  EXPECT_EQ(Lines("select concat_ws('|',notes,found_addr,found_city,presenter_org,band) from patient"),
            "Original case #: LA-16-0'50\n|9 O'Farrell St|O'Neill's Landing|St. Mary's Wildlife Friends|1125-'4567\n"
            "Original case #: LA-16-0'51\n|9 O'Farrell St|O'Neill's Landing|St. Mary's Wildlife Friends|1125-'4567\n");
  EXPECT_EQ(Lines("select value from attributes"), "LA-16-0'50\nLA-16-0'51\n");
  EXPECT_EQ(Lines("select description from problems"),
            "Pelican's hook wound\nfisherman's line\nPelican's hook wound\nfisherman's line\n");
  // The import note, the admission entry and the release or transfer entry of each case.
  EXPECT_EQ(Value("select count(*) from record_entry"), "6");
  EXPECT_EQ(Value("select count(*) from record_entry where notes like '%History: Found on the pier''s end%' and "
                  "notes like '%Examiner: Dr. O''Rhee%'"),
            "2");
  EXPECT_EQ(Value("select notes from record_entry where notes like 'Exit notes%'"),
            "Exit notes: Flew off to Ma's cove\nTarsus: 6'2\n");
  EXPECT_EQ(Lines("select concat_ws('|',location,band_number) from releases"), "Miller's Pond|1125-'4567\n");
  EXPECT_EQ(Lines("select name from transfers"), "St. Mary's Sanctuary\n");
}

// A row of blanks and tabs with all its cells goes through each job like any
// other row and gets the job's messages and counts; only an empty line is
// passed over.
TEST_F(SbrImportTest, BlankRowsFollowTheAlgorithm) {
  const std::string dir = MakeTempDir();
  WriteIni(dir);
  std::filesystem::create_directory(dir + "/BandSightings");
  auto blank_row = [](int cells) {
    std::string row = " ";
    for (int i = 1; i < cells; ++i) row += "\t ";
    return row + "\r\n";
  };
  WriteFile(dir + "/species.txt", "header\r\n\r\n" + blank_row(7));
  WriteFile(dir + "/SBR_LA.txt", "header\n\n" + blank_row(73) + "\t\t\n");
  WriteFile(dir + "/BandSightings/BandSightings.txt", "header\n\n" + blank_row(23));
  EXPECT_EQ(RunJob(dir, "SBR_LA", "species"),
            "SBR_LA - species - 2016\nLoading species data from './species.txt'\n"
            "ERROR: Invalid or missing abbreviation for ''\nLoaded 0 species\n");
  // The blank row, then a row of tabs only (one cell, its line end).
  EXPECT_EQ(RunJob(dir, "SBR_LA", "patient", "LA"),
            "SBR_LA - patient - 2016\nLoading patient data from './SBR_LA.txt'\n"
            "ERROR: Invalid or missing ID ' '\nERROR: Invalid species ' ' for ' '\n"
            "ERROR: Invalid admission date ' ' for ' '\n"
            "ERROR: Invalid or missing ID ''\n\tERROR - only 1 of 73 fields for '', line skipped\n"
            "Imported 0 patients\n");
  EXPECT_EQ(RunJob(dir, "SBR_LA", "band_sightings"),
            "SBR_LA - band_sightings - 2016\nLoading patient data from './BandSightings/BandSightings.txt'\n"
            "ERROR: invalid date ' ' for sighting on ' '\n"
            "Created 0 band reports and inserted 0 images\nThere were 1 errors and 0 records were skipped.");
  EXPECT_EQ(Value("select count(*) from species") + Value("select count(*) from patient"), "00");
}

}  // namespace
