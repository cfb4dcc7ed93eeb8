#include "xml/xml_arena.h"

#include <cstdint>
#include <cstdlib>
#include <cstring>

namespace {

// Large enough that a big export needs few blocks, small enough that the
// little lookup documents the jobs build do not waste much.
constexpr std::size_t kBlockSize = 64 * 1024;

// A request above this gets a block of its own, so that one long text does
// not throw away the rest of the current block.
constexpr std::size_t kOwnBlockThreshold = kBlockSize / 4;

constexpr std::size_t kMaxAlignment = alignof(std::max_align_t);

}  // namespace

struct XmlArena::Block {
  Block* next;
};

namespace {
// The storage of a block starts this far behind its header, at an address
// malloc's alignment makes suitable for any type.
constexpr std::size_t kHeaderSize = (sizeof(void*) + kMaxAlignment - 1) / kMaxAlignment * kMaxAlignment;
}  // namespace

char* XmlArena::CopyText(const char* text, std::size_t length) {
  char* copy = Allocate(length + 1);
  if (copy == nullptr) return nullptr;
  if (length > 0) std::memcpy(copy, text, length);
  copy[length] = '\0';
  return copy;
}

void XmlArena::Reset() noexcept {
  Block* block = blocks_;
  while (block != nullptr) {
    Block* next = block->next;
    std::free(block);
    block = next;
  }
  blocks_ = nullptr;
  cursor_ = nullptr;
  limit_ = nullptr;
  bytes_reserved_ = 0;
}

char* XmlArena::Take(std::size_t bytes, std::size_t alignment) {
  if (bytes == 0) bytes = 1;  // every piece gets its own address
  std::size_t padding = (alignment - reinterpret_cast<std::uintptr_t>(cursor_) % alignment) % alignment;
  std::size_t available = static_cast<std::size_t>(limit_ - cursor_);
  if (padding <= available && bytes <= available - padding) {
    char* result = cursor_ + padding;
    cursor_ = result + bytes;
    return result;
  }
  return TakeFromNewBlock(bytes, alignment);
}

char* XmlArena::TakeFromNewBlock(std::size_t bytes, std::size_t alignment) {
  if (alignment > kMaxAlignment) return nullptr;
  if (bytes > kOwnBlockThreshold) {
    // Linked behind the current block, which stays the one to bump from.
    Block* own = NewBlock(bytes);
    if (own == nullptr) return nullptr;
    if (blocks_ != nullptr) {
      own->next = blocks_->next;
      blocks_->next = own;
    } else {
      blocks_ = own;
    }
    return reinterpret_cast<char*>(own) + kHeaderSize;
  }
  Block* block = NewBlock(kBlockSize);
  if (block == nullptr) return nullptr;
  block->next = blocks_;
  blocks_ = block;
  // The fresh storage is aligned for any type, so no padding is needed.
  char* result = reinterpret_cast<char*>(block) + kHeaderSize;
  cursor_ = result + bytes;
  limit_ = result + kBlockSize;
  return result;
}

XmlArena::Block* XmlArena::NewBlock(std::size_t storage_bytes) {
  if (storage_bytes > SIZE_MAX - kHeaderSize) return nullptr;
  void* memory = std::malloc(kHeaderSize + storage_bytes);
  if (memory == nullptr) return nullptr;
  bytes_reserved_ += kHeaderSize + storage_bytes;
  Block* block = new (memory) Block{nullptr};
  return block;
}
