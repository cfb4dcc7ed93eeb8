#include "util/platform.h"

#include <cerrno>
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <cstring>

#ifdef _WIN32
#include <fcntl.h>
#include <direct.h>
#include <io.h>
#include <sys/stat.h>
#include <windows.h>
#else
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>
#endif

namespace {

void (*g_last_words)() = nullptr;

void Interrupted(int signal_number) {
  if (g_last_words != nullptr) g_last_words();
#ifdef _WIN32
  // The C runtime's own ending would be exit code 3, which here means "dry or
  // atomic run lost, nothing written"; end as a shell reports a signal's end
  // on Linux (130 for Ctrl-C).
  _exit(128 + signal_number);
#else
  std::signal(signal_number, SIG_DFL);
  std::raise(signal_number);
#endif
}

}  // namespace

void OnInterrupt(void (*last_words)()) {
  g_last_words = last_words;
  std::signal(SIGINT, Interrupted);
  std::signal(SIGTERM, Interrupted);
#ifdef SIGBREAK
  std::signal(SIGBREAK, Interrupted);
#endif
}

#ifdef _WIN32

namespace {

// stdout's descriptor is a pipe while routed; a thread copies what arrives to
// the real stdout (kept as `target`) after the watcher has seen it. A Windows
// C runtime has no custom streams, and printf must keep its text mode.
struct Route {
  OutputWatcher watcher = nullptr;
  int read_end = -1;
  int target = -1;
  HANDLE thread = nullptr;
};

Route g_route;

DWORD WINAPI CopyThrough(void*) {
  char buffer[64 * 1024];
  for (;;) {
    int n = _read(g_route.read_end, buffer, sizeof buffer);
    if (n <= 0) break;
    g_route.watcher(buffer, static_cast<std::size_t>(n));
  }
  return 0;
}

void EndRouteAtExit() { DrainStdout(); }

}  // namespace

bool CreateNewPrivateFile(const char* path, const char* content) {
  int created = _open(path, _O_WRONLY | _O_CREAT | _O_EXCL | _O_BINARY, _S_IREAD | _S_IWRITE);
  if (created < 0) return false;
  unsigned size = static_cast<unsigned>(std::strlen(content));
  bool written = _write(created, content, size) == static_cast<int>(size);
  _close(created);
  return written;
}

bool LocalTime(std::time_t when, std::tm* out) { return localtime_s(out, &when) == 0; }

void WriteRealStdout(const char* data, std::size_t size) {
  int target = g_route.target >= 0 ? g_route.target : _fileno(stdout);
  std::size_t written = 0;
  while (written < size) {
    int w = _write(target, data + written, static_cast<unsigned>(size - written));
    if (w <= 0) break;
    written += static_cast<std::size_t>(w);
  }
}

bool MakeFolder(const char* path) { return _mkdir(path) == 0; }

void WriteFromHandler(int fd, const char* data, std::size_t size) {
  // Binary: the journal's line ends are LF on every system.
  int written = _write(fd, data, static_cast<unsigned>(size));
  (void)written;
}

bool IsTerminal(bool stderr_stream) {
  HANDLE handle = GetStdHandle(stderr_stream ? STD_ERROR_HANDLE : STD_OUTPUT_HANDLE);
  DWORD mode = 0;
  // _isatty would also say yes for the NUL device; only a console has a mode.
  if (handle == INVALID_HANDLE_VALUE || handle == nullptr || !GetConsoleMode(handle, &mode)) return false;
  if (!stderr_stream) return true;
  constexpr DWORD kEscapes = 0x0004;  // ENABLE_VIRTUAL_TERMINAL_PROCESSING
  return (mode & kEscapes) != 0 || SetConsoleMode(handle, mode | kEscapes) != 0;
}

bool RouteStdout(OutputWatcher watcher, bool line_buffered) {
  std::fflush(stdout);
  int ends[2];
  if (_pipe(ends, 64 * 1024, _O_BINARY) != 0) return false;
  int target = _dup(_fileno(stdout));
  if (target < 0 || _dup2(ends[1], _fileno(stdout)) != 0) {
    if (target >= 0) _close(target);
    _close(ends[0]);
    _close(ends[1]);
    return false;
  }
  _close(ends[1]);
  // stdout keeps text mode (the pipe's mode came with it), so the copy to the
  // real stdout passes its CR LF on as they are.
  _setmode(_fileno(stdout), _O_TEXT);
  _setmode(target, _O_BINARY);
  g_route = Route{watcher, ends[0], target, nullptr};
  g_route.thread = CreateThread(nullptr, 0, CopyThrough, nullptr, 0, nullptr);
  if (g_route.thread == nullptr) {
    _dup2(target, _fileno(stdout));
    _close(target);
    _close(ends[0]);
    g_route = Route{};
    return false;
  }
  // The C runtime buffers fully even when asked for lines; a console wants
  // every line at once.
  setvbuf(stdout, nullptr, line_buffered ? _IONBF : _IOFBF, 64 * 1024);
  std::atexit(EndRouteAtExit);
  return true;
}

void DrainStdout() {
  std::fflush(stdout);
  if (g_route.thread == nullptr) return;
  // Putting the real stdout back closes the pipe's last write end: the thread
  // reads to the end and stops.
  _dup2(g_route.target, _fileno(stdout));
  WaitForSingleObject(g_route.thread, INFINITE);
  CloseHandle(g_route.thread);
  _close(g_route.read_end);
  _close(g_route.target);
  g_route = Route{};
}

#else

namespace {

OutputWatcher g_watcher = nullptr;

ssize_t WriteThrough(void*, const char* data, std::size_t size) {
  g_watcher(data, size);
  return static_cast<ssize_t>(size);
}

}  // namespace

bool CreateNewPrivateFile(const char* path, const char* content) {
  // O_EXCL: never through a dangling link, never over a file that appeared
  // meanwhile. Owner only, since the file will hold a password.
  int created = open(path, O_WRONLY | O_CREAT | O_EXCL, 0600);
  if (created < 0) return false;
  std::size_t size = std::strlen(content);
  bool written = write(created, content, size) == static_cast<ssize_t>(size);
  close(created);
  return written;
}

bool LocalTime(std::time_t when, std::tm* out) { return localtime_r(&when, out) != nullptr; }

void WriteRealStdout(const char* data, std::size_t size) {
  std::size_t written = 0;
  while (written < size) {
    ssize_t n = write(STDOUT_FILENO, data + written, size - written);
    if (n < 0 && errno == EINTR) continue;
    if (n <= 0) return;
    written += static_cast<std::size_t>(n);
  }
}

bool MakeFolder(const char* path) { return mkdir(path, 0755) == 0; }

void WriteFromHandler(int fd, const char* data, std::size_t size) {
  ssize_t written = write(fd, data, size);
  (void)written;
}

bool IsTerminal(bool stderr_stream) { return isatty(stderr_stream ? STDERR_FILENO : STDOUT_FILENO) == 1; }

bool RouteStdout(OutputWatcher watcher, bool line_buffered) {
  std::fflush(stdout);
  g_watcher = watcher;
  cookie_io_functions_t functions{nullptr, WriteThrough, nullptr, nullptr};
  std::FILE* watched = fopencookie(nullptr, "w", functions);
  if (watched == nullptr) return false;
  setvbuf(watched, nullptr, line_buffered ? _IOLBF : _IOFBF, 64 * 1024);
  stdout = watched;
  return true;
}

void DrainStdout() { std::fflush(stdout); }

#endif
