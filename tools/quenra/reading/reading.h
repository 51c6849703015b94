// Readings of attributes, and their forms as text and as JSON. `row` is null for an attribute that is not in
// the table.
#ifndef TOOLS_QUENRA_READING_READING_H
#define TOOLS_QUENRA_READING_READING_H

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <variant>

#include "quenra_status.h"
#include "tools/quenra/output/tjsondocument.h"
#include "tools/quenra/tables/attributetable.h"

namespace nCommandLine {

enum class tInterface : uint8_t {
  byDefault = 0,
  controller = 1,
  marten = 2,
  both = 3,  // encoded without a selector, which some attributes define as both interfaces
};

[[nodiscard]] std::string_view interfaceName(tInterface which) noexcept;

// An attribute id split into attribute, instance and interface.
struct tAttributeAddress {
  uint32_t attribute;  // the id without selector and instance
  uint8_t instance = 0;
  tInterface which = tInterface::byDefault;

  [[nodiscard]] constexpr uint32_t id() const noexcept {
    const auto selector = which == tInterface::both ? 0 : static_cast<uint32_t>(which);
    return attribute | selector << kSelectorShift | instance;
  }
  [[nodiscard]] constexpr tAttributeType type() const noexcept {
    return static_cast<tAttributeType>(typeBits(attribute));
  }

  static constexpr unsigned kSelectorShift = 20;
  static constexpr uint32_t kSelectorMask = 0x00F00000;
  static constexpr uint32_t kInstanceMask = 0x000000FF;
};

// A text holds the bytes of the firmware, which need not be UTF-8.
using tAttributeValue = std::variant<std::string, uint32_t>;

enum class tReadingState : uint8_t {
  value,
  notSupported,  // the machine does not have the attribute
  notAvailable,  // an interface, a device or a field that decides the answer is missing
  failed,
};

[[nodiscard]] std::string_view stateName(tReadingState state) noexcept;

// The result of reading one attribute.
struct tReading {
  tAttributeAddress address;
  int32_t code = QUENRA_STATUS_SUCCESS;
  tAttributeValue value;  // valid in state `value` only

  [[nodiscard]] tReadingState state() const noexcept;
};

// The value alone, for scripts: a text, or a decimal number.
[[nodiscard]] std::string plainValue(const tAttributeValue& value);

// The value for people: with its unit, and with the name that the table has for a number.
[[nodiscard]] std::string shownValue(const tAttributeRow* row, const tAttributeValue& value);

// Decodes the SMBIOS size word of a memory module. Empty if the word cannot represent the size.
[[nodiscard]] std::optional<uint64_t> memorySizeInBytes(uint32_t size) noexcept;

// The reading for people: the shown value, or why there is none: "not supported",
// "failed: -52007 QUENRA_STATUS_TIME_OUT".
[[nodiscard]] std::string shownReading(const tAttributeRow* row, const tReading& reading);

// The unit of the number itself; empty if it has none.
[[nodiscard]] std::string_view unitOf(const tAttributeRow* row, const tAttributeValue& value);

// Each function writes members into the open object.
void writeAddress(tJsonDocument& document, const tAttributeRow* row,
                  const tAttributeAddress& address);
void writeValue(tJsonDocument& document, const tAttributeRow* row, const tAttributeValue& value);
void writeReading(tJsonDocument& document, const tAttributeRow* row, const tReading& reading);

}  // namespace nCommandLine

#endif
