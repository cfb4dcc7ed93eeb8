#include "xml/xml_document.h"

#include <cstdarg>
#include <cstdio>
#include <cstring>
#include <memory>
#include <utility>

#include "util/text_stream.h"

// Both live in their document's arena; `arena` lets the calls that get no
// document (XmlAddAttribute, XmlSetText, XmlAppendChild) find it.
struct XmlAttribute {
  const char* name;
  const char* value;
  XmlAttribute* next;
};

struct XmlNode {
  XmlArena* arena;
  const char* name;
  char* text;  // null when the element has none
  XmlNode* parent;
  XmlNode* first_child;
  XmlNode* last_child;  // makes appending O(1) for long sibling chains
  XmlNode* next_sibling;
  XmlAttribute* first_attribute;
  XmlAttribute* last_attribute;
};

// The one door to XmlDocument's members.
class XmlDocumentAccess {
 public:
  static long long& open_tags(XmlDocument& d) { return d.open_tags_; }
  static long long& close_tags(XmlDocument& d) { return d.close_tags_; }
  static long long& line(XmlDocument& d) { return d.line_; }
  static const char*& error_text(XmlDocument& d) { return d.error_text_; }
  static XmlNode*& root(XmlDocument& d) { return d.root_; }
  static XmlArena& arena(XmlDocument& d) { return d.arena_; }
  static long long open_tags(const XmlDocument& d) { return d.open_tags_; }
  static long long close_tags(const XmlDocument& d) { return d.close_tags_; }
  static long long line(const XmlDocument& d) { return d.line_; }
  static const char* error_text(const XmlDocument& d) { return d.error_text_; }
  static const XmlNode* root(const XmlDocument& d) { return d.root_; }
};

using Access = XmlDocumentAccess;

namespace {

// ---------------------------------------------------------------------------
// Small helpers

// The six classic white-space characters; bytes above 127 never are.
bool IsSpace(char c) {
  return c == ' ' || c == '\t' || c == '\n' || c == '\v' || c == '\f' || c == '\r';
}

char AsciiLower(char c) { return (c >= 'A' && c <= 'Z') ? static_cast<char>(c - 'A' + 'a') : c; }

// Names compare ignoring ASCII letter case only, whatever the locale.
bool NamesEqual(const char* a, const char* b) {
  for (; *a != '\0' && *b != '\0'; ++a, ++b) {
    if (AsciiLower(*a) != AsciiLower(*b)) return false;
  }
  return *a == *b;
}

XmlNode* NewNode(XmlArena& arena, const char* name, std::size_t length) {
  XmlNode* node = arena.Create<XmlNode>();
  if (node == nullptr) return nullptr;
  node->arena = &arena;
  node->name = arena.CopyText(name, length);
  return node->name == nullptr ? nullptr : node;
}

void AppendChild(XmlNode* parent, XmlNode* child) {
  child->parent = parent;
  if (parent->last_child == nullptr) {
    parent->first_child = child;
  } else {
    parent->last_child->next_sibling = child;
  }
  parent->last_child = child;
}

bool AddAttribute(XmlNode* node, const char* name, std::size_t name_length, const char* value,
                  std::size_t value_length) {
  XmlAttribute* attribute = node->arena->Create<XmlAttribute>();
  if (attribute == nullptr) return false;
  attribute->name = node->arena->CopyText(name, name_length);
  attribute->value = node->arena->CopyText(value, value_length);
  if (attribute->name == nullptr || attribute->value == nullptr) return false;
  if (node->last_attribute == nullptr) {
    node->first_attribute = attribute;
  } else {
    node->last_attribute->next = attribute;
  }
  node->last_attribute = attribute;
  return true;
}

// Replaces the element's text; the old storage is reused when the new text
// fits, so that repeated replacements do not grow the arena without bound.
bool SetText(XmlNode* node, const char* text, std::size_t length) {
  if (node->text != nullptr && std::strlen(node->text) >= length) {
    std::memmove(node->text, text, length);  // `text` may point into the old text
    node->text[length] = '\0';
    return true;
  }
  char* copy = node->arena->CopyText(text, length);
  if (copy == nullptr) return false;
  node->text = copy;
  return true;
}

// Formats the error text into the document's arena, or falls back to "Out of
// memory" when even that fails. The document must have been cleared since the
// last error, as every load does first.
[[gnu::format(printf, 2, 0)]] void SetErrorV(XmlDocument& document, const char* format, va_list args) {
  va_list again;
  va_copy(again, args);
  int length = std::vsnprintf(nullptr, 0, format, args);
  char* text = length < 0 ? nullptr : Access::arena(document).Allocate(static_cast<std::size_t>(length) + 1);
  if (text != nullptr) std::vsnprintf(text, static_cast<std::size_t>(length) + 1, format, again);
  va_end(again);
  Access::error_text(document) = text != nullptr ? text : "Out of memory";
}

[[gnu::format(printf, 2, 3)]] void SetError(XmlDocument& document, const char* format, ...) {
  va_list args;
  va_start(args, format);
  SetErrorV(document, format, args);
  va_end(args);
}

// ---------------------------------------------------------------------------
// Loading

// A character buffer that grows as needed; allocation failure is reported,
// not thrown.
class GrowingBuffer {
 public:
  bool Reserve(std::size_t capacity) { return capacity <= capacity_ || Resize(capacity); }

