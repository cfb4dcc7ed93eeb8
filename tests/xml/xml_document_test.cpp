#include "xml/xml_document.h"

#include <gtest/gtest.h>
#include <unistd.h>

#include <chrono>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <string>
#include <string_view>

namespace {

namespace fs = std::filesystem;

// A lookup document in static storage, as the jobs keep one for a whole run:
// ready before main without running code, destroyed at exit.
constinit XmlDocument static_document;

std::string Show(const char* text) { return text == nullptr ? "<null>" : text; }

// The tree in one line: name[attr=value ...]"text"{children}.
std::string Dump(const XmlNode* node) {
  std::string out = XmlNodeName(node);
  if (const XmlAttribute* a = XmlFirstAttribute(node)) {
    out += '[';
    for (; a != nullptr; a = XmlNextAttribute(a)) {
      out += std::string(XmlAttributeName(a)) + "=" + XmlAttributeValue(a);
      if (XmlNextAttribute(a) != nullptr) out += ' ';
    }
    out += ']';
  }
  if (XmlNodeText(node) != nullptr) out += std::string("\"") + XmlNodeText(node) + "\"";
  if (const XmlNode* child = XmlFirstChild(node)) {
    out += '{';
    for (; child != nullptr; child = XmlNextSibling(child)) {
      out += Dump(child);
      if (XmlNextSibling(child) != nullptr) out += ' ';
    }
    out += '}';
  }
  return out;
}

// Each test gets a directory of its own for its input files.
class XmlFileTest : public ::testing::Test {
 protected:
  void SetUp() override {
    const auto* info = ::testing::UnitTest::GetInstance()->current_test_info();
    std::string name = std::string(info->test_suite_name()) + "." + info->name();
    for (char& c : name) {
      if (c == '/') c = '_';
    }
    dir_ = fs::temp_directory_path() / ("xml_document_test." + std::to_string(getpid())) / name;
    fs::create_directories(dir_);
  }
  void TearDown() override { fs::remove_all(dir_.parent_path()); }

  std::string WriteFile(std::string_view content, const char* name = "input.xml") {
    std::string path = (dir_ / name).string();
    std::ofstream(path, std::ios::binary) << content;
    return path;
  }

  int Load(std::string_view content) { return XmlLoadFile(document_, WriteFile(content).c_str()); }

