#ifndef ZOARKRA_TCLIENTOUTPUT_H
#define ZOARKRA_TCLIENTOUTPUT_H

#include <cstdint>
#include <string_view>

#include "quenra_routing.h"

namespace zoark {

// Whether what a client points to can be one at all.
template <class T>
[[nodiscard]] bool isAligned(const T* place) noexcept {
  return reinterpret_cast<uintptr_t>(place) % alignof(T) == 0;
}

// Where an answer goes: the client's buffer, and the function that gives room for it.
class tClientOutput {
 public:
  tClientOutput(zoroco_Reallocate reallocate, char** output) noexcept
      : reallocate_(reallocate), output_(output) {}

  // Throws zoerr::Exception with kInvalidParameter when the client has given no place for an
  // answer, or one that is not aligned.
  void requirePlace() const;

  // Copies the text, behind which there is a NUL, and the NUL. Throws zoerr::Exception with
  // kMemoryFull when the client gives no room, and as requirePlace.
  void write(std::string_view text) const;

 private:
  zoroco_Reallocate reallocate_;
  char** output_;
};

}  // namespace zoark

#endif
