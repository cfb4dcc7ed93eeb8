#include "util/line_reader.h"

#include <algorithm>
#include <charconv>

LineReader::LineReader(const char* path, std::size_t max_chars, bool show_progress)
    : stream_(line_), max_chars_(max_chars > 0 ? max_chars : 1), reports_(show_progress) {
  if (reports_) {
    name_ = ReportedFileName(path != nullptr ? path : "");
    record_ = name_ + " line ";
    record_prefix_ = record_.size();
    input_.file = name_.c_str();
  }
  if (stream_.AllocateBuffer()) stream_.Open(path, show_progress);
}

LineReader::~LineReader() {
  if (!reports_) return;
  DropCurrentInputLine(&input_);
  if (input_.number > 0 && LossRecord() == record_) SetLossRecord("");
}

bool LineReader::CanRead() { return stream_.is_open() && stream_.CanRead(); }

bool LineReader::ReadLine(std::string& line) {
  line.clear();
  last_was_cut_ = false;
  last_line_ = line_;
  if (!stream_.is_open()) return false;
  line_offset_ = stream_.offset();
  bool read = true;
  for (;;) {
    if (line.size() >= max_chars_) {
      last_was_cut_ = true;
      break;
    }
    int c = stream_.Next();
    if (c == TextStream::kEnd) {
      read = !line.empty();
      break;
    }
    line.push_back(static_cast<char>(c));
    if (c == '\n') break;
  }
  if (reports_) NoteLine(line, read);
  return read;
}

void LineReader::NoteLine(const std::string& line, bool read) {
  std::size_t chars = line.size();
  if (chars > 0 && line.back() == '\n') --chars;
  if (pieces_ > 0 && !last_was_cut_) {
    // The last piece of a cut line (or the end of the file right after one).
    ReportLineInPieces(name_.c_str(), input_.number, piece_chars_ + chars, pieces_ + (read ? 1 : 0), max_chars_);
    pieces_ = 0;
    piece_chars_ = 0;
  }
  if (!read) {
    DropCurrentInputLine(&input_);
    if (input_.number > 0 && LossRecord() == record_) SetLossRecord("");
    return;
  }
  if (last_was_cut_) {
    ++pieces_;
    piece_chars_ += chars;
  }
  if (input_.number != last_line_) {
    input_.number = last_line_;
    input_.cells_reported = false;
    input_.fields_reported = false;
    char digits[24];
    auto [end, error] = std::to_chars(digits, digits + sizeof digits, last_line_);
    record_.resize(record_prefix_);
    record_.append(digits, end);
    SetLossRecord(record_);
  }
  input_.text = line.data();
  SetCurrentInputLine(&input_);
  if (next_replacement_ < stream_.replacements().size()) NoteReplaced(line);
}

void LineReader::NoteReplaced(const std::string& line) {
  const auto& replaced = stream_.replacements();
  const unsigned long long end = stream_.offset();
  while (next_replacement_ < replaced.size() && replaced[next_replacement_].offset < line_offset_) ++next_replacement_;
  std::size_t first = next_replacement_;
  while (next_replacement_ < replaced.size() && replaced[next_replacement_].offset < end) ++next_replacement_;
  if (first == next_replacement_) return;
  // A CR LF can only end the line, so the offsets within it are indexes.
  std::size_t at = static_cast<std::size_t>(replaced[first].offset - line_offset_);
  int column = 1 + static_cast<int>(std::count(line.begin(), line.begin() + std::min(at, line.size()), '\t'));
  ReportCharactersNotHeld(input_, column, replaced[first].code_point, next_replacement_ - first);
}
