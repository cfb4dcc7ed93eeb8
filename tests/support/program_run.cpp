#include "support/program_run.h"

#include <gtest/gtest.h>
#include <fcntl.h>
#include <pty.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cerrno>

#include <cstdio>
#include <cstdlib>
#include <filesystem>

#include "support/test_database.h"

namespace {

// RunProgram with `prefix` (a command that runs the program) in front.
ProgramRun RunProgramWith(const std::string& prefix, const std::string& dir, const std::vector<std::string>& args) {
  std::string errors_file = MakeTempDir() + "/stderr";
  if (!prefix.empty()) chmod(std::filesystem::path(errors_file).parent_path().c_str(), 0777);
  // A hang is a failure like a crash: the run is stopped after two minutes
  // (exit code 124), and killed if it ignores that.
  std::string command = "cd " + ShellQuote(dir) + " && timeout -k 5 120 " + prefix + ShellQuote(CORVANA_BINARY);
  for (const std::string& arg : args) command += " " + ShellQuote(arg);
  command += " 2>" + ShellQuote(errors_file);
  ProgramRun run{-1, "", "", "", ""};
  std::FILE* pipe = popen(command.c_str(), "r");
  if (pipe == nullptr) return run;
  char buffer[4096];
  std::size_t n;
  while ((n = std::fread(buffer, 1, sizeof buffer, pipe)) > 0) run.output.append(buffer, n);
  int status = pclose(pipe);
  run.exit_code = WIFEXITED(status) ? WEXITSTATUS(status) : -1;
  run.errors = ReadFile(errors_file);
  std::size_t summary = run.errors.find("== Summary of ");
  if (summary != std::string::npos && (summary == 0 || run.errors[summary - 1] == '\n')) {
    run.summary = run.errors.substr(summary);
    run.errors.erase(summary);
  }
  // Every run that may write names its journal first; the tests that compare
  // stderr whole compare what comes after it.
  const std::string journal_line = "Journal of this run: ";
  if (std::size_t at = run.errors.find(journal_line); at != std::string::npos && (at == 0 || run.errors[at - 1] == '\n')) {
    std::size_t end = run.errors.find('\n', at);
    run.journal = dir + "/" + run.errors.substr(at + journal_line.size(), end - at - journal_line.size());
    run.errors.erase(at, end == std::string::npos ? std::string::npos : end - at + 1);
  }
  std::filesystem::remove_all(std::filesystem::path(errors_file).parent_path());
  // A crash, or a sanitizer's report in the sanitizer build, fails the test
  // whatever the caller compares.
  bool reported = run.errors.find("Sanitizer") != std::string::npos ||
                  run.errors.find("runtime error:") != std::string::npos;
  if (run.exit_code == 124) {
    ADD_FAILURE() << "the program did not end within two minutes; it reported:\n" << run.errors;
  } else if (reported || run.exit_code < 0 || run.exit_code > 3) {
    ADD_FAILURE() << "the program ended with " << run.exit_code << " and reported:\n" << run.errors;
  }
  return run;
}

}  // namespace

ProgramRun RunProgram(const std::string& dir, const std::vector<std::string>& args) {
  return RunProgramWith("", dir, args);
}

ProgramRun RunProgramUnprivileged(const std::string& dir, const std::vector<std::string>& args) {
  if (geteuid() != 0) return RunProgramWith("", dir, args);
  chmod(dir.c_str(), 0777);
  return RunProgramWith("setpriv --reuid=65534 --regid=65534 --clear-groups ", dir, args);
}

ProgramRun RunProgramOnTerminal(const std::string& dir, const std::vector<std::string>& args) {
  ProgramRun run{-1, "", "", "", ""};
  int terminal = -1;
  int program_side = -1;
  if (openpty(&terminal, &program_side, nullptr, nullptr, nullptr) != 0) {
    ADD_FAILURE() << "no pseudo-terminal";
    return run;
  }
  std::string output_file = MakeTempDir() + "/stdout";
  pid_t child = fork();
  if (child == 0) {
    close(terminal);
    int output = open(output_file.c_str(), O_WRONLY | O_CREAT | O_TRUNC, 0600);
    if (output < 0 || chdir(dir.c_str()) != 0) _exit(127);
    dup2(output, STDOUT_FILENO);
    dup2(program_side, STDERR_FILENO);
    std::vector<char*> argv{const_cast<char*>(CORVANA_BINARY)};
    for (const std::string& arg : args) argv.push_back(const_cast<char*>(arg.c_str()));
    argv.push_back(nullptr);
    execv(CORVANA_BINARY, argv.data());
    _exit(127);
  }
  close(program_side);
  char buffer[4096];
  for (;;) {
    ssize_t n = read(terminal, buffer, sizeof buffer);
    if (n > 0) {
      run.errors.append(buffer, static_cast<std::size_t>(n));
    } else if (n < 0 && errno == EINTR) {
      continue;
    } else {
      break;  // EIO once the program has closed its side
    }
  }
  close(terminal);
  int status = 0;
  waitpid(child, &status, 0);
  run.exit_code = WIFEXITED(status) ? WEXITSTATUS(status) : -1;
  run.output = ReadFile(output_file);
  std::filesystem::remove_all(std::filesystem::path(output_file).parent_path());
  return run;
}

void CopySamples(const std::string& source_dir, const std::string& dir) {
  namespace fs = std::filesystem;
  for (const auto& entry : fs::directory_iterator(fs::path(CORVANA_SOURCE_DIR) / source_dir)) {
    fs::copy(entry.path(), fs::path(dir) / entry.path().filename(), fs::copy_options::recursive);
  }
}

void ExpectMatchesFile(const std::string& actual, const std::string& path) {
  std::string full = std::string(CORVANA_SOURCE_DIR) + "/tests/" + path;
  const char* update = std::getenv("CORVANA_UPDATE_EXPECTED");
  if (update != nullptr && std::string(update) == "1") {
    WriteFile(full, actual);
    return;
  }
  EXPECT_EQ(actual, ReadFile(full)) << "differs from " << full;
}

std::string SaveAs(const std::string& latin1, SavedAs encoding) {
  if (encoding == SavedAs::kUtf8Mark) return "\xEF\xBB\xBF" + latin1;
  bool little = encoding == SavedAs::kUtf16LittleEndian;
  std::string out = little ? "\xFF\xFE" : "\xFE\xFF";
  for (char c : latin1) out += little ? std::string{c, '\0'} : std::string{'\0', c};
  return out;
}
