#include "source/user/attributes/controllerkind.h"

#include "source/user/attributes/providertext.h"

namespace nQUENRA1400 {
namespace {

using nZOSMBIOS_1_1::byteField;
using nZOSMBIOS_1_1::cZoSmBiosProvider;
using nZOSMBIOS_1_1::textField;
using nZOSMBIOS_1_1::tFieldId;

constexpr auto kBus = textField(0x97, 0x04);
constexpr auto kSlots = byteField(0x98, 0x04);
constexpr auto kCapabilities = byteField(0x9F, 0x04);
constexpr auto kPlatformKind = byteField(0x96, 0x0C);
constexpr uint32_t kHighestPlatformKind = 5;

bool hasText(cZoSmBiosProvider& provider, tFieldId field) noexcept {
  return tProviderText(provider, field, 0).result() == 0;
}

bool hasByte(cZoSmBiosProvider& provider, tFieldId field) noexcept {
  uint8_t ignored = 0;
  return provider.readByte(field, 0, &ignored) == 0;
}

}  // namespace

uint32_t controllerKind(cZoSmBiosProvider& provider) noexcept {
  if (hasText(provider, kBus)) {
    return 1;
  }
  if (hasByte(provider, kSlots)) {
    return 2;
  }
  if (hasByte(provider, kCapabilities)) {
    return 3;
  }
  uint8_t kind = 0;
  const bool known =
      provider.readByte(kPlatformKind, 0, &kind) == 0 && kind >= 1 && kind <= kHighestPlatformKind;
  return known ? kind : kOtherKind;
}

}  // namespace nQUENRA1400
