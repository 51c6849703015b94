#ifndef ROUTINGADAPTORINTERFACE_EXCEPTIONBOUNDARY_H
#define ROUTINGADAPTORINTERFACE_EXCEPTIONBOUNDARY_H

#include <new>

#include "quenra_routing.h"
#include "routingadaptorinterface/clientstatus.h"
#include "zoapal/protons/startup/tstartup.h"
#include "zoapal/protons/status/exception.h"
#include "zoarkra/location.h"
#include "zoarkra/tclientoutput.h"

namespace zoroco {

inline constexpr nZOAPALS100::tSourceLocation kExportMemoryShort{
    "routingadaptorinterface\\routingadaptorexports", 61, nZOAPALS100::kComponent,
    "nZOAPALS100::tStatus::kMemoryFull"};
inline constexpr nZOAPALS100::tSourceLocation kExportUnforeseen{
    "routingadaptorinterface\\routingadaptorexports", 74};

// Runs what an export does and gives its result; `neutral` when that fails, or when the client's
// status holds an error, or when there is none that can be written, and nothing is run. Nothing that is thrown inside
// leaves it: short memory becomes kMemoryFull, an exception that carries a status that status,
// anything else kInternalError. The operation's own status begins with the client's code.
template <class Result, class Operation>
Result runWithoutThrowing(zoerr_Status* client, Result neutral, Operation operation) noexcept {
  if (client == nullptr || !zoark::isAligned(client) || client->code < 0) {
    return neutral;
  }
  Result result = neutral;
  zoerr::tOwnedStatus status;
  status.code = client->code;
  nQUENRA1400::nZOAPAL000::startUp().mergeInto(status);
  try {
    if (!status.isError()) {
      result = operation(status);
    }
  } catch (const std::bad_alloc&) {
    status.setWithConstant(nZOAPALS100::kMemoryFull, kExportMemoryShort);
  } catch (const zoerr::ExceptionBase& exception) {
    status.mergeFrom(exception.status());
  } catch (...) {
    status.set(nZOAPALS100::kInternalError, kExportUnforeseen);
  }
  mergeIntoClient(*client, status);
  return result;
}

// The same for an export that reports nothing: whatever is thrown is dropped.
template <class Result, class Operation>
Result runSilently(Result neutral, Operation operation) noexcept {
  try {
    return operation();
  } catch (...) {
    return neutral;
  }
}

}  // namespace zoroco

#endif
