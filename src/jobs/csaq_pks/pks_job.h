// The working state of one zoo-records import and its fifteen passes, in the
// order ImportZooRecords runs them (pks_import.cpp). Private to the job: the
// passes share what earlier passes left in the animal table.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "jobs/csaq_pks/pks_animals.h"
#include "jobs/csaq_pks/pks_census.h"
#include "jobs/csaq_pks/pks_species.h"
#include "store/case_numbers.h"
#include "store/record_entry_store.h"
#include "util/progress.h"
#include "util/read_losses.h"
#include "xml/xml_document.h"

// The export's files, as the job's messages name them.
inline constexpr const char* kCensusFile = "./CensusCounts.xml";
inline constexpr const char* kAnimalsFile = "./Animals.xml";
inline constexpr const char* kNotesFile = "./Notes.xml";
inline constexpr const char* kTransactionsFile = "./Transactions.xml";
inline constexpr const char* kIdentifiersFile = "./Identifiers.xml";
inline constexpr const char* kMeasurementsFile = "./Measurements.xml";
inline constexpr const char* kMovesFile = "./EnclosureMoves.xml";
// Large groups, one "GROUP: ..." line each: written by the animal pass, read
// by the group census pass, left on disk for the operator.
inline constexpr const char* kGroupTempFile = "./GroupTempFile.txt";

// An identifier that becomes an attribute of its animal's patient. Written
// only once the patient rows exist, so that it lands on the animal's own
// row even when an earlier animal's patient insert failed.
struct IdentifierAttribute {
  int32_t position;  // the animal's final position in the table
  PatientAttribute attribute;
};

struct ZooImport {
  AnimalTable animals;
  SpeciesCache species;
  XmlDocument census;  // "./CensusCounts.xml" while the animal pass reads first counts
  InitialCensus initial_census;
  XmlDocument work;  // the file of the current pass
  std::vector<IdentifierAttribute> identifier_attributes;
  RunCaseNumbers case_numbers;  // given by the patient id and patient passes
  std::string pass;  // "Pass 4 of 15: note events": what the progress line shows
};

// The progress of a pass's loop over the records of the file it read.
inline long long RecordCount(const XmlDocument& document) { return XmlChildCount(XmlFirstChild(XmlRoot(document))); }

// The first record of an exported table: the records are the children of
// the first element under the root.
const XmlNode* FirstRecord(const XmlDocument& document);

// Hands every record of the file the pass loaded into `job.work` (`file`,
// which names the record of the loss report) to `visit`, with the pass's
// progress line; returns how many records it visited.
template <typename Visit>
int VisitRecords(ZooImport& job, const char* file, Visit visit) {
  int visited = 0;
  ProgressLoop progress(job.pass.c_str(), static_cast<unsigned long long>(RecordCount(job.work)));
  ExportRows rows(file);
  for (const XmlNode* record = FirstRecord(job.work); record != nullptr; record = XmlNextSibling(record)) {
    progress.Step();
    rows.Name(visited + 1);
    visit(record);
    ++visited;
  }
  return visited;
}

// A text for a "%s" of a message: what the export holds, or "(null)" for a
// field that is missing.
const char* Shown(const char* text);

// The patient key an animal's rows hang on: the key InsertPatient stored,
// or 0, which no patient has, when its insert failed.
inline int PatientKey(const AnimalRecord& animal) { return animal.patient.id; }

// Each pass returns false when the job must stop; it has printed why.
bool LoadCensusDocument(ZooImport& job);        // 1
bool LoadSpeciesCache(ZooImport& job);          // 2
bool LoadAnimals(ZooImport& job);               // 3
bool ApplyNoteEvents(ZooImport& job);           // 4
bool ApplyTransactions(ZooImport& job);         // 5
bool SortAnimals(ZooImport& job);               // 6
bool ApplyIdentifiers(ZooImport& job);          // 7
bool GeneratePatientIds(ZooImport& job);        // 8
bool CreatePatientRecords(ZooImport& job);      // 9
bool WriteNoteEntries(ZooImport& job);          // 10
bool WriteMeasurements(ZooImport& job);         // 11
bool WriteMoves(ZooImport& job);                // 12
bool ClearNonResidentLocations(ZooImport& job); // 13
bool SetGroupCensusAttributes(ZooImport& job);  // 14
bool WriteCensusCounts(ZooImport& job);         // 15
