#include "util/text_source.h"

#include "util/progress.h"

#include <sys/stat.h>

#include <algorithm>
#include <cstring>

namespace {

constexpr std::size_t kRawSize = 64 * 1024;
// A file of text in another alphabet would otherwise keep a record of every
// character; past this many, only the count grows.
constexpr std::size_t kMaxReplacementsKept = 100000;

}  // namespace

bool TextSource::Open(const char* path, bool show_progress) {
  Close();
  file_ = std::fopen(path, "rb");
  if (file_ == nullptr) return false;
  owned_ = true;
  name_ = path;
  struct stat info {};
  if (fstat(fileno(file_), &info) == 0 && S_ISREG(info.st_mode)) size_ = static_cast<unsigned long long>(info.st_size);
  progress_label_ = show_progress ? "Reading '" + name_ + "'" : "";
  return true;
}

void TextSource::OpenStream(std::FILE* stream, const char* name) {
  Close();
  file_ = stream;
  owned_ = false;
  name_ = name;
  progress_label_.clear();
}

void TextSource::Close() {
  if (file_ == nullptr) return;
  const char* kind = encoding_ == Encoding::kUtf16Le ? "little-endian" : "big-endian";
  if (encoding_ != Encoding::kBytes || (utf8_sequences_ > 0 && !utf8_broken_)) {
    std::fflush(stdout);
    ProgressHide();
  }
  if (encoding_ != Encoding::kBytes) {
    std::fprintf(stderr, "Note: '%s' is Unicode text (UTF-16, %s) and was read as latin1 text", name_.c_str(), kind);
    if (replaced_ > 0) {
      std::fprintf(stderr, "; %llu character%s that latin1 cannot hold became '?'", replaced_,
                   replaced_ == 1 ? "" : "s");
    }
    std::fprintf(stderr, "\n");
  } else if (utf8_sequences_ > 0 && !utf8_broken_) {
    std::fprintf(stderr,
                 "Note: '%s' looks like UTF-8 text; its bytes are stored as they are in the latin1 database, so "
                 "each accented letter becomes two characters (save the file as ANSI or Unicode text to avoid "
                 "this)\n",
                 name_.c_str());
  }
  if (!progress_label_.empty()) ProgressReadingDone(progress_label_.c_str());
  if (owned_) std::fclose(file_);
  file_ = nullptr;
}

std::size_t TextSource::ReadRaw(char* out, std::size_t size) {
  std::size_t count = std::fread(out, 1, size, file_);
  if (count == 0 && !anything_read_ && std::ferror(file_) != 0) unreadable_ = true;
  if (count > 0) anything_read_ = true;
  position_ += count;
  if (!progress_label_.empty()) ProgressReading(progress_label_.c_str(), position_, size_);
  return count;
}

// Looks at the first bytes for a byte-order mark; whatever is not a mark is
// kept for decoding.
void TextSource::DetectMark() {
  mark_checked_ = true;
  raw_ = std::make_unique<unsigned char[]>(kRawSize);
  raw_end_ = ReadRaw(reinterpret_cast<char*>(raw_.get()), 3);
  raw_begin_ = 0;
  if (raw_end_ >= 2 && raw_[0] == 0xFF && raw_[1] == 0xFE) {
    encoding_ = Encoding::kUtf16Le;
    raw_begin_ = 2;
  } else if (raw_end_ >= 2 && raw_[0] == 0xFE && raw_[1] == 0xFF) {
    encoding_ = Encoding::kUtf16Be;
    raw_begin_ = 2;
  } else if (raw_end_ == 3 && raw_[0] == 0xEF && raw_[1] == 0xBB && raw_[2] == 0xBF) {
    raw_begin_ = 3;
  }
}

std::size_t TextSource::Read(char* out, std::size_t size) {
  if (file_ == nullptr || size == 0) return 0;
  if (!mark_checked_) DetectMark();
  if (encoding_ != Encoding::kBytes) {
    std::size_t count = DecodeUtf16(out, size);
    handed_out_ += count;
    return count;
  }

  // The bytes read with the mark first, then the file itself.
  std::size_t count = 0;
  if (raw_begin_ < raw_end_) {
    count = std::min(size, raw_end_ - raw_begin_);
    std::memcpy(out, raw_.get() + raw_begin_, count);
    raw_begin_ += count;
  }
  if (count < size) count += ReadRaw(out + count, size - count);
  WatchForUtf8(out, count);
  return count;
}

std::size_t TextSource::DecodeUtf16(char* out, std::size_t size) {
  std::size_t count = 0;
  while (count < size) {
    if (raw_end_ - raw_begin_ < 2) {
      // Keep a byte cut off by the end of the last block; read more behind it.
      std::size_t kept = raw_end_ - raw_begin_;
      if (kept > 0) raw_[0] = raw_[raw_begin_];
      raw_begin_ = 0;
      raw_end_ = kept + ReadRaw(reinterpret_cast<char*>(raw_.get()) + kept, kRawSize - kept);
      if (raw_end_ < 2) break;  // the end (a lone last byte is no character)
    }
    const unsigned char* unit = raw_.get() + raw_begin_;
    unsigned value = encoding_ == Encoding::kUtf16Le ? unit[0] | (unit[1] << 8) : (unit[0] << 8) | unit[1];
    raw_begin_ += 2;
    if (value >= 0xDC00 && value <= 0xDFFF) continue;  // the second half of a pair, counted with the first
    if (value <= 0xFF) {
      out[count++] = static_cast<char>(value);
    } else {
      if (replacements_.size() < kMaxReplacementsKept) {
        replacements_.push_back({handed_out_ + count, value >= 0xD800 && value <= 0xDBFF ? 0u : value});
      }
      out[count++] = '?';
      ++replaced_;
    }
  }
  return count;
}

// Follows the bytes above 127: the file looks like UTF-8 when some form
// multi-byte sequences and none break the rules. Latin1 text almost never
// does, since an accented letter alone is not a sequence.
void TextSource::WatchForUtf8(const char* text, std::size_t size) {
  if (utf8_broken_) return;
  for (std::size_t i = 0; i < size; ++i) {
    unsigned char c = static_cast<unsigned char>(text[i]);
    if (utf8_pending_ > 0) {
      if ((c & 0xC0) != 0x80) {
        utf8_broken_ = true;
        return;
      }
      if (--utf8_pending_ == 0) ++utf8_sequences_;
    } else if (c >= 0x80) {
      if (c >= 0xC2 && c <= 0xDF) {
        utf8_pending_ = 1;
      } else if (c >= 0xE0 && c <= 0xEF) {
        utf8_pending_ = 2;
      } else if (c >= 0xF0 && c <= 0xF4) {
        utf8_pending_ = 3;
      } else {
        utf8_broken_ = true;
        return;
      }
    }
  }
}

unsigned long long TextSource::CountRest() {
  unsigned long long count = 0;
  char block[16 * 1024];
  std::size_t n;
  while ((n = Read(block, sizeof block)) > 0) count += n;
  return count;
}
