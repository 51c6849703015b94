#ifndef ZOARKRA_ROUTEANSWERS_H
#define ZOARKRA_ROUTEANSWERS_H

#include <cstdint>
#include <memory_resource>
#include <span>
#include <string>
#include <string_view>

#include "protocol/routingrequests.h"
#include "quenra_routing.h"
#include "zoarkra/topography.h"

namespace zoark {

// The answers of a session as compact JSON texts, appended to `text`. Throw std::bad_alloc.

// Calculated routes, in their order.
void describeRoutes(std::span<const tRouteRecord> routes, const tTopography& topography,
                    std::pmr::string& text);

// Conflicting routes, in their order.
void describeConflicts(std::span<const tRouteConflict> conflicts, std::pmr::string& text);

// The names of terminals. An unknown id is an empty text, so that the positions stay.
void describePath(std::span<const uint32_t> terminals, const tTopography& topography,
                  std::pmr::string& text);

// The names of the handled constraints.
void describeHandledConstraints(std::pmr::string& text);

// True when a client's pointer has the alignment of its type.
template <class T>
[[nodiscard]] bool isAligned(const T* pointer) noexcept {
  return reinterpret_cast<uintptr_t>(pointer) % alignof(T) == 0;
}

// A client's output argument, and the function that supplies its buffer.
class tClientOutput {
 public:
  tClientOutput(zoroco_Reallocate reallocate, char** output) noexcept
      : reallocate_(reallocate), output_(output) {}

  // Throws zoerr::Exception with kInvalidParameter when the output argument is null or not aligned.
  void requireOutput() const;

  // Copies the text, which a NUL follows, and the NUL. Throws zoerr::Exception as requireOutput, with
  // kMemoryFull when the client supplies no buffer, and with kInternalError when its function throws;
  // the output argument then keeps its value.
  void write(std::string_view text) const;

 private:
  [[nodiscard]] char* requestBuffer(std::string_view text, size_t size) const;

  zoroco_Reallocate reallocate_;
  char** output_;
};

}  // namespace zoark

#endif
