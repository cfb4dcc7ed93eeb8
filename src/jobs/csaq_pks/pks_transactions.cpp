// Acquisitions and dispositions ("./Transactions.xml", pass 5), the final
// order of the animals (pass 6) and their identifiers ("./Identifiers.xml",
// pass 7).
#include <cstdio>
#include <cstring>
#include <string>

#include "jobs/csaq_pks/pks_job.h"

namespace {

// ---------------------------------------------------------------------------
// Pass 5: transactions

enum class TransactionEffect {
  kAdmitted,  // admission date
  kLeft,      // final date and a status
  kNothing,
  kUnknownAcquisition,
  kUnknownDisposition,
};

struct TransactionRule {
  const char* transaction_type;
  const char* event_type;
  TransactionEffect effect;
  const char* status;  // for kLeft
};

constexpr TransactionRule kTransactionRules[] = {
    {"Acquisition", "From Another Institution", TransactionEffect::kAdmitted, nullptr},
    {"Acquisition", "Rescued", TransactionEffect::kAdmitted, nullptr},
    {"Acquisition", "From Wild", TransactionEffect::kAdmitted, nullptr},
    {"Acquisition", "Birth/Hatch", TransactionEffect::kNothing, nullptr},
    {"Acquisition", "Group Split", TransactionEffect::kAdmitted, nullptr},
    {"Acquisition", "Accession Individual From Group", TransactionEffect::kAdmitted, nullptr},
    {"Acquisition", "Appeared", TransactionEffect::kNothing, nullptr},
    {"Acquisition", "From Lay", TransactionEffect::kNothing, nullptr},
    {"Acquisition", nullptr, TransactionEffect::kUnknownAcquisition, nullptr},
    {"Disposition", "To Another Institution", TransactionEffect::kLeft, "T"},
    {"Disposition", "Death", TransactionEffect::kLeft, "D"},
    {"Disposition", "Egg Disposal or Death", TransactionEffect::kLeft, "D"},
    // Not the note type "Release To Wild": the export spells the two differently.
    {"Disposition", "Release to Wild", TransactionEffect::kLeft, "R"},
    {"Disposition", "Close Out", TransactionEffect::kNothing, nullptr},
    {"Disposition", "Missing", TransactionEffect::kLeft, "MIA"},
    {"Disposition", nullptr, TransactionEffect::kUnknownDisposition, nullptr},
};

// The rule for the pair; null for an unknown transaction type. A rule with
// no event type takes every event of its transaction type.
const TransactionRule* FindTransactionRule(const char* transaction_type, const char* event_type) {
  for (const TransactionRule& rule : kTransactionRules) {
    if (std::strcmp(transaction_type, rule.transaction_type) != 0) continue;
    if (rule.event_type == nullptr || std::strcmp(event_type, rule.event_type) == 0) return &rule;
  }
  return nullptr;
}

void ApplyTransactionRule(PatientRecord& patient, const TransactionRule* rule, const char* transaction_type,
                          const char* event_type, const char* date) {
  if (rule == nullptr) {
    std::printf("\tERROR - Unknown transaction type: %s\n", transaction_type);
    return;
  }
  switch (rule->effect) {
    case TransactionEffect::kAdmitted:
      patient.admission_date = date;
      break;
    case TransactionEffect::kLeft:
      patient.final_date = date;
      patient.status = rule->status;
      break;
    case TransactionEffect::kNothing:
      break;
    case TransactionEffect::kUnknownAcquisition:
      std::printf("\tERROR - Unknown acquisition transaction type: %s\n", event_type);
      break;
    case TransactionEffect::kUnknownDisposition:
      std::printf("\tERROR - Unknown disposition transaction type: %s\n", event_type);
      break;
  }
}

void ApplyTransaction(ZooImport& job, const XmlNode* record) {
  const char* local_id = XmlChildText(record, "Local_ID");
  const char* transaction_type = XmlChildText(record, "TransactionType");
  const char* transaction_date = XmlChildText(record, "TransactionDate");
  const char* event_type = XmlChildText(record, "EventType");
  if (local_id == nullptr || transaction_type == nullptr || transaction_date == nullptr || event_type == nullptr) {
    std::printf("\tERROR: Missing local id, type, date or event type\n");
    return;
  }
  std::string date(transaction_date);
  date = date.substr(0, date.find('T'));
  AnimalRun run;
  if (!job.animals.FindAnimalRun(local_id, run)) {
    std::printf("\tERROR: Processing transactions - cannot find '%s'\n", local_id);
    return;
  }
  const TransactionRule* rule = FindTransactionRule(transaction_type, event_type);
  for (int position = run.first; position <= run.last; ++position) {
    ApplyTransactionRule(job.animals[position].patient, rule, transaction_type, event_type, date.c_str());
  }
}

// ---------------------------------------------------------------------------
// Pass 7: identifiers

enum class IdentifierUse {
  kName,       // the first animal's name
  kTag,        // a microchip when it reads "AVID...", else a "Tag" attribute
  kAttribute,  // an attribute named after the identifier type
  kBand,       // appended to the first animal's band text
  kGroup,      // a "Group" attribute on every animal of the run
};

struct IdentifierRule {
  const char* identifier_type;
  IdentifierUse use;
};

constexpr IdentifierRule kIdentifierRules[] = {
    {"House Name", IdentifierUse::kName},
    {"Tag", IdentifierUse::kTag},
    {"US NOAA ID", IdentifierUse::kAttribute},
    {"Satellite Transmitters", IdentifierUse::kAttribute},
    {"Color Marking - Natural", IdentifierUse::kBand},
    {"Physical characteristics", IdentifierUse::kBand},
    {"Band", IdentifierUse::kBand},
    {"Intl Stdbk#", IdentifierUse::kAttribute},
    {"Local ID", IdentifierUse::kGroup},
};

// Microchips of this make are read with the clinic's scanner: the patient's
// microchip rather than a tag.
constexpr const char* kMicrochipPrefix = "AVID";

void AddAttribute(ZooImport& job, int position, const char* name, const char* value) {
  IdentifierAttribute pending{};
  pending.position = position;
  pending.attribute.name = name;
  pending.attribute.value = value;
  job.identifier_attributes.push_back(pending);
}

// "Tag", then ": " and the body component, then ", " and the descriptors,
// each only when given; cut at the attribute name's width.
std::string TagName(const XmlNode* record) {
  std::string name = "Tag";
  const char* body_component = XmlChildText(record, "IdentifierBodyComponent");
  const char* descriptors = XmlChildText(record, "Descriptors");
  if (body_component != nullptr && body_component[0] != '\0') name.append(": ").append(body_component);
  if (descriptors != nullptr && descriptors[0] != '\0') name.append(", ").append(descriptors);
  return name;
}

void ApplyIdentifier(ZooImport& job, const XmlNode* record) {
  const char* local_id = XmlChildText(record, "Local_ID");
  const char* identifier_type = XmlChildText(record, "IdentifierType");
  const char* value = XmlChildText(record, "IdentifierValue");
  if (local_id == nullptr || identifier_type == nullptr || value == nullptr) {
    std::printf("\tERROR: Missing local id, type or value\n");
    return;
  }
  AnimalRun run;
  if (!job.animals.FindAnimalRun(local_id, run)) {
    std::printf("\tERROR: Processing identifiers - cannot find '%s'\n", local_id);
    return;
  }
  const IdentifierRule* rule = nullptr;
  for (const IdentifierRule& candidate : kIdentifierRules) {
    if (std::strcmp(identifier_type, candidate.identifier_type) == 0) {
      rule = &candidate;
      break;
    }
  }
  if (rule == nullptr) {
    std::printf("\tERROR - Unknown identifier type: %s\n", identifier_type);
    return;
  }
  PatientRecord& first = job.animals[run.first].patient;
  switch (rule->use) {
    case IdentifierUse::kName:
      first.name = value;
      break;
    case IdentifierUse::kTag:
      if (std::strncmp(value, kMicrochipPrefix, std::strlen(kMicrochipPrefix)) == 0) {
        first.microchip = value;
      } else {
        AddAttribute(job, run.first, TagName(record).c_str(), value);
      }
      break;
    case IdentifierUse::kAttribute:
      AddAttribute(job, run.first, identifier_type, value);
      break;
    case IdentifierUse::kBand:
      AppendBandText(first, value);
      break;
    case IdentifierUse::kGroup:
      for (int position = run.first; position <= run.last; ++position) AddAttribute(job, position, "Group", value);
      break;
  }
}

}  // namespace

bool ApplyTransactions(ZooImport& job) {
  std::printf("Loading patient transactions...\n");
  if (XmlLoadFile(job.work, kTransactionsFile) != 0) {
    std::printf("Unable to parse transactions file '%s'\n", kTransactionsFile);
    return false;
  }
  int visited = VisitRecords(job, kTransactionsFile, [&](const XmlNode* record) { ApplyTransaction(job, record); });
  std::printf("Processed %d transactions\n", visited);
  return true;
}

bool SortAnimals(ZooImport& job) {
  std::printf("There are %d individual animals\n", job.animals.size());
  job.animals.SortByAdmissionDate();
  return true;
}

bool ApplyIdentifiers(ZooImport& job) {
  std::printf("Loading patient identifiers...\n");
  if (XmlLoadFile(job.work, kIdentifiersFile) != 0) {
    std::printf("Unable to parse identifiers file '%s'\n", kIdentifiersFile);
    return false;
  }
  int visited = VisitRecords(job, kIdentifiersFile, [&](const XmlNode* record) { ApplyIdentifier(job, record); });
  std::printf("Processed %d identifiers\n", visited);
  return true;
}
