#include "util/line_reader.h"

#include "util/input_end.h"

namespace {
constexpr int kCtrlZ = 0x1a;
}

LineReader::LineReader(const char* path, std::size_t max_chars)
    : file_(std::fopen(path, "rb")), path_(path), max_chars_(max_chars > 0 ? max_chars : 1) {}

LineReader::~LineReader() {
  if (file_ != nullptr) std::fclose(file_);
}

int LineReader::NextByte() {
  if (at_end_) return EOF;
  int c = getc_unlocked(file_);
  if (c == kCtrlZ || c == EOF) {
    at_end_ = true;
    if (c == kCtrlZ) ReportCtrlZ(path_.c_str(), line_, CountUnreadBytes(file_));
    return EOF;
  }
  if (c == '\r') {
    int next = getc_unlocked(file_);
    if (next == '\n') c = '\n';
    else if (next != EOF) ungetc(next, file_);
  }
  if (c == '\n') ++line_;
  return c;
}

bool LineReader::ReadLine(std::string& line) {
  line.clear();
  last_was_cut_ = false;
  if (file_ == nullptr) return false;
  while (line.size() < max_chars_) {
    int c = NextByte();
    if (c == EOF) return !line.empty();
    line.push_back(static_cast<char>(c));
    if (c == '\n') return true;
  }
  last_was_cut_ = true;
  return true;
}
