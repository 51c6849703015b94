// The boundary between callers of the exports and the library.
#ifndef SOURCE_USER_EXPORTS_CALLBOUNDARY_H
#define SOURCE_USER_EXPORTS_CALLBOUNDARY_H

#include <cstdint>
#include <cstring>
#include <new>

#include "source/user/failuresites.h"
#include "zoapal/protons/status/zoerrstatus.h"

namespace nQUENRA1400 {

// Runs the operation of an export. Exceptions end here: short memory becomes QUENRA_STATUS_OUT_OF_MEMORY, an
// exception that carries a status becomes that status, any other kInternalError.
template <class Operation>
void runWithoutThrowing(zoerr::Status& status, Operation operation) noexcept {
  constexpr auto kMemoryShort = sessionLocation(1701);
  constexpr auto kUnforeseen = sessionLocation(1702);
  try {
    operation();
  } catch (const std::bad_alloc&) {
    status.set(QUENRA_STATUS_OUT_OF_MEMORY, kMemoryShort);
  } catch (const zoerr::ExceptionBase& exception) {
    status.mergeFrom(exception.status());
  } catch (...) {
    status.set(nZOAPALS100::kInternalError, kUnforeseen);
  }
}

// Access to a possibly misaligned variable of the caller, through a copy that the destructor writes
// back.
template <class Number>
class tCallersNumber {
 public:
  explicit tCallersNumber(Number* callers) noexcept
      : callers_(callers), isAligned_(reinterpret_cast<uintptr_t>(callers) % alignof(Number) == 0) {
    if (!isAligned_) {
      std::memcpy(&copy_, callers_, sizeof copy_);
    }
  }
  tCallersNumber(const tCallersNumber&) = delete;
  tCallersNumber& operator=(const tCallersNumber&) = delete;
  ~tCallersNumber() {
    if (!isAligned_) {
      std::memcpy(callers_, &copy_, sizeof copy_);
    }
  }

  // Null if the caller passes none.
  [[nodiscard]] Number* get() noexcept {
    return isAligned_ ? static_cast<Number*>(callers_) : &copy_;
  }

 private:
  // Untyped: compilers assume that a typed pointer is aligned.
  void* const callers_;
  const bool isAligned_;
  Number copy_{};
};

}  // namespace nQUENRA1400

#endif
