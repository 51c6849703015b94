#include "source/user/machine/smbiosfields.h"

#include <new>

namespace nQUENRA1400 {
namespace {

using nPlatformFields::kMemoryDeviceCount;
using nPlatformFields::kMemorySize;

constexpr auto kListDoesNotGrow = sessionLocation(421);
constexpr auto kIndexBeyondCount = sessionLocation(2534);

}  // namespace

// Enumerates the devices: to read them by instance would walk the table for each of them when memory
// for its index is short.
void tMemoryModules::find(nZOSMBIOS_1_1::cZoSmBiosProvider& provider,
                          zoerr::Status& status) noexcept {
  if (status.isError()) {
    return;
  }
  uint16_t devices = 0;  // unchanged when the field is malformed
  mergeProviderResult(provider.readWord(kMemoryDeviceCount, 0, &devices), status);
  nZOSMBIOS_1_1::tStructuresOfType structures(provider.table(),
                                              nZOSMBIOS_1_1::structureTypeOf(kMemorySize));
  for (uint32_t device = 0; device < devices && !status.isError(); ++device) {
    uint16_t size = 0;  // unchanged when the field is malformed
    mergeProviderResult(provider.readNextWord(structures, kMemorySize, size), status);
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
    status.set(QUENRA_STATUS_NOT_SUPPORTED, kIndexBeyondCount);
    return 0;
  }
  return instances_[index];
}

}  // namespace nQUENRA1400
