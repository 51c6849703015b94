#include "source/user/session/tmemorymodules.h"

#include <new>

#include "source/user/attributes/providerresult.h"
#include "source/user/location.h"
#include "source/user/statuscodes.h"

namespace nQUENRA1400 {
namespace {

using nZOSMBIOS_1_1::wordField;

constexpr auto kDeviceCount = wordField(0x10, 0x0D);  // of Physical Memory Array
constexpr auto kDeviceSize = wordField(0x11, 0x0C);  // of Memory Device; 0 when the socket is empty

constexpr auto kListDoesNotGrow = sessionLocation(421);
constexpr auto kIndexBeyondCount = sessionLocation(2534);

// 0 for a field that is malformed.
uint16_t readWord(nZOSMBIOS_1_1::cZoSmBiosProvider& provider, nZOSMBIOS_1_1::tFieldId field,
                  uint32_t instance, zoerr::Status& status) noexcept {
  uint16_t value = 0;
  mergeProviderResult(provider.readWord(field, instance, &value), status);
  return value;
}

}  // namespace

void tMemoryModules::find(nZOSMBIOS_1_1::cZoSmBiosProvider& provider,
                          zoerr::Status& status) noexcept {
  if (status.isError()) {
    return;
  }
  const uint32_t devices = readWord(provider, kDeviceCount, 0, status);
  for (uint32_t device = 0; device < devices && !status.isError(); ++device) {
    if (readWord(provider, kDeviceSize, device, status) != 0) {
      append(device, status);
    }
  }
  if (status.isError()) {
    instances_.clear();
  }
}

void tMemoryModules::append(uint32_t instance, zoerr::Status& status) noexcept {
  try {
    instances_.push_back(instance);
  } catch (const std::bad_alloc&) {
    status.set(nZOAPALS100::kMemoryFull, kListDoesNotGrow);
  }
}

uint32_t tMemoryModules::instanceOf(uint32_t index, zoerr::Status& status) const noexcept {
  if (index >= instances_.size()) {
    status.set(kAttributeNotSupported, kIndexBeyondCount);
    return 0;
  }
  return instances_[index];
}

}  // namespace nQUENRA1400
