#include "source/user/exports/devicepathattribute.h"

#include <cstring>

#include "protocol/interfaces.h"
#include "source/user/location.h"
#include "source/user/statuscodes.h"
#include "zoapal/protons/enumeration/windows/tdeviceinterfaceiterator.h"

namespace nQUENRA1400 {
namespace {

constexpr auto kNoInterface = sessionLocation(1711);
constexpr auto kPathDoesNotFit = sessionLocation(1712);
constexpr auto kBufferMissing = sessionLocation(1713);

}  // namespace

void readDevicePath(char* buffer, uint64_t* size, zoerr::Status& status) noexcept {
  nZOAPALS100::tStatus search;
  nZOAPAL000::tDeviceInterfaceIterator first(kDevicePathInterfaceClass, search);
  if (first.isEnd()) {
    // Interfaces that cannot be listed count as absent.
    status.set(kNoController, kNoInterface);
    return;
  }
  const nZOAPAL000::tDevicePath& path = first.getDevicePath(search);
  status.mergeFrom(search);
  if (path.isEmpty()) {
    return;
  }
  if (size == nullptr || *size < path.length) {
    if (size != nullptr) {
      *size = path.length;
    }
    status.set(kBufferTooSmall, kPathDoesNotFit);
  } else if (buffer == nullptr) {
    status.set(nZOAPALS100::kInvalidParameter, kBufferMissing);
  } else {
    std::memcpy(buffer, path.text, path.length);
  }
}

}  // namespace nQUENRA1400
