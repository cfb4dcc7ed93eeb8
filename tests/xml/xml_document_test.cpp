#include "xml/xml_document.h"

#include <gtest/gtest.h>
#include <unistd.h>

#include <filesystem>
#include <fstream>
#include <string>

namespace {

namespace fs = std::filesystem;

// The tree in one line: name[attr=value ...]"text"{children}.
std::string Dump(const XmlNode* node) {
  std::string out = XmlNodeName(node);
  if (const XmlAttribute* a = XmlFirstAttribute(node)) {
    out += '[';
    for (; a != nullptr; a = XmlNextAttribute(a)) {
      out += std::string(XmlAttributeName(a)) + "=" + XmlAttributeValue(a) + (XmlNextAttribute(a) ? " " : "");
    }
    out += ']';
  }
  if (XmlNodeText(node) != nullptr) out += std::string("\"") + XmlNodeText(node) + "\"";
  if (const XmlNode* child = XmlFirstChild(node)) {
    out += '{';
    for (; child != nullptr; child = XmlNextSibling(child)) {
      out += Dump(child) + (XmlNextSibling(child) ? " " : "");
    }
    out += '}';
  }
  return out;
}

class XmlFileTest : public ::testing::Test {
 protected:
  void SetUp() override { fs::create_directories(dir_); }
  void TearDown() override { fs::remove_all(dir_); }

  std::string WriteFile(const std::string& content) {
    std::string path = (dir_ / "input.xml").string();
    std::ofstream(path, std::ios::binary) << content;
    return path;
  }
  int Load(const std::string& content) { return XmlLoadFile(document_, WriteFile(content).c_str()); }

  fs::path dir_ = fs::temp_directory_path() / ("xml_document_test." + std::to_string(getpid()));
  XmlDocument document_;
};

TEST_F(XmlFileTest, ReadsByTheForgivingRules) {
  const std::string name31(31, 'n');
  const std::string value256(256, 'v');
  const struct {
    std::string input;
    std::string tree;
    int open_tags, close_tags, line;
  } cases[] = {
      // Declaration, document type and comment skipped; a self-closing tag counts in both.
      {"<?xml version=\"1.0\"?>\n<!DOCTYPE a><!-- c --><a><b/></a>\n", "root{a{b}}", 2, 2, 3},
      // Either quote, the other one, "/" and ">" inside values, blanks around "=", entities kept.
      {"<a x='say \"hi\"' y=\"a/b>c\" z = '&amp;&#233;'/>", "root{a[x=say \"hi\" y=a/b>c z=&amp;&#233;]}", 1, 1, 1},
      // Mixed content keeps the last piece, cut at both ends; CR LF reads as LF.
      {"<a>first<b/>\r\n Fish &amp;\r\nChips \n</a>", "root{a\"Fish &amp;\nChips\"{b}}", 2, 2, 4},
      // Prefixes dropped from element names only; a closing tag's name is never compared.
      {"<ns:Row xmlns:ns=\"u\"><ns:Field>1</Other></ns:Row>", "root{Row[xmlns:ns=u]{Field\"1\"}}", 2, 2, 1},
      // Text around the document element belongs to the root; after the last tag it is dropped.
      {"lead<a/>tail<!-- c -->end", "root\"tail\"{a}", 1, 1, 1},
      // The longest attribute name and value allowed.
      {"<a " + name31 + "=\"" + value256 + "\"/>", "root{a[" + name31 + "=" + value256 + "]}", 1, 1, 1},
      // Ctrl-Z ends the input.
      {"<a/>\x1a<b>", "root{a}", 1, 1, 1},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.input.substr(0, 60));
    ASSERT_EQ(Load(c.input), 0) << XmlErrorText(document_);
    EXPECT_EQ(Dump(XmlRoot(document_)), c.tree);
    EXPECT_EQ(XmlOpenTags(document_), c.open_tags);
    EXPECT_EQ(XmlCloseTags(document_), c.close_tags);
    EXPECT_EQ(XmlLine(document_), c.line);
  }
}

