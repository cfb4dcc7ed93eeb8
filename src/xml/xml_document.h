// A small, forgiving XML reader: loads one file into a tree of elements owned
// by an XmlDocument and answers the few queries the import jobs need. A job
// can also build such a tree in memory and query it as a lookup table.
//
// It is not a validating or complete parser. Texts and attribute values are
// kept exactly as they stand in the file: entity references ("&amp;",
// "&#233;") and the column-name escapes of exported tables ("_x0020_") are
// NOT decoded; bytes above 127 pass unchanged. Element names lose any
// namespace prefix. The only structural check is that the numbers of opening
// and closing tags agree; a closing tag's name is never compared.
//
// Ownership and lifetime: the document owns everything in its tree - nodes,
// attributes, names, texts - in one block allocator. Every pointer a function
// below hands out points into that memory and stays valid until the document
// is cleared (XmlClear), loaded again (XmlLoadFile) or destroyed; then all of
// it goes at once. Nothing is freed node by node, so neither a huge number of
// siblings nor deep nesting costs stack, at load or at destruction.
//
// Null safety: every query accepts a null node, attribute or name and then
// returns null (or false), so look-ups chain without checks in between:
//   XmlChildText(XmlFirstChild(XmlFirstChild(XmlRoot(document))), "GAN")
//
// Names (elements and attributes) compare ignoring ASCII letter case; all
// other bytes compare exactly. Nothing here prints on stdout.
#pragma once

#include "xml/xml_arena.h"

// One element. Opaque: use the functions below.
struct XmlNode;
// One attribute of an element. Opaque: use the functions below.
struct XmlAttribute;

// One loaded or built tree. A plain object: keep it as a local (freed on every
// way out of the scope) or in static storage (its constructor allocates
// nothing and is constant, so it is ready before main and is destroyed at
// exit). Not copyable, not movable: nodes point back at its allocator.
class XmlDocument {
 public:
  constexpr XmlDocument() noexcept = default;
  XmlDocument(const XmlDocument&) = delete;
  XmlDocument& operator=(const XmlDocument&) = delete;

 private:
  friend class XmlDocumentAccess;

  long long open_tags_ = 0;   // opening tags read; a self-closing tag counts here and in close_tags_
  long long close_tags_ = 0;  // closing tags read
  long long line_ = 1;        // line of the input the reader is on (1 at the start)
  const char* error_text_ = "";  // message of the last failure; a literal or arena memory
  XmlNode* root_ = nullptr;      // the pseudo-element "root"; null while the document is empty
  XmlArena arena_;               // holds the whole tree and the error text
};

// ---------------------------------------------------------------------------
// The document as a whole

// Reads the file `file_name` into `document`, replacing whatever it held.
// "stdin" (exact) reads standard input instead, which is left open.
// Returns 0 when the whole input was read and its opening and closing tags
// balance; 1 otherwise, with the reason in XmlErrorText(). A failed load keeps
// the part of the tree read before the failure (always at least the root).
//
// The input is read as Windows text mode reads it: CR LF reads as LF, a byte
// 0x1A (Ctrl-Z) ends the input (when anything follows it, one line on stderr
// names the file, the line and the bytes not read), every other byte passes. Each line end (LF,
// CR LF once, a lone CR) adds one to the line, inside tags too.
//
// The forgiving reading rules:
// - The top-level elements become the children of the root, a pseudo-element
//   named "root".
// - Text: at each "<" the characters since the previous tag, cut of white
//   space (blank, \t, \n, \v, \f, \r) at both ends, replace the text of the
//   innermost open element if anything is left. So in mixed content only the
//   last piece survives, inner line breaks stay, text outside the document
//   element belongs to the root, and text after the last tag is dropped.
// - A tag ends at the first ">" outside single or double quotes. "<?...>" and
//   "<!...>" (declarations, comments, CDATA, document types) are skipped
//   whole: a comment holding ">" leaves its rest to be read as text.
// - "</..." closes the innermost open element (to its parent; the root stays
//   open); "<name .../>" opens and closes one. Either adds to close tags.
// - Name: the first word of the tag, after its first ":" when it has one.
// - Attributes: name="value" or name='value', white space allowed around
//   "="; the value keeps its entity references; the list ends at a word that
//   starts with "=" or at the tag's end.
// - Input that ends inside a tag drops that tag silently.
//
// Failure messages in the error text (line = XmlLine() when it happened):
//   "Out of memory"
//   "Invalid (empty) filename"                     (null or "" file name)
//   "Unable to open file: '<file name>'"           (also: a directory)
//   "Tag name missing on line %d"                  ("< >")
//   "Attribute name is too long on line %d"        (32 characters or more)
//   "Attribute equal sign missing on line %d"
//   "Attribute value single or double quote missing on line %d"
//   "Attribute value is too long on line %d"       (257 characters or more)
//   "Invalid tag on line %d"                       ("<>")
//   "Mismatched tags: open=%d, close=%d"           (only when nothing else failed)
// No other size is limited: texts, tags and names of any length are kept.
int XmlLoadFile(XmlDocument& document, const char* file_name);

