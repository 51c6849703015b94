#include "source/user/session/tmemorymodules.h"

#include <new>

#include "source/user/attributes/providerresult.h"
#include "source/user/location.h"
#include "source/user/statuscodes.h"

namespace nQUENRA1400 {
namespace {

using nZOSMBIOS_1_1::structureTypeOf;
using nZOSMBIOS_1_1::wordField;

constexpr auto kDeviceCount = wordField(0x10, 0x0D);  // of Physical Memory Array
constexpr auto kDeviceSize = wordField(0x11, 0x0C);  // of Memory Device; 0 when the socket is empty

constexpr auto kListDoesNotGrow = sessionLocation(421);
constexpr auto kIndexBeyondCount = sessionLocation(2534);

// 0 when the field is malformed.
uint32_t deviceCount(nZOSMBIOS_1_1::cZoSmBiosProvider& provider, zoerr::Status& status) noexcept {
  uint16_t count = 0;
  mergeProviderResult(provider.readWord(kDeviceCount, 0, &count), status);
  return count;
}

}  // namespace

// Enumerates the devices: to read them by instance would walk the table for each of them when memory
// for its index is short.
void tMemoryModules::find(nZOSMBIOS_1_1::cZoSmBiosProvider& provider,
                          zoerr::Status& status) noexcept {
  if (status.isError()) {
    return;
  }
  const uint32_t devices = deviceCount(provider, status);
  nZOSMBIOS_1_1::tStructuresOfType structures(provider.table(), structureTypeOf(kDeviceSize));
  for (uint32_t device = 0; device < devices && !status.isError(); ++device) {
    uint16_t size = 0;  // unchanged when the field is malformed
    mergeProviderResult(provider.readNextWord(structures, kDeviceSize, size), status);
    if (size != 0) {
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
