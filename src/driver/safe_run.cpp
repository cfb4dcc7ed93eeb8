#include "driver/safe_run.h"

#include <algorithm>
#include <cctype>
#include <chrono>
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <ctime>
#include <filesystem>
#include <memory>

#include "store/connection.h"
#include "store/journal.h"
#include "util/dates.h"
#include "util/log_watch.h"
#include "util/platform.h"
#include "util/progress.h"
#include "util/sha256.h"

namespace {

SafeRunOptions g_run;
std::unique_ptr<RunJournal> g_journal;
bool g_transaction = false;

// The journal's descriptor while a run writes, for the interrupt handler.
volatile sig_atomic_t g_journal_fd = -1;

// Ctrl-C or a stop request: the journal says so on a line of its own (what
// is still in its buffer was not sent), then the signal ends the program as
// it would have. An atomic run's transaction dies with the connection.
void JournalInterrupted() {
  int fd = g_journal_fd;
  if (fd >= 0) {
    static const char kEnd[] = "\nend\tinterrupted\n";
    WriteFromHandler(fd, kEnd, sizeof kEnd - 1);
  }
}

// A name part of the journal's file name: letters, digits, '_' and '-' only.
std::string FileNamePart(const std::string& text) {
  std::string part;
  for (char c : text) part.push_back(std::isalnum(static_cast<unsigned char>(c)) || c == '-' ? c : '_');
  return part;
}

// Where the run's loss report goes: beside its journal, named like it.
std::string g_loss_file;

// The run's files in the journal folder are named by the time (so that ls
// sorts them by time) and the job: the name without its ending.
std::string RunFileBase() {
  auto now = std::chrono::system_clock::now();
  std::time_t seconds = std::chrono::system_clock::to_time_t(now);
  auto millis = std::chrono::duration_cast<std::chrono::milliseconds>(now.time_since_epoch()).count() % 1000;
  std::tm local{};
  LocalTime(seconds, &local);
  char stamp[40];
  std::strftime(stamp, sizeof stamp, "%Y%m%d-%H%M%S", &local);
  std::string base = std::string(kJournalFolder) + "/" + stamp + "." + std::to_string(1000 + millis).substr(1) +
                     "-" + FileNamePart(g_run.org) + "-" + FileNamePart(g_run.type) + "-" +
                     std::to_string(g_run.year);
  if (!g_run.region.empty()) base += "-" + FileNamePart(g_run.region);
  return base;
}

// Creates the run's journal file. Returns its path, or "" on failure.
std::string CreateJournalFile(RunJournal& journal) {
  MakeFolder(kJournalFolder);  // or it is there already
  std::string base = RunFileBase();
  for (int attempt = 1; attempt < 100; ++attempt) {
    std::string path = base + (attempt > 1 ? "-" + std::to_string(attempt) : "") + ".journal";
    if (journal.Create(path)) return path;
  }
  return "";
}

// The server dropped the connection of a dry or atomic run: the server has
// rolled the transaction back, so there is nothing to wait for.
void TransactionLost(const char* why) {
  std::fflush(stdout);
  ProblemLines();  // lets the log through before the message
  ProgressClear();
  std::fprintf(stderr, "The connection to the database server was lost (%s): the run stops here; %s\n", why,
               g_run.dry_run ? "it was a dry run, nothing was written" : "nothing of this run was written");
  if (g_journal) g_journal->FinishWithoutRows("lost connection, rolled back", NowTimestamp());
  std::fflush(stderr);
  std::exit(kExitNothingWritten);
}

std::string OptionsText(const SafeRunOptions& options) {
  std::string text;
  if (options.atomic) text += "-atomic";
  if (options.again) text += text.empty() ? "-again" : " -again";
  return text;
}

}  // namespace

std::string FindEarlierImport(const std::string& folder, const ConnectionTarget& target, const SafeRunOptions& options,
                              const std::vector<std::string>& files) {
  // A file that cannot be read now cannot be told to be the same as before.
  if (std::find(files.begin(), files.end(), "unreadable") != files.end()) return "";
  std::error_code error;
  std::vector<std::string> paths;
  for (const auto& entry : std::filesystem::directory_iterator(folder, error)) {
    if (entry.path().extension() == ".journal") paths.push_back(entry.path().string());
  }
  std::sort(paths.begin(), paths.end());
  const JournalRecord job = {"job", options.org, options.type, std::to_string(options.year), options.region};
  for (const std::string& path : paths) {
    std::vector<JournalRecord> records;
    // Most journals are of other jobs: their head tells.
    if (!ReadJournal(path, records, true)) continue;
    if (std::find(records.begin(), records.end(), job) == records.end()) continue;
    if (!ReadJournal(path, records)) continue;
    bool same_server = false, same_database = false, same_job = false, completed = false, undone = false;
    bool wrote = false;
    std::vector<std::string> its_files;
    for (const JournalRecord& record : records) {
      const std::string& kind = record[0];
      if (kind == "server") same_server = record.size() > 1 && record[1] == target.server;
      if (kind == "database") same_database = record.size() > 1 && record[1] == target.database;
      if (kind == "job") same_job = record == job;
      if (kind == "file" && record.size() == 4) its_files.insert(its_files.end(), record.begin() + 1, record.end());
      if (kind == "+" || kind == "~" || kind == "-") wrote = true;
      if (kind == "end") completed = record.size() > 1 && record[1] == "completed";
      if (kind == "undone") undone = true;
    }
    if (same_server && same_database && same_job && completed && !undone && wrote && its_files == files) return path;
  }
  return "";
}

