#include "util/line_reader.h"

LineReader::LineReader(const char* path, std::size_t max_chars, bool show_progress)
    : stream_(line_), max_chars_(max_chars > 0 ? max_chars : 1) {
  if (stream_.AllocateBuffer()) stream_.Open(path, show_progress);
}

bool LineReader::CanRead() { return stream_.is_open() && stream_.CanRead(); }

bool LineReader::ReadLine(std::string& line) {
  line.clear();
  last_was_cut_ = false;
  last_line_ = line_;
  if (!stream_.is_open()) return false;
  while (line.size() < max_chars_) {
    int c = stream_.Next();
    if (c == TextStream::kEnd) return !line.empty();
    line.push_back(static_cast<char>(c));
    if (c == '\n') return true;
  }
  last_was_cut_ = true;
  return true;
}
