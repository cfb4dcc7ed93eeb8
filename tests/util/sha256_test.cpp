#include "util/sha256.h"

#include <gtest/gtest.h>

#include <string>

#include "support/test_database.h"

namespace {

// The published test vectors, and lengths around the padding boundary
// (55, 56 and 64 bytes) checked against sha256sum.
TEST(Sha256Test, KnownDigests) {
  const struct {
    std::string message;
    const char* digest;
  } cases[] = {
      {"", "e3b0c44298fc1c149afbf4c8996fb92427ae41e4649b934ca495991b7852b855"},
      {"abc", "ba7816bf8f01cfea414140de5dae2223b00361a396177a9cb410ff61f20015ad"},
      {"abcdbcdecdefdefgefghfghighijhijkijkljklmklmnlmnomnopnopq",
       "248d6a61d20638b8e5c026930c3e6039a33ce45964ff2167f6ecedd419db06c1"},
      {std::string(55, 'a'), "9f4390f8d30c2dd92ec9f095b65e2b9ae9b0a925a5258e241c9f1e910f734318"},
      {std::string(56, 'a'), "b35439a4ac6f0948b6d6f9e3c6af0f5f590ce20f1bde7090ef7970686ec6738a"},
      {std::string(64, 'a'), "ffe054fe7ae0cb6dc65c3af9b61d5209f439851db43d0ba5997337df154668eb"},
      {std::string(1000000, 'a'), "cdc76e5c9914fb9281a1c7e284d73e67f1809a48a497200e046d39ccc7112cd0"},
  };
  for (const auto& c : cases) {
    Sha256 whole;
    whole.Update(c.message);
    EXPECT_EQ(whole.HexDigest(), c.digest) << c.message.size() << " bytes";
    // Fed in uneven pieces, the digest is the same.
    Sha256 pieces;
    for (std::size_t at = 0; at < c.message.size(); at += 7) pieces.Update(c.message.substr(at, 7));
    EXPECT_EQ(pieces.HexDigest(), c.digest) << c.message.size() << " bytes in pieces";
  }
}

TEST(Sha256Test, Files) {
  std::string dir = MakeTempDir();
  WriteFile(dir + "/f", "abc");
  unsigned long long size = 99;
  EXPECT_EQ(Sha256OfFile((dir + "/f").c_str(), size),
            "ba7816bf8f01cfea414140de5dae2223b00361a396177a9cb410ff61f20015ad");
  EXPECT_EQ(size, 3u);
  EXPECT_EQ(Sha256OfFile((dir + "/missing").c_str(), size), "");
  EXPECT_EQ(size, 0u);
}

}  // namespace
