#include "jobs/csaq_ff/csaq_ff_export.h"

#include <gtest/gtest.h>

#include <string>

#include "support/test_database.h"

namespace {

// Loads `xml` from a scratch file into `document`.
void Load(XmlDocument& document, const std::string& xml) {
  std::string path = MakeTempDir() + "/table.xml";
  WriteFile(path, xml);
  ASSERT_EQ(XmlLoadFile(document, path.c_str()), 0) << XmlErrorText(document);
}

TEST(CsaqFfExportTest, RowFields) {
  XmlDocument table;
  Load(table, "<?xml version=\"1.0\"?>\r\n<dataroot><Row><Weight>2.5 kg</Weight><Federal/><Count>12 fish</Count>"
              "</Row><Row/></dataroot>");
  const XmlNode* row = FirstExportRow(table);
  EXPECT_STREQ(FieldText(row, "weight"), "2.5 kg");
  EXPECT_STREQ(FieldText(row, "Federal"), "");  // there, but empty
  EXPECT_EQ(FieldText(row, "Genus"), nullptr);
  EXPECT_DOUBLE_EQ(FieldNumber(row, "Weight"), 2.5);
  EXPECT_DOUBLE_EQ(FieldNumber(row, "Genus"), 0.0);
  EXPECT_EQ(FieldInt(row, "Count", -1), 12);
  EXPECT_EQ(FieldInt(row, "Genus", -1), -1);
  EXPECT_NE(XmlNextSibling(row), nullptr);

  EXPECT_EQ(DateBeforeT("2014-05-12T08:00:00"), "2014-05-12");
  EXPECT_EQ(DateBeforeT("5/12/2014"), "5/12/2014");
  EXPECT_EQ(DateBeforeT(nullptr), "");
  EXPECT_EQ(ReplaceFirstApos("Kemp&apos;s &apos;ridley&apos;"), "Kemp's &apos;ridley&apos;");
}

// Names compare ignoring case; the first element of a name counts, even without an abbreviation.
TEST(CsaqFfExportTest, AbbreviationIndex) {
  XmlDocument abbreviations;
  Load(abbreviations, "<List><S commonName=\"Green Turtle\" abbrev=\"GREENTURTLE\"/><S abbrev=\"NONAME\"/>"
                      "<S commonName=\"green turtle\" abbrev=\"SECOND\"/><S commonName=\"Pigfish\"/>"
                      "<S commonName=\"Pigfish\" abbrev=\"PIG\"/></List>");
  AbbreviationIndex index(abbreviations);
  EXPECT_STREQ(index.Find("GREEN TURTLE"), "GREENTURTLE");
  EXPECT_EQ(index.Find("Pigfish"), nullptr);
  EXPECT_EQ(index.Find("Green"), nullptr);
  EXPECT_EQ(index.Find(""), nullptr);
}

// The three ways a tank is matched: by exact ID text among rows with a
// label, by exact ID text on the first row, by the ID's number.
TEST(CsaqFfExportTest, HabitatIndex) {
  XmlDocument habitats;
  Load(habitats, "<dataroot>"
                 "<H><ID>7</ID></H>"
                 "<H><ID>7</ID><Habitat_x0020_Label>Jelly Gallery</Habitat_x0020_Label></H>"
                 "<H><ID>012</ID><Habitat_x0020_Label>Holding</Habitat_x0020_Label></H>"
                 "<H><ID>12</ID><Habitat_x0020_Label>tank 12</Habitat_x0020_Label></H>"
                 "<H><ID>9</ID><Habitat_x0020_Label></Habitat_x0020_Label></H>"
                 "<H><Habitat_x0020_Label>No ID</Habitat_x0020_Label></H>"
                 "</dataroot>");
  HabitatIndex index(habitats);
  EXPECT_STREQ(index.LabelWithId("7"), "Jelly Gallery");
  EXPECT_STREQ(index.LabelWithId("12"), "tank 12");
  EXPECT_STREQ(index.LabelWithId("012"), "Holding");
  EXPECT_EQ(index.LabelWithId("07"), nullptr);
  EXPECT_STREQ(index.LabelWithId("9"), "");
  EXPECT_EQ(index.LabelWithId(nullptr), nullptr);

  EXPECT_STREQ(index.FirstRowLabel("7"), "");  // its first row has no label
  EXPECT_STREQ(index.FirstRowLabel("012"), "Holding");
  EXPECT_STREQ(index.FirstRowLabel("3"), "");
  EXPECT_STREQ(index.FirstRowLabel(nullptr), "");

  EXPECT_EQ(index.LabelWithNumber(7), nullptr);
  EXPECT_STREQ(index.LabelWithNumber(12), "Holding");  // "012" comes first
  EXPECT_EQ(index.LabelWithNumber(9), nullptr);        // an empty label is none
  EXPECT_EQ(index.LabelWithNumber(0), nullptr);
}

}  // namespace
