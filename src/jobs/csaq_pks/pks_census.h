// The census counts of the zoo-records export ("./CensusCounts.xml"): the
// first count of each group, which decides how the animal pass stores it,
// and the reading of each later count into what happened to the animals.
#pragma once

#include <string>
#include <unordered_map>

#include "util/text.h"
#include "xml/xml_document.h"

// The first census record of one Local_ID.
struct InitialCounts {
  Text<32> date;  // the CensusDate cut at its first "T"
  int male;
  int female;
  int other;
};

// The first census record of each Local_ID, found without walking the
// census records once per group. Points into the census document, which
// must stay loaded while the index is used.
class InitialCensus {
 public:
  // Indexes the census records that follow `first_record` (itself included).
  void Index(const XmlNode* first_record);

  // Reads the first census record of `local_id`. Returns false without a
  // message when there is none. Prints "\tERROR - census date missing for
  // '%s'\n" and returns false when it has no CensusDate; a count that is no
  // number is reported too and gives false. The date is taken as it stands.
  // A missing Male, Female or Other count reads as 0.
  bool Read(const char* local_id, InitialCounts& counts) const;

 private:
  std::unordered_map<std::string, const XmlNode*> first_record_;
};

// One census count record as the census counts pass reads it.
struct CensusCount {
  const char* local_id;
  const char* census_date;
  Text<32> method;  // CensusMethodType, "Undetermined" when absent
  Text<32> type;    // CensusCountQualifierType, empty when absent
  int male;
  int female;
  int other;
  int change;  // ChangeInCount
  int group;   // GroupCount
};

// Settles the count's type into what the pass acts on: an empty type with a
// fall in numbers (or a removal from the group) is a "Death", "Close Out" is
// a "Death", the dispositions and "Appeared" stay, merges and splits stay
// after printing the count and that they cannot be followed; an empty type
// with a rise, and any unknown type, are reported and leave the type empty.
void SettleCountType(CensusCount& count);