// Frees the tree and resets the document to its state after construction:
// no root, counts 0, line 1, empty error text.
void XmlClear(XmlDocument& document);

// Gives an empty document a new root element named "root" without children.
// Returns 0 on success; 1 when the document already has a root (nothing
// changes) or memory runs out.
int XmlCreateRoot(XmlDocument& document);

// The message of the last failed load, or "" (never null).
const char* XmlErrorText(const XmlDocument& document);
// Opening and closing tags counted by the last load (self-closing tags count
// in both); 0 for an empty or built document.
long long XmlOpenTags(const XmlDocument& document);
long long XmlCloseTags(const XmlDocument& document);
// The line the last load reached: 1 plus the line ends it read.
long long XmlLine(const XmlDocument& document);

// ---------------------------------------------------------------------------
// Queries. Each accepts null and then returns null (false for
// XmlAttributeIsTrue). Returned texts are zero-terminated.

// The root pseudo-element ("root", its children the top-level elements), or
// null while the document is empty.
XmlNode* XmlRoot(XmlDocument& document);
const XmlNode* XmlRoot(const XmlDocument& document);

// The first child element in document order, or null.
const XmlNode* XmlFirstChild(const XmlNode* node);
// The next element with the same parent, or null.
const XmlNode* XmlNextSibling(const XmlNode* node);
// The enclosing element, or null for a root or an element not yet appended.
const XmlNode* XmlParent(const XmlNode* node);
// The number of children of `node` (0 for null): the records of an exported
// table, for a job's progress.
long long XmlChildCount(const XmlNode* node);

// The element's name, without namespace prefix for a loaded one.
const char* XmlNodeName(const XmlNode* node);
// The element's text (see XmlLoadFile for what that is), or null when it has none.
const char* XmlNodeText(const XmlNode* node);

// With `children_only` false: `node` itself when its own name is `name`,
// otherwise its first child element named `name`. With `children_only` true:
// only the first child named `name`. Only direct children are searched.
// Null when there is none. Most look-ups of a row's field pass false; a field
// named like its row element then finds the row itself.
const XmlNode* XmlFindChild(const XmlNode* node, const char* name, bool children_only);

// The text of the first child named `name` (XmlFindChild with children_only
// true); null when there is no such child or it has no text.
const char* XmlChildText(const XmlNode* node, const char* name);

// The value of the element's first attribute named `name`, or null.
const char* XmlAttributeValue(const XmlNode* node, const char* name);

// True when that attribute's value is "true" or "yes" in any letter case;
// false for any other value ("1", " yes") and when the attribute is missing.
bool XmlAttributeIsTrue(const XmlNode* node, const char* name);

// The element's attributes in the order they stand in the tag.
const XmlAttribute* XmlFirstAttribute(const XmlNode* node);
const XmlAttribute* XmlNextAttribute(const XmlAttribute* attribute);
const char* XmlAttributeName(const XmlAttribute* attribute);
const char* XmlAttributeValue(const XmlAttribute* attribute);

// ---------------------------------------------------------------------------
// Building a tree in memory: XmlCreateRoot, then XmlNewNode, XmlAddAttribute
// and XmlAppendChild(XmlRoot(document), node) for each entry. Built and
// loaded trees answer the queries alike.

// A new element of `document` holding a copy of `name` (kept as given, prefix
// included) and nothing else. The document owns it from the start, appended or
// not. Null when `name` is null or memory runs out.
XmlNode* XmlNewNode(XmlDocument& document, const char* name);

// Makes `child` the last child of `parent` and sets its parent. Returns 0; 1
// (and changes nothing) when either is null, they belong to different
// documents, `child` already has a parent, or `child` is `parent` or one of
// its ancestors (a root included).
int XmlAppendChild(XmlNode* parent, XmlNode* child);

// Adds the attribute `name`="`value`" (copies, no length limit) after the
// element's other attributes. Returns 0; 1 when `node` or `name` is null or
// memory runs out. A null `value` is stored as "".
int XmlAddAttribute(XmlNode* node, const char* name, const char* value);

// Replaces the element's text with a copy of `text`; a null `text` leaves the
// element without text. Returns 0; 1 when `node` is null or memory runs out
// (the old text then stays). The old text's memory is reused when the new one
// fits in it, otherwise it is released with the document.
int XmlSetText(XmlNode* node, const char* text);
