#ifndef ZOSMBIOS_FIELDID_H
#define ZOSMBIOS_FIELDID_H

#include <cstdint>

namespace nQUENRA1400::nZOSMBIOS_1_1 {

enum class tWidthClass : uint8_t {
  text = 0,
  byte = 1,
  word = 2,
  doubleWord = 3,
  quadWord = 4,
  provider = 0xF,  // a value of the provider itself, not a field of a structure
};

// Identifies a field: width class in bits 16-19, structure type in bits 8-15, offset in the formatted
// area of the structure in bits 0-7. Higher bits are ignored. The offset of a text is that of the
// byte that holds the string's number.
using tFieldId = uint32_t;

[[nodiscard]] constexpr tFieldId makeFieldId(tWidthClass width, uint8_t type,
                                             uint8_t offset) noexcept {
  return static_cast<uint32_t>(width) << 16 | uint32_t{type} << 8 | offset;
}
[[nodiscard]] constexpr tFieldId textField(uint8_t type, uint8_t offset) noexcept {
  return makeFieldId(tWidthClass::text, type, offset);
}
[[nodiscard]] constexpr tFieldId byteField(uint8_t type, uint8_t offset) noexcept {
  return makeFieldId(tWidthClass::byte, type, offset);
}
[[nodiscard]] constexpr tFieldId wordField(uint8_t type, uint8_t offset) noexcept {
  return makeFieldId(tWidthClass::word, type, offset);
}
[[nodiscard]] constexpr tFieldId quadWordField(uint8_t type, uint8_t offset) noexcept {
  return makeFieldId(tWidthClass::quadWord, type, offset);
}

[[nodiscard]] constexpr tWidthClass widthClassOf(tFieldId field) noexcept {
  return static_cast<tWidthClass>(field >> 16 & 0xF);
}
[[nodiscard]] constexpr uint8_t structureTypeOf(tFieldId field) noexcept {
  return static_cast<uint8_t>(field >> 8);
}
[[nodiscard]] constexpr uint8_t offsetOf(tFieldId field) noexcept {
  return static_cast<uint8_t>(field);
}

// The SMBIOS version as "major.minor".
inline constexpr tFieldId kVersionText = 0xF0001;

}  // namespace nQUENRA1400::nZOSMBIOS_1_1

#endif
