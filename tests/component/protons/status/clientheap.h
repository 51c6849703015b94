#ifndef TESTS_COMPONENT_PROTONS_STATUS_CLIENTHEAP_H
#define TESTS_COMPONENT_PROTONS_STATUS_CLIENTHEAP_H

#include <cstdint>
#include <vector>

#include "zoapal/protons/status/zoerrstatus.h"

namespace nTests {

// A client that brings its own reallocation function, and remembers what it was asked for. Its
// buffer is not of the C heap: freeing it there would stop the program.
class tClientHeap {
 public:
  tClientHeap() { requests().clear(); }
  tClientHeap(const tClientHeap&) = delete;
  tClientHeap& operator=(const tClientHeap&) = delete;
  ~tClientHeap() { buffer().clear(); }

  // Gives exactly what is asked for; 0 releases.
  static bool giveExactly(zoerr::Status& status, uint32_t newCapacity);
  // As giveExactly, up to 600 bytes.
  static bool giveUpTo600(zoerr::Status& status, uint32_t newCapacity);
  static bool refuse(zoerr::Status& status, uint32_t newCapacity);
  // Says yes and does nothing.
  static bool pretend(zoerr::Status& status, uint32_t newCapacity);

  // A clean status whose description this client has made, "{}" in the given number of bytes.
  [[nodiscard]] static zoerr::Status statusWithDescription(uint32_t capacity);

  [[nodiscard]] static std::vector<uint32_t>& requests();

 private:
  static std::vector<char>& buffer();
};

}  // namespace nTests

#endif
