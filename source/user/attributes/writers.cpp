#include <cstring>

#include "quenra.h"
#include "source/user/attributes/attributes.h"
#include "source/user/machine/drivercalls.h"
#include "source/user/machine/smbiosfields.h"

namespace nQUENRA1400 {
namespace {

constexpr auto kWritabilityUnknown = sessionLocation(2607);
constexpr auto kNotWritable = sessionLocation(2622);
constexpr auto kNoMartenForText = sessionLocation(2656);
constexpr auto kTextMissing = sessionLocation(2657);
constexpr auto kTextTooLong = sessionLocation(2658);
constexpr auto kMartenNotOpen = sessionLocation(1718);
constexpr auto kControllerNotOpen = sessionLocation(1736);

// A text and the size that the driver receives, its NUL included.
constexpr size_t kMaxTextSize = QUENRA_MAX_TEXT_SETTING_LENGTH + 1;
struct tText {
  const char* characters;
  int32_t size;
};

// The status holds no error, here and in writeToMarten.
void writeToController(const tAttributeAccess& access, tAttributeId attribute, const tText& text,
                       zoerr::Status& status) noexcept {
  const auto permitted = isPermitted(access.provider, kTextWritePermission);
  if (!permitted) {
    status.set(QUENRA_STATUS_NO_CONTROLLER, kWritabilityUnknown);
  } else if (!*permitted) {
    status.set(QUENRA_STATUS_NOT_SUPPORTED, kNotWritable);
  } else {
    writeToDriver(access.controller, attribute.value(), text.characters, text.size, status);
  }
}

void writeToMarten(const tAttributeAccess& access, tAttributeId attribute, const tText& text,
                   zoerr::Status& status) noexcept {
  if (!access.martenIsOpen) {
    status.set(QUENRA_STATUS_NOT_SUPPORTED, kNoMartenForText);
  } else {
    writeToDriver(access.marten, attribute.value(), text.characters, text.size, status);
  }
}

// Writes to the controller interface; an attribute that it does not support, to the Marten interface.
void writeToEither(const tAttributeAccess& access, tAttributeId attribute, const tText& text,
                   zoerr::Status& status) noexcept {
  writeToController(access, attribute, text, status);
  if (status.code == QUENRA_STATUS_NOT_SUPPORTED) {
    status.clear();
    writeToMarten(access, attribute, text, status);
  }
}

// Writes to both interfaces, or with the Marten's selector to the Marten interface alone. A Marten
// interface that does not support the attribute is no failure; a controller interface is.
void writeToBoth(const tAttributeAccess& access, tAttributeId attribute, const tText& text,
                 zoerr::Status& status) noexcept {
  if (!attribute.selectsMarten()) {
    writeToController(access, attribute, text, status);
  }
  if (status.isError()) {
    return;
  }
  writeToMarten(access, attribute.onMarten(), text, status);
  if (status.code == QUENRA_STATUS_NOT_SUPPORTED) {
    status.clear();
  }
}

template <class Interface>
void writeToOpen(Interface& device, bool isOpen, const nZOAPALS100::tSourceLocation& notOpen,
                 tAttributeId attribute, uint32_t value, zoerr::Status& status) noexcept {
  if (isOpen) {
    writeToDriver(device, attribute.value(), &value, sizeof value, status);
  } else {
    status.set(QUENRA_STATUS_NO_CONTROLLER, notOpen);
  }
}

}  // namespace

void writeTextAttribute(const tAttributeAccess& access, uint32_t attribute, const char* text,
                        zoerr::Status& status) noexcept {
  if (status.isError()) {
    return;
  }
  if (text == nullptr) {
    status.set(nZOAPALS100::kInvalidParameter, kTextMissing);
    return;
  }
  const size_t length = strnlen(text, kMaxTextSize);
  if (length == kMaxTextSize) {
    status.set(QUENRA_STATUS_INVALID_VALUE, kTextTooLong);
    return;
  }
  const tText value{text, static_cast<int32_t>(length + 1)};
  const tAttributeId id(attribute);
  if (id.withoutSelector() == QUENRA_TEXT_SETTING_OF_BOTH) {
    writeToBoth(access, id, value, status);
  } else {
    writeToEither(access, id, value, status);
  }
}

void writeUnsignedAttribute(const tAttributeAccess& access, uint32_t attribute, uint32_t value,
                            zoerr::Status& status) noexcept {
  if (status.isError()) {
    return;
  }
  const tAttributeId id(attribute);
  if (id.selectsMarten()) {
    writeToOpen(access.marten, access.martenIsOpen, kMartenNotOpen, id, value, status);
  } else {
    writeToOpen(access.controller, access.controllerIsOpen, kControllerNotOpen, id, value, status);
  }
}

}  // namespace nQUENRA1400
