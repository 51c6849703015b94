// What follows from a Windows call that fails, as the contract has it.
#ifndef TESTS_CATALOGUE_CONSEQUENCES_H
#define TESTS_CATALOGUE_CONSEQUENCES_H

#include <cstdint>
#include <span>
#include <string>
#include <vector>

#include "tests/catalogue/trun.h"

namespace nTests {

// A Windows error, and the status code that it stands for.
struct tErrorRow {
  uint32_t error;
  int32_t code;
};
// All errors that have a code of their own, one that has none, and none at all.
[[nodiscard]] std::span<const tErrorRow> errorRows();

// A call of the library that can fail.
struct tPlace {
  nFakeWindows::tCall call;
  unsigned nth;            // of its function
  std::string argument;    // as the record of calls has it
  std::string belongsTo;   // of a listing its class, of an event its device
  bool isAwaited = false;  // a request that is pending first, and whose end is waited for
};

// The places of a run, from its record.
[[nodiscard]] std::vector<tPlace> placesOf(const std::vector<nFakeWindows::tCallRecord>& record);

// The requests among them whose ends the library waits for, as if they were pending first.
[[nodiscard]] std::vector<tPlace> awaitedRequestsOf(
    const std::vector<nFakeWindows::tCallRecord>& record);

enum class tConsequence : uint8_t {
  none,           // nobody needs to know
  code,           // the step reports it
  withoutMarten,  // there is no Marten then; opening may report a warning
  untold,         // there is a session, with a warning, and nobody is told of demotions
  notAFailure,    // the call does not fail with this error
};

struct tExpectation {
  tConsequence consequence;
  int32_t code = 0;
};

// What is to follow when the call at a place fails for a reason.
[[nodiscard]] tExpectation expectationOf(const tPlace& place, const tErrorRow& reason);

// The error as the function tells it.
[[nodiscard]] uint32_t errorAsToldBy(nFakeWindows::tCall call, uint32_t error);

}  // namespace nTests

#endif
