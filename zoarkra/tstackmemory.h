#ifndef ZOARKRA_TSTACKMEMORY_H
#define ZOARKRA_TSTACKMEMORY_H

#include <array>
#include <cstddef>
#include <memory_resource>

#include "zoarkra/heapresource.h"

namespace zoark {

// The memory of one operation: bytes of its own first, then the heap. It frees nothing before its own
// end.
template <size_t kBytes>
class tStackMemory {
 public:
  tStackMemory() = default;
  tStackMemory(const tStackMemory&) = delete;
  tStackMemory& operator=(const tStackMemory&) = delete;

  [[nodiscard]] std::pmr::memory_resource* resource() noexcept { return &resource_; }

 private:
  alignas(std::max_align_t) std::array<std::byte, kBytes> bytes_;
  std::pmr::monotonic_buffer_resource resource_{bytes_.data(), bytes_.size(), heapResource()};
};

}  // namespace zoark

#endif
