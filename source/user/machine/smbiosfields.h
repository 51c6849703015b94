// Fields of the machine's SMBIOS table with a meaning beyond their attribute, and how the session reads
// them.
#ifndef SOURCE_USER_MACHINE_SMBIOSFIELDS_H
#define SOURCE_USER_MACHINE_SMBIOSFIELDS_H

#include <array>
#include <cstdint>
#include <optional>
#include <string_view>
#include <vector>

#include "source/user/failuresites.h"
#include "zoapal/protons/status/zoerrstatus.h"
#include "zosmbios/czosmbiosprovider.h"

namespace nQUENRA1400 {

// The fields that decide about the machine; the structures from 0x96 on are the vendor's.
namespace nPlatformFields {

using nZOSMBIOS_1_1::byteField;
using nZOSMBIOS_1_1::textField;
using nZOSMBIOS_1_1::wordField;

inline constexpr auto kBiosVersion = textField(0x00, 0x05);
inline constexpr auto kProductName = textField(0x01, 0x05);
inline constexpr auto kMemoryDeviceCount = wordField(0x10, 0x0D);  // of Physical Memory Array
inline constexpr auto kMemorySize = wordField(0x11, 0x0C);         // 0 when the socket is empty
inline constexpr auto kGeneration = byteField(0x96, 0x04);
inline constexpr auto kVariant = byteField(0x96, 0x05);
inline constexpr auto kKind = byteField(0x96, 0x0C);
inline constexpr auto kBusLocation = textField(0x97, 0x04);
inline constexpr auto kSlotCount = byteField(0x98, 0x04);
inline constexpr auto kCapabilities = byteField(0x9F, 0x04);
inline constexpr auto kBridgeCount = byteField(0xA3, 0x06);
inline constexpr auto kRevisionBase = byteField(0xB4, 0x06);

}  // namespace nPlatformFields

// Two bytes that decide whether the machine permits a change.
struct tPermissionFields {
  nZOSMBIOS_1_1::tFieldId support;     // 0: the machine does not have the function
  nZOSMBIOS_1_1::tFieldId protection;  // 2 or more: the function is locked
};
inline constexpr tPermissionFields kTextWritePermission{nZOSMBIOS_1_1::byteField(0x9D, 0x04),
                                                        nZOSMBIOS_1_1::byteField(0x9D, 0x05)};
inline constexpr tPermissionFields kFirmwareUpdatePermission{nZOSMBIOS_1_1::byteField(0x9E, 0x04),
                                                             nZOSMBIOS_1_1::byteField(0x9E, 0x05)};

// Nothing when one of the bytes cannot be read.
[[nodiscard]] inline std::optional<bool> isPermitted(nZOSMBIOS_1_1::cZoSmBiosProvider& provider,
                                                     const tPermissionFields& fields) noexcept {
  constexpr uint8_t kFirstLocked = 2;
  uint8_t support = 0;
  uint8_t protection = 0;
  if (provider.readByte(fields.support, 0, &support) != 0 ||
      provider.readByte(fields.protection, 0, &protection) != 0) {
    return std::nullopt;
  }
  return support != 0 && protection < kFirstLocked;
}

// A complete text of the SMBIOS table. The provider returns no string of more than kMaxStringLength
// characters, so that the text fits on the stack and nothing is allocated.
class tProviderText {
 public:
  tProviderText(nZOSMBIOS_1_1::cZoSmBiosProvider& provider, nZOSMBIOS_1_1::tFieldId field,
                uint32_t instance) noexcept {
    auto size = static_cast<uint32_t>(characters_.size());
    characters_.front() = '\0';
    nZOAPALS100::tFailureRecord failure;
    provider.readText(field, instance, characters_.data(), &size, failure);
    result_ = failure.code();
  }

  // The provider's code: 0 when the text has been read; else the text is empty.
  [[nodiscard]] int32_t result() const noexcept { return result_; }
  [[nodiscard]] std::string_view view() const noexcept { return characters_.data(); }

 private:
  std::array<char, nZOSMBIOS_1_1::cZoSmBiosProvider::kMaxStringLength + 1>
      characters_;  // up to its NUL
  int32_t result_ = 0;
};

// Merges the result of a read from the SMBIOS provider: an absent string or field becomes
// QUENRA_STATUS_NOT_SUPPORTED, a short buffer QUENRA_STATUS_BUFFER_TOO_SMALL. Other results leave the
// status unchanged: a malformed field is no error, and reads as nothing.
inline void mergeProviderResult(int32_t result, zoerr::Status& status) noexcept {
  constexpr tFailureSite kStringAbsent{QUENRA_STATUS_NOT_SUPPORTED, sessionLocation(2555)};
  constexpr tFailureSite kBufferShort{QUENRA_STATUS_BUFFER_TOO_SMALL, sessionLocation(2562)};
  constexpr tFailureSite kFieldAbsent{QUENRA_STATUS_NOT_SUPPORTED, sessionLocation(2569)};
  switch (result) {
    case 0:
      return;
    case nZOSMBIOS_1_1::kNoString:
      return report(kStringAbsent, status);
    case nZOSMBIOS_1_1::kBufferTooSmall:
      return report(kBufferShort, status);
    case nZOSMBIOS_1_1::kFieldNotFound:
      return report(kFieldAbsent, status);
    default:
      return;
  }
}

// The populated memory modules of the machine, in the order of the SMBIOS table. A module's index
// is its position among the populated ones; its instance numbers its Memory Device structure among
// all, empty sockets included.
class tMemoryModules {
 public:
  // Lists the modules, in time linear in the table's size. Reports QUENRA_STATUS_NOT_SUPPORTED when the
  // table has no memory array or fewer devices than the array's count, and kMemoryFull; the list is
  // empty then.
  void find(nZOSMBIOS_1_1::cZoSmBiosProvider& provider, zoerr::Status& status) noexcept;

  [[nodiscard]] uint32_t count() const noexcept { return static_cast<uint32_t>(instances_.size()); }

  // 0 and QUENRA_STATUS_NOT_SUPPORTED when the index is not below the count.
  [[nodiscard]] uint32_t instanceOf(uint32_t index, zoerr::Status& status) const noexcept;

 private:
  void append(uint32_t instance, zoerr::Status& status) noexcept;

  std::vector<uint32_t> instances_;
};

}  // namespace nQUENRA1400

#endif
