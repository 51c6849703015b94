#include "tests/load/watchdog.h"

#include <sstream>
#include <utility>

namespace nTests {

void tWatchdog::watch(std::string who, const tProgress& progress) {
  watched_.push_back({std::move(who), &progress, progress.moves(), tClock::now()});
}

bool tWatchdog::seesAStuckThread(tClock::time_point now) {
  bool found = false;
  for (tWatched& watched : watched_) {
    const uint64_t moves = watched.progress->moves();
    if (moves != watched.moves || watched.progress->step() == tStep::ended) {
      watched.moves = moves;
      watched.since = now;
    }
    found = found || now - watched.since > patience_;
  }
  return found;
}

std::string tWatchdog::report(tClock::time_point now) const {
  std::ostringstream text;
  for (const tWatched& watched : watched_) {
    const std::chrono::duration<double> standing = now - watched.since;
    text << watched.who << ": " << nameOf(watched.progress->step()) << " for " << std::fixed;
    text.precision(1);
    text << standing.count() << " s, step " << watched.progress->moves()
         << (now - watched.since > patience_ ? "  <- stuck\n" : "\n");
  }
  return text.str();
}

}  // namespace nTests