// Input hidden behind a Ctrl-Z is named on stderr, counted across read blocks;
// a Ctrl-Z at the very end of the file is silent.
TEST_F(XmlFileTest, CtrlZWithInputAfterItIsReported) {
  const std::string path = WriteFile("<a>\r\n<b/>\x1a" + std::string(100000, 'x') + "\n</a>");
  testing::internal::CaptureStderr();
  EXPECT_EQ(XmlLoadFile(document_, path.c_str()), 1);  // the closing tag was never read
  EXPECT_EQ(testing::internal::GetCapturedStderr(),
            "Note: '" + path + "' ends at a Ctrl-Z (byte 0x1A) on line 2; the 100005 bytes after it were not read\n");
  testing::internal::CaptureStderr();
  EXPECT_EQ(Load("<a/>\r\n\x1a"), 0);
  EXPECT_EQ(testing::internal::GetCapturedStderr(), "");
}

TEST_F(XmlFileTest, FailsWithMessageAndLine) {
  const std::string missing = (dir_ / "missing.xml").string();
  const struct {
    const char* file_name;  // null: load `input` from a file
    std::string input;
    std::string message;
  } cases[] = {
      {nullptr, "<?xml version=\"1.0\"?>\r\n<a>\r\n<>\r\n</a>\r\n", "Invalid tag on line 3"},
      {nullptr, "<a>\r\r<>", "Invalid tag on line 3"},  // a lone CR ends a line
      {nullptr, "<a>< ></a>", "Tag name missing on line 1"},
      {nullptr, "<r>\n<a " + std::string(32, 'n') + "=\"v\"/>", "Attribute name is too long on line 2"},
      {nullptr, "<r>\n<a b=\"" + std::string(257, 'v') + "\"/>", "Attribute value is too long on line 2"},
      {nullptr, "<a\nb/>", "Attribute equal sign missing on line 2"},
      {nullptr, "<a b='x\r\ny' c=1>", "Attribute value single or double quote missing on line 2"},
      {nullptr, "<a><b></a>", "Mismatched tags: open=2, close=1"},
      {nullptr, "<a></a></a>", "Mismatched tags: open=1, close=2"},
      {"", "", "Invalid (empty) filename"},
      {missing.c_str(), "", "Unable to open file: '" + missing + "'"},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.message);
    EXPECT_EQ(c.file_name ? XmlLoadFile(document_, c.file_name) : Load(c.input), 1);
    EXPECT_EQ(std::string(XmlErrorText(document_)), c.message);
    EXPECT_NE(XmlRoot(document_), nullptr);  // a failed load keeps at least the root
  }
}

TEST_F(XmlFileTest, FindChildWithAndWithoutChildrenOnly) {
  ASSERT_EQ(Load("<Species><species>inner</species><Name>Owl</Name><Name>2</Name><D><Deep/></D></Species>"), 0);
  const XmlNode* species = XmlFirstChild(XmlRoot(document_));
  const XmlNode* inner = XmlFirstChild(species);
  const XmlNode* name = XmlNextSibling(inner);
  const struct {
    const char* name;
    bool children_only;
    const XmlNode* found;
  } cases[] = {
      {"SPECIES", false, species},  // a field named like its row finds the row itself
      {"Species", true, inner},     {"name", false, name}, {"NAME", true, name},  // the first of two
      {"Deep", false, nullptr},     {"Missing", true, nullptr},
  };
  for (const auto& c : cases) {
    EXPECT_EQ(XmlFindChild(species, c.name, c.children_only), c.found) << c.name << ' ' << c.children_only;
  }
  EXPECT_STREQ(XmlChildText(species, "species"), "inner");
  EXPECT_EQ(XmlChildText(species, "D"), nullptr);
  EXPECT_EQ(XmlFindChild(nullptr, "Species", false), nullptr);
}

