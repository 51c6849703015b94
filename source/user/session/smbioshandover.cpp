#include "source/user/session/smbioshandover.h"

#include <algorithm>
#include <bit>
#include <cstdint>
#include <span>

#include "protocol/requestcodes.h"
#include "source/user/attributes/drivercalls.h"
#include "source/user/location.h"
#include "source/user/statuscodes.h"
#include "zoapal/protons/cppnewdelete/memoryallocation.h"

namespace nQUENRA1400 {
namespace {

using nZOAPALS100::tStatus;
using tController = nZOAPAL000::iInterfaceProxy_hostController;

constexpr auto kTableSizeNegative = sessionLocation(301);

// No machine has as large a table; a driver that says so is not worth the memory.
constexpr uint32_t kLargestSize = 1u << 24;

struct tSizes {
  uint32_t text = 0;
  int32_t table = 0;
};

// The first call is expected to end in an error, which is nobody's failure.
tSizes askForSizes(tController& controller, zoerr::Status& status) noexcept {
  tSizes sizes;
  tStatus driver = recordFor(status);
  controller.exchangeValues(0, sizes.text, 0, sizes.table, driver);
  if (driver.code == DRIVER_STATUS_BUFFER_TOO_SMALL) {
    return sizes;
  }
  status.mergeFrom(driver);
  return sizes;
}

// What is not believed is asked for as what there never is, to be told like any memory that is short.
nZOAPAL000::tByteBuffer allocate(uint32_t bytes, tStatus& status) noexcept {
  return nZOAPAL000::allocateZeroedBytes(bytes > kLargestSize ? SIZE_MAX : bytes, status);
}

// What the driver says it has filled counts only as far as it was given room.
size_t filled(uint32_t answered, size_t room) noexcept {
  return std::min<size_t>(answered, room);
}

}  // namespace

void installSmbiosTable(tController& controller, nZOSMBIOS_1_1::cZoSmBiosProvider& provider,
                        zoerr::Status& status) noexcept {
  const tSizes room = askForSizes(controller, status);
  if (status.isError()) {
    return;
  }
  if (room.table < 0) {
    status.set(nZOAPALS100::kMemoryFull, kTableSizeNegative);
    return;
  }
  const auto tableRoom = static_cast<uint32_t>(room.table);
  tStatus allocation;
  // What a driver leaves out although it says to have filled it is nothing, not old memory; and what
  // it promises and does not keep costs nothing.
  const auto text = allocate(room.text, allocation);
  const auto table = allocate(tableRoom, allocation);
  status.mergeFrom(allocation);
  if (status.isError()) {
    return;
  }

  tSizes answered = room;
  tStatus driver = recordFor(status);
  controller.exchangeValues(addressOf(text.get()), answered.text, addressOf(table.get()),
                            answered.table, driver);
  if (driver.isError()) {
    provider.clear();
  } else {
    const void* const version = text.get();
    provider.install({table.get(), filled(std::bit_cast<uint32_t>(answered.table), tableRoom)},
                     {static_cast<const char*>(version), filled(answered.text, room.text)}, driver);
  }
  status.mergeFrom(driver);
}

}  // namespace nQUENRA1400