  bool Push(char c) {
    if (size_ == capacity_ && !Resize(capacity_ * 2)) return false;
    data_[size_++] = c;
    return true;
  }

  void Clear() { size_ = 0; }
  bool empty() const { return size_ == 0; }
  const char* begin() const { return data_.get(); }
  const char* end() const { return data_.get() + size_; }

 private:
  bool Resize(std::size_t capacity) {
    if (capacity <= size_) return false;  // doubling overflowed
    std::unique_ptr<char[]> bigger(new (std::nothrow) char[capacity]);
    if (bigger == nullptr) return false;
    if (size_ > 0) std::memcpy(bigger.get(), data_.get(), size_);
    data_ = std::move(bigger);
    capacity_ = capacity;
    return true;
  }

  std::unique_ptr<char[]> data_;
  std::size_t size_ = 0;
  std::size_t capacity_ = 0;
};

constexpr int kEndOfInput = TextStream::kEnd;

// One run of XmlLoadFile over a document that already holds a fresh root.
class XmlLoader {
 public:
  explicit XmlLoader(XmlDocument& document)
      : document_(document), input_(Access::line(document)), current_(Access::root(document)) {}

  // Returns XmlLoadFile's result.
  int Load(const char* file_name) {
    // Starting sizes only: both buffers grow with the input.
    if (!text_.Reserve(4096) || !tag_.Reserve(1024) || !input_.AllocateBuffer()) {
      SetError(document_, "Out of memory");
      return 1;
    }
    if (file_name == nullptr || file_name[0] == '\0') {
      SetError(document_, "Invalid (empty) filename");
      return 1;
    }
    bool opened = true;
    if (std::strcmp(file_name, "stdin") == 0) {
      input_.OpenStream(stdin, "stdin");  // never closed: the process may still need it
    } else {
      opened = input_.Open(file_name, true);
    }
    if (!opened) {
      SetError(document_, "Unable to open file: '%s'", file_name);
      return 1;
    }
    ReadAll();
    input_.Close();
    if (input_.unreadable()) {
      SetError(document_, "Unable to open file: '%s'", file_name);
      return 1;
    }
    if (Access::error_text(document_)[0] != '\0') return 1;
    long long open = Access::open_tags(document_);
    long long close = Access::close_tags(document_);
    if (open != close) {
      SetError(document_, "Mismatched tags: open=%lld, close=%lld", open, close);
      return 1;
    }
    return 0;
  }

 private:
  static constexpr char kNoQuote = '\0';

  // Sets the error text; returns false to end the reading.
  [[gnu::format(printf, 2, 3)]] bool Fail(const char* format, ...) {
    va_list args;
    va_start(args, format);
    SetErrorV(document_, format, args);
    va_end(args);
    return false;
  }

  bool OutOfMemory() { return Fail("Out of memory"); }

  long long line() const { return XmlLine(document_); }

  void ReadAll() {
    for (int c = input_.Next(); c != kEndOfInput; c = input_.Next()) {
      if (c != '<') {
        if (text_.Push(static_cast<char>(c))) continue;
        OutOfMemory();
        return;
      }
      if (!StoreText() || !ReadTag()) return;
    }
  }

  // At a "<": what was read since the last tag, cut of white space, becomes
  // the text of the innermost open element if anything is left.
  bool StoreText() {
    const char* begin = text_.begin();
    const char* end = text_.end();
    while (begin != end && IsSpace(*begin)) ++begin;
    while (end != begin && IsSpace(end[-1])) --end;
    text_.Clear();
    if (begin == end) return true;
    return SetText(current_, begin, static_cast<std::size_t>(end - begin)) || OutOfMemory();
  }

