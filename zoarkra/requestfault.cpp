#include "zoarkra/requestfault.h"

#include "zoapal/protons/trace/debugprintf.h"
#include "zoarkra/failure.h"

namespace zoark {

void raiseRequestFault(const tFoundFault& found, const char* document) {
  constexpr const char* kDebugComponent = "zoroco_debug";
  const char* const message = found.fault->message;
  nQUENRA1400::nZOAPAL000::debugPrintf("[%s] %s\n", kDebugComponent, message);
  zoerr::tOwnedStatus status;
  status.setWithConstant(nZOAPALS100::kInvalidParameter,
                         requestLocation(found.fault->line, kInvalidParameterConstant));
  appendMember(status, kDebugComponent, message);
  appendMember(status, "json", document == nullptr ? "" : document);
  if (found.mismatch) {
    appendMember(status, "constraint", found.mismatch->constraint);
    appendMember(status, "expected_type", nameOf(found.mismatch->expected));
    appendMember(status, "actual_type", nameOf(found.mismatch->actual));
  }
  if (found.offset) {
    appendMember(status, "offset", *found.offset);
  }
  throw zoerr::Exception(status);
}

}  // namespace zoark
