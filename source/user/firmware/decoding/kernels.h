#ifndef SOURCE_USER_FIRMWARE_DECODING_KERNELS_H
#define SOURCE_USER_FIRMWARE_DECODING_KERNELS_H

// Files that are compiled for newer processors include this header. It must neither define functions nor
// include a header that does: the linker could keep the copy that few processors can run.
#include <stddef.h>
#include <stdint.h>

namespace nQUENRA1400::nFirmwareDecoding {

struct tDecodedPayload {
  size_t byteCount;
  uint32_t crc;  // of the decoded bytes
};

// The loops over an image, written for one instruction set. All sets give the same results.
struct tKernels {
  const char* name;

  // Decodes the Base64 characters of the text and skips all others. `data` must have a capacity of
  // `length` bytes; those after the decoded ones may change.
  tDecodedPayload (*decode)(const uint8_t* text, size_t length, uint8_t* data) noexcept;

  // Returns the first occurrence of a byte or of NUL, whichever comes first, or `end`.
  const uint8_t* (*findByteOrNul)(const uint8_t* text, const uint8_t* end, uint8_t byte) noexcept;
};

extern const tKernels kPlainKernels;
extern const tKernels kAvx2Kernels;
extern const tKernels kAvx2WideKernels;
extern const tKernels kAvx512Kernels;

}  // namespace nQUENRA1400::nFirmwareDecoding

#endif