  // Reads one tag after its "<". Returns false when the reading must end: on
  // a failure (error text set) or when the input ended inside the tag (the
  // tag is then dropped without error).
  bool ReadTag() {
    bool closing = false;
    bool self_closing = false;
    bool special = false;
    char quote = kNoQuote;
    tag_.Clear();
    for (bool first = true;; first = false) {
      int c = input_.Next();
      if (c == kEndOfInput) return false;
      char ch = static_cast<char>(c);
      if (quote != kNoQuote) {
        if (ch == quote) quote = kNoQuote;
      } else if (ch == '/') {
        // "</a>" closes, "<a/>" opens and closes; the slash is not kept.
        if (tag_.empty()) {
          closing = true;
        } else {
          self_closing = true;
        }
        continue;
      } else if (ch == '>') {
        break;
      } else {
        if (first && (ch == '?' || ch == '!')) special = true;
        if (ch == '"' || ch == '\'') quote = ch;
      }
      // A closing tag's name is never compared, so nothing of it is kept.
      if (!closing && !tag_.Push(ch)) return OutOfMemory();
    }

    if (special) return true;  // declaration, comment, document type: ignored
    bool opening = !closing && !tag_.empty();
    if (opening && !OpenElement()) return false;
    if (closing || self_closing) {
      ++Access::close_tags(document_);
      if (current_->parent != nullptr) current_ = current_->parent;
    }
    if (!opening && !closing && !self_closing) return Fail("Invalid tag on line %lld", line());
    return true;
  }

  // The tag buffer holds an opening tag: its name, then its attributes.
  bool OpenElement() {
    ++Access::open_tags(document_);
    const char* p = tag_.begin();
    const char* end = tag_.end();
    while (p != end && IsSpace(*p)) ++p;
    const char* name = p;
    while (p != end && !IsSpace(*p) && *p != '>') ++p;
    if (p == name) return Fail("Tag name missing on line %lld", line());
    // A prefixed name keeps what follows its first colon.
    if (const void* colon = std::memchr(name, ':', static_cast<std::size_t>(p - name))) {
      name = static_cast<const char*>(colon) + 1;
    }
    XmlNode* element = NewNode(Access::arena(document_), name, static_cast<std::size_t>(p - name));
    if (element == nullptr) return OutOfMemory();
    AppendChild(current_, element);
    current_ = element;
    return ReadAttributes(element, p, end);
  }

  // Reads name="value" pairs from the rest of the tag buffer.
  bool ReadAttributes(XmlNode* element, const char* p, const char* end) {
    // The attribute limits this reader has always had, and that the jobs'
    // input files keep to: longer names and values are refused, not cut.
    constexpr std::ptrdiff_t kMaxNameLength = 31;
    constexpr std::ptrdiff_t kMaxValueLength = 256;
    for (;;) {
      while (p != end && IsSpace(*p)) ++p;
      const char* name = p;
      for (; p != end && *p != '=' && !IsSpace(*p); ++p) {
        if (p - name == kMaxNameLength) return Fail("Attribute name is too long on line %lld", line());
      }
      if (p == name) return true;  // nothing left, or a stray "=": the rest is ignored
      std::size_t name_length = static_cast<std::size_t>(p - name);

      while (p != end && IsSpace(*p)) ++p;
      if (p == end || *p != '=') return Fail("Attribute equal sign missing on line %lld", line());
      ++p;
      while (p != end && IsSpace(*p)) ++p;
      if (p == end || (*p != '"' && *p != '\'')) {
        return Fail("Attribute value single or double quote missing on line %lld", line());
      }
      char quote = *p++;
      const char* value = p;
      for (; p != end && *p != quote; ++p) {
        if (p - value == kMaxValueLength) return Fail("Attribute value is too long on line %lld", line());
      }
      std::size_t value_length = static_cast<std::size_t>(p - value);
      if (p != end) ++p;  // the closing quote
      if (!AddAttribute(element, name, name_length, value, value_length)) return OutOfMemory();
    }
  }

  XmlDocument& document_;
  TextStream input_;
  XmlNode* current_;     // the innermost open element: receives children and text
  GrowingBuffer text_;   // characters since the last tag
  GrowingBuffer tag_;    // the kept characters of the tag being read
};

}  // namespace

// ---------------------------------------------------------------------------
// The document as a whole

int XmlLoadFile(XmlDocument& document, const char* file_name) {
  XmlClear(document);
  if (XmlCreateRoot(document) != 0) {
    SetError(document, "Out of memory");
    return 1;
  }
  return XmlLoader(document).Load(file_name);
}

void XmlClear(XmlDocument& document) {
  Access::arena(document).Reset();
  Access::root(document) = nullptr;
  Access::open_tags(document) = 0;
  Access::close_tags(document) = 0;
  Access::line(document) = 1;
  Access::error_text(document) = "";
}

