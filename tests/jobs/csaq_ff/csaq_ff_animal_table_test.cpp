#include "jobs/csaq_ff/csaq_ff_animal_table.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace {

AnimalEntry Animal(const char* tag, const char* patient_id) {
  AnimalEntry animal{};
  animal.identity_tag = tag;
  animal.patient.patient_id = patient_id;
  animal.patient.status = "PR";
  return animal;
}

std::vector<std::string> Ids(std::span<AnimalEntry> run) {
  std::vector<std::string> ids;
  for (const AnimalEntry& animal : run) ids.emplace_back(animal.patient.patient_id.view());
  return ids;
}

// Tags compare ignoring case; a run ends at the first entry of another tag.
TEST(CsaqFfAnimalTableTest, LookupsByTag) {
  CollectionAnimalTable table;
  for (const auto& [tag, id] : std::vector<std::pair<const char*, const char*>>{
           {"Sharks", "s1"}, {"SHARKS", "s2"}, {"Rays", "r1"}, {"sharks", "s3"}, {"Rays", "r2"}}) {
    table.Add(Animal(tag, id));
  }
  EXPECT_EQ(table.FirstWithTag("sHaRkS")->patient.patient_id, "s1");
  EXPECT_EQ(table.FirstWithTag("Eels"), nullptr);
  EXPECT_EQ(Ids(table.FirstRun("sharks")), (std::vector<std::string>{"s1", "s2"}));
  EXPECT_EQ(Ids(table.FirstRun("rays")), (std::vector<std::string>{"r1"}));
  EXPECT_TRUE(table.FirstRun("Eels").empty());

  table.FirstAvailable("sharks")->patient.status = "D";
  table.FirstAvailable("sharks")->patient.status = "R";
  EXPECT_EQ(table.FirstAvailable("Sharks")->patient.patient_id, "s3");
  table.FirstAvailable("sharks")->patient.status = "T";
  EXPECT_EQ(table.FirstAvailable("sharks"), nullptr);
}

// A record that fails leaves no entry behind, nor any trace in the look-ups.
TEST(CsaqFfAnimalTableTest, TruncateForgetsTheDroppedEntries) {
  CollectionAnimalTable table;
  table.Add(Animal("Jellies", "j1"));
  table.Add(Animal("Crab RS001", "c1"));
  table.Add(Animal("Jellies", "j2"));
  table.Add(Animal("Eel RS001", "e1"));
  table.TruncateTo(2);
  EXPECT_EQ(table.size(), 2u);
  EXPECT_EQ(table.FirstWithTag("Eel RS001"), nullptr);
  EXPECT_EQ(Ids(table.FirstRun("Jellies")), (std::vector<std::string>{"j1"}));
  table.Add(Animal("jellies", "j3"));
  EXPECT_EQ(Ids(table.FirstRun("Jellies")), (std::vector<std::string>{"j1"}));  // not adjacent
  EXPECT_EQ(table[2].patient.patient_id, "j3");

  // Entries ended and then dropped leave the search able to find those added after them.
  table.Add(Animal("Eel RS001", "e2"));
  table.Add(Animal("Eel RS001", "e3"));
  table.FirstAvailable("Eel RS001")->patient.status = "D";
  table.FirstAvailable("Eel RS001")->patient.status = "D";
  EXPECT_EQ(table.FirstAvailable("Eel RS001"), nullptr);
  table.TruncateTo(4);
  table.Add(Animal("Eel RS001", "e4"));
  EXPECT_EQ(table.FirstAvailable("eel rs001")->patient.patient_id, "e4");
  EXPECT_EQ(table.FirstWithTag("Eel RS001")->patient.patient_id, "e2");
}

// The sample run pins that a failed record gives its numbers back.
TEST(CsaqFfAnimalTableTest, CaseNumbersCountWithinTheYear) {
  PatientNumberCounters counters;
  std::vector<std::string> ids;
  for (const char* date : {"2011-03-04", "2011-12-31", "2012-01-01", "2011-05-05", "", "1915-07-04"}) {
    Text<16> id{};
    counters.Next(date, id);
    ids.emplace_back(id.view());
  }
  EXPECT_EQ(ids, (std::vector<std::string>{"2011-00001", "2011-00002", "2012-00001", "2011-00003", "0-00001",
                                           "1915-00001"}));
}

}  // namespace