  fs::path dir_;
  XmlDocument document_;
};

// ---------------------------------------------------------------------------
// Reading rules: the tree, the counts and the line a well-formed (by this
// reader's rules) input gives.

struct ReadCase {
  const char* label;
  std::string_view input;
  const char* tree;
  int open_tags;
  int close_tags;
  int line;
};

const ReadCase kReadCases[] = {
    {"declaration and empty dataroot", "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n<dataroot/>\n",
     "root{dataroot}", 1, 1, 3},
    {"dataroot open and closed", "<?xml version=\"1.0\"?><dataroot></dataroot>", "root{dataroot}", 1, 1, 1},
    {"empty file", "", "root", 0, 0, 1},
    {"self-closing child counts in both", "<a><b/></a>", "root{a{b}}", 2, 2, 1},
    {"single then double quotes, in order", "<a x='1' y=\"2\"/>", "root{a[x=1 y=2]}", 1, 1, 1},
    {"the other quote inside a value", "<a x='say \"hi\"' y=\"it's\"/>", "root{a[x=say \"hi\" y=it's]}", 1, 1, 1},
    {"> and / inside a quoted value", "<a href=\"a/b>c\"/>", "root{a[href=a/b>c]}", 1, 1, 1},
    {"white space around =", "<a x = \"1\"\ty\n=\n'2' />", "root{a[x=1 y=2]}", 1, 1, 3},
    {"no blank between attributes", "<a x=\"1\"y=\"2\"/>", "root{a[x=1 y=2]}", 1, 1, 1},
    {"a stray = ends the attributes", "<a x=\"1\" =\"2\" y=\"3\"/>", "root{a[x=1]}", 1, 1, 1},
    {"duplicate attributes both kept", "<a x=\"1\" X=\"2\"/>", "root{a[x=1 X=2]}", 1, 1, 1},
    {"31-character attribute name", "<a abcdefghijklmnopqrstuvwxyz01234=\"v\"/>",
     "root{a[abcdefghijklmnopqrstuvwxyz01234=v]}", 1, 1, 1},
    {"entities stay undecoded", "<a t=\"&quot;x&quot;\">Fish &amp; Chips &#233;</a>",
     "root{a[t=&quot;x&quot;]\"Fish &amp; Chips &#233;\"}", 1, 1, 1},
    {"column-name escapes stay", "<Common_x0020_Name>Owl</Common_x0020_Name>", "root{Common_x0020_Name\"Owl\"}", 1,
     1, 1},
    {"mixed content keeps the last piece", "<a>first<b/>second</a>", "root{a\"second\"{b}}", 2, 2, 1},
    {"text cut at both ends, inner breaks kept", "<a>\n  one\n  two \t\n</a>", "root{a\"one\n  two\"}", 1, 1, 4},
    {"blank text keeps the earlier text", "<a>x<b/>  \n </a>", "root{a\"x\"{b}}", 2, 2, 2},
    {"CR LF in text reads as LF", "<a>one\r\ntwo</a>\r\n", "root{a\"one\ntwo\"}", 1, 1, 3},
    {"lone CR stays in text", "<a>one\rtwo</a>", "root{a\"one\rtwo\"}", 1, 1, 2},
    {"bytes above 127 pass", "<a n=\"\xe9\">\xe9t\xe9</a>", "root{a[n=\xe9]\"\xe9t\xe9\"}", 1, 1, 1},
    {"prefix dropped from elements, kept on attributes",
     "<ns:Row xmlns:ns=\"u\"><ns:Field>1</ns:Field></ns:Row>", "root{Row[xmlns:ns=u]{Field\"1\"}}", 2, 2, 1},
    {"only up to the first colon is dropped", "<a:b:c/>", "root{b:c}", 1, 1, 1},
    {"closing name not compared", "<a><b></c></a>", "root{a{b}}", 2, 2, 1},
    {"</> closes", "<a></>", "root{a}", 1, 1, 1},
    {"slash after the name makes it self-closing", "<a/ x=\"1\"><b/>", "root{a[x=1] b}", 2, 2, 1},
    {"second slash in a closing tag", "<a></a/>", "root{a}", 1, 1, 1},
    {"name ends at white space", "<a\tx=\"1\"\n/>", "root{a[x=1]}", 1, 1, 2},
    {"comment ends at its first >", "<a><!-- x > y -->z</a>", "root{a\"y -->z\"}", 1, 1, 1},
    {"CDATA lost up to its first >", "<a><![CDATA[x > y]]></a>", "root{a\"y]]>\"}", 1, 1, 1},
    {"text outside the document element", "lead<a/>tail<!-- c -->end", "root\"tail\"{a}", 1, 1, 1},
    {"input ending inside a tag drops it", "<a/><b x=\"1>", "root{a}", 1, 1, 1},
    {"Ctrl-Z ends the input", "<a/>\x1a<b>", "root{a}", 1, 1, 1},
    {"? and ! after the first character are plain", "<a!?/>", "root{a!?}", 1, 1, 1},
    {"document type and processing instruction skipped", "<!DOCTYPE a><?pi x?><a/>", "root{a}", 1, 1, 1},
    {"siblings in document order", "<r><x/><y/><z/></r>", "root{r{x y z}}", 4, 4, 1},
};

TEST_F(XmlFileTest, ReadsByTheForgivingRules) {
  for (const ReadCase& c : kReadCases) {
    SCOPED_TRACE(c.label);
    ASSERT_EQ(Load(c.input), 0) << XmlErrorText(document_);
    EXPECT_STREQ(XmlErrorText(document_), "");
    EXPECT_EQ(Dump(XmlRoot(document_)), c.tree);
    EXPECT_EQ(XmlOpenTags(document_), c.open_tags);
    EXPECT_EQ(XmlCloseTags(document_), c.close_tags);
    EXPECT_EQ(XmlLine(document_), c.line);
  }
}

// ---------------------------------------------------------------------------
// Failures: the exact message and the line it names.

struct FailureCase {
  const char* label;
  std::string_view input;
  const char* message;
};

const FailureCase kFailureCases[] = {
    {"empty tag", "<a>\n<>\n</a>", "Invalid tag on line 2"},
    {"tag without name", "<a>< ></a>", "Tag name missing on line 1"},
    {"nameless tag over lines names the line of >", "<a>\n<\n\n>", "Tag name missing on line 4"},
    {"32-character attribute name", "<a abcdefghijklmnopqrstuvwxyz012345=\"v\"/>",
     "Attribute name is too long on line 1"},
    {"attribute without =", "<a\nb/>", "Attribute equal sign missing on line 2"},
    {"attribute without value", "<a b=>", "Attribute value single or double quote missing on line 1"},
    {"unquoted value", "<r>\n<a b=1/>", "Attribute value single or double quote missing on line 2"},
    {"child never closed", "<a><b></a>", "Mismatched tags: open=2, close=1"},
    {"one closing tag too many", "<a></a></a>", "Mismatched tags: open=1, close=2"},
    {"apostrophe in a comment swallows the rest", "<a><!-- don't --></a>", "Mismatched tags: open=1, close=0"},
    {"CR LF lines, failure on line 3", "<?xml version=\"1.0\"?>\r\n<a>\r\n<>\r\n</a>\r\n",
     "Invalid tag on line 3"},
    {"lone CR ends a line", "<a>\r\r<>", "Invalid tag on line 3"},
    {"CR CR LF is two line ends", "<a>\r\r\n<>", "Invalid tag on line 3"},
    {"LF CR is two line ends", "<a>\n\r<>", "Invalid tag on line 3"},
    {"line ends inside quotes count", "<a b='x\r\ny\nz' c=1>", "Attribute value single or double quote missing on line 3"},
};

TEST_F(XmlFileTest, FailsWithTheExactMessage) {
  for (const FailureCase& c : kFailureCases) {
    SCOPED_TRACE(c.label);
    EXPECT_EQ(Load(c.input), 1);
    EXPECT_STREQ(XmlErrorText(document_), c.message);
  }
}

TEST_F(XmlFileTest, AttributeValueLimitIs256Characters) {
  std::string value(256, 'v');
  ASSERT_EQ(Load("<a b=\"" + value + "\"/>"), 0);
  EXPECT_EQ(Show(XmlAttributeValue(XmlFirstChild(XmlRoot(document_)), "b")), value);

  EXPECT_EQ(Load("<r>\n<a b=\"" + value + "v\"/></r>"), 1);
  EXPECT_STREQ(XmlErrorText(document_), "Attribute value is too long on line 2");
}

TEST_F(XmlFileTest, FileNameFailures) {
  EXPECT_EQ(XmlLoadFile(document_, ""), 1);
  EXPECT_STREQ(XmlErrorText(document_), "Invalid (empty) filename");
  EXPECT_EQ(XmlLoadFile(document_, nullptr), 1);
  EXPECT_STREQ(XmlErrorText(document_), "Invalid (empty) filename");

  std::string missing = (dir_ / "missing.xml").string();
  EXPECT_EQ(XmlLoadFile(document_, missing.c_str()), 1);
  EXPECT_EQ(std::string(XmlErrorText(document_)), "Unable to open file: '" + missing + "'");

  // A directory opens on some systems but is no file to read.
  EXPECT_EQ(XmlLoadFile(document_, dir_.c_str()), 1);
  EXPECT_EQ(std::string(XmlErrorText(document_)), "Unable to open file: '" + dir_.string() + "'");

  // Longer than any fixed message buffer: kept whole.
  std::string long_name = (dir_ / std::string(200, 'n')).string();
  EXPECT_EQ(XmlLoadFile(document_, long_name.c_str()), 1);
  EXPECT_EQ(std::string(XmlErrorText(document_)), "Unable to open file: '" + long_name + "'");
}

TEST_F(XmlFileTest, ReadsStandardInputAndLeavesItOpen) {
  std::string path = WriteFile("<a>from stdin</a>");
  ASSERT_NE(std::freopen(path.c_str(), "rb", stdin), nullptr);
  ASSERT_EQ(XmlLoadFile(document_, "stdin"), 0) << XmlErrorText(document_);
  EXPECT_EQ(Dump(XmlRoot(document_)), "root{a\"from stdin\"}");
  EXPECT_NE(fileno(stdin), -1);

  // Only the exact name means standard input.
  std::string other = (dir_ / "Stdin").string();
  ASSERT_EQ(std::freopen(path.c_str(), "rb", stdin), stdin);
  EXPECT_EQ(XmlLoadFile(document_, other.c_str()), 1);
  ASSERT_NE(std::freopen("/dev/null", "rb", stdin), nullptr);
}

// ---------------------------------------------------------------------------
// Document state

TEST_F(XmlFileTest, FreshClearedAndReloadedDocuments) {
  XmlDocument fresh;
  EXPECT_EQ(XmlRoot(fresh), nullptr);
  EXPECT_EQ(XmlOpenTags(fresh), 0);
  EXPECT_EQ(XmlCloseTags(fresh), 0);
  EXPECT_EQ(XmlLine(fresh), 1);
  EXPECT_STREQ(XmlErrorText(fresh), "");

  // A failed load keeps what it read, up to the failure.
  ASSERT_EQ(Load("<a><b>kept</b>\n<c x=1/></a>"), 1);
  EXPECT_EQ(Dump(XmlRoot(document_)), "root{a{b\"kept\" c}}");
  EXPECT_EQ(XmlOpenTags(document_), 3);
  EXPECT_EQ(XmlCloseTags(document_), 1);
  EXPECT_EQ(XmlLine(document_), 2);

  // Loading again starts from nothing.
  ASSERT_EQ(Load("<z/>"), 0);
  EXPECT_EQ(Dump(XmlRoot(document_)), "root{z}");
  EXPECT_STREQ(XmlErrorText(document_), "");
  EXPECT_EQ(XmlOpenTags(document_), 1);

  XmlClear(document_);
  EXPECT_EQ(XmlRoot(document_), nullptr);
  EXPECT_EQ(XmlOpenTags(document_), 0);
  EXPECT_EQ(XmlCloseTags(document_), 0);
  EXPECT_EQ(XmlLine(document_), 1);
  EXPECT_STREQ(XmlErrorText(document_), "");

  // An empty file name still leaves the fresh root.
  EXPECT_EQ(XmlLoadFile(document_, ""), 1);
  EXPECT_EQ(Dump(XmlRoot(document_)), "root");
}

TEST_F(XmlFileTest, StaticDocumentLoadsAndIsDestroyedAtExit) {
  ASSERT_EQ(XmlLoadFile(static_document, WriteFile("<s><x label=\"Owl\"/></s>").c_str()), 0);
  EXPECT_EQ(Dump(XmlRoot(static_document)), "root{s{x[label=Owl]}}");
  // Left loaded on purpose: the sanitizer build checks the exit-time destruction.
}

// ---------------------------------------------------------------------------
// Queries

TEST_F(XmlFileTest, FindChildWithAndWithoutChildrenOnly) {
  ASSERT_EQ(Load("<Species><species>inner</species><Name>Owl</Name><Name>second</Name>"
                 "<Deep><Hidden/></Deep></Species>"
                 "<Row><Field/></Row>"),
            0);
  const XmlNode* species = XmlFirstChild(XmlRoot(document_));
  const XmlNode* row = XmlNextSibling(species);
  struct {
    const XmlNode* node;
    const char* name;
    bool children_only;
    const char* found;  // text of the element found, its name when it has none, null for none
  } cases[] = {
      {species, "SPECIES", false, "<self>"},  // a field named like its row finds the row
      {species, "Species", true, "inner"},
      {species, "name", false, "Owl"},  // the first of two
      {species, "NAME", true, "Owl"},
      {species, "Hidden", false, nullptr},  // children only, not grandchildren
      {species, "Missing", true, nullptr},
      {row, "Row", true, nullptr},
      {row, "row", false, "<self>"},
      {nullptr, "Row", false, nullptr},
      {species, nullptr, false, nullptr},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(std::string(Show(c.name)) + (c.children_only ? " children only" : ""));
    const XmlNode* found = XmlFindChild(c.node, c.name, c.children_only);
    if (c.found == nullptr) {
      EXPECT_EQ(found, nullptr);
    } else if (std::string_view(c.found) == "<self>") {
      EXPECT_EQ(found, c.node);
    } else {
      EXPECT_EQ(Show(XmlNodeText(found)), c.found);
    }
  }
  EXPECT_STREQ(XmlChildText(species, "name"), "Owl");
  EXPECT_EQ(XmlChildText(species, "Deep"), nullptr);     // there, without text
  EXPECT_EQ(XmlChildText(species, "Missing"), nullptr);  // not there
  EXPECT_STREQ(XmlChildText(species, "species"), "inner");  // never the element itself
}

TEST_F(XmlFileTest, AttributeIsTrue) {
  ASSERT_EQ(Load("<a v1=\"Yes\" v2=\"TRUE\" v3=\"true\" v4=\"yEs\" v5=\"1\" v6=\"no\" v7=\"\" v8=\" yes\""
                 " v9=\"yes \" v10=\"truer\"/>"),
            0);
  const XmlNode* a = XmlFirstChild(XmlRoot(document_));
  const struct {
    const char* name;
    bool expected;
  } cases[] = {{"v1", true},  {"V2", true},  {"v3", true},  {"v4", true},  {"v5", false}, {"v6", false},
               {"v7", false}, {"v8", false}, {"v9", false}, {"v10", false}, {"missing", false}};
  for (const auto& c : cases) {
    EXPECT_EQ(XmlAttributeIsTrue(a, c.name), c.expected) << c.name;
  }
  EXPECT_FALSE(XmlAttributeIsTrue(nullptr, "v1"));
  EXPECT_FALSE(XmlAttributeIsTrue(a, nullptr));
}

TEST(XmlQueries, NullInNullOut) {
  EXPECT_EQ(XmlFirstChild(nullptr), nullptr);
  EXPECT_EQ(XmlNextSibling(nullptr), nullptr);
  EXPECT_EQ(XmlParent(nullptr), nullptr);
  EXPECT_EQ(XmlNodeName(nullptr), nullptr);
  EXPECT_EQ(XmlNodeText(nullptr), nullptr);
  EXPECT_EQ(XmlChildText(nullptr, "a"), nullptr);
  EXPECT_EQ(XmlAttributeValue(nullptr, "a"), nullptr);
  EXPECT_EQ(XmlFirstAttribute(nullptr), nullptr);
  EXPECT_EQ(XmlNextAttribute(nullptr), nullptr);
  EXPECT_EQ(XmlAttributeName(nullptr), nullptr);
  EXPECT_EQ(XmlAttributeValue(static_cast<const XmlAttribute*>(nullptr)), nullptr);
  const XmlDocument empty;
  EXPECT_EQ(XmlChildText(XmlFirstChild(XmlFirstChild(XmlRoot(empty))), "GAN"), nullptr);
}

// ---------------------------------------------------------------------------
// Building in memory

TEST(XmlBuilding, BuiltTreeAnswersLikeALoadedOne) {
  XmlDocument list;
  ASSERT_EQ(XmlCreateRoot(list), 0);
  EXPECT_EQ(XmlCreateRoot(list), 1);  // only an empty document gets a root
  const char* rows[][3] = {{"BAEA", "Bald Eagle", "Raptor"}, {"GHOW", "Great Horned Owl", "Owl"}};
  for (const auto& row : rows) {
    XmlNode* species = XmlNewNode(list, "species");
    ASSERT_NE(species, nullptr);
    ASSERT_EQ(XmlAddAttribute(species, "abbrev", row[0]), 0);
    ASSERT_EQ(XmlAddAttribute(species, "commonName", row[1]), 0);
    ASSERT_EQ(XmlAddAttribute(species, "speciesGroup", row[2]), 0);
    ASSERT_EQ(XmlAppendChild(XmlRoot(list), species), 0);
    EXPECT_EQ(XmlParent(species), XmlRoot(list));
  }
  EXPECT_EQ(Dump(XmlRoot(list)),
            "root{species[abbrev=BAEA commonName=Bald Eagle speciesGroup=Raptor] "
            "species[abbrev=GHOW commonName=Great Horned Owl speciesGroup=Owl]}");
  const XmlNode* second = XmlNextSibling(XmlFirstChild(XmlRoot(list)));
  EXPECT_STREQ(XmlAttributeValue(second, "COMMONNAME"), "Great Horned Owl");
  EXPECT_EQ(XmlFindChild(XmlRoot(list), "Species", true), XmlFirstChild(XmlRoot(list)));
  EXPECT_EQ(XmlOpenTags(list), 0);  // counts belong to loads

  XmlNode* prefixed = XmlNewNode(list, "ns:Name");
  EXPECT_STREQ(XmlNodeName(prefixed), "ns:Name");  // kept as given
  EXPECT_EQ(XmlNewNode(list, nullptr), nullptr);
  EXPECT_EQ(XmlAddAttribute(prefixed, nullptr, "v"), 1);
  EXPECT_EQ(XmlAddAttribute(nullptr, "n", "v"), 1);
  EXPECT_EQ(XmlAddAttribute(prefixed, "n", nullptr), 0);
  EXPECT_STREQ(XmlAttributeValue(prefixed, "n"), "");
  std::string long_value(1000, 'x');  // no load limits when building
  EXPECT_EQ(XmlAddAttribute(prefixed, std::string(40, 'n').c_str(), long_value.c_str()), 0);
  EXPECT_EQ(Show(XmlAttributeValue(prefixed, std::string(40, 'N').c_str())), long_value);
}

TEST(XmlBuilding, AppendRefusesWhatWouldBreakTheTree) {
  XmlDocument document;
  XmlDocument other;
  ASSERT_EQ(XmlCreateRoot(document), 0);
  XmlNode* root = XmlRoot(document);
  XmlNode* a = XmlNewNode(document, "a");
  XmlNode* b = XmlNewNode(document, "b");
  XmlNode* foreign = XmlNewNode(other, "foreign");
  ASSERT_EQ(XmlAppendChild(root, a), 0);
  ASSERT_EQ(XmlAppendChild(a, b), 0);

  EXPECT_EQ(XmlAppendChild(nullptr, b), 1);
  EXPECT_EQ(XmlAppendChild(a, nullptr), 1);
  EXPECT_EQ(XmlAppendChild(root, b), 1);        // already has a parent
  EXPECT_EQ(XmlAppendChild(b, root), 1);        // the root under its own descendant
  EXPECT_EQ(XmlAppendChild(root, root), 1);     // itself
  EXPECT_EQ(XmlAppendChild(root, foreign), 1);  // memory of another document
  XmlNode* loose = XmlNewNode(document, "loose");
  XmlNode* under_loose = XmlNewNode(document, "under");
  ASSERT_EQ(XmlAppendChild(loose, under_loose), 0);
  EXPECT_EQ(XmlAppendChild(under_loose, loose), 1);  // cycle among detached nodes
  EXPECT_EQ(Dump(root), "root{a{b}}");
}

TEST(XmlBuilding, SetTextReplacesOrRemoves) {
  XmlDocument document;
  ASSERT_EQ(XmlCreateRoot(document), 0);
  XmlNode* node = XmlNewNode(document, "n");
  EXPECT_EQ(XmlNodeText(node), nullptr);
  const struct {
    const char* text;
    const char* expected;
  } steps[] = {{"a long first text", "a long first text"}, {"short", "short"}, {"", ""},
               {"longer than anything before it", "longer than anything before it"}, {nullptr, nullptr},
               {"back", "back"}};
  for (const auto& step : steps) {
    ASSERT_EQ(XmlSetText(node, step.text), 0);
    EXPECT_EQ(Show(XmlNodeText(node)), Show(step.expected));
  }
  ASSERT_EQ(XmlSetText(node, XmlNodeText(node) + 1), 0);  // a piece of its own text
  EXPECT_STREQ(XmlNodeText(node), "ack");
  EXPECT_EQ(XmlSetText(nullptr, "x"), 1);
}

// ---------------------------------------------------------------------------
// Size and shape

TEST_F(XmlFileTest, LargeFlatExportLoadsFastAndFrees) {
  constexpr int kRows = 200000;
  std::string input = "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\r\n<dataroot xmlns:od=\"urn:x\">\r\n";
  for (int i = 0; i < kRows; ++i) {
    input += "<Husbandry><ID>" + std::to_string(i) + "</ID><Common_x0020_Name>Loggerhead &amp; co</Common_x0020_Name>"
             "<Flag on=\"yes\"/></Husbandry>\r\n";
  }
  input += "</dataroot>\r\n";
  std::string path = WriteFile(input);

  auto start = std::chrono::steady_clock::now();
  {
    XmlDocument big;
    ASSERT_EQ(XmlLoadFile(big, path.c_str()), 0) << XmlErrorText(big);
    EXPECT_EQ(XmlOpenTags(big), 1 + 4LL * kRows);
    EXPECT_EQ(XmlLine(big), kRows + 4);
    int rows = 0;
    const XmlNode* last = nullptr;
    for (const XmlNode* row = XmlFirstChild(XmlFirstChild(XmlRoot(big))); row != nullptr;
         row = XmlNextSibling(row)) {
      ++rows;
      last = row;
    }
    EXPECT_EQ(rows, kRows);
    EXPECT_STREQ(XmlChildText(last, "ID"), "199999");
    EXPECT_STREQ(XmlChildText(last, "common_x0020_name"), "Loggerhead &amp; co");
    EXPECT_TRUE(XmlAttributeIsTrue(XmlFindChild(last, "Flag", false), "on"));
  }  // destroyed here
  double seconds = std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
  // About 0.1 s in an optimized build; the bound leaves room for sanitizers.
  EXPECT_LT(seconds, 10.0);
}

TEST_F(XmlFileTest, LineEndsAcrossReadBlocks) {
  // The input is read in blocks of 64 KiB: a CR LF split between two blocks
  // is still one LF and one line end, and a CR at the very end still counts.
  constexpr std::size_t kBlock = 64 * 1024;
  std::string head = "<a>";
  std::string padding(kBlock - head.size() - 1, 'x');
  ASSERT_EQ(Load(head + padding + "\r\ny</a>\r"), 0);
  EXPECT_EQ(Show(XmlNodeText(XmlFirstChild(XmlRoot(document_)))), padding + "\ny");
  EXPECT_EQ(XmlLine(document_), 3);
}

TEST_F(XmlFileTest, DeepNestingNeedsNoStack) {
  constexpr int kDepth = 300000;
  std::string input;
  for (int i = 0; i < kDepth; ++i) input += "<d>";
  input += "bottom";
  for (int i = 0; i < kDepth; ++i) input += "</d>";
  ASSERT_EQ(Load(input), 0) << XmlErrorText(document_);
  const XmlNode* node = XmlRoot(document_);
  int depth = 0;
  while (XmlFirstChild(node) != nullptr) {
    node = XmlFirstChild(node);
    ++depth;
  }
  EXPECT_EQ(depth, kDepth);
  EXPECT_STREQ(XmlNodeText(node), "bottom");
  XmlClear(document_);
}

TEST_F(XmlFileTest, NoFixedSizeForTextsTagsOrNames) {
  // Each far beyond a fixed buffer of the usual sizes (256,000 text, 128 name,
  // 1,024 tag characters).
  std::string long_text(1000000, 't');
  std::string long_name(500, 'N');
  std::string many_attributes;
  for (int i = 0; i < 200; ++i) many_attributes += " a" + std::to_string(i) + "=\"value\"";
  ASSERT_EQ(Load("<r><" + long_name + many_attributes + ">" + long_text + "</" + long_name + "></r>"), 0)
      << XmlErrorText(document_);
  const XmlNode* element = XmlFirstChild(XmlFirstChild(XmlRoot(document_)));
  EXPECT_EQ(Show(XmlNodeName(element)), long_name);
  EXPECT_EQ(Show(XmlNodeText(element)), long_text);
  EXPECT_STREQ(XmlAttributeValue(element, "a199"), "value");
}

}  // namespace
