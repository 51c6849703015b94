#ifndef SOURCE_USER_EXPORTS_EXCEPTIONBOUNDARY_H
#define SOURCE_USER_EXPORTS_EXCEPTIONBOUNDARY_H

#include <new>

#include "source/user/location.h"
#include "source/user/statuscodes.h"
#include "zoapal/protons/status/zoerrstatus.h"

namespace nQUENRA1400 {

// Runs the operation of an export. Exceptions end here: short memory becomes kOutOfMemory, an
// exception that carries a status becomes that status, any other kInternalError.
template <class Operation>
void runWithoutThrowing(zoerr::Status& status, Operation operation) noexcept {
  constexpr auto kMemoryShort = sessionLocation(1701);
  constexpr auto kUnforeseen = sessionLocation(1702);
  try {
    operation();
  } catch (const std::bad_alloc&) {
    status.set(kOutOfMemory, kMemoryShort);
  } catch (const zoerr::ExceptionBase& exception) {
    status.mergeFrom(exception.status());
  } catch (...) {
    status.set(nZOAPALS100::kInternalError, kUnforeseen);
  }
}

}  // namespace nQUENRA1400

#endif
