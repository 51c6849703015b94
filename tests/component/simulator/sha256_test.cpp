#include "simulator/model/sha256.h"

#include <gtest/gtest.h>

#include <algorithm>

#include <string>
#include <string_view>
#include <vector>

namespace nTests {
namespace {

std::string hexadecimal(const uint8_t* bytes, size_t size) {
  std::string text;
  for (size_t i = 0; i < size; ++i) {
    constexpr char kDigits[] = "0123456789abcdef";
    text += kDigits[bytes[i] >> 4];
    text += kDigits[bytes[i] & 15];
  }
  return text;
}

// The hash of bytes that are added in pieces of this size.
std::string hashOf(std::string_view bytes, size_t piece) {
  tSha256 hash;
  sha256Start(&hash);
  for (size_t done = 0; done < bytes.size(); done += piece) {
    const std::string_view part = bytes.substr(done, piece);
    sha256Add(&hash, part.data(), static_cast<uint32_t>(part.size()));
  }
  uint8_t result[SHA256_SIZE];
  sha256Finish(&hash, result);
  return hexadecimal(result, sizeof result);
}

struct tKnownHash {
  std::string bytes;
  const char* hash;
};
// From the examples of the standard and from sha256sum.
const tKnownHash kKnown[] = {
    {"", "e3b0c44298fc1c149afbf4c8996fb92427ae41e4649b934ca495991b7852b855"},
    {"abc", "ba7816bf8f01cfea414140de5dae2223b00361a396177a9cb410ff61f20015ad"},
    {"abcdbcdecdefdefgefghfghighijhijkijkljklmklmnlmnomnopnopq",
     "248d6a61d20638b8e5c026930c3e6039a33ce45964ff2167f6ecedd419db06c1"},
    {std::string(1000000, 'a'), "cdc76e5c9914fb9281a1c7e284d73e67f1809a48a497200e046d39ccc7112cd0"},
};

TEST(Sha256, KnownTexts_HaveTheirKnownHashes) {
  for (const tKnownHash& known : kKnown) {
    EXPECT_EQ(hashOf(known.bytes, 4096), known.hash) << known.bytes.substr(0, 60);
  }
}

TEST(Sha256, Pieces_MakeNoDifference) {
  for (size_t size = 0; size < 200; ++size) {
    const std::string bytes(size, 'q');
    const std::string whole = hashOf(bytes, 1000);
    for (const size_t piece : {1u, 3u, 55u, 56u, 63u, 64u, 65u}) {
      ASSERT_EQ(hashOf(bytes, piece), whole) << size << " bytes in pieces of " << piece;
    }
  }
}

TEST(Sha256, EveryLength_HasAHashOfItsOwn) {
  std::vector<std::string> hashes;
  for (size_t size = 0; size < 200; ++size) {
    hashes.push_back(hashOf(std::string(size, '\0'), 64));
  }
  std::sort(hashes.begin(), hashes.end());
  EXPECT_EQ(std::adjacent_find(hashes.begin(), hashes.end()), hashes.end());
}

}  // namespace
}  // namespace nTests
