// What differs between the Linux build and the Windows (mingw-w64) build, in
// one place, so that the jobs, the driver and the other utilities read the
// same on both: the folder prefix of the two input names written with the
// system's separator, creating the configuration file, telling a terminal or
// console, and routing stdout through the log watch.
#pragma once

#include <cstddef>
#include <ctime>

// The current folder with the system's own separator: ".\" on Windows, "./"
// elsewhere. The UPRC and SBR patient imports build their input names with
// it, as their exports' instructions write them.
#ifdef _WIN32
inline constexpr const char* kCurrentFolder = ".\\";
#else
inline constexpr const char* kCurrentFolder = "./";
#endif

// Creates `path` holding `content`, only if nothing of that name exists (never
// through a dangling link, never over a file that appeared meanwhile), readable
// and writable by its owner only where the system has such modes. False when
// it could not be created or written.
bool CreateNewPrivateFile(const char* path, const char* content);

// The local time of `when`, thread-safe; false when it cannot be told.
bool LocalTime(std::time_t when, std::tm* out);

// True when standard error (`stderr` true) or standard output is a terminal or
// a Windows console that a redrawn progress line can be shown on. On Windows
// this also turns on the console's handling of the escape sequences the
// progress line uses; a console without it counts as no terminal.
bool IsTerminal(bool stderr_stream);

// Called with each piece of stdout's bytes before they reach the real stdout.
using OutputWatcher = void (*)(const char* data, std::size_t size);

// From now on, everything written to stdout passes through `watcher` on its
// way out, unchanged (on Windows after the C runtime's text mode turned LF
// into CR LF). `line_buffered`: each line goes out as it is completed. False
// when the route could not be set up; stdout then stays as it was.
bool RouteStdout(OutputWatcher watcher, bool line_buffered);

// Flushes stdout and returns once `watcher` has seen every byte written so far.
// On Windows this ends the route: later output goes straight out, unwatched.
void DrainStdout();
