#ifndef TOOLS_QUENRA_CATALOGUE_ATTRIBUTEROW_H
#define TOOLS_QUENRA_CATALOGUE_ATTRIBUTEROW_H

#include <cstdint>
#include <span>
#include <string_view>

#include "quenra_attributes.h"

namespace nCommandLine {

enum class tAttributeType : uint8_t {
  text = 1,
  unsigned32 = 2,
};

// The value type is part of an attribute id.
[[nodiscard]] constexpr uint32_t typeBits(uint32_t id) noexcept {
  return id >> 28;
}

struct tSubjectRow {
  std::string_view key;
  std::string_view title;
};

// What the instances of an attribute are.
struct tInstanceRow {
  std::string_view meaning;
  // How many there are: the value of this attribute; 0 where none says so.
  uint32_t countAttribute = 0;
  // The library answers for no more than these, whatever the count says.
  uint32_t most = 1;
};

struct tNamedValue {
  uint32_t value;
  std::string_view name;
};

enum class tValueForm : uint8_t {
  plain,         // texts and decimal numbers
  hexadecimal,   // codes and bit patterns
  memorySize,    // the SMBIOS size word: MiB, or KiB when bit 15 is set
  interfaceSet,  // selector bits
};

struct tAttributeRow {
  uint32_t id;
  std::string_view name;
  const tSubjectRow* subject;
  const tInstanceRow* instances;
  std::string_view unit;  // empty where there is none
  std::string_view description;
  std::string_view source;
  tValueForm form = tValueForm::plain;
  std::span<const tNamedValue> names = {};

  [[nodiscard]] constexpr tAttributeType type() const noexcept {
    return static_cast<tAttributeType>(typeBits(id));
  }
};

[[nodiscard]] constexpr std::string_view typeName(tAttributeType type) noexcept {
  return type == tAttributeType::text ? "text" : "unsigned";
}

}  // namespace nCommandLine

#endif
