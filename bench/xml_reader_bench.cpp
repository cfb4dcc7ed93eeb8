// Loading a large exported table: our XML reader (XmlLoadFile) side by side
// with pugixml, a well-known fast DOM parser used here as the yardstick only.
//
//   xml_reader_bench --file EXPORT.xml [--benchmark_filter=Xml|Pugixml] [benchmark options]
//
// Each iteration loads the whole file into a fresh document and destroys it.
// Counters: the file's size, the throughput (bytes_per_second) and peak_x_file,
// the process's peak resident memory above what it held before the first load,
// as a multiple of the file's size. The peak is the process's own, so run one
// benchmark per process (scripts/bench.sh does) for a fair peak of each.
#include <benchmark/benchmark.h>
#include <sys/resource.h>

#include <cstdio>
#include <cstring>
#include <fstream>
#include <pugixml.hpp>
#include <string>

#include "xml/xml_document.h"

namespace {

std::string g_file;
long long g_file_bytes = 0;
long long g_baseline_kb = 0;  // resident memory before any load

// The resident set now, in kB, from /proc; 0 when it cannot be read.
long long ResidentKb() {
  std::ifstream status("/proc/self/status");
  std::string line;
  while (std::getline(status, line)) {
    if (line.rfind("VmRSS:", 0) == 0) return std::atoll(line.c_str() + 6);
  }
  return 0;
}

long long PeakKb() {
  rusage usage{};
  getrusage(RUSAGE_SELF, &usage);
  return usage.ru_maxrss;
}

void ReportCounters(benchmark::State& state) {
  state.SetBytesProcessed(static_cast<int64_t>(state.iterations()) * g_file_bytes);
  state.counters["file_MB"] = static_cast<double>(g_file_bytes) / 1e6;
  state.counters["peak_x_file"] = static_cast<double>(PeakKb() - g_baseline_kb) * 1024.0 / g_file_bytes;
}

void BM_XmlLoadFile(benchmark::State& state) {
  for (auto _ : state) {
    XmlDocument document;
    if (XmlLoadFile(document, g_file.c_str()) != 0) {
      state.SkipWithError(XmlErrorText(document));
      return;
    }
    benchmark::DoNotOptimize(XmlRoot(document));
  }
  ReportCounters(state);
}
BENCHMARK(BM_XmlLoadFile)->Unit(benchmark::kMillisecond)->MinTime(3.0);

void BM_PugixmlLoadFile(benchmark::State& state) {
  for (auto _ : state) {
    pugi::xml_document document;
    pugi::xml_parse_result result = document.load_file(g_file.c_str());
    if (!result) {
      state.SkipWithError(result.description());
      return;
    }
    benchmark::DoNotOptimize(document.first_child());
  }
  ReportCounters(state);
}
BENCHMARK(BM_PugixmlLoadFile)->Unit(benchmark::kMillisecond)->MinTime(3.0);

}  // namespace

int main(int argc, char** argv) {
  g_baseline_kb = ResidentKb();
  benchmark::Initialize(&argc, argv);
  for (int i = 1; i < argc; ++i) {
    if (std::strcmp(argv[i], "--file") == 0 && i + 1 < argc) g_file = argv[++i];
  }
  std::ifstream file(g_file, std::ios::binary | std::ios::ate);
  if (g_file.empty() || !file) {
    std::fprintf(stderr, "usage: xml_reader_bench --file EXPORT.xml [benchmark options]\n");
    return 1;
  }
  g_file_bytes = static_cast<long long>(file.tellg());
  benchmark::RunSpecifiedBenchmarks();
  benchmark::Shutdown();
  return 0;
}
