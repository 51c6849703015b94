// The cost of memory alone. In a separate file: a compiler that sees caller and function together
// removes memory that is never read.
#include <cstdlib>
#include <cstring>

#include "bench/peers.h"

namespace nBench {

void copyIntoFreshMemory(const uint8_t* data, size_t count) {
  auto* const memory = static_cast<volatile uint8_t*>(std::malloc(count));
  if (memory == nullptr) {
    std::abort();
  }
  std::memcpy(const_cast<uint8_t*>(memory), data, count);
  // The volatile read prevents the compiler from removing the copy.
  (void)memory[count - 1];
  std::free(const_cast<uint8_t*>(memory));
}

uint64_t readAll(const uint8_t* data, size_t count) {
  constexpr size_t kWords = 8;
  uint64_t sums[kWords] = {};
  for (; count >= sizeof sums; count -= sizeof sums, data += sizeof sums) {
    uint64_t words[kWords];
    std::memcpy(words, data, sizeof words);
    for (size_t i = 0; i < kWords; ++i) {
      sums[i] += words[i];
    }
  }
  uint64_t all = 0;
  for (const uint64_t one : sums) {
    all += one;
  }
  return all;
}

}  // namespace nBench
