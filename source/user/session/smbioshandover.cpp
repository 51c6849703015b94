#include "source/user/session/smbioshandover.h"

#include <algorithm>
#include <bit>
#include <cstdint>
#include <span>

#include "protocol/controllerrequests.h"
#include "source/user/attributes/drivercalls.h"
#include "source/user/location.h"
#include "source/user/statuscodes.h"
#include "zoapal/protons/cppnewdelete/memoryallocation.h"

namespace nQUENRA1400 {
namespace {

using nZOAPALS100::tStatus;
using tController = nZOAPAL000::iInterfaceProxy_hostController;

constexpr auto kTableSizeNegative = sessionLocation(301);

// No machine has a table or a version text as large: a larger size is reported as out of memory.
constexpr uint32_t kMaxSize = 1u << 24;

struct tSizes {
  uint32_t text = 0;
  int32_t table = 0;
};

// Queries the sizes of text and table. The driver answers the query, which offers no buffers, with
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

// Reports an implausible size as out of memory without allocating.
nZOAPAL000::tByteBuffer allocate(uint32_t bytes, tStatus& status) noexcept {
  return nZOAPAL000::allocateZeroedBytes(bytes > kMaxSize ? SIZE_MAX : bytes, status);
}

// The bytes that the driver can have filled when it reports `reported`.
size_t filled(uint32_t reported, size_t capacity) noexcept {
  return std::min<size_t>(reported, capacity);
}

}  // namespace

void installSmbiosTable(tController& controller, nZOSMBIOS_1_1::cZoSmBiosProvider& provider,
                        zoerr::Status& status) noexcept {
  const tSizes capacity = querySizes(controller, status);
  if (status.isError()) {
    return;
  }
  if (capacity.table < 0) {
    status.set(nZOAPALS100::kMemoryFull, kTableSizeNegative);
    return;
  }
  const auto tableCapacity = static_cast<uint32_t>(capacity.table);
  tStatus allocation;
  // Zeroed: a driver that fills less than it reports must not expose heap contents. Zeroed pages that
  // the driver does not fill take no memory.
  const auto text = allocate(capacity.text, allocation);
  const auto table = allocate(tableCapacity, allocation);
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

}  // namespace nQUENRA1400
