#ifndef SOURCE_USER_FIRMWARE_DECODING_CRCPOLYNOMIAL_H
#define SOURCE_USER_FIRMWARE_DECODING_CRCPOLYNOMIAL_H

// Like kernels.h, this header defines no function that exists at run time.
#include <stddef.h>
#include <stdint.h>

namespace nQUENRA1400::nFirmwareDecoding {

// The Castagnoli polynomial, most significant bit first. Processors have an instruction for the reflected
// CRC-32C only.
inline constexpr uint32_t kPolynomial = 0x1EDC6F41;
inline constexpr uint32_t kInitialRegister = 0xFFFFFFFF;

consteval uint32_t timesX(uint32_t value) {
  return (value << 1) ^ ((value >> 31) * kPolynomial);
}

consteval uint32_t dividedByX(uint32_t value) {
  return (value & 1) == 0 ? value >> 1 : ((value ^ kPolynomial) >> 1) | 0x80000000;
}

// x to the power of `exponent`, modulo the polynomial.
consteval uint32_t powerOfX(unsigned exponent) {
  uint32_t power = 1;
  for (unsigned i = 0; i < exponent; ++i) {
    power = timesX(power);
  }
  return power;
}

// The four bytes, as a big-endian number, that change a register from 0 to its initial value. Folding has no
// register, so it starts as if these bytes preceded the data.
consteval uint32_t bytesBeforeData() {
  uint32_t bytes = kInitialRegister;
  for (unsigned i = 0; i < 32; ++i) {
    bytes = dividedByX(bytes);
  }
  return bytes;
}

}  // namespace nQUENRA1400::nFirmwareDecoding

#endif
