#include "source/user/update/martentext.h"

#include <algorithm>
#include <cstring>
#include <new>

#include "source/user/attributes/drivercalls.h"
#include "source/user/statuscodes.h"

namespace nQUENRA1400 {
namespace {

// Far more than any text of a controller. A larger size is implausible and treated as short memory.
constexpr uint32_t kMaxSize = 1u << 20;

// Sends one request for a buffer of `size` bytes, and returns the size that the driver reports.
uint32_t request(nZOAPAL000::iInterfaceProxy_hostMarten& marten, uint32_t attribute, char* buffer,
                 uint32_t size, zoerr::Status& status) noexcept {
  nZOAPALS100::tStatus record = recordFor(status);
  marten.getAttribute(attribute, addressOf(buffer), size, record);
  status.mergeFrom(record);
  return size;
}

}  // namespace

std::string readMartenText(nZOAPAL000::iInterfaceProxy_hostMarten& marten, uint32_t attribute,
                           zoerr::Status& status) {
  const uint32_t size = request(marten, attribute, nullptr, 0, status);
  if (status.code == kBufferTooSmall) {
    status.clear();
  }
  if (status.isError() || size == 0) {
    return {};
  }
  if (size > kMaxSize) {
    throw std::bad_alloc();
  }
  std::string text(size, '\0');
  request(marten, attribute, text.data(), size, status);
  if (status.isError()) {
    return {};
  }
  text.resize(strnlen(text.data(), text.size()));
  return text;
}

}  // namespace nQUENRA1400
