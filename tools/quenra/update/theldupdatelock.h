#ifndef TOOLS_QUENRA_UPDATE_THELDUPDATELOCK_H
#define TOOLS_QUENRA_UPDATE_THELDUPDATELOCK_H

#include <ostream>

#include "tools/quenra/output/waiting.h"
#include "tools/quenra/update/iupdatelock.h"

namespace nCommandLine {

// Holds the lock of updates. Concurrent updates would mix their firmware and restore each other's
// version marker.
class tHeldUpdateLock {
 public:
  // If another update holds the lock, prints a message to `error` and waits; throws tCommandError
  // instead if `waits` is false. Also throws it on an interruption and on a failure of the lock.
  tHeldUpdateLock(iUpdateLock& lock, iInterruption& interruption, std::ostream& error, bool waits);
  tHeldUpdateLock(const tHeldUpdateLock&) = delete;
  tHeldUpdateLock& operator=(const tHeldUpdateLock&) = delete;
  ~tHeldUpdateLock() { lock_.release(); }

 private:
  iUpdateLock& lock_;
};

}  // namespace nCommandLine

#endif
