// Every job of the program with the sample files it reads: what the tests
// that run all jobs on damaged or hostile copies of the samples start from.
#pragma once

#include <ostream>
#include <string>
#include <vector>

using Args = std::vector<std::string>;

// One job, the files it reads, and what must run before it on the samples so
// that it gets past its own checks to the files.
struct SampleJob {
  const char* name;
  const char* samples;
  Args args;
  std::vector<std::string> files;
  std::vector<std::string> seed_sql;  // sample files loaded into the database first
  std::vector<Args> before;           // jobs run on the samples first
  const char* reset;                  // SQL run before each case, or ""
};

// Names the job in a test's name and messages.
inline void PrintTo(const SampleJob& job, std::ostream* out) { *out << job.name; }

inline Args Job(const char* org, const char* type, const char* year = "2016") {
  return {"-org", org, "-type", type, "-year", year};
}

inline const SampleJob kSampleJobs[] = {
    {"KWRC", "samples/kwrc", Job("KWRC", "patient", "2012"), {"KWRC_2012.txt"}, {"settings.sql"}, {}, ""},
    {"GLFH", "samples/glfh", Job("GLFH", "patient", "2012"), {"GLFH_Patients.txt"}, {}, {}, ""},
    {"UPRC", "samples/uprc", Job("UPRC", "patient", "2012"), {"UPRC 2012.txt"}, {}, {}, ""},
    {"DsWC_species", "samples/dswc", Job("DsWC", "species", "2011"), {"species.xml"}, {}, {}, ""},
    {"DsWC_patient", "samples/dswc", Job("DsWC", "patient", "2011"), {"2011Admissions.txt", "species.xml"}, {},
     {Job("DsWC", "species", "2011")}, ""},
    {"DsWC_address_book", "samples/dswc", Job("DsWC", "address_book", "2011"), {"AddressBook.txt"}, {}, {}, ""},
    {"SBR_species", "samples/sbr", Job("SBR_LA", "species"), {"species.txt"}, {}, {}, ""},
    {"SBR_patient", "samples/sbr", {"-org", "SBR_LA", "-type", "patient", "-year", "2016", "-region", "LA"},
     {"SBR_LA.txt"}, {}, {Job("SBR_LA", "species")}, ""},
    {"SBR_patient_SF", "samples/sbr", {"-org", "SBR_SF", "-type", "patient", "-year", "2016", "-region", "SF"},
     {"SBR_SF.txt"}, {}, {Job("SBR_SF", "species")}, ""},
    {"SBR_band_sightings", "samples/sbr", Job("SBR_LA", "band_sightings"), {"BandSightings/BandSightings.txt"}, {},
     {Job("SBR_LA", "species"), {"-org", "SBR_LA", "-type", "patient", "-year", "2016", "-region", "LA"}}, ""},
    {"SBR_necropsy", "samples/sbr", Job("SBR_LA", "necropsy"), {"Necropsy.txt"}, {},
     {Job("SBR_LA", "species"), {"-org", "SBR_LA", "-type", "patient", "-year", "2016", "-region", "LA"}}, ""},
    {"CSAQ_FF_species", "samples/csaq_ff", Job("CSAQ_FF", "species"),
     {"ScientificNames.xml", "NonNatives.xml", "SpeciesAbbreviations.xml"}, {}, {}, "delete from species"},
    {"CSAQ_FF_habitats", "samples/csaq_ff", Job("CSAQ_FF", "habitats"), {"Habitats.xml"}, {}, {}, "delete from location"},
    {"CSAQ_FF_water_chemistry", "samples/csaq_ff", Job("CSAQ_FF", "water_chemistry"), {"WaterChem.xml", "Habitats.xml"},
     {}, {Job("CSAQ_FF", "habitats")}, ""},
    {"CSAQ_FF_patient", "samples/csaq_ff", Job("CSAQ_FF", "patient"),
     {"Groups.xml", "Husbandry.xml", "Habitats.xml", "HabitatCensus.xml", "SpeciesAbbreviations.xml"}, {},
     {Job("CSAQ_FF", "species"), Job("CSAQ_FF", "habitats")}, ""},
    {"CSAQ_FF_rehab", "samples/csaq_ff", Job("CSAQ_FF", "rehab"), {"SeaTurtleRehabRecords.xml"}, {},
     {Job("CSAQ_FF", "species"), Job("CSAQ_FF", "habitats")}, ""},
    {"CSAQ_FF_biometrics", "samples/csaq_ff", Job("CSAQ_FF", "biometrics"),
     {"LoggerHeadDailyLogs.xml", "SnakeStatTable.xml"}, {},
     {Job("CSAQ_FF", "species"), Job("CSAQ_FF", "habitats"), Job("CSAQ_FF", "patient"), Job("CSAQ_FF", "rehab")}, ""},
    {"CSAQ_FF_vital_stats", "samples/csaq_ff", Job("CSAQ_FF", "vital_stats"), {"Husbandry.xml"}, {},
     {Job("CSAQ_FF", "species"), Job("CSAQ_FF", "habitats"), Job("CSAQ_FF", "patient")}, ""},
    {"CSAQ_FF_invert_species_groups", "samples/csaq_ff", Job("CSAQ_FF", "invert_species_groups"),
     {"InvertebrateSpecies.txt"}, {}, {Job("CSAQ_FF", "species"), Job("CSAQ_FF", "habitats"), Job("CSAQ_FF", "patient")},
     ""},
    {"CSAQ_PKS_habitats", "samples/csaq_pks", Job("CSAQ_PKS", "habitats", "2015"), {"EnclosureTree.xml"},
     {"species.sql"}, {}, "delete from location"},
    {"CSAQ_PKS_patient", "samples/csaq_pks", Job("CSAQ_PKS", "patient", "2015"),
     {"CensusCounts.xml", "Animals.xml", "Notes.xml", "Transactions.xml", "Identifiers.xml", "Measurements.xml",
      "EnclosureMoves.xml"},
     {"species.sql"}, {Job("CSAQ_PKS", "habitats", "2015")}, "delete from patient"},
    {"CSAQ_PKS_taxonomy", "samples/csaq_pks", Job("CSAQ_PKS", "taxonomy", "2015"), {"MissingTaxonomy.txt"},
     {"species.sql"}, {}, ""},
};

