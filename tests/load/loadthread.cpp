#include "tests/load/loadthread.h"

#include <cstddef>
#include <iterator>
#include <sstream>
#include <utility>

namespace nTests {
namespace {

constexpr const char* kNames[] = {
    "ended",
    "between two steps",
    "creating a session",
    "calculating a route",
    "reserving a route",
    "programming a route",
    "reading a path",
    "demoting its own route",
    "waiting for a demotion",
    "unprogramming a route",
    "unreserving a route",
    "destroying a route",
    "iterating over the terminals",
    "destroying a session",
    "opening the controller",
    "reading an attribute",
    "writing an attribute",
    "in the self-test",
    "updating firmware",
    "with a pending request",
    "closing the controller",
};
static_assert(std::size(kNames) == static_cast<size_t>(tStep::closeController) + 1);

}  // namespace

const char* nameOf(tStep step) noexcept {
  return kNames[static_cast<size_t>(step)];
}

void tWatchdog::watch(std::string thread, const tProgress& progress) {
  watched_.push_back({std::move(thread), &progress, progress.moves(), tClock::now()});
}

bool tWatchdog::hasStuckThread(tClock::time_point now) {
  bool found = false;
  for (tWatched& watched : watched_) {
    const uint64_t moves = watched.progress->moves();
    if (moves != watched.moves || watched.progress->step() == tStep::ended) {
      watched.moves = moves;
      watched.since = now;
    }
    found = found || now - watched.since > timeout_;
  }
  return found;
}

std::string tWatchdog::report(tClock::time_point now) const {
  std::ostringstream text;
  for (const tWatched& watched : watched_) {
    const std::chrono::duration<double> duration = now - watched.since;
    text << watched.thread << ": " << nameOf(watched.progress->step()) << " for " << std::fixed;
    text.precision(1);
    text << duration.count() << " s, step " << watched.progress->moves()
         << (now - watched.since > timeout_ ? "  <- stuck\n" : "\n");
  }
  return text.str();
}

}  // namespace nTests
