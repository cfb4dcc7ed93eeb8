// What the CSAQ_FF jobs share about the aquarium's exported desktop-database
// tables: file and element names, reading a row's fields, and the indexes
// over the abbreviation and habitat tables that several jobs consult.
//
// An exported table is an XML file whose document element "dataroot" holds
// one child element per row, the row's fields as its child elements. Element
// names keep the export's escapes ("_x0020_" for a blank); texts keep their
// entity references ("&apos;", "&quot;").
#pragma once

#include <string>
#include <string_view>
#include <unordered_map>

#include "util/strings.h"
#include "xml/xml_document.h"

inline constexpr const char* kFfHabitatsFile = "./Habitats.xml";
inline constexpr const char* kFfAbbreviationsFile = "./SpeciesAbbreviations.xml";
inline constexpr const char* kFfHusbandryFile = "./Husbandry.xml";

// Fields that several tables carry.
inline constexpr const char* kFfIdentityTag = "Identity_x0020__x0020_Tag";
inline constexpr const char* kFfDataType = "Data_x0020_Type";
inline constexpr const char* kFfSpecimenCount = "Number_x0020_of_x0020_specimens_x0020_in_x0020_group";
inline constexpr const char* kFfCommonName = "Common_x0020_Name";
inline constexpr const char* kFfHabitatId = "ID";
inline constexpr const char* kFfHabitatLabel = "Habitat_x0020_Label";

// The first row of an exported table: the first child of the "dataroot"
// element under the document's root. Null when there is none.
const XmlNode* FirstExportRow(const XmlDocument& table);

// How many rows the exported table holds: the total of a job's progress.
unsigned long long ExportRowCount(const XmlDocument& table);

// The document element (the first element of the file), or null.
const XmlNode* DocumentElement(const XmlDocument& document);

// The text of the row's field `name`: null when the row has no such element,
// "" when the element is there but empty.
const char* FieldText(const XmlNode* row, const char* name);

// The field's text read as a decimal number (atof rules); 0 when missing.
double FieldNumber(const XmlNode* row, const char* name);

// The field's text read as an integer (atoi rules); `missing` when absent.
int FieldInt(const XmlNode* row, const char* name, int missing);

// An exported date and time ("2014-05-12T00:00:00") cut at its first 'T';
// "" for a null text.
std::string DateBeforeT(const char* text);

// `text` with its first "&apos;" turned into "'" (the export's spelling of
// names such as Kemp's ridley).
std::string ReplaceFirstApos(std::string_view text);

// Common name -> abbreviation, from the children of the abbreviations
// document element (attributes "commonName" and "abbrev"). Names compare
// ignoring letter case; of two elements with the same name the first counts.
// The texts point into the document, which must outlive the index.
class AbbreviationIndex {
 public:
  explicit AbbreviationIndex(const XmlDocument& abbreviations);

  // The abbreviation for `common_name`, or null when no element names it
  // (or the first that does carries no abbreviation).
  const char* Find(std::string_view common_name) const;

 private:
  std::unordered_map<std::string, const char*> abbrev_by_name_;  // lower-case name -> abbrev or null
};

// The habitats table ("ID" -> "Habitat_x0020_Label") indexed the three ways
// the jobs match a tank. The texts point into the document, which must
// outlive the index.
class HabitatIndex {
 public:
  explicit HabitatIndex(const XmlDocument& habitats);

  // The label of the first row whose ID text equals `id` exactly and that
  // has a label element; null when there is none.
  const char* LabelWithId(const char* id) const;

  // The label of the first row whose ID text equals `id` exactly, "" when
  // that row has no label or no row matches.
  const char* FirstRowLabel(const char* id) const;

  // The label of the first row whose ID reads as the number `number`; null
  // when there is no such row or it has no (or an empty) label.
  const char* LabelWithNumber(int number) const;

 private:
  std::unordered_map<std::string, const char*> labelled_by_id_;
  std::unordered_map<std::string, const char*> first_by_id_;  // label or null
  std::unordered_map<int, const char*> first_by_number_;      // label or null
};
