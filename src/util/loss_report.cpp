#include "util/loss_report.h"

#include <utility>
#include <vector>

namespace {

struct LossReport {
  std::vector<LossEntry> entries;
  std::string record;
  bool quiet = false;
};

LossReport g_report;

}  // namespace

void ReportLoss(LossEntry entry) {
  if (g_report.quiet) return;
  if (entry.record.empty()) entry.record = g_report.record;
  g_report.entries.push_back(std::move(entry));
}

void SetLossRecord(std::string_view record) { g_report.record.assign(record); }

const std::string& LossRecord() { return g_report.record; }

std::size_t LossCount() { return g_report.entries.size(); }

void ForgetLossesAfter(std::size_t count) {
  if (count < g_report.entries.size()) g_report.entries.resize(count);
}

void SetLossQuiet(bool quiet) { g_report.quiet = quiet; }
