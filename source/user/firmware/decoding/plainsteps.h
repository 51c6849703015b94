#ifndef SOURCE_USER_FIRMWARE_DECODING_PLAINSTEPS_H
#define SOURCE_USER_FIRMWARE_DECODING_PLAINSTEPS_H

// Like kernels.h, this header defines no function.
#include <stddef.h>
#include <stdint.h>

namespace nQUENRA1400::nFirmwareDecoding {

// The steps of decoding, one character or byte at a time. Every kernel uses them for the ends that do not
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
