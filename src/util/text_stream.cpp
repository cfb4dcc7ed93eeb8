#include "util/text_stream.h"

#include <new>

#include "util/input_end.h"

bool TextStream::AllocateBuffer() {
  if (block_ == nullptr) block_.reset(new (std::nothrow) char[kBlockSize]);
  return block_ != nullptr;
}

bool TextStream::Open(const char* path, bool show_progress) {
  if (!source_.Open(path, show_progress)) return false;
  name_ = path;
  return true;
}

void TextStream::OpenStream(std::FILE* stream, const char* name) {
  source_.OpenStream(stream, name);
  name_ = name;
}

bool TextStream::Fill() {
  if (at_end_ || block_ == nullptr) return false;
  const std::size_t previous = cursor_ != nullptr ? static_cast<std::size_t>(limit_ - block_.get()) : 0;
  std::size_t count = source_.Read(block_.get(), kBlockSize);
  if (count == 0) {
    at_end_ = true;
    return false;
  }
  block_offset_ += previous;
  cursor_ = block_.get();
  limit_ = cursor_ + count;
  return true;
}

void TextStream::EndAtCtrlZ() {
  at_end_ = true;
  unsigned long long unread = static_cast<unsigned long long>(limit_ - cursor_) + source_.CountRest();
  cursor_ = limit_;
  ReportCtrlZ(name_.c_str(), line_, unread);
}
