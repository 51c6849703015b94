#include "zoapal/protons/status/exception.h"

#include <utility>

namespace zoerr {

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
