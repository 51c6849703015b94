#ifndef ZOAPAL_PROTONS_STATUS_EXCEPTION_H
#define ZOAPAL_PROTONS_STATUS_EXCEPTION_H

#include <exception>

#include "zoapal/protons/status/zoerrstatus.h"

namespace zoerr {

// Carries a status from the failing operation to an exported function. No member throws; if memory for
// a copy of the description is short, only the code is copied.
class ExceptionBase {
 public:
  ExceptionBase() noexcept = default;
  // Copies the code. Takes ownership of the description if both statuses use the default reallocation
  // function, and leaves the source without one; otherwise copies its text. A status of success leaves
  // the exception empty.
  explicit ExceptionBase(Status& status) noexcept;
  // Copies code and text.
  explicit ExceptionBase(const Status& status) noexcept;
  ExceptionBase(const ExceptionBase& other) noexcept;
  ExceptionBase& operator=(const ExceptionBase& other) noexcept;
  virtual ~ExceptionBase();

  [[nodiscard]] const Status& status() const noexcept { return status_; }

 private:
  Status status_;
};

// The exception that the library throws. Catch it by reference, after std::bad_alloc.
class Exception : public virtual ExceptionBase, public virtual std::exception {
 public:
  Exception() noexcept = default;
  explicit Exception(Status& status) noexcept : ExceptionBase(status) {}
  explicit Exception(const Status& status) noexcept : ExceptionBase(status) {}
  Exception(const Exception&) noexcept = default;
  Exception& operator=(const Exception&) noexcept = default;
  ~Exception() override;

  // The description as JSON text; empty if there is none.
  [[nodiscard]] const char* what() const noexcept override;
};

}  // namespace zoerr

#endif
