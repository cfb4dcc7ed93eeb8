// What differs between the Linux build and the Windows (mingw-w64) build, in
// one place, so that the jobs, the driver and the other utilities read the
// same on both: the folder prefix of the two input names written with the
// system's separator, creating the configuration file, telling a terminal or
// console, routing stdout through the log watch, the journal's folder, and
// Ctrl-C.
#pragma once

#include <cstddef>
#include <cstdio>
#include <ctime>

// The current folder with the system's own separator: ".\" on Windows, "./"
// elsewhere. The UPRC and SBR patient imports build their input names with
// it, as their exports' instructions write them.
#ifdef _WIN32
inline constexpr const char* kCurrentFolder = ".\\";
#else
inline constexpr const char* kCurrentFolder = "./";
#endif

// The next byte of `file` without taking its lock (one reader only), or EOF:
// getc's speed for reading a whole file byte by byte.
inline int GetByteUnlocked(std::FILE* file) {
#ifdef _WIN32
  return _getc_nolock(file);
#else
  return getc_unlocked(file);
#endif
}

// Creates `path` holding `content`, only if nothing of that name exists (never
// through a dangling link, never over a file that appeared meanwhile), readable
// and writable by its owner only where the system has such modes. False when
// it could not be created or written.
bool CreateNewPrivateFile(const char* path, const char* content);

// The local time of `when`, thread-safe; false when it cannot be told.
bool LocalTime(std::time_t when, std::tm* out);

// Creates the folder `path` (rwxr-xr-x where the system has modes). False
// when it could not be made, also when it exists already.
bool MakeFolder(const char* path);

// On Ctrl-C or a stop request (SIGINT, SIGTERM; on Windows also Ctrl-Break),
// calls `last_words` once and then lets the signal end the program as it would
// have (on Windows with exit code 128 + the signal's number, as a Linux shell
// reports it: 130 for Ctrl-C). `last_words` runs in a signal handler (on Windows on a thread of its
// own while the program goes on): it may only use WriteFromHandler.
void OnInterrupt(void (*last_words)());

// Writes `size` bytes to the descriptor `fd` directly, without a stream's
// buffer; safe inside a signal handler. Failures are ignored: there is no one
// left to tell.
void WriteFromHandler(int fd, const char* data, std::size_t size);

// True when standard error (`stderr` true) or standard output is a terminal or
// a Windows console that a redrawn progress line can be shown on. On Windows
// this also turns on the console's handling of the escape sequences the
// progress line uses; a console without it counts as no terminal.
bool IsTerminal(bool stderr_stream);

// Called with each piece of stdout's bytes; it passes on what is to reach the
// real stdout, when it is to, with WriteRealStdout.
using OutputWatcher = void (*)(const char* data, std::size_t size);

// Writes to the real stdout, past the route (from the watcher).
void WriteRealStdout(const char* data, std::size_t size);

// From now on, everything written to stdout passes through `watcher` on its
// way out (on Windows after the C runtime's text mode turned LF into CR LF). `line_buffered`: each line goes out as it is completed. False
// when the route could not be set up; stdout then stays as it was.
bool RouteStdout(OutputWatcher watcher, bool line_buffered);

// Flushes stdout and returns once `watcher` has seen every byte written so far.
// On Windows this ends the route: later output goes straight out, unwatched.
void DrainStdout();
