#include "source/user/attributes/textwriter.h"

#include <cstring>

#include "quenra.h"
#include "source/user/attributes/attributeid.h"
#include "source/user/attributes/drivercalls.h"
#include "source/user/location.h"
#include "source/user/statuscodes.h"

namespace nQUENRA1400 {
namespace {

using nZOSMBIOS_1_1::byteField;

constexpr auto kWritabilityUnknown = sessionLocation(2607);
constexpr auto kNotWritable = sessionLocation(2622);
constexpr auto kMartenNotOpen = sessionLocation(2656);
constexpr auto kTextMissing = sessionLocation(2657);
constexpr auto kTextTooLong = sessionLocation(2658);

constexpr auto kWritable = byteField(0x9D, 0x04);
constexpr auto kWriteProtection = byteField(0x9D, 0x05);

// A text and the size that the driver receives, its NUL included.
constexpr size_t kLargestText = QUENRA_MAX_TEXT_SETTING_LENGTH + 1;
struct tText {
  const char* characters;
  int32_t size;
};

void writeToController(const tAttributeAccess& access, tAttributeId attribute, const tText& text,
                       zoerr::Status& status) noexcept {
  if (status.isError()) {
    return;
  }
  uint8_t writable = 0;
  uint8_t protection = 0;
  if (access.provider.readByte(kWritable, 0, &writable) != 0 ||
      access.provider.readByte(kWriteProtection, 0, &protection) != 0) {
    status.set(kNoController, kWritabilityUnknown);
  } else if (writable == 0 || protection >= 2) {
    status.set(kAttributeNotSupported, kNotWritable);
  } else {
    writeToDriver(access.controller, attribute, text.characters, text.size, status);
  }
}

void writeToMarten(const tAttributeAccess& access, tAttributeId attribute, const tText& text,
                   zoerr::Status& status) noexcept {
  if (status.isError()) {
    return;
  }
  if (!access.martenIsOpen) {
    status.set(kAttributeNotSupported, kMartenNotOpen);
  } else {
    writeToDriver(access.marten, attribute, text.characters, text.size, status);
  }
}

// Writes to the controller interface; an attribute that it does not support, to the Marten interface.
void writeToEither(const tAttributeAccess& access, tAttributeId attribute, const tText& text,
                   zoerr::Status& status) noexcept {
  writeToController(access, attribute, text, status);
  if (status.code == kAttributeNotSupported) {
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
  if (status.code == kAttributeNotSupported) {
    status.clear();
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
  const size_t length = strnlen(text, kLargestText);
  if (length == kLargestText) {
    status.set(kInvalidValue, kTextTooLong);
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

}  // namespace nQUENRA1400
