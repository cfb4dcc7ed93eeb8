#include "driver/importer.h"

#include <chrono>
#include <cstdio>
#include <string>

#include "driver/command_line.h"
#include "driver/dispatch.h"
#include "driver/ini_file.h"
#include "driver/run_summary.h"
#include "driver/safe_run.h"
#include "driver/undo.h"
#include "store/connection.h"
#include "util/log_watch.h"
#include "util/loss_report.h"
#include "util/platform.h"
#include "util/progress.h"
#include "util/strings.h"
#include "util/text.h"

namespace {
constexpr const char* kProgramName = "CorvanaDataImporter";
constexpr const char* kVersion = "1.0";
struct SslModeName {
  const char* name;
  SslMode mode;
};

constexpr SslModeName kSslModes[] = {
    {"preferred", SslMode::kPreferred},
    {"required", SslMode::kRequired},
    {"verify", SslMode::kVerify},
};

// The optional keys of section "MYSQL" beyond the five connection settings.
// Returns false, after saying why on stderr, for a TLS mode it does not know:
// a connection is never made less safe than the operator asked.
bool ReadConnectOptions(ConnectOptions& options) {
  options.reconnect_seconds = g_config.IniGetInt("MYSQL", "ReconnectSeconds", options.reconnect_seconds);
  if (options.reconnect_seconds < 0) options.reconnect_seconds = 0;
  Text<128> ssl_mode{};
  Text<128> ssl_ca{};
  g_config.IniGetString("MYSQL", "SslMode", "preferred", ssl_mode);
  g_config.IniGetString("MYSQL", "SslCa", "", ssl_ca);
  options.ssl_ca = ssl_ca.c_str();
  for (const SslModeName& known : kSslModes) {
    if (EqualsNoCase(known.name, ssl_mode.c_str())) {
      options.ssl_mode = known.mode;
      return true;
    }
  }
  std::fprintf(stderr, "Unknown SslMode '%s' in the configuration file: use preferred, required or verify\n",
               ssl_mode.c_str());
  return false;
}

ConnectionTarget g_target;

}  // namespace

int ConnectFromConfig() {
  Text<128> server{};
  Text<32> database{};
  Text<32> user{};
  Text<32> password{};
  g_config.IniGetString("MYSQL", "Server", "", server);
  int port = g_config.IniGetInt("MYSQL", "Port", 3306);
  g_config.IniGetString("MYSQL", "Database", "", database);
  g_config.IniGetString("MYSQL", "Username", "", user);
  g_config.IniGetString("MYSQL", "Password", "", password);

  ConnectOptions options;
  bool options_valid = ReadConnectOptions(options);
  if (!options_valid ||
      ConnectDatabase(server.c_str(), database.c_str(), user.c_str(), password.c_str(), port, options) != 0) {
    std::printf("Can't connect to '%s' on '%s:%d' as user '%s'!\n", database.c_str(), server.c_str(), port,
                user.c_str());
    if (options_valid) {
      std::fflush(stdout);
      std::fprintf(stderr, "The server said: %s\n", LastDbError());
    }
    return 1;
  }
  g_target.server = std::string(server.c_str()) + ":" + std::to_string(port);
  g_target.database = database.c_str();
  std::printf("\n\n%s version %s connected successfully to '%s:%s'\n", kProgramName, kVersion, server.c_str(),
              database.c_str());
  if (!SqlModeNotice().empty()) {
    std::fflush(stdout);  // keeps the notice after the banner when both go to one terminal
    std::fprintf(stderr, "%s\n", SqlModeNotice().c_str());
  }
  return 0;
}

namespace {

// The loss report of the job that ran: the whole list in its file beside the
// journal, the short table on stderr.
void ShowLossReport() {
  FlushReadsInPart();
  std::string file;
  if (DistinctLossCount() > 0 && !LossFilePath().empty()) {
    MakeFolder(kJournalFolder);  // a dry run has not made it
    file = LossFilePath();
    if (!WriteLossFile(file)) {
      std::fprintf(stderr, "Could not write the loss report to %s\n", file.c_str());
      file.clear();
    }
  }
  std::fputs(LossSummary(file).c_str(), stderr);
}

}  // namespace

int RunImporter(int argc, const char* const* argv) {
  const auto started = std::chrono::steady_clock::now();
  WatchLog();
  CommandLine command_line(argc, argv, g_options, kOptionCount);
  if (!UndoJournal.empty()) {
    if (ConnectFromConfig() != 0) return 1;
    int exit_code = UndoRun(UndoJournal.c_str(), Force != 0, g_target);
    CloseDatabase();
    return exit_code;
  }
  if (!command_line.IsValid()) {
    std::printf("Unable to correclty parse command-line arguments!\n");
    std::printf("Usage: %s -org ORGNAME -year 2011 -type DATA_TYPE\n", kProgramName);
    return 1;
  }
  if (ConnectFromConfig() != 0) return 1;

  std::printf("%s - %s - %d\n", OrgCode.c_str(), DataType.c_str(), Year);
  RunOptions options{};
  options.year = Year;
  options.region = Region;
  JobDescription described;
  std::string note;
  int exit_code = 0;
  if (DescribeSelectedJob(OrgCode.c_str(), DataType.c_str(), options, described)) {
    SafeRunOptions safe{DryRun != 0, Atomic != 0, Again != 0, OrgCode.c_str(), DataType.c_str(), Year, Region.c_str()};
    exit_code = BeginSafeRun(safe, described, g_target);
    if (exit_code != 0) {
      CloseDatabase();
      return exit_code;
    }
    RunInPasses([&] { RunSelectedJob(OrgCode.c_str(), DataType.c_str(), options); });
    exit_code = EndSafeRun(note);
  }
  ProgressClear();

  unsigned long long problems = ProblemLines();  // flushes the log first
  double seconds = std::chrono::duration<double>(std::chrono::steady_clock::now() - started).count();
  std::string job = std::string(OrgCode.c_str()) + " - " + DataType.c_str() + " - " + std::to_string(Year);
  std::string summary = FormatRunSummary(job, Tally(), problems, seconds);
  std::fputs((summary + note).c_str(), stderr);
  if (!LossFilePath().empty()) ShowLossReport();
  CloseDatabase();
  return exit_code;
}
