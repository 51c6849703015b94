#ifndef ZOARKRA_HEAPRESOURCE_H
#define ZOARKRA_HEAPRESOURCE_H

#include <memory_resource>

namespace zoark {

// The C heap, which serves all memory of the library. Throws std::bad_alloc, also for more than the
// fundamental alignment.
[[nodiscard]] std::pmr::memory_resource* heapResource() noexcept;

}  // namespace zoark

#endif
