#include "source/user/firmware/decoding/plainsteps.h"

#include <array>
#include <bit>
#include <cstring>

namespace nQUENRA1400::nFirmwareDecoding {
namespace {

// Words are read as bytes in their order.
static_assert(std::endian::native == std::endian::little);

constexpr uint8_t kNoSextet = 0xFF;

consteval std::array<uint8_t, 256> makeSextets() {
  std::array<uint8_t, 256> sextets{};
  sextets.fill(kNoSextet);
  for (size_t i = 0; i < kBase64Characters; ++i) {
    sextets[static_cast<uint8_t>(kBase64Alphabet[i])] = static_cast<uint8_t>(i);
  }
  return sextets;
}

// Bytes of data per step of the CRC.
constexpr size_t kSlices = 16;
using tSlices = std::array<std::array<uint32_t, 256>, kSlices>;

// slices[n][b] is the register after the byte b and n zero bytes, from a register of 0.
consteval tSlices makeSlices() {
  tSlices slices{};
  for (uint32_t byte = 0; byte < 256; ++byte) {
    uint32_t crcRegister = byte << 24;
    for (size_t zeros = 0; zeros < kSlices; ++zeros) {
      for (unsigned bit = 0; bit < 8; ++bit) {
        crcRegister = timesX(crcRegister);
      }
      slices[zeros][byte] = crcRegister;
    }
  }
  return slices;
}

constexpr auto kSextets = makeSextets();
constexpr auto kSlicesOfBytes = makeSlices();

uint8_t lowByte(uint32_t value) noexcept {
  return static_cast<uint8_t>(value);
}

uint32_t wordAt(const uint8_t* data) noexcept {
  uint32_t word = 0;
  std::memcpy(&word, data, sizeof word);
  return word;
}

// Returns the change of the register by four bytes that are followed by so many more in the same step.
template <size_t kFollowing>
uint32_t sliced(uint32_t word) noexcept {
  return kSlicesOfBytes[kFollowing + 3][lowByte(word)] ^
         kSlicesOfBytes[kFollowing + 2][lowByte(word >> 8)] ^
         kSlicesOfBytes[kFollowing + 1][lowByte(word >> 16)] ^
         kSlicesOfBytes[kFollowing][lowByte(word >> 24)];
}

}  // namespace

size_t extractSextets(const uint8_t* text, size_t length, uint8_t* sextets) noexcept {
  size_t count = 0;
  for (size_t i = 0; i < length; ++i) {
    // Written in any case and counted if valid: noise cannot make a branch unpredictable.
    const uint8_t sextet = kSextets[text[i]];
    sextets[count] = sextet;
    count += sextet == kNoSextet ? 0 : 1;
  }
  return count;
}

size_t packSextets(const uint8_t* sextets, size_t count, uint8_t* data) noexcept {
  uint8_t* out = data;
  for (; count >= 4; count -= 4, sextets += 4, out += 3) {
    const uint32_t bits = uint32_t{sextets[0]} << 18 | uint32_t{sextets[1]} << 12 |
                          uint32_t{sextets[2]} << 6 | sextets[3];
    out[0] = lowByte(bits >> 16);
    out[1] = lowByte(bits >> 8);
    out[2] = lowByte(bits);
  }
  if (count >= 2) {
    *out++ = lowByte(uint32_t{sextets[0]} << 2 | uint32_t{sextets[1]} >> 4);
  }
  if (count == 3) {
    *out++ = lowByte(uint32_t{sextets[1]} << 4 | uint32_t{sextets[2]} >> 2);
  }
  return static_cast<size_t>(out - data);
}

uint32_t updateRegister(uint32_t crcRegister, const uint8_t* data, size_t count) noexcept {
  for (; count >= kSlices; count -= kSlices, data += kSlices) {
    crcRegister = sliced<12>(wordAt(data) ^ __builtin_bswap32(crcRegister)) ^
                  sliced<8>(wordAt(data + 4)) ^ sliced<4>(wordAt(data + 8)) ^
                  sliced<0>(wordAt(data + 12));
  }
  for (size_t i = 0; i < count; ++i) {
    crcRegister = (crcRegister << 8) ^ kSlicesOfBytes[0][(crcRegister >> 24) ^ data[i]];
  }
  return crcRegister;
}

}  // namespace nQUENRA1400::nFirmwareDecoding
