#include "tests/load/tprogress.h"

#include <cstddef>
#include <iterator>

namespace nTests {
namespace {

constexpr const char* kNames[] = {
    "ended",
    "between two steps",
    "creating a session",
    "calculating a route",
    "reserving a route",
    "programming a route",
    "asking for a path",
    "demoting its own route",
    "waiting to hear of a demotion",
    "unprogramming a route",
    "unreserving a route",
    "destroying a route",
    "walking over the terminals",
    "destroying a session",
    "opening the controller",
    "reading an attribute",
    "writing an attribute",
    "in the self-test",
    "updating firmware",
    "with a request that stays pending",
    "closing the controller",
};
static_assert(std::size(kNames) == static_cast<size_t>(tStep::closeController) + 1);

}  // namespace

const char* nameOf(tStep step) noexcept {
  return kNames[static_cast<size_t>(step)];
}

}  // namespace nTests
