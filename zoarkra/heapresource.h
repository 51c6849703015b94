#ifndef ZOARKRA_HEAPRESOURCE_H
#define ZOARKRA_HEAPRESOURCE_H

#include <memory_resource>

namespace zoark {

// The C heap, from which the library takes all its memory. Throws std::bad_alloc; gives no memory
// of more than the ordinary alignment.
[[nodiscard]] std::pmr::memory_resource* heapResource() noexcept;

}  // namespace zoark

#endif
