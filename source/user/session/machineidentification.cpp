#include "source/user/session/machineidentification.h"

#include <algorithm>
#include <bit>
#include <cstdint>

#include "protocol/controllerrequests.h"
#include "source/user/machine/drivercalls.h"
#include "source/user/preconditions/preconditions.h"
#include "zoapal/protons/cppnewdelete/memoryallocation.h"

namespace nQUENRA1400 {
namespace {

using nZOAPALS100::tStatus;
using tController = nZOAPAL000::iInterfaceProxy_hostController;

constexpr auto kTableSizeImplausible = sessionLocation(301);
constexpr auto kPlatformUnknown = sessionLocation(355);
constexpr auto kPlatformNotSupported = sessionLocation(368);
constexpr auto kModelNotSupported = sessionLocation(380);

constexpr uint8_t kFirstSupportedGeneration = 2;
constexpr uint8_t kFirstUnsupportedVariant = 3;

// The sizes of the SMBIOS version text and table.
struct tSizes {
  uint32_t text = 0;
  int32_t table = 0;

  // No machine has a larger text or table.
  [[nodiscard]] bool arePlausible() const noexcept {
    constexpr int32_t kMax = 1 << 24;
    return text <= kMax && table >= 0 && table <= kMax;
  }
};

// Queries the sizes. The driver answers the query, which offers no buffers, with
// DRIVER_STATUS_BUFFER_TOO_SMALL: that is no failure.
tSizes querySizes(tController& controller, zoerr::Status& status) noexcept {
  tSizes sizes;
  tStatus driver = recordFor(status);
  controller.exchangeValues(0, sizes.text, 0, sizes.table, driver);
  if (driver.code == DRIVER_STATUS_BUFFER_TOO_SMALL) {
    return sizes;
  }
  status.mergeFrom(driver);
  return sizes;
}

// The bytes that the driver can have filled when it reports `reported`.
size_t filled(uint32_t reported, size_t capacity) noexcept {
  return std::min<size_t>(reported, capacity);
}

// Fetches the SMBIOS table and version from the driver and installs them in the provider. Reports the
// driver's code, or kMemoryFull. When the driver reports sizes and then fails, the provider loses its
// table; after any earlier failure it keeps its table.
void installSmbiosTable(tController& controller, nZOSMBIOS_1_1::cZoSmBiosProvider& provider,
                        zoerr::Status& status) noexcept {
  const tSizes capacity = querySizes(controller, status);
  if (status.isError()) {
    return;
  }
  if (!capacity.arePlausible()) {
    status.set(nZOAPALS100::kMemoryFull, kTableSizeImplausible);
    return;
  }
  const auto tableCapacity = static_cast<uint32_t>(capacity.table);
  tStatus allocation;
  // Zeroed: a driver that fills less than it reports must not expose heap contents. Zeroed pages that
  // the driver does not fill take no memory.
  const auto text = nZOAPAL000::allocateZeroedBytes(capacity.text, allocation);
  const auto table = nZOAPAL000::allocateZeroedBytes(tableCapacity, allocation);
  status.mergeFrom(allocation);
  if (status.isError()) {
    return;
  }

  tSizes reported = capacity;
  tStatus driver = recordFor(status);
  controller.exchangeValues(addressOf(text.get()), reported.text, addressOf(table.get()),
                            reported.table, driver);
  if (driver.isError()) {
    provider.clear();
  } else {
    const void* const version = text.get();
    provider.install({table.get(), filled(std::bit_cast<uint32_t>(reported.table), tableCapacity)},
                     {static_cast<const char*>(version), filled(reported.text, capacity.text)},
                     driver);
  }
  status.mergeFrom(driver);
}

void checkPlatform(nZOSMBIOS_1_1::cZoSmBiosProvider& provider, zoerr::Status& status) noexcept {
  if (status.isError()) {
    return;
  }
  uint8_t generation = 0;
  uint8_t variant = 0;
  if (provider.readByte(nPlatformFields::kGeneration, 0, &generation) != 0 ||
      provider.readByte(nPlatformFields::kVariant, 0, &variant) != 0) {
    status.set(QUENRA_STATUS_NO_CONTROLLER, kPlatformUnknown);
  } else if (generation < kFirstSupportedGeneration || variant >= kFirstUnsupportedVariant) {
    status.set(QUENRA_STATUS_NO_CONTROLLER, kPlatformNotSupported);
  }
}

void checkModel(nZOSMBIOS_1_1::cZoSmBiosProvider& provider, zoerr::Status& status) noexcept {
  if (!status.isError() && !IsOutsideModelFamilies(provider)) {
    status.set(QUENRA_STATUS_NO_CONTROLLER, kModelNotSupported);
  }
}

}  // namespace

void identifyMachine(tController& controller, nZOSMBIOS_1_1::cZoSmBiosProvider& provider,
                     tMemoryModules& memoryModules, zoerr::Status& status) noexcept {
  if (!status.isError()) {
    installSmbiosTable(controller, provider, status);
  }
  checkPlatform(provider, status);
  checkModel(provider, status);
  memoryModules.find(provider, status);
}

}  // namespace nQUENRA1400