int BeginSafeRun(const SafeRunOptions& options, const JobDescription& job, const ConnectionTarget& target) {
  g_run = options;
  std::fflush(stdout);
  if (options.dry_run || options.atomic) {
    std::string refused = FirstNonTransactionalTable(job.tables);
    if (!refused.empty()) {
      std::fprintf(stderr, "Refused: table %s cannot roll back, so a %s run cannot be done on it\n", refused.c_str(),
                   options.dry_run ? "dry" : "atomic");
      return kExitRefused;
    }
  }
  std::vector<std::string> files;  // name, size, digest of each input file
  for (const std::string& input : job.inputs) {
    unsigned long long size = 0;
    std::string digest = Sha256OfFile(input.c_str(), size);
    files.insert(files.end(), {input, std::to_string(size), digest.empty() ? "unreadable" : digest});
  }
  std::string earlier = FindEarlierImport(kJournalFolder, target, options, files);
  if (!earlier.empty() && !options.again) {
    std::fprintf(stderr,
                 "%s: this job already ran on the same files against %s, database %s, and was not undone (%s)%s\n",
                 options.dry_run ? "Note" : "Refused", target.server.c_str(), target.database.c_str(), earlier.c_str(),
                 options.dry_run ? "" : "; nothing was written. Add -again to import them once more");
    if (!options.dry_run) return kExitRefused;
  }
  if (!options.dry_run) {
    g_journal = std::make_unique<RunJournal>();
    std::string path = CreateJournalFile(*g_journal);
    if (path.empty()) {
      std::fprintf(stderr, "Refused: cannot create a journal file in %s, so the run could not be undone\n",
                   kJournalFolder);
      g_journal.reset();
      return kExitRefused;
    }
    std::fprintf(stderr, "Journal of this run: %s\n", path.c_str());
    g_loss_file = path.substr(0, path.size() - std::string(".journal").size()) + ".losses.tsv";
    g_journal_fd = g_journal->FileDescriptor();
    OnInterrupt(JournalInterrupted);
    g_journal->Record({"# CorvanaDataImporter journal: one record per line, fields separated by tabs"});
    g_journal->Record({"journal", "1"});
    g_journal->Record({"server", target.server});
    g_journal->Record({"database", target.database});
    g_journal->Record({"job", options.org, options.type, std::to_string(options.year), options.region});
    g_journal->Record({"options", OptionsText(options)});
    for (std::size_t i = 0; i + 2 < files.size(); i += 3) {
      g_journal->Record({"file", files[i], files[i + 1], files[i + 2]});
    }
    g_journal->Record({"start", NowTimestamp()});
    g_journal->ReadColumnsAhead(job.tables);
    SetWriteObserver(g_journal.get());
  }
  if (options.dry_run) g_loss_file = RunFileBase() + "-dry-run.losses.tsv";
  if (options.dry_run || options.atomic) {
    SetTransactionLostHandler(TransactionLost);
    if (BeginRunTransaction(true) != 0) {
      std::fprintf(stderr, "Refused: the server did not open a transaction: %s\n", LastDbError());
      if (g_journal) g_journal->FinishWithoutRows("refused, nothing written", NowTimestamp());
      return kExitRefused;
    }
    g_transaction = true;
  }
  return 0;
}

int EndSafeRun(std::string& summary_note) {
  int exit_code = 0;
  if (g_transaction) {
    g_transaction = false;
    if (g_run.dry_run) {
      EndRunTransaction(false);
      summary_note = "Dry run: nothing was written (all rolled back); the rows above are what the run would write\n";
    } else if (EndRunTransaction(true) != 0) {
      summary_note = std::string("The commit failed (") + LastDbError() + "): nothing of this run was written\n";
      if (g_journal) g_journal->FinishWithoutRows("commit failed, rolled back", NowTimestamp());
      exit_code = kExitNothingWritten;
    } else {
      summary_note = "Atomic run: committed\n";
    }
  }
  SetWriteObserver(nullptr);
  if (g_journal && exit_code == 0) g_journal->Finish("completed", NowTimestamp());
  g_journal_fd = -1;
  g_journal.reset();
  return exit_code;
}

const std::string& LossFilePath() { return g_loss_file; }
