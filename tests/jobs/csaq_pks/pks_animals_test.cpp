#include "jobs/csaq_pks/pks_animals.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace {

// A table from "<local id>:<admission date>:<status>" entries, in this order.
AnimalTable MakeTable(const std::vector<std::string>& animals) {
  AnimalTable table;
  for (const std::string& animal : animals) {
    AnimalRecord record{};
    std::size_t first = animal.find(':');
    std::size_t second = animal.find(':', first + 1);
    record.localId = animal.substr(0, first);
    record.patient.admission_date = animal.substr(first + 1, second - first - 1);
    record.patient.status = animal.substr(second + 1);
    table.Append(record);
  }
  return table;
}

std::string Order(const AnimalTable& table) {
  std::string order;
  for (int i = 0; i < table.size(); ++i) {
    order += std::string(table[i].localId.view()) + (i + 1 < table.size() ? " " : "");
  }
  return order;
}

// Only the first unbroken run of a Local_ID is found; look-ups follow appends and reorderings.
TEST(PksAnimalsTest, FindAnimalRunAndCountResidents) {
  AnimalTable table = MakeTable({"A::PR", "B::PR", "B::D", "C::PR", "B::PR", "D::R", "B::PR"});
  struct Case {
    const char* local_id;
    bool found;
    int first;
    int last;
    int residents;
  };
  const Case cases[] = {
      {"A", true, 0, 0, 1}, {"B", true, 1, 2, 3}, {"C", true, 3, 3, 1},
      {"D", true, 5, 5, 0}, {"b", false, 0, 0, 0}, {"", false, 0, 0, 0},
  };
  for (const Case& c : cases) {
    AnimalRun run{-1, -1};
    EXPECT_EQ(table.FindAnimalRun(c.local_id, run), c.found) << c.local_id;
    if (c.found) {
      EXPECT_EQ(std::vector<int>({run.first, run.last}), std::vector<int>({c.first, c.last})) << c.local_id;
    }
    EXPECT_EQ(table.CountResidentAnimals(c.local_id), c.residents) << c.local_id;
  }

  AnimalRecord late{};
  late.localId = "E";
  late.patient.status = "PR";
  table.Append(late);
  AnimalRun run{};
  ASSERT_TRUE(table.FindAnimalRun("E", run));
  EXPECT_EQ(run.first, 7);
  table[7].patient.status = "D";  // statuses are read when counted, not when indexed
  EXPECT_EQ(table.CountResidentAnimals("E"), 0);
}

// Byte order of the dates, empty first, equal dates keep their order; the index follows the records. The
// sample run, with more animals than a sort handles by insertion, pins the stability too.
TEST(PksAnimalsTest, SortByAdmissionDate) {
  AnimalTable table = MakeTable({"late:2012-03-01:PR", "g1:2011-12-31:PR", "none::PR", "g2:2011-12-31:PR",
                                 "g3:2011-12-31:PR", "\xe9t\xe9:2011-\xe9:PR", "none2::PR", "mid:2011-05-01:PR"});
  table.SortByAdmissionDate();
  EXPECT_EQ(Order(table), "none none2 mid g1 g2 g3 \xe9t\xe9 late");  // bytes above 127 sort high
  AnimalRun run{};
  ASSERT_TRUE(table.FindAnimalRun("late", run));
  EXPECT_EQ(run.first, 7);
}

TEST(PksAnimalsTest, NotesAndBandsAreCutAtTheirWidths) {
  PatientRecord patient{};
  AppendNoteLine(patient, "Imported from", "A10001");
  EXPECT_EQ(patient.notes, "Imported from: A10001\n");
  AppendNoteLine(patient, "Long", std::string(300, 'x').c_str());
  EXPECT_EQ(patient.notes.size(), 255u);

  AppendBandText(patient, "Orange left");
  AppendBandText(patient, "white chin patch");
  EXPECT_EQ(patient.band, "Orange left. white chin patch");
  AppendBandText(patient, std::string(80, 'y').c_str());
  EXPECT_EQ(patient.band.size(), 63u);
}

}  // namespace
