#include <windows.h>

#include <memory>
#include <mutex>
#include <unordered_map>

#include "tests/fakewindows/unusual.h"

using namespace nFakeWindows;

namespace {

// The lock behind each address that was ever used as one; an address that is used again finds a lock
// that nobody holds.
std::mutex& mutexOf(const SRWLOCK* lock) {
  static std::mutex& tableMutex = *new std::mutex;
  static auto& table = *new std::unordered_map<const SRWLOCK*, std::unique_ptr<std::mutex>>;
  const std::lock_guard guard(tableMutex);
  std::unique_ptr<std::mutex>& found = table[lock];
  if (!found) {
    found = std::make_unique<std::mutex>();
  }
  return *found;
}

}  // namespace

void WINAPI AcquireSRWLockExclusive(PSRWLOCK lock) {
  const tInside inside;
  mutexOf(lock).lock();
}

void WINAPI ReleaseSRWLockExclusive(PSRWLOCK lock) {
  const tInside inside;
  mutexOf(lock).unlock();
}
