#include "zoarkra/failure.h"

#include "zoapal/protons/status/descriptionwriter.h"
#include "zoapal/protons/status/zoerrstatus.h"

namespace zoark {
namespace {

using zoerr::Status;
using zoerr::tAppendResult;

// One step of growth. A reallocation function that succeeds without more capacity ends it.
bool grow(Status& status) noexcept {
  constexpr uint64_t kMaxRequest = 0x7FFFFFFF;
  const uint64_t grown = uint64_t{status.capacity} * 2 - 4;
  const uint32_t before = status.capacity;
  return status.description != nullptr && grown <= kMaxRequest &&
         status.reallocate(status, static_cast<uint32_t>(grown)) && status.capacity > before;
}

template <class Append>
void appendGrowing(Status& status, Append append) noexcept {
  while (append(status.description, status.capacity) == tAppendResult::noSpace && grow(status)) {
  }
}

}  // namespace

void appendMember(Status& status, std::string_view key, std::string_view text) noexcept {
  appendGrowing(status, [=](char* buffer, uint32_t capacity) noexcept {
    return zoerr::appendText(buffer, capacity, key, text);
  });
}

void appendMember(Status& status, std::string_view key, uint64_t number) noexcept {
  appendGrowing(status, [=](char* buffer, uint32_t capacity) noexcept {
    return zoerr::appendUnsigned(buffer, capacity, key, number);
  });
}

void raise(int32_t code, const nZOAPALS100::tSourceLocation& location) {
  zoerr::tOwnedStatus status;
  if (location.errorConstant == nullptr) {
    status.set(code, location);
  } else {
    status.setWithConstant(code, location);
  }
  throw zoerr::Exception(status);
}

nZOAPALS100::tStatus statusForDriver(const zoerr::Status& status) noexcept {
  nZOAPALS100::tStatus driver;
  driver.code = status.code;
  return driver;
}

void mergeDriverStatus(const nZOAPALS100::tStatus& driver, zoerr::Status& status) {
  if (driver.isError()) {
    zoerr::tOwnedStatus failure;
    failure.mergeFrom(driver);
    throw zoerr::Exception(failure);
  }
  status.mergeFrom(driver);
}

}  // namespace zoark
