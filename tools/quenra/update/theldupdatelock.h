#ifndef TOOLS_QUENRA_UPDATE_THELDUPDATELOCK_H
#define TOOLS_QUENRA_UPDATE_THELDUPDATELOCK_H

#include <ostream>

#include "tools/quenra/interruption/iinterruption.h"
#include "tools/quenra/update/iupdatelock.h"

namespace nCommandLine {

// Holds the lock of updates. Two updates at once would mix their firmware and restore each other's
// version marker.
class tHeldUpdateLock {
 public:
  // Waits for another update with a message on `error`, until the user interrupts. Throws tCommandError
  // when interrupted, when the lock cannot be used, and without `waits` when another update runs.
  tHeldUpdateLock(iUpdateLock& lock, iInterruption& interruption, std::ostream& error, bool waits);
  tHeldUpdateLock(const tHeldUpdateLock&) = delete;
  tHeldUpdateLock& operator=(const tHeldUpdateLock&) = delete;
  ~tHeldUpdateLock() { lock_.release(); }

 private:
  iUpdateLock& lock_;
};

}  // namespace nCommandLine

#endif
