#ifndef ROUTINGADAPTORINTERFACE_CLIENTSTATUS_H
#define ROUTINGADAPTORINTERFACE_CLIENTSTATUS_H

#include <new>
#include <optional>
#include <utility>

#include "quenra_routing.h"
#include "zoapal/protons/startup/processlifetime.h"
#include "zoapal/protons/status/zoerrstatus.h"
#include "zoarkra/failure.h"
#include "zoarkra/routeanswers.h"

namespace zoroco {

// Copies code and description of `source` as zoerr::Status::mergeFrom does, into the client's memory.
// The client's record has the layout of zoerr::Status, but its reallocation function has a type of its
// own and is called as such. The code is stored without a description when that function supplies no
// buffer. When it throws, kInternalError is merged after the code: it replaces a warning, not an error.
void mergeIntoClient(zoerr_Status& client, const zoerr::Status& source) noexcept;

inline constexpr nZOAPALS100::tSourceLocation kExportMemoryShort{
    "routingadaptorinterface\\routingadaptorexports", 61, nZOAPALS100::kComponent,
    "nZOAPALS100::tStatus::kMemoryFull"};
inline constexpr nZOAPALS100::tSourceLocation kExportUnforeseen{
    "routingadaptorinterface\\routingadaptorexports", 74};

// Runs the operation of an export and returns its result, or `neutral` when the client's status holds
// an error afterwards. Without a writable status, or with one that holds an error already, it does not
// run the operation. Exceptions end here: std::bad_alloc becomes kMemoryFull, an exception with a status
// becomes that status, any other kInternalError. The operation's own status starts with the
// client's code.
template <class Result, class Operation>
Result runWithoutThrowing(zoerr_Status* client, Result neutral, Operation operation) noexcept {
  if (client == nullptr || !zoark::isAligned(client) || client->code < 0) {
    return neutral;
  }
  std::optional<Result> result;
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
  if (!result || client->code < 0) {
    return neutral;
  }
  return *std::move(result);
}

// The same for an export without a status: drops every exception.
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
