#ifndef TESTS_COMPONENT_PROTONS_STATUS_TSTATUSBYTES_H
#define TESTS_COMPONENT_PROTONS_STATUS_TSTATUSBYTES_H

#include <cstdint>
#include <cstring>
#include <memory>

#include "zoapal/protons/status/tstatus.h"

namespace nTests {

// A status record of exactly the given size. All bytes except structSize and code hold kFill. The
// address sanitizer reports an access past its end.
class tStatusBytes {
 public:
  static constexpr uint8_t kFill = 0xA5;

  tStatusBytes(size_t bytes, uint32_t structSize, int32_t code = 0)
      : size_(bytes), memory_(std::make_unique<uint64_t[]>((bytes + 7) / 8)) {
    std::memset(memory_.get(), kFill, bytes);
    std::memcpy(data(), &structSize, sizeof structSize);
    std::memcpy(data() + 4, &code, sizeof code);
  }

  // The record as a tStatus, even if its memory is shorter. The address is volatile so that the
  // compiler cannot infer the size of the memory.
  [[nodiscard]] nZOAPALS100::tStatus& record() const {
    void* volatile address = memory_.get();
    return *static_cast<nZOAPALS100::tStatus*>(address);
  }
  [[nodiscard]] int32_t code() const {
    int32_t code = 0;
    std::memcpy(&code, data() + 4, sizeof code);
    return code;
  }
  [[nodiscard]] uint8_t* data() const {
    void* const bytes = memory_.get();
    return static_cast<uint8_t*>(bytes);
  }
  // True if no byte from `first` on has changed.
  [[nodiscard]] bool isUntouchedFrom(size_t first) const {
    for (size_t i = first; i < size_; ++i) {
      if (data()[i] != kFill) {
        return false;
      }
    }
    return true;
  }

 private:
  size_t size_;
  std::unique_ptr<uint64_t[]> memory_;
};

}  // namespace nTests

#endif
