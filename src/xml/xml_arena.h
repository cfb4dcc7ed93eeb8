// The memory of one XML document: a bump allocator that hands out pieces of
// large blocks and frees them all at once.
//
// A document of 200,000 rows would otherwise cost a million small heap
// allocations and, freed node by node, a long walk (or a deep recursion) at
// destruction. Here freeing is a loop over the blocks, whatever the shape of
// the tree. The price: nothing is freed before Reset() or destruction, and
// nothing allocated here has its destructor run, so only trivially
// destructible objects may live in it.
#pragma once

#include <cstddef>
#include <new>
#include <type_traits>

class XmlArena {
 public:
  constexpr XmlArena() noexcept = default;
  ~XmlArena() { Reset(); }
  XmlArena(const XmlArena&) = delete;
  XmlArena& operator=(const XmlArena&) = delete;

  // Returns `bytes` bytes of character storage (no alignment; 0 counts as 1),
  // or null when memory runs out. Valid until Reset() or destruction.
  char* Allocate(std::size_t bytes) { return Take(bytes, 1); }

  // Returns a value-initialized T (zero pointers, zero numbers), or null when
  // memory runs out. Valid until Reset() or destruction; never destroyed.
  template <typename T>
  T* Create() {
    static_assert(std::is_trivially_destructible_v<T>, "the arena runs no destructors");
    static_assert(alignof(T) <= alignof(std::max_align_t), "blocks are aligned for standard types only");
    void* memory = Take(sizeof(T), alignof(T));
    return memory == nullptr ? nullptr : new (memory) T();
  }

  // Copies `length` bytes of `text` and a terminating zero byte; null when
  // memory runs out. `text` may be null only when `length` is 0.
  char* CopyText(const char* text, std::size_t length);

  // Frees every block; everything handed out before becomes invalid.
  void Reset() noexcept;

  // Bytes taken from the system for blocks, headers included (for tests).
  std::size_t bytes_reserved() const { return bytes_reserved_; }

 private:
  struct Block;  // a header linking the blocks, followed by the storage

  char* Take(std::size_t bytes, std::size_t alignment);
  char* TakeFromNewBlock(std::size_t bytes, std::size_t alignment);
  Block* NewBlock(std::size_t storage_bytes);

  Block* blocks_ = nullptr;  // most recent first
  char* cursor_ = nullptr;   // next free byte of the current block
  char* limit_ = nullptr;    // end of the current block
  std::size_t bytes_reserved_ = 0;
};
