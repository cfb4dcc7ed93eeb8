#include "jobs/csaq_ff/csaq_ff_export.h"

#include <cstdio>
#include <cstdlib>
#include <string>

#include "util/strings.h"

const XmlNode* FirstExportRow(const XmlDocument& table) {
  return XmlFirstChild(XmlFindChild(XmlRoot(table), "dataroot", true));
}

unsigned long long ExportRowCount(const XmlDocument& table) {
  return static_cast<unsigned long long>(XmlChildCount(XmlFindChild(XmlRoot(table), "dataroot", true)));
}

const XmlNode* DocumentElement(const XmlDocument& document) { return XmlFirstChild(XmlRoot(document)); }

const char* FieldText(const XmlNode* row, const char* name) {
  const XmlNode* field = XmlFindChild(row, name, false);
  if (field == nullptr) return nullptr;
  const char* text = XmlNodeText(field);
  return text != nullptr ? text : "";
}

namespace {

// An element's name as the export's table named the field: "_x0020_" and
// the like stand for the characters a name cannot hold.
std::string ExportFieldName(const char* name) {
  std::string plain;
  for (const char* p = name; *p != '\0'; ++p) {
    unsigned code = 0;
    if (p[0] == '_' && p[1] == 'x' && std::sscanf(p + 2, "%4x", &code) == 1 && p[6] == '_' && code > 0 &&
        code < 0x100) {
      plain.push_back(static_cast<char>(code));
      p += 6;
    } else {
      plain.push_back(*p);
    }
  }
  return plain;
}

}  // namespace

double FieldNumber(const XmlNode* row, const char* name) {
  const char* text = FieldText(row, name);
  if (text == nullptr) return 0.0;
  char* end = nullptr;
  double value = std::strtod(text, &end);
  // The field's name only for a value that goes to the loss report.
  return *end == '\0' ? value : ReadNumber(text, NumberRest::kNothing, ExportFieldName(name));
}

int FieldInt(const XmlNode* row, const char* name, int missing) {
  const char* text = FieldText(row, name);
  if (text == nullptr) return missing;
  char* end = nullptr;
  std::strtoll(text, &end, 10);
  return *end == '\0' ? ToInt(text) : ReadInteger(text, NumberRest::kNothing, ExportFieldName(name));
}

std::string DateBeforeT(const char* text) {
  if (text == nullptr) return "";
  std::string date = text;
  std::size_t t = date.find('T');
  if (t != std::string::npos) date.resize(t);
  return date;
}

std::string ReplaceFirstApos(std::string_view text) {
  constexpr std::string_view kApos = "&apos;";
  std::size_t apos = text.find(kApos);
  if (apos == std::string_view::npos) return std::string(text);
  std::string result(text.substr(0, apos));
  result += '\'';
  result += text.substr(apos + kApos.size());
  return result;
}

AbbreviationIndex::AbbreviationIndex(const XmlDocument& abbreviations) {
  for (const XmlNode* entry = XmlFirstChild(DocumentElement(abbreviations)); entry != nullptr;
       entry = XmlNextSibling(entry)) {
    const char* name = XmlAttributeValue(entry, "commonName");
    if (name == nullptr) continue;
    abbrev_by_name_.emplace(LowerAscii(name), XmlAttributeValue(entry, "abbrev"));
  }
}

const char* AbbreviationIndex::Find(std::string_view common_name) const {
  auto found = abbrev_by_name_.find(LowerAscii(common_name));
  return found != abbrev_by_name_.end() ? found->second : nullptr;
}

HabitatIndex::HabitatIndex(const XmlDocument& habitats) {
  for (const XmlNode* row = FirstExportRow(habitats); row != nullptr; row = XmlNextSibling(row)) {
    const char* id = FieldText(row, kFfHabitatId);
    if (id == nullptr) continue;
    const char* label = FieldText(row, kFfHabitatLabel);
    if (label != nullptr) labelled_by_id_.emplace(id, label);
    first_by_id_.emplace(id, label);
    first_by_number_.emplace(ToInt(id), label);
  }
}

const char* HabitatIndex::LabelWithId(const char* id) const {
  if (id == nullptr) return nullptr;
  auto found = labelled_by_id_.find(id);
  return found != labelled_by_id_.end() ? found->second : nullptr;
}

const char* HabitatIndex::FirstRowLabel(const char* id) const {
  if (id == nullptr) return "";
  auto found = first_by_id_.find(id);
  return found != first_by_id_.end() && found->second != nullptr ? found->second : "";
}

const char* HabitatIndex::LabelWithNumber(int number) const {
  auto found = first_by_number_.find(number);
  if (found == first_by_number_.end() || found->second == nullptr || found->second[0] == '\0') return nullptr;
  return found->second;
}
