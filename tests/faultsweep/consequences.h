// The contract's consequences of a failed Windows call.
#ifndef TESTS_FAULTSWEEP_CONSEQUENCES_H
#define TESTS_FAULTSWEEP_CONSEQUENCES_H

#include <cstdint>
#include <span>
#include <string>
#include <vector>

#include "tests/fakewindows/faultplan.h"

namespace nTests {

// A Windows error and its status code.
struct tErrorRow {
  uint32_t error;
  int32_t code;
};
// All errors with their own status code, one without, and 0: a failure that sets no error.
[[nodiscard]] std::span<const tErrorRow> errorRows();

// A call of the library that can fail.
struct tCallSite {
  nFakeWindows::tCall call;
  unsigned nth;            // call of its function
  std::string argument;    // as in the record of calls
  std::string belongsTo;   // the class of a listing, the device of an event
  bool isAwaited = false;  // a request that becomes pending and is waited for
};

// Derives the sites of a run from its record.
[[nodiscard]] std::vector<tCallSite> callSitesOf(
    const std::vector<nFakeWindows::tCallRecord>& record);

// The requests among them for which the library waits, marked as pending first.
[[nodiscard]] std::vector<tCallSite> awaitedRequestsOf(
    const std::vector<nFakeWindows::tCallRecord>& record);

enum class tConsequence : uint8_t {
  none,              // not reported
  code,              // the step reports it
  withoutMarten,     // continues without a Marten; opening may report a warning
  withoutDemotions,  // the session is created with a warning; demotions are not delivered
  notAFailure,       // the call does not fail with this error
};

struct tExpectation {
  tConsequence consequence;
  int32_t code = 0;
};

// The consequence required when the call at a site fails for a reason.
[[nodiscard]] tExpectation expectationOf(const tCallSite& site, const tErrorRow& reason);

// The error as the function reports it.
[[nodiscard]] uint32_t errorReportedBy(nFakeWindows::tCall call, uint32_t error);

}  // namespace nTests

#endif
