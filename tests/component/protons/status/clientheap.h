#ifndef TESTS_COMPONENT_PROTONS_STATUS_CLIENTHEAP_H
#define TESTS_COMPONENT_PROTONS_STATUS_CLIENTHEAP_H

#include <cstdint>
#include <vector>

#include "zoapal/protons/status/zoerrstatus.h"

namespace nTests {

// A client with its own reallocation function, which records the requested capacities. Its buffer is
// not on the C heap: freeing it there stops the program.
class tClientHeap {
 public:
  tClientHeap() { requests().clear(); }
  tClientHeap(const tClientHeap&) = delete;
  tClientHeap& operator=(const tClientHeap&) = delete;
  ~tClientHeap() { buffer().clear(); }

  // Supplies exactly the requested capacity; 0 releases.
  static bool giveExactly(zoerr::Status& status, uint32_t newCapacity);
  // As giveExactly, up to 600 bytes.
  static bool giveUpTo600(zoerr::Status& status, uint32_t newCapacity);
  static bool refuse(zoerr::Status& status, uint32_t newCapacity);
  // Returns true and does nothing.
  static bool pretend(zoerr::Status& status, uint32_t newCapacity);
  // As giveExactly, but leaves out the marker in the last byte.
  static bool giveWithoutMarker(zoerr::Status& status, uint32_t newCapacity);
  // As giveExactly, but the buffer holds a text that is not a JSON object.
  static bool giveUnusableText(zoerr::Status& status, uint32_t newCapacity);

  // A status of success whose description is "{}" in a buffer of this client with the given capacity.
  [[nodiscard]] static zoerr::Status statusWithDescription(uint32_t capacity);

  [[nodiscard]] static std::vector<uint32_t>& requests();

 private:
  static std::vector<char>& buffer();
};

}  // namespace nTests

#endif
