// SHA-256 of files and texts, for the journal that names each input file of a
// run by its content: a second run on the same files is recognised even when
// a file was copied, renamed back or touched.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

class Sha256 {
 public:
  Sha256();

  // Adds `size` bytes to the message.
  void Update(const void* data, std::size_t size);
  void Update(std::string_view text) { Update(text.data(), text.size()); }

  // The digest as 64 lower-case hex digits. The object is spent afterwards.
  std::string HexDigest();

 private:
  void Block(const unsigned char* block);

  uint32_t state_[8];
  unsigned char buffer_[64];
  std::size_t buffered_ = 0;
  uint64_t length_ = 0;  // bytes added so far
};

// The digest of a whole file, or "" when it cannot be read; `size` gets its
// length in bytes.
std::string Sha256OfFile(const char* path, unsigned long long& size);
