// The reference points of the measurements: other decoders, and memory alone.
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

// Straightforward code: decodes all Base64, then computes the CRC, a byte at a time with tables.
[[nodiscard]] tDecoder bytewisePair();

// Other libraries; empty in a build without them.
[[nodiscard]] std::vector<tDecoder> otherLibraries();

// Copies bytes into newly allocated memory and frees it.
void copyIntoFreshMemory(const uint8_t* data, size_t count);

// Reads all bytes and adds them word by word.
[[nodiscard]] uint64_t readAll(const uint8_t* data, size_t count);

}  // namespace nBench

#endif
