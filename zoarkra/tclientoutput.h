#ifndef ZOARKRA_TCLIENTOUTPUT_H
#define ZOARKRA_TCLIENTOUTPUT_H

#include <cstdint>
#include <string_view>

#include "quenra_routing.h"

namespace zoark {

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
