// The characters of one input file as Windows text mode delivers them, which
// is how the exports were written and how the jobs expect to read them: CR LF
// comes back as LF (a CR standing alone stays), a Ctrl-Z (0x1A) ends the input
// (with a notice on stderr when anything follows it), every other byte
// passes. Read in blocks through a TextSource, so Unicode files come out as
// the latin1 text they hold. The one character reader of the line reader and
// the XML reader.
#pragma once

#include <cstdio>
#include <memory>
#include <vector>

#include "util/text_source.h"

class TextStream {
 public:
  static constexpr int kEnd = -1;

  // Counts every line end (LF, CR LF once, a lone CR) into `line`, which the
  // caller owns and must keep alive.
  explicit TextStream(long long& line) : line_(line) {}
  TextStream(const TextStream&) = delete;
  TextStream& operator=(const TextStream&) = delete;

  // Gets the read buffer; false when memory is short (nothing is thrown).
  bool AllocateBuffer();

  // Opens the file `path` (see TextSource::Open). False when it cannot be opened.
  bool Open(const char* path, bool show_progress);

  // Reads `stream`, which stays open; `name` names it in notices.
  void OpenStream(std::FILE* stream, const char* name);

  void Close() { source_.Close(); }
  bool is_open() const { return source_.is_open(); }

  // True when the very first read failed: the name opened but is not a
  // readable file (a directory, say), which Windows refuses at open already.
  bool unreadable() const { return source_.unreadable(); }

  // True when the first read succeeds (it reads the first block ahead).
  bool CanRead() {
    if (cursor_ == limit_) Fill();
    return !source_.unreadable();
  }

  // Where the next character stands in the file's text, counted from 0 (a
  // CR LF counts two), as TextSource::Replacement::offset counts.
  unsigned long long offset() const {
    return cursor_ == nullptr ? 0 : block_offset_ + static_cast<unsigned long long>(cursor_ - block_.get());
  }
  // The characters that came out as '?' (see TextSource::replacements()).
  const std::vector<TextSource::Replacement>& replacements() const { return source_.replacements(); }

  // The next character (0 to 255), or kEnd.
  int Next() {
    if (cursor_ == limit_ && !Fill()) return kEnd;
    char c = *cursor_++;
    if (c == '\n') {
      ++line_;
    } else if (c == '\r') {
      ++line_;  // once for CR LF, once for a CR standing alone
      if ((cursor_ != limit_ || Fill()) && *cursor_ == '\n') c = *cursor_++;
    } else if (c == kCtrlZ) {
      EndAtCtrlZ();
      return kEnd;
    }
    return static_cast<unsigned char>(c);
  }

 private:
  static constexpr std::size_t kBlockSize = 64 * 1024;
  static constexpr char kCtrlZ = 0x1a;

  bool Fill();
  void EndAtCtrlZ();

  long long& line_;
  TextSource source_;
  std::string name_;  // for the Ctrl-Z notice
  std::unique_ptr<char[]> block_;
  const char* cursor_ = nullptr;
  const char* limit_ = nullptr;
  unsigned long long block_offset_ = 0;  // where block_[0] stands in the text
  bool at_end_ = false;
};
