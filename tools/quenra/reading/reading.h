#ifndef TOOLS_QUENRA_READING_READING_H
#define TOOLS_QUENRA_READING_READING_H

#include <cstdint>
#include <string>
#include <string_view>
#include <variant>

#include "quenra_status.h"
#include "tools/quenra/reading/attributeaddress.h"

namespace nCommandLine {

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

}  // namespace nCommandLine

#endif
