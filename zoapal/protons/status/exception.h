#ifndef ZOAPAL_PROTONS_STATUS_EXCEPTION_H
#define ZOAPAL_PROTONS_STATUS_EXCEPTION_H

#include <exception>

#include "zoapal/protons/status/zoerrstatus.h"

namespace zoerr {

// Carries a status from where it arose to an exported function. No member throws; where memory for a
// copy of the description is short, the code travels alone.
class ExceptionBase {
 public:
  ExceptionBase() noexcept = default;
  // Takes over the code, and the description where both sides keep theirs in the same way: the
  // status then has none. Else the text is copied. A status of success leaves the exception empty.
  explicit ExceptionBase(Status& status) noexcept;
  // Copies code and text; what is copied stays as it is.
  explicit ExceptionBase(const Status& status) noexcept;
  ExceptionBase(const ExceptionBase& other) noexcept;
  ExceptionBase& operator=(const ExceptionBase& other) noexcept;
  virtual ~ExceptionBase();

  [[nodiscard]] const Status& status() const noexcept { return status_; }

 private:
  Status status_;
};

// What is thrown. Catch it by reference, std::bad_alloc before it.
class Exception : public virtual ExceptionBase, public virtual std::exception {
 public:
  Exception() noexcept = default;
  explicit Exception(Status& status) noexcept : ExceptionBase(status) {}
  explicit Exception(const Status& status) noexcept : ExceptionBase(status) {}
  Exception(const Exception&) noexcept = default;
  Exception& operator=(const Exception&) noexcept = default;
  ~Exception() override;

  // The description, JSON text; empty when there is none.
  [[nodiscard]] const char* what() const noexcept override;
};

}  // namespace zoerr

#endif