TEST_F(XmlFileTest, AttributeIsTrue) {
  ASSERT_EQ(Load("<a v1=\"Yes\" v2=\"TRUE\" v3=\"1\" v4=\" yes\" v5=\"truer\"/>"), 0);
  const XmlNode* a = XmlFirstChild(XmlRoot(document_));
  EXPECT_TRUE(XmlAttributeIsTrue(a, "v1"));
  EXPECT_TRUE(XmlAttributeIsTrue(a, "V2"));
  for (const char* name : {"v3", "v4", "v5", "missing"}) EXPECT_FALSE(XmlAttributeIsTrue(a, name)) << name;
}

TEST(XmlBuilding, BuiltTreeAnswersLikeALoadedOne) {
  XmlDocument list;
  ASSERT_EQ(XmlCreateRoot(list), 0);
  EXPECT_EQ(XmlCreateRoot(list), 1);
  XmlNode* first = nullptr;
  for (const char* abbrev : {"BAEA", "GHOW"}) {
    XmlNode* species = XmlNewNode(list, "species");
    if (first == nullptr) first = species;
    ASSERT_EQ(XmlAddAttribute(species, "abbrev", abbrev), 0);
    ASSERT_EQ(XmlAddAttribute(species, "group", nullptr), 0);
    ASSERT_EQ(XmlAppendChild(XmlRoot(list), species), 0);
  }
  EXPECT_EQ(Dump(XmlRoot(list)), "root{species[abbrev=BAEA group=] species[abbrev=GHOW group=]}");
  EXPECT_STREQ(XmlAttributeValue(XmlFindChild(XmlRoot(list), "Species", true), "ABBREV"), "BAEA");

  XmlNode* loose = XmlNewNode(list, "ns:loose");
  EXPECT_STREQ(XmlNodeName(loose), "ns:loose");  // kept as given
  EXPECT_EQ(XmlAppendChild(XmlRoot(list), first), 1);  // already has a parent
  EXPECT_EQ(XmlAppendChild(first, XmlRoot(list)), 1);  // an ancestor under its descendant
  ASSERT_EQ(XmlSetText(loose, "a long text"), 0);
  ASSERT_EQ(XmlSetText(loose, XmlNodeText(loose) + 2), 0);  // a piece of its own text
  EXPECT_STREQ(XmlNodeText(loose), "long text");
}

TEST_F(XmlFileTest, LargeInputLoadsAndFreesWithoutStack) {
  // About 71 blocks of 64 KiB as the reader reads them; one of them ends
  // between a CR and its LF, which must still count as one line end.
  constexpr int kRows = 200000;
  std::string input = "<dataroot>\r\n";
  for (int i = 0; i < kRows; ++i) input += "<R><ID>" + std::to_string(i) + "</ID></R>\r\n";
  input += "</dataroot>";
  {
    XmlDocument flat;
    ASSERT_EQ(XmlLoadFile(flat, WriteFile(input).c_str()), 0) << XmlErrorText(flat);
    EXPECT_EQ(XmlOpenTags(flat), 1 + 2LL * kRows);
    EXPECT_EQ(XmlLine(flat), kRows + 2);
    int rows = 0;
    const XmlNode* last = nullptr;
    for (const XmlNode* r = XmlFirstChild(XmlFirstChild(XmlRoot(flat))); r != nullptr; r = XmlNextSibling(r)) {
      ++rows;
      last = r;
    }
    EXPECT_EQ(rows, kRows);
    EXPECT_STREQ(XmlChildText(last, "ID"), "199999");
  }  // destroyed here

  constexpr int kDepth = 300000;
  std::string deep;
  for (int i = 0; i < kDepth; ++i) deep += "<d>";
  for (int i = 0; i < kDepth; ++i) deep += "</d>";
  ASSERT_EQ(Load(deep), 0) << XmlErrorText(document_);
  EXPECT_EQ(XmlOpenTags(document_), kDepth);
  XmlClear(document_);
  EXPECT_EQ(XmlRoot(document_), nullptr);
}

}  // namespace
