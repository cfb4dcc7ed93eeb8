// Loss report entries shown as one comparable line each.
#pragma once

#include <string>
#include <vector>

#include "util/loss_report.h"

// "table|column|record|what|as exported|as stored".
inline std::string ShowLoss(const LossEntry& e) {
  return e.table + "|" + e.column + "|" + e.record + "|" + e.what + "|" + e.as_exported + "|" + e.as_stored;
}

// The report's entries so far.
inline std::vector<std::string> ReportedLosses() {
  std::vector<std::string> lines;
  for (std::size_t i = 0; i < LossCount(); ++i) lines.push_back(ShowLoss(LossAt(i)));
  return lines;
}
