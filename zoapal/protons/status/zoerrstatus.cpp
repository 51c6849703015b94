#include "zoapal/protons/status/zoerrstatus.h"

#include <algorithm>
#include <bit>
#include <cstdlib>
#include <cstring>
#include <utility>

#include "zoapal/protons/status/descriptionwriter.h"

namespace zoerr {
namespace {

using nZOAPALS100::tSourceLocation;
using nZOAPALS100::tStatus;

constexpr uint32_t kFirstCapacity = 512;
constexpr uint32_t kMaxCapacity = 0x7FFFFFFF;
// The capacity that mergeFrom ensures before it appends: 256 bytes, a NUL and the marker.
constexpr uint32_t kCapacityForLocation = 258;

}  // namespace

bool defaultReallocate(Status& status, uint32_t newCapacity) noexcept {
  if (newCapacity == 0) {
    std::free(status.description);
    status.description = nullptr;
    status.capacity = 0;
    return true;
  }
  if (newCapacity <= status.capacity) {
    return true;
  }
  if (newCapacity > kMaxCapacity) {
    return false;
  }
  const uint32_t size = std::bit_ceil(std::max(newCapacity, kFirstCapacity));
  auto* const buffer = static_cast<char*>(std::malloc(size));
  if (buffer == nullptr) {
    return false;
  }
  resetDescription(buffer, size);
  if (status.description != nullptr) {
    const size_t length = strnlen(status.description, status.capacity);
    std::memset(buffer, 0, kEmptyDescription.size());
    std::memcpy(buffer, status.description, length);
  }
  std::free(status.description);
  status.description = buffer;
  status.capacity = size;
  return true;
}

bool Status::set(int32_t newCode, const tSourceLocation& location) noexcept {
  if (!nZOAPALS100::replacesCode(code, newCode)) {
    return false;
  }
  code = newCode;
  resetExistingDescription();
  static_cast<void>(ensureCapacity(kMinDescription) && appendLocation(location));
  return true;
}

bool Status::setWithConstant(int32_t newCode, const tSourceLocation& location) noexcept {
  if (!nZOAPALS100::replacesCode(code, newCode)) {
    return false;
  }
  code = newCode;
  resetExistingDescription();
  static_cast<void>(ensureCapacity(kMinDescription) &&
                    appendTextMember("error_constant", location.errorConstant) &&
                    appendLocation(location));
  return true;
}

bool Status::mergeFrom(const tStatus& source) noexcept {
  if (!nZOAPALS100::replacesCode(code, source.code)) {
    return true;
  }
  code = source.code;
  resetExistingDescription();
  if (!source.isFull()) {
    return true;
  }
  if (source.file[0] != '\0' &&
      !(ensureCapacity(kCapacityForLocation) && appendTextMember("file", source.file) &&
        appendLineMember(source.line))) {
    return false;
  }
  return source.component[0] == '\0' ||
         (ensureCapacity(kCapacityForLocation) && appendTextMember("component", source.component));
}

bool Status::mergeFrom(const Status& source) noexcept {
  if (!nZOAPALS100::replacesCode(code, source.code)) {
    return true;
  }
  code = source.code;
  resetExistingDescription();
  const std::string_view text = descriptionText(source.description, source.capacity);
  if (text.empty()) {
    return true;
  }
  // With the text's NUL and the marker.
  const auto needed = static_cast<uint32_t>(text.size() + 2);
  if (!ensureCapacity(needed) || capacity < needed) {
    return false;
  }
  replaceDescription(description, capacity, text);
  return true;
}

void Status::clear() noexcept {
  code = 0;
  releaseDescription();
}

void Status::releaseDescription() noexcept {
  if (description == nullptr) {
    return;
  }
  if (reallocate == &defaultReallocate) {
    std::free(description);
    description = nullptr;
    capacity = 0;
  } else if (reallocate != nullptr) {
    reallocate(*this, 0);
  }
}

bool Status::ensureCapacity(uint32_t needed) noexcept {
  if (description != nullptr && capacity >= needed) {
    return true;
  }
  return reallocate != nullptr && reallocate(*this, needed) && description != nullptr;
}

// One step of growth. A reallocation function that returns true without enlarging the buffer fails it.
bool Status::grow() noexcept {
  const uint64_t wanted = uint64_t{capacity} * 2 - 4;
  const uint32_t before = capacity;
  return wanted <= kMaxCapacity && reallocate != nullptr &&
         reallocate(*this, static_cast<uint32_t>(wanted)) && capacity > before;
}

void Status::resetExistingDescription() noexcept {
  if (description != nullptr && capacity >= kMinDescription) {
    resetDescription(description, capacity);
  }
}

template <class Append>
bool Status::appendGrowing(Append append) noexcept {
  for (;;) {
    if (append(description, capacity) != tAppendResult::noSpace) {
      return true;
    }
    if (!grow()) {
      return false;
    }
  }
}

bool Status::appendTextMember(const char* key, const char* value) noexcept {
  const std::string_view text = value == nullptr ? std::string_view() : std::string_view(value);
  return appendGrowing([key, text](char* buffer, uint32_t size) noexcept {
    return appendText(buffer, size, key, text);
  });
}

bool Status::appendLineMember(uint32_t line) noexcept {
  // The member is a signed number: a line above 2^31 - 1 becomes a negative one.
  return appendGrowing([line](char* buffer, uint32_t size) noexcept {
    return appendInteger(buffer, size, "line", static_cast<int32_t>(line));
  });
}

bool Status::appendLocation(const tSourceLocation& location) noexcept {
  return appendTextMember("file", location.file) && appendLineMember(location.line) &&
         appendTextMember("component", location.component);
}

// ---- Exceptions ----

ExceptionBase::ExceptionBase(Status& status) noexcept {
  if (status.code == 0) {
    return;
  }
  if (status.reallocate == status_.reallocate) {
    status_.code = status.code;
    status_.capacity = std::exchange(status.capacity, 0);
    status_.description = std::exchange(status.description, nullptr);
  } else {
    status_.mergeFrom(status);
  }
}

ExceptionBase::ExceptionBase(const Status& status) noexcept {
  status_.mergeFrom(status);
}

ExceptionBase::ExceptionBase(const ExceptionBase& other) noexcept : ExceptionBase(other.status_) {}

ExceptionBase& ExceptionBase::operator=(const ExceptionBase& other) noexcept {
  if (this != &other) {
    status_.clear();
    status_.mergeFrom(other.status_);
  }
  return *this;
}

ExceptionBase::~ExceptionBase() {
  status_.releaseDescription();
}

Exception::~Exception() = default;

const char* Exception::what() const noexcept {
  return status().description == nullptr ? "" : status().description;
}

}  // namespace zoerr
