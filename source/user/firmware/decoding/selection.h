#ifndef SOURCE_USER_FIRMWARE_DECODING_SELECTION_H
#define SOURCE_USER_FIRMWARE_DECODING_SELECTION_H

#include <span>

#include "source/user/firmware/decoding/kernels.h"

namespace nQUENRA1400::nFirmwareDecoding {

// The instruction sets that the processor reports and the operating system supports.
struct tProcessorFeatures {
  bool popcnt = false;
  bool pclmul = false;
  bool avx2 = false;
  bool avx512f = false;
  bool avx512bw = false;
  bool avx512vbmi = false;
  bool avx512vbmi2 = false;
  bool vpclmulqdq = false;
};

// The features of this machine.
[[nodiscard]] tProcessorFeatures reportedFeatures() noexcept;

struct tChoice {
  const tKernels& kernels;
  bool (*runsWith)(const tProcessorFeatures& features) noexcept;

  [[nodiscard]] bool isSupported() const noexcept { return runsWith(reportedFeatures()); }
};

// All kernels, the fastest first. The last ones run on every processor.
[[nodiscard]] std::span<const tChoice> allKernels() noexcept;

// Returns the fastest kernels that run with these features.
[[nodiscard]] const tKernels& kernelsFor(const tProcessorFeatures& features) noexcept;

// Returns the fastest kernels that run on this machine.
[[nodiscard]] const tKernels& bestKernels() noexcept;

}  // namespace nQUENRA1400::nFirmwareDecoding

#endif
