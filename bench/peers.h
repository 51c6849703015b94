#ifndef BENCH_PEERS_H
#define BENCH_PEERS_H

#include <cstddef>
#include <cstdint>
#include <functional>
#include <string>
#include <vector>

namespace nBench {

struct tDecoder {
  std::string name;
  // Decodes a text and returns the CRC of its bytes.
  std::function<uint32_t(const uint8_t* text, size_t length, uint8_t* data)> decode;
  bool skipsNoise = true;
};

// A byte at a time through a table, first all of Base64 and then the CRC: what one would write.
[[nodiscard]] tDecoder bytewisePair();

// What others have written; none in a build that has no such libraries.
[[nodiscard]] std::vector<tDecoder> otherLibraries();

// Copies bytes into memory that nobody has touched, and gives it back.
void copyIntoFreshMemory(const uint8_t* data, size_t count);

// Reads all bytes and does next to nothing with them.
[[nodiscard]] uint64_t readAll(const uint8_t* data, size_t count);

}  // namespace nBench

#endif
