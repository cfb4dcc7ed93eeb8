// Runs the built CorvanaDataImporter the way an operator does, and compares
// what it printed and wrote with the expected files kept beside the tests.
#pragma once

#include <string>
#include <vector>

struct ProgramRun {
  int exit_code;
  std::string output;  // standard output, byte for byte
  std::string errors;  // standard error before the summary: notices for the operator
  std::string summary;  // the summary the program prints on stderr after a job
  std::string journal;  // the journal the run named on stderr (taken out of `errors`), or ""
};

// Runs the program in `dir` (its current directory) with `args`. Fails the
// test when the program crashes, a sanitizer reports, or it runs longer than
// two minutes (it is then stopped and `exit_code` is 124). Exit codes 0 to 3
// are the program's own; any other fails the test.
ProgramRun RunProgram(const std::string& dir, const std::vector<std::string>& args);

// The same as a user without privileges (the "nobody" user when the tests
// run as root, whom file permissions do not stop), so that a file made
// unreadable is unreadable to the program. `dir` is then opened to everyone.
ProgramRun RunProgramUnprivileged(const std::string& dir, const std::vector<std::string>& args);

// The same with standard error on a pseudo-terminal, as when an operator
// watches the run: `errors` then holds all the terminal received (progress
// lines included) and `summary` stays empty.
ProgramRun RunProgramOnTerminal(const std::string& dir, const std::vector<std::string>& args);

// Copies the files of `source_dir` (a samples/<org> folder, relative to the
// repository) into `dir`.
void CopySamples(const std::string& source_dir, const std::string& dir);

// Compares `actual` with the expected file `path` (relative to tests/). With
// CORVANA_UPDATE_EXPECTED=1 in the environment the file is rewritten instead,
// for a developer to review in the diff.
void ExpectMatchesFile(const std::string& actual, const std::string& path);

// How Windows tools save "the same" text file besides ANSI (latin1).
enum class SavedAs { kUtf16LittleEndian, kUtf16BigEndian, kUtf8Mark };

// `latin1` as that tool would have saved it: UTF-16 with its byte-order
// mark, or the same bytes behind a UTF-8 mark.
std::string SaveAs(const std::string& latin1, SavedAs encoding);
