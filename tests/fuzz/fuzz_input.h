// What every fuzz target shares: the fuzzer's bytes cut into the texts a
// function under test takes, and the few process-wide settings a target
// needs (stdout silenced, a scratch file for the readers that open files).
#pragma once

#include <fcntl.h>
#include <unistd.h>

#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <string>
#include <vector>

// The input cut at every NUL byte into zero-terminated pieces, which a target
// hands out in order. A piece is a writable copy, so in-place conversions
// (trimming, unquoting) work on it. When the pieces run out, Next() gives ""
// and NextOrNull() gives null, for the functions that accept a null text.
class FuzzInput {
 public:
  FuzzInput(const std::uint8_t* data, std::size_t size) {
    std::string piece;
    for (std::size_t i = 0; i < size; ++i) {
      if (data[i] == 0) {
        pieces_.push_back(piece);
        piece.clear();
      } else {
        piece += static_cast<char>(data[i]);
      }
    }
    pieces_.push_back(piece);
  }

  char* Next() { return next_ < pieces_.size() ? pieces_[next_++].data() : empty_; }
  char* NextOrNull() { return next_ < pieces_.size() ? pieces_[next_++].data() : nullptr; }
  // The first byte of the next piece (0 when none): a small choice such as a
  // buffer size or an option.
  unsigned NextChoice() {
    const char* piece = Next();
    return static_cast<unsigned char>(piece[0]);
  }
  std::size_t count() const { return pieces_.size(); }

 private:
  std::vector<std::string> pieces_;
  std::size_t next_ = 0;
  char empty_[1] = {'\0'};
};

// The conversions print their messages on stdout, which a fuzzing run does
// not want to see; libFuzzer itself reports on stderr.
inline void SilenceStdout() {
  std::fflush(stdout);
  int null = open("/dev/null", O_WRONLY);
  if (null >= 0) {
    dup2(null, STDOUT_FILENO);
    close(null);
  }
}

// Writes the input to this process's scratch file (in memory: a disk write
// per input would slow fuzzing a hundredfold; one file per process, so
// parallel fuzzers do not share it, removed at exit) and returns its path.
inline const std::string& WriteScratchFile(const std::uint8_t* data, std::size_t size, const char* suffix) {
  static std::string path;
  if (path.empty()) {
    path = "/dev/shm/corvana_fuzz_" + std::to_string(getpid()) + suffix;
    std::atexit([] { std::remove(path.c_str()); });
  }
  std::FILE* file = std::fopen(path.c_str(), "wb");
  if (file != nullptr) {
    if (size > 0) std::fwrite(data, 1, size, file);
    std::fclose(file);
  }
  return path;
}

#define CORVANA_FUZZ_SILENT_STDOUT                                \
  extern "C" int LLVMFuzzerInitialize(int*, char***) {            \
    SilenceStdout();                                              \
    return 0;                                                     \
  }
