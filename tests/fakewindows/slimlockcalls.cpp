#include <windows.h>

#include <atomic>
#include <memory>
#include <mutex>
#include <shared_mutex>
#include <unordered_map>

#include "tests/fakewindows/slimlocks.h"
#include "tests/fakewindows/unusual.h"

namespace nFakeWindows {
namespace {

constinit std::atomic<unsigned> sharedAcquisitions = 0;
constinit std::atomic<unsigned> exclusiveAcquisitions = 0;

// Maps the address of a lock to the mutex that implements it. Windows has no call to destroy a
// lock, so a mutex exists until the program ends; a new lock at the same address finds it unlocked.
std::shared_mutex& mutexOf(const SRWLOCK* lock) {
  static std::mutex& tableMutex = *new std::mutex;
  static auto& table = *new std::unordered_map<const SRWLOCK*, std::unique_ptr<std::shared_mutex>>;
  const std::lock_guard guard(tableMutex);
  std::unique_ptr<std::shared_mutex>& found = table[lock];
  if (!found) {
    found = std::make_unique<std::shared_mutex>();
  }
  return *found;
}

}  // namespace

tSlimLockCounts slimLockCounts() {
  return {sharedAcquisitions, exclusiveAcquisitions};
}

}  // namespace nFakeWindows

using namespace nFakeWindows;

void WINAPI AcquireSRWLockExclusive(PSRWLOCK lock) {
  const tInside inside;
  mutexOf(lock).lock();
  ++exclusiveAcquisitions;
}

void WINAPI ReleaseSRWLockExclusive(PSRWLOCK lock) {
  const tInside inside;
  mutexOf(lock).unlock();
}

void WINAPI AcquireSRWLockShared(PSRWLOCK lock) {
  const tInside inside;
  mutexOf(lock).lock_shared();
  ++sharedAcquisitions;
}

void WINAPI ReleaseSRWLockShared(PSRWLOCK lock) {
  const tInside inside;
  mutexOf(lock).unlock_shared();
}
