#include "tests/fakewindows/threads.h"

#include <windows.h>

#include <atomic>
#include <chrono>
#include <memory>
#include <mutex>
#include <shared_mutex>
#include <span>
#include <thread>
#include <unordered_map>

#include "tests/fakewindows/faultplan.h"
#include "tests/fakewindows/objects.h"

namespace nFakeWindows {
namespace {

constinit std::atomic<int> criticalSectionsAlive = 0;
constinit std::atomic<unsigned> criticalSectionEntries = 0;

// The lock that implements a section. A member of the section that is otherwise unused stores it.
std::recursive_mutex* mutexOf(CRITICAL_SECTION* section, const char* function) {
  if (section->LockSemaphore == nullptr) {
    stop(function, "the critical section is not initialised");
  }
  return static_cast<std::recursive_mutex*>(section->LockSemaphore);
}

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

int criticalSections() {
  return criticalSectionsAlive;
}

unsigned enteredCriticalSections() {
  return criticalSectionEntries;
}

tSlimLockCounts slimLockCounts() {
  return {sharedAcquisitions, exclusiveAcquisitions};
}

}  // namespace nFakeWindows

using namespace nFakeWindows;

// ---- Events and waits ----

HANDLE WINAPI CreateEventA(SECURITY_ATTRIBUTES* security, BOOL manualReset, BOOL initiallySignalled,
                           LPCSTR name) {
  const tInside inside;
  constexpr auto kCall = tCall::createEvent;
  expectSupported(security == nullptr && name == nullptr, kCall, "only a plain event can be made");
  const std::string reset = manualReset != FALSE ? "manual-reset" : "auto-reset";
  const std::string state = initiallySignalled != FALSE ? "signalled" : "not signalled";
  if (const auto error = faultPlan().enter(kCall, reset + ", " + state)) {
    SetLastError(*error);
    return nullptr;
  }
  const std::lock_guard lock(objects().mutex);
  return objects().add(tEvent{manualReset != FALSE, initiallySignalled != FALSE});
}

namespace {

// Blocks until an object is signalled and returns its index.
size_t waitForAny(tCall call, std::span<const HANDLE> handles) {
  std::unique_lock lock(objects().mutex);
  for (;;) {
    for (size_t i = 0; i < handles.size(); ++i) {
      const std::optional<bool> signalled = objects().isSignalled(handles[i]);
      expectSupported(signalled.has_value(), call,
                      "neither an event nor a thread, or closed already");
      if (*signalled) {
        tEvent* const event = objects().find<tEvent>(handles[i]);
        if (event != nullptr && !event->manualReset) {
          event->signalled = false;
        }
        return i;
      }
    }
    objects().changed.wait(lock);
  }
}

// The run time of a program in milliseconds; none for other handles.
std::optional<DWORD> runTimeOf(HANDLE handle) {
  const std::lock_guard lock(objects().mutex);
  const tProcess* const process = objects().find<tProcess>(handle);
  return process == nullptr ? std::nullopt : std::optional(process->milliseconds);
}

}  // namespace

DWORD WINAPI WaitForSingleObject(HANDLE handle, DWORD milliseconds) {
  const tInside inside;
  constexpr auto kCall = tCall::waitForSingleObject;
  if (const auto error = faultPlan().enter(kCall, std::to_string(milliseconds))) {
    SetLastError(*error);
    return WAIT_FAILED;
  }
  if (const auto runTime = runTimeOf(handle)) {
    // Does not wait: compares the run time of the program with the timeout.
    return *runTime <= milliseconds ? WAIT_OBJECT_0 : WAIT_TIMEOUT;
  }
  expectSupported(milliseconds == INFINITE, kCall, "a timeout is supported for programs only");
  return static_cast<DWORD>(WAIT_OBJECT_0 + waitForAny(kCall, {&handle, 1}));
}

DWORD WINAPI WaitForMultipleObjects(DWORD count, const HANDLE* handles, BOOL all,
                                    DWORD milliseconds) {
  const tInside inside;
  constexpr auto kCall = tCall::waitForMultipleObjects;
  expectSupported(!all && milliseconds == INFINITE, kCall,
                  "only waiting for any without limit is supported");
  if (const auto error = faultPlan().enter(kCall)) {
    SetLastError(*error);
    return WAIT_FAILED;
  }
  return static_cast<DWORD>(WAIT_OBJECT_0 + waitForAny(kCall, {handles, count}));
}

ULONGLONG WINAPI GetTickCount64(void) {
  const auto sinceStart = std::chrono::steady_clock::now().time_since_epoch();
  return static_cast<ULONGLONG>(
      std::chrono::duration_cast<std::chrono::milliseconds>(sinceStart).count());
}

void WINAPI Sleep(DWORD milliseconds) {
  std::this_thread::sleep_for(std::chrono::milliseconds(milliseconds));
}

// ---- Completion ports ----

HANDLE WINAPI CreateIoCompletionPort(HANDLE file, HANDLE port, ULONG_PTR key, DWORD threads) {
  const tInside inside;
  constexpr auto kCall = tCall::createIoCompletionPort;
  expectSupported(threads <= 1, kCall, "an unusual number of threads");
  if (const auto error = faultPlan().enter(kCall)) {
    SetLastError(*error);
    return nullptr;
  }
  const std::lock_guard lock(objects().mutex);
  if (file == INVALID_HANDLE_VALUE && port == nullptr) {
    return objects().add(tPort{});
  }
  tFile* const found = objects().find<tFile>(file);
  // A file keeps its port until it is closed.
  if (found == nullptr || objects().find<tPort>(port) == nullptr || found->port != nullptr) {
    SetLastError(ERROR_INVALID_PARAMETER);
    return nullptr;
  }
  found->port = port;
  found->key = key;
  return port;
}

BOOL WINAPI GetQueuedCompletionStatus(HANDLE handle, LPDWORD bytes, PULONG_PTR key,
                                      LPOVERLAPPED* overlapped, DWORD milliseconds) {
  const tInside inside;
  constexpr auto kCall = tCall::getQueuedCompletionStatus;
  if (const auto error = faultPlan().enter(kCall, std::to_string(milliseconds))) {
    *overlapped = nullptr;
    SetLastError(*error);
    return FALSE;
  }
  std::unique_lock lock(objects().mutex);
  const auto hasPacket = [handle] {
    tPort* const port = objects().find<tPort>(handle);
    expectSupported(port != nullptr, kCall, "not a port, or one that was closed");
    return !port->packets.empty();
  };
  if (milliseconds == INFINITE) {
    objects().changed.wait(lock, hasPacket);
  } else if (!objects().changed.wait_for(lock, std::chrono::milliseconds(milliseconds),
                                         hasPacket)) {
    *overlapped = nullptr;
    SetLastError(WAIT_TIMEOUT);
    return FALSE;
  }
  const tPacket packet = objects().dequeue(*objects().find<tPort>(handle));
  *bytes = packet.bytes;
  *key = packet.key;
  *overlapped = packet.overlapped;
  if (packet.error != 0) {
    SetLastError(packet.error);
  }
  return packet.error == 0;
}

BOOL WINAPI PostQueuedCompletionStatus(HANDLE handle, DWORD bytes, ULONG_PTR key,
                                       LPOVERLAPPED overlapped) {
  const tInside inside;
  constexpr auto kCall = tCall::postQueuedCompletionStatus;
  if (const auto error = faultPlan().enter(kCall)) {
    SetLastError(*error);
    return FALSE;
  }
  const std::lock_guard lock(objects().mutex);
  tPort* const port = objects().find<tPort>(handle);
  expectSupported(port != nullptr, kCall, "not a port, or one that was closed");
  port->packets.push_back({bytes, key, overlapped, 0, false});
  objects().changed.notify_all();
  return TRUE;
}

// ---- Critical sections and slim reader/writer locks ----

BOOL WINAPI InitializeCriticalSectionEx(CRITICAL_SECTION* section, DWORD, DWORD flags) {
  const tInside inside;
  expectSupported(flags == 0, tCall::initializeCriticalSectionEx, "flags are not supported");
  if (const auto error = faultPlan().enter(tCall::initializeCriticalSectionEx)) {
    SetLastError(*error);
    return FALSE;
  }
  *section = {};
  section->LockSemaphore = new std::recursive_mutex;
  ++criticalSectionsAlive;
  return TRUE;
}

void WINAPI EnterCriticalSection(CRITICAL_SECTION* section) {
  mutexOf(section, "EnterCriticalSection")->lock();
  ++criticalSectionEntries;
}

void WINAPI LeaveCriticalSection(CRITICAL_SECTION* section) {
  mutexOf(section, "LeaveCriticalSection")->unlock();
}

void WINAPI DeleteCriticalSection(CRITICAL_SECTION* section) {
  const tInside inside;
  delete mutexOf(section, "DeleteCriticalSection");
  section->LockSemaphore = nullptr;
  --criticalSectionsAlive;
}

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
