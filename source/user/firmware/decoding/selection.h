#ifndef SOURCE_USER_FIRMWARE_DECODING_SELECTION_H
#define SOURCE_USER_FIRMWARE_DECODING_SELECTION_H

#include <span>

#include "source/user/firmware/decoding/kernels.h"

namespace nQUENRA1400::nFirmwareDecoding {

struct tChoice {
  const tKernels& kernels;
  bool (*isSupported)() noexcept;  // by this processor and operating system
};

// All there are, the fastest first. The last one is always supported.
[[nodiscard]] std::span<const tChoice> allKernels() noexcept;

// The fastest that are supported.
[[nodiscard]] const tKernels& bestKernels() noexcept;

}  // namespace nQUENRA1400::nFirmwareDecoding

#endif
