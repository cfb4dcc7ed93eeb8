// The bytes of one input file as the jobs read them. Operators export their
// data with whatever their Windows tools offer:
//   - "Unicode text" is UTF-16 with a byte-order mark (FF FE or FE FF): it
//     comes out as the latin1 text it holds, as if it had been saved as ANSI
//     text; a character latin1 cannot hold becomes '?' and is counted;
//   - a UTF-8 byte-order mark (EF BB BF) is skipped;
//   - everything else passes byte for byte (the database stores latin1).
// When the source closes, one line on stderr tells the operator about a
// conversion, and about a file without a mark that looks like UTF-8 (whose
// accented letters will be stored as two latin1 characters each). Nothing is
// printed on stdout, so the job's log is the same for every encoding.
#pragma once

#include <cstddef>
#include <cstdio>
#include <memory>
#include <string>
#include <vector>

class TextSource {
 public:
  TextSource() = default;
  ~TextSource() { Close(); }
  TextSource(const TextSource&) = delete;
  TextSource& operator=(const TextSource&) = delete;

  // Opens the file `path`. Returns false when it cannot be opened. With
  // `show_progress`, reading it is shown as the run's progress.
  bool Open(const char* path, bool show_progress = true);

  // Reads from `stream`, which is never closed here; `name` names it in notices.
  void OpenStream(std::FILE* stream, const char* name);

  bool is_open() const { return file_ != nullptr; }

  // Prints the notices about the encoding (once) and closes the file.
  void Close();

  // Copies up to `size` bytes of text into `out`. Returns how many; 0 at the
  // end of the file or when it cannot be read.
  std::size_t Read(char* out, std::size_t size);

  // True when reading failed before anything was read: the name opened but
  // is not a readable file (a directory, say).
  bool unreadable() const { return unreadable_; }

  // Reads the rest of the file and returns how many bytes of text it held.
  unsigned long long CountRest();

  // A character latin1 cannot hold, which came out as '?': where it stands
  // in the text Read() hands out (counted from 0) and its code point (0 for
  // one beyond U+FFFF, written as two UTF-16 units).
  struct Replacement {
    unsigned long long offset;
    unsigned code_point;
  };
  // Every such character so far, in order (empty for a file of bytes; at
  // most the first 100,000 of them).
  const std::vector<Replacement>& replacements() const { return replacements_; }

  // Bytes of the file consumed so far, and its size (0 when unknown, as for
  // a pipe): how far a job has got through its input.
  unsigned long long position() const { return position_; }
  unsigned long long size() const { return size_; }

 private:
  enum class Encoding { kBytes, kUtf16Le, kUtf16Be };

  std::size_t ReadRaw(char* out, std::size_t size);
  void DetectMark();
  std::size_t DecodeUtf16(char* out, std::size_t size);
  void WatchForUtf8(const char* text, std::size_t size);

  std::FILE* file_ = nullptr;
  bool owned_ = false;
  std::string name_;
  std::string progress_label_;  // empty when reading is not shown as progress
  Encoding encoding_ = Encoding::kBytes;
  bool mark_checked_ = false;
  bool anything_read_ = false;
  bool unreadable_ = false;
  unsigned long long position_ = 0;
  unsigned long long size_ = 0;

  // UTF-16: raw bytes read but not yet decoded (a unit cut by a block end).
  std::unique_ptr<unsigned char[]> raw_;
  std::size_t raw_begin_ = 0;
  std::size_t raw_end_ = 0;
  unsigned long long replaced_ = 0;  // characters latin1 cannot hold
  std::vector<Replacement> replacements_;
  unsigned long long handed_out_ = 0;  // characters of text Read() returned before this call

  // Bytes of undecoded text that form UTF-8 sequences, and none that do not.
  unsigned long long utf8_sequences_ = 0;
  int utf8_pending_ = 0;  // continuation bytes still expected
  bool utf8_broken_ = false;
};
