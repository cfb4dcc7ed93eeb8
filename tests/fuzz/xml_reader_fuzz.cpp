// The XML reader on any file: loading never fails other than by its error
// text, and every query on whatever tree it built stays inside the tree.
#include <cstdint>

#include "fuzz_input.h"
#include "xml/xml_document.h"

namespace {

// Walks the tree without recursion (nesting may be deep) and asks every
// query of each element, with the names the jobs use and the element's own.
void WalkTree(XmlDocument& document) {
  const XmlNode* node = XmlRoot(document);
  long long budget = 100000;
  while (node != nullptr && budget-- > 0) {
    const char* name = XmlNodeName(node);
    (void)XmlNodeText(node);
    (void)XmlFindChild(node, name, false);
    (void)XmlFindChild(node, "Row", true);
    (void)XmlChildText(node, "ID");
    (void)XmlAttributeValue(node, "abbrev");
    (void)XmlAttributeIsTrue(node, "dup");
    for (const XmlAttribute* a = XmlFirstAttribute(node); a != nullptr; a = XmlNextAttribute(a)) {
      (void)XmlAttributeValue(node, XmlAttributeName(a));
      (void)XmlAttributeValue(a);
    }
    if (const XmlNode* child = XmlFirstChild(node)) {
      node = child;
      continue;
    }
    while (node != nullptr && XmlNextSibling(node) == nullptr) node = XmlParent(node);
    if (node != nullptr) node = XmlNextSibling(node);
  }
}

}  // namespace

CORVANA_FUZZ_SILENT_STDOUT

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const std::string& path = WriteScratchFile(data, size, ".xml");
  XmlDocument document;
  XmlLoadFile(document, path.c_str());
  (void)XmlErrorText(document);
  (void)XmlOpenTags(document);
  (void)XmlCloseTags(document);
  (void)XmlLine(document);
  WalkTree(document);

  // Building on a loaded tree: a new element with an attribute and a text.
  XmlNode* node = XmlNewNode(document, "species");
  XmlAddAttribute(node, "commonName", XmlNodeText(XmlFirstChild(XmlRoot(document))));
  XmlSetText(node, XmlErrorText(document));
  XmlAppendChild(XmlRoot(document), node);
  WalkTree(document);

  // The same input loaded again into the same document replaces the tree.
  XmlLoadFile(document, path.c_str());
  XmlClear(document);
  return 0;
}
