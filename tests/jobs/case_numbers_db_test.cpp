// One case number per animal: no record of a run takes a case number that
// another record of the run already has, and no job writes on a row that
// another patient owns, even when the two share a case number.
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "support/program_run.h"
#include "support/test_database.h"

namespace {

class OneCaseNumberPerAnimalTest : public DatabaseTest {
 protected:
  ProgramRun Run(const std::string& dir, const std::string& org, const std::string& type,
                 const std::string& year) {
    ProgramRun run = RunProgram(dir, {"-org", org, "-type", type, "-year", year});
    EXPECT_EQ(run.exit_code, 0);
    return run;
  }

  // Every column of the row with key `key` but those named in `except`.
  std::string Row(const std::string& key, const std::string& except = "'id'") {
    std::string columns = Value(
        "select group_concat(concat('`',column_name,'`') order by ordinal_position) from information_schema.columns "
        "where table_schema=database() and table_name='patient' and column_name not in (" + except + ")");
    std::vector<std::string> rows = Rows("select " + columns + " from patient where id=" + key);
    return rows.empty() ? "" : rows[0];
  }
};

struct CollidingFile {
  const char* org;
  const char* year;
  const char* file;
  std::string content;
  std::vector<std::string> patients;   // case numbers of the rows written, in order
  std::vector<std::string> log_lines;  // the refused records' lines, and the count
  int releases;                        // one per released patient: none is shared
};

// Case numbers that become one after cutting to the column, padding or the
// server's letter case, and blank ones: the first record keeps the number,
// every later one is refused with a line naming both source records.
TEST_F(OneCaseNumberPerAnimalTest, CollidingAndBlankCaseNumbersGiveOnePatientEach) {
  const std::string kwrc_line =
      "\tEUKE\t3/2/2012\tUNK\tJuvenile\tU\tKWRC\tFound\tRelease\t4/15/2012\t\"Baiwangshan, Haidian District\""
      "\tFledgling\tDehydration\tOrphaned\n";
  const std::string glfh_line = "Hamad\tSaker\t1/4/2012\t985100000412233\t";
  const std::string uprc_line = "\tRTHA\t1/3/2012\t \tR\t2/14/2012\tarboretum\t \tEmaciation\t \n";
  const CollidingFile files[] = {
      {"KWRC", "2012", "KWRC_2012.txt",
       "header\n2012-KWRC-000101" + kwrc_line + "2012-KWRC-000102" + kwrc_line + " " + kwrc_line + "12002" +
           kwrc_line,
       {"2012-KWRC-00010", "012002"},
       {"\tERROR - case number '2012-KWRC-00010' of '2012-KWRC-000102' already belongs to '2012-KWRC-000101', "
        "line skipped\n",
        "\tERROR - blank case number on line 4, line skipped\n", "Imported 2 records\n"},
       2},
      {"GLFH", "2012", "GLFH_Patients.txt",
       "header\n" + glfh_line + "101\t5550\n" + glfh_line + "0101\t5550\n" + glfh_line + "101a\t5550\n" + glfh_line +
           "102\t5550\n",
       {"00101", "00102"},
       {"\tERROR - case number '00101' of '0101' already belongs to '101', line skipped\n",
        "\tERROR - case number '00101' of '101a' already belongs to '101', line skipped\n", "Imported 2 patients\n"},
       0},
      {"UPRC", "2012", "UPRC 2012.txt",
       "header\n12-001" + uprc_line + " " + uprc_line + "2012-UPRC-0000001" + uprc_line + "2012-UPRC-0000002" +
           uprc_line + "x-1" + uprc_line + "X-1" + uprc_line + " " + uprc_line,
       {"12-001", "2012-UPRC-00000", "x-1"},
       {"\tERROR - blank patient number on line 3, line skipped\n",
        "\tERROR - case number '2012-UPRC-00000' of '2012-UPRC-0000002' already belongs to '2012-UPRC-0000001', "
        "line skipped\n",
        "\tERROR - case number 'X-1' of 'X-1' already belongs to 'x-1', line skipped\n",
        "\tERROR - blank patient number on line 8, line skipped\n", "Imported 3 patients\n"},
       3},
  };
  // DsWC: the sample's first two admissions, the first again as "12".
  std::string admissions = ReadFile(CORVANA_SOURCE_DIR "/samples/dswc/2011Admissions.txt");
  std::size_t first = admissions.find("\n0012\t") + 1;
  std::size_t third = admissions.find('\n', admissions.find('\n', first) + 1) + 1;
  std::string owl = admissions.substr(first, admissions.find('\n', first) + 1 - first);
  admissions = admissions.substr(0, third) + "12" + owl.substr(4);
  std::vector<CollidingFile> all(std::begin(files), std::end(files));
  all.push_back({"DsWC", "2011", "2011Admissions.txt", admissions, {"2011-0012", "2011-0027"},
                 {"\tERROR - case number '2011-0012' of '12' already belongs to '0012', line skipped\n",
                  "Imported 2 patients\n"},
                 0});
  for (const CollidingFile& file : all) {
    Exec("delete from patient; delete from record_entry; delete from releases; delete from transfers");
    std::string dir = MakeTempDir();
    WriteIni(dir);
    if (file.org == std::string("DsWC")) CopySamples("samples/dswc", dir);
    WriteFile(dir + "/" + file.file, file.content);
    ProgramRun run = Run(dir, file.org, "patient", file.year);
    EXPECT_EQ(Rows("select patient_id from patient order by id"), file.patients) << file.org;
    std::size_t after = 0;
    for (const std::string& line : file.log_lines) {
      std::size_t at = run.output.find(line, after);
      EXPECT_NE(at, std::string::npos) << file.org << ": " << line << "in:\n" << run.output;
      if (at != std::string::npos) after = at;
    }
    EXPECT_EQ(Value("select count(*) from releases"), std::to_string(file.releases)) << file.org;
  }
}

// The rehabilitation job numbers its cases 2016-00001... as the patient job
// numbers an animal acquired in 2016: its rows get the same case numbers,
// and the operator is told, but the resident's row stays as it was, byte
// for byte.
TEST_F(OneCaseNumberPerAnimalTest, RehabilitationRunLeavesTheResidentsRowAsItWas) {
  std::string dir = MakeTempDir();
  CopySamples("samples/csaq_ff", dir);
  WriteIni(dir);
  std::string groups = ReadFile(dir + "/Groups.xml");
  std::size_t acquired = groups.find("5/12/09");  // the resident loggerhead
  ASSERT_NE(acquired, std::string::npos);
  WriteFile(dir + "/Groups.xml", groups.replace(acquired, 7, "5/12/2016"));
  for (const char* type : {"species", "habitats", "patient"}) Run(dir, "CSAQ_FF", type, "2016");
  std::string resident = Value("select id from patient where patient_id='2016-00001'");
  ASSERT_NE(resident, "");
  std::string before = Row(resident);

  ProgramRun rehab = Run(dir, "CSAQ_FF", "rehab", "2016");
  EXPECT_EQ(Row(resident), before);
  EXPECT_EQ(Value("select count(*) from patient where patient_id='2016-00001'"), "2");
  std::string rehab_key = Value("select max(id) from patient where patient_id='2016-00001'");
  EXPECT_NE(rehab.errors.find("Note: case number '2016-00001' was already held by patient row " + resident +
                              "; the new patient row " + rehab_key + " has it too\n"),
            std::string::npos)
      << rehab.errors;
}

// A zoo-records animal without an admission date is filed as 2000-00001,
// the number an animal really admitted in 2000 has: it is refused, with
// every row it would have written, and the resident's row is the same as
// when it had 2010's number, but for its number and date.
TEST_F(OneCaseNumberPerAnimalTest, ZooRecordsFallbackLeavesTheRealAdmissionsRowAsItWas) {
  std::string dir = MakeTempDir();
  CopySamples("samples/csaq_pks", dir);
  WriteIni(dir);
  Exec(ReadFile(dir + "/species.sql"));
  Run(dir, "CSAQ_PKS", "habitats", "2015");
  const std::string kEveryColumnBut = "'id','patient_id','admission_date'";
  Run(dir, "CSAQ_PKS", "patient", "2015");
  std::string resident = Value("select id from patient where species='EAHE'");
  std::string alone = Row(resident, kEveryColumnBut);
  ASSERT_NE(alone.find("|HH|"), std::string::npos) << alone;  // its location, from its moves
  std::string rows = Value("select count(*) from record_entry");

  Exec("delete from patient; delete from record_entry; delete from attributes; delete from releases; "
       "delete from transfers; delete from biometric");
  std::string notes = ReadFile(dir + "/Notes.xml");
  std::size_t capture = notes.find("2010-02-11T00:00:00");  // the resident hellbender's
  ASSERT_NE(capture, std::string::npos);
  WriteFile(dir + "/Notes.xml", notes.replace(capture, 4, "2000"));
  // The undated animal moves last: a move by case number would take the resident along.
  std::string moves = ReadFile(dir + "/EnclosureMoves.xml");
  moves.insert(moves.rfind("</dataroot>"),
               "<EnclosureMoves><Local_ID>A10007</Local_ID><EnclosureName>Shark Tank A</EnclosureName>"
               "<MovedInDate>2015-01-01</MovedInDate></EnclosureMoves>\n");
  WriteFile(dir + "/EnclosureMoves.xml", moves);
  std::string log = Run(dir, "CSAQ_PKS", "patient", "2015").output;

  EXPECT_NE(log.find("\tERROR - case number '2000-00001' of 'A10007' already belongs to 'A10004', animal skipped\n"),
            std::string::npos)
      << log;
  EXPECT_EQ(Rows("select species from patient where patient_id='2000-00001'"), std::vector<std::string>{"EAHE"});
  resident = Value("select id from patient where species='EAHE'");
  EXPECT_EQ(Row(resident, kEveryColumnBut), alone);
  // The refused animal wrote nothing, not even the added move's entry (it
  // has no other rows in the samples); none hangs on a key of no patient
  // but the kestrel's, whose insert fails in both runs.
  EXPECT_EQ(Value("select count(*) from record_entry"), rows);
  EXPECT_EQ(Value("select count(*) from record_entry r left join patient p on p.id=r.patient_id "
                  "where p.id is null and r.patient_id<>0"),
            "0");
}

}  // namespace
