#include "util/tokenizer.h"

#include <cstdio>
#include <cstring>

char* Tokenizer::Next(const char* separators) {
  std::size_t start = buffer_.find_first_not_of(separators, position_);
  taken_ = true;
  if (start == std::string::npos || start >= buffer_.size()) {
    position_ = buffer_.size();
    return nullptr;
  }
  std::size_t end = buffer_.find_first_of(separators, start);
  if (input_ != nullptr && (start > position_ || skipped_tab_)) {
    NoteField(start, end == std::string::npos ? buffer_.size() : end);
  }
  if (end == std::string::npos) {
    position_ = buffer_.size();
  } else {
    buffer_[end] = '\0';
    position_ = end + 1;
  }
  return buffer_.data() + start;
}

char* Tokenizer::NextField(const char* separators) {
  taken_ = true;
  if (ended_) return nullptr;
  std::size_t start = position_;
  std::size_t end = buffer_.find_first_of(separators, start);
  if (end == std::string::npos) {
    ended_ = true;
    position_ = buffer_.size();
  } else {
    buffer_[end] = '\0';
    position_ = end + 1;
  }
  return buffer_.data() + start;
}

char* Tokenizer::Rest() {
  if (position_ >= buffer_.size()) return nullptr;
  char* rest = buffer_.data() + position_;
  position_ = buffer_.size();
  return rest;
}

void Tokenizer::NoteField(std::size_t start, std::size_t end) {
  // The separator that ended the previous field is behind `position_`, so
  // any tab passed over here stood alone in a cell of its own: empty. It
  // moved something only when a field with more than blanks and the line
  // end follows it.
  if (start > position_ && buffer_.find('\t', position_) < start) skipped_tab_ = true;
  if (skipped_tab_ && buffer_.find_first_not_of(" \t\r\n", start) < end) {
    shifted_ = true;
    last_start_ = start;
  }
}

void Tokenizer::ReportReading() {
  // The line may have been read on since (its reader moved on): only the
  // current line is still as it was read.
  if (InputLineOf(line_) != input_ || input_->number != line_number_) return;
  if (shifted_) ReportEmptyCells(*input_, line_, last_start_);
  // Only cells end at tabs: what a reading by other separators leaves (the
  // program's own space-separated temporary file) is no field of the export.
  if (!ended_ && position_ > 0 && position_ < line_.size() && line_[position_ - 1] == '\t') {
    ReportExtraFields(*input_, line_, position_);
  }
}

int TakeFields(Tokenizer& tokenizer, char** fields, int count, const char* separators,
               const char* last_separators) {
  int found = 0;
  for (int i = 0; i < count; ++i) fields[i] = nullptr;
  for (int i = 0; i < count; ++i) {
    fields[i] = tokenizer.Next(i == count - 1 ? last_separators : separators);
    if (fields[i] == nullptr) break;
    ++found;
  }
  return found;
}

bool HasFields(int found, int needed, const char* identity) {
  if (found >= needed) return true;
  std::printf("\tERROR - only %d of %d fields for '%s', line skipped\n", found, needed,
              identity != nullptr ? identity : "");
  return false;
}

int TakeEveryField(Tokenizer& tokenizer, char** fields, int count, const char* separators) {
  int found = 0;
  for (int i = 0; i < count; ++i) fields[i] = nullptr;
  for (int i = 0; i < count; ++i) {
    fields[i] = tokenizer.NextField(separators);
    if (fields[i] == nullptr) break;
    ++found;
  }
  return found;
}

bool IsEmptyLine(std::string_view line) { return line.find_first_not_of("\r\n") == std::string_view::npos; }
