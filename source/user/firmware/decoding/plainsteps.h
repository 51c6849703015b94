#ifndef SOURCE_USER_FIRMWARE_DECODING_PLAINSTEPS_H
#define SOURCE_USER_FIRMWARE_DECODING_PLAINSTEPS_H

// Like kernels.h, this header defines no function that exists at run time.
#include <stddef.h>
#include <stdint.h>

namespace nQUENRA1400::nFirmwareDecoding {

inline constexpr char kBase64Alphabet[] =
    "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/";
inline constexpr size_t kBase64Characters = sizeof kBase64Alphabet - 1;

// ---- The CRC ----

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

// ---- The steps of decoding ----

// One character or byte at a time. Every kernel uses them for the ends that do not
// fill its registers.

// Extracts the six-bit values of the Base64 characters of a text, one per byte. `sextets` must have a
// capacity of `length` bytes; those after the result may change. Returns the number of values.
size_t extractSextets(const uint8_t* text, size_t length, uint8_t* sextets) noexcept;

// Joins sextets to bytes; bits that do not fill a byte are dropped. Returns the number of bytes.
size_t packSextets(const uint8_t* sextets, size_t count, uint8_t* data) noexcept;

// Returns the CRC register after more bytes. The CRC is its complement.
uint32_t updateRegister(uint32_t crcRegister, const uint8_t* data, size_t count) noexcept;

}  // namespace nQUENRA1400::nFirmwareDecoding

#endif
