#include "source/user/attributes/providerresult.h"

#include "source/user/location.h"
#include "source/user/statuscodes.h"

namespace nQUENRA1400 {
namespace {

constexpr auto kStringAbsent = sessionLocation(2555);
constexpr auto kBufferShort = sessionLocation(2562);
constexpr auto kFieldAbsent = sessionLocation(2569);

}  // namespace

void mergeProviderResult(int32_t result, zoerr::Status& status) noexcept {
  switch (result) {
    case nZOSMBIOS_1_1::kNoString:
      status.set(kAttributeNotSupported, kStringAbsent);
      break;
    case nZOSMBIOS_1_1::kBufferTooSmall:
      status.set(kBufferTooSmall, kBufferShort);
      break;
    case nZOSMBIOS_1_1::kFieldNotFound:
      status.set(kAttributeNotSupported, kFieldAbsent);
      break;
    default:
      break;
  }
}

}  // namespace nQUENRA1400