int XmlCreateRoot(XmlDocument& document) {
  if (Access::root(document) != nullptr) return 1;
  static constexpr char kRootName[] = "root";
  XmlNode* root = NewNode(Access::arena(document), kRootName, sizeof kRootName - 1);
  if (root == nullptr) return 1;
  Access::root(document) = root;
  return 0;
}

const char* XmlErrorText(const XmlDocument& document) { return Access::error_text(document); }
long long XmlOpenTags(const XmlDocument& document) { return Access::open_tags(document); }
long long XmlCloseTags(const XmlDocument& document) { return Access::close_tags(document); }
long long XmlLine(const XmlDocument& document) { return Access::line(document); }

// ---------------------------------------------------------------------------
// Queries

XmlNode* XmlRoot(XmlDocument& document) { return Access::root(document); }
const XmlNode* XmlRoot(const XmlDocument& document) { return Access::root(document); }

const XmlNode* XmlFirstChild(const XmlNode* node) { return node != nullptr ? node->first_child : nullptr; }
const XmlNode* XmlNextSibling(const XmlNode* node) { return node != nullptr ? node->next_sibling : nullptr; }
const XmlNode* XmlParent(const XmlNode* node) { return node != nullptr ? node->parent : nullptr; }

long long XmlChildCount(const XmlNode* node) {
  long long count = 0;
  for (const XmlNode* child = XmlFirstChild(node); child != nullptr; child = XmlNextSibling(child)) ++count;
  return count;
}
const char* XmlNodeName(const XmlNode* node) { return node != nullptr ? node->name : nullptr; }
const char* XmlNodeText(const XmlNode* node) { return node != nullptr ? node->text : nullptr; }

const XmlNode* XmlFindChild(const XmlNode* node, const char* name, bool children_only) {
  if (node == nullptr || name == nullptr) return nullptr;
  if (!children_only && NamesEqual(node->name, name)) return node;
  for (const XmlNode* child = node->first_child; child != nullptr; child = child->next_sibling) {
    if (NamesEqual(child->name, name)) return child;
  }
  return nullptr;
}

const char* XmlChildText(const XmlNode* node, const char* name) {
  return XmlNodeText(XmlFindChild(node, name, true));
}

const char* XmlAttributeValue(const XmlNode* node, const char* name) {
  if (name == nullptr) return nullptr;
  for (const XmlAttribute* a = XmlFirstAttribute(node); a != nullptr; a = a->next) {
    if (NamesEqual(a->name, name)) return a->value;
  }
  return nullptr;
}

bool XmlAttributeIsTrue(const XmlNode* node, const char* name) {
  const char* value = XmlAttributeValue(node, name);
  return value != nullptr && (NamesEqual(value, "true") || NamesEqual(value, "yes"));
}

const XmlAttribute* XmlFirstAttribute(const XmlNode* node) {
  return node != nullptr ? node->first_attribute : nullptr;
}
const XmlAttribute* XmlNextAttribute(const XmlAttribute* attribute) {
  return attribute != nullptr ? attribute->next : nullptr;
}
const char* XmlAttributeName(const XmlAttribute* attribute) {
  return attribute != nullptr ? attribute->name : nullptr;
}
const char* XmlAttributeValue(const XmlAttribute* attribute) {
  return attribute != nullptr ? attribute->value : nullptr;
}

// ---------------------------------------------------------------------------
// Building

XmlNode* XmlNewNode(XmlDocument& document, const char* name) {
  if (name == nullptr) return nullptr;
  return NewNode(Access::arena(document), name, std::strlen(name));
}

int XmlAppendChild(XmlNode* parent, XmlNode* child) {
  if (parent == nullptr || child == nullptr) return 1;
  if (parent->arena != child->arena || child->parent != nullptr) return 1;
  for (const XmlNode* ancestor = parent; ancestor != nullptr; ancestor = ancestor->parent) {
    if (ancestor == child) return 1;  // would make a cycle
  }
  AppendChild(parent, child);
  return 0;
}

int XmlAddAttribute(XmlNode* node, const char* name, const char* value) {
  if (node == nullptr || name == nullptr) return 1;
  if (value == nullptr) value = "";
  return AddAttribute(node, name, std::strlen(name), value, std::strlen(value)) ? 0 : 1;
}

int XmlSetText(XmlNode* node, const char* text) {
  if (node == nullptr) return 1;
  if (text == nullptr) {
    node->text = nullptr;
    return 0;
  }
  return SetText(node, text, std::strlen(text)) ? 0 : 1;
}
