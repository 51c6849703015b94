#include "source/user/update/martentext.h"

#include <algorithm>
#include <cstring>
#include <new>

#include "source/user/attributes/drivercalls.h"
#include "source/user/statuscodes.h"

namespace nQUENRA1400 {
namespace {

// No text of a controller is as long; a larger size is not worth its memory.
constexpr uint32_t kLargestSize = 1u << 20;

// Asks once; the size is in the buffer's bytes, out what the driver answered.
uint32_t ask(nZOAPAL000::iInterfaceProxy_hostMarten& marten, uint32_t attribute, char* buffer,
             uint32_t size, zoerr::Status& status) noexcept {
  nZOAPALS100::tStatus record = recordFor(status);
  marten.getAttribute(attribute, addressOf(buffer), size, record);
  status.mergeFrom(record);
  return size;
}

}  // namespace

std::string readMartenText(nZOAPAL000::iInterfaceProxy_hostMarten& marten, uint32_t attribute,
                           zoerr::Status& status) {
  const uint32_t size = ask(marten, attribute, nullptr, 0, status);
  if (status.code == kBufferTooSmall) {
    status.clear();
  }
  if (status.isError() || size == 0) {
    return {};
  }
  if (size > kLargestSize) {
    throw std::bad_alloc();
  }
  std::string text(size, '\0');
  ask(marten, attribute, text.data(), size, status);
  if (status.isError()) {
    return {};
  }
  text.resize(strnlen(text.data(), text.size()));
  return text;
}

}  // namespace nQUENRA1400
