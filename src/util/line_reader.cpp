#include "util/line_reader.h"

#include "util/input_end.h"

namespace {
constexpr char kCtrlZ = 0x1a;
constexpr int kEnd = -1;
}  // namespace

LineReader::LineReader(const char* path, std::size_t max_chars, bool show_progress)
    : path_(path), max_chars_(max_chars > 0 ? max_chars : 1) {
  if (source_.Open(path, show_progress)) block_ = std::make_unique<char[]>(kBlockSize);
}

bool LineReader::CanRead() {
  if (!is_open()) return false;
  if (cursor_ == limit_) Fill();
  return !source_.unreadable();
}

bool LineReader::Fill() {
  if (at_end_) return false;
  std::size_t count = source_.Read(block_.get(), kBlockSize);
  if (count == 0) {
    at_end_ = true;
    return false;
  }
  cursor_ = block_.get();
  limit_ = cursor_ + count;
  return true;
}

int LineReader::NextByte() {
  if (cursor_ == limit_ && !Fill()) return kEnd;
  char c = *cursor_++;
  if (c == kCtrlZ) {
    at_end_ = true;
    unsigned long long unread = static_cast<unsigned long long>(limit_ - cursor_) + source_.CountRest();
    cursor_ = limit_;
    ReportCtrlZ(path_.c_str(), line_, unread);
    return kEnd;
  }
  if (c == '\r' && (cursor_ != limit_ || Fill()) && *cursor_ == '\n') c = *cursor_++;
  if (c == '\n') ++line_;
  return static_cast<unsigned char>(c);
}

bool LineReader::ReadLine(std::string& line) {
  line.clear();
  last_was_cut_ = false;
  if (!source_.is_open()) return false;
  while (line.size() < max_chars_) {
    int c = NextByte();
    if (c == kEnd) return !line.empty();
    line.push_back(static_cast<char>(c));
    if (c == '\n') return true;
  }
  last_was_cut_ = true;
  return true;
}
