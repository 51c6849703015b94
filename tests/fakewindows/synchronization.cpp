#include "tests/fakewindows/threads.h"

#include <windows.h>

#include <algorithm>
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

// Its address identifies the thread.
constinit thread_local char thisThread = 0;

// Implements a critical section. A member of the section that is otherwise unused refers to it.
struct tSection {
  std::recursive_mutex mutex;
  std::atomic<const void*> owner = nullptr;
  unsigned depth = 0;
};

tSection& implementationOf(CRITICAL_SECTION* section, const char* function) {
  if (section->LockSemaphore == nullptr) {
    stop(function, "the critical section is not initialised");
  }
  return *static_cast<tSection*>(section->LockSemaphore);
}

tSubject subjectOf(const CRITICAL_SECTION* section) {
  return {"critical section", reinterpret_cast<uintptr_t>(section)};
}

constinit std::atomic<unsigned> sharedAcquisitions = 0;
constinit std::atomic<unsigned> exclusiveAcquisitions = 0;

// Implements a slim reader/writer lock.
struct tSlimLock {
  std::shared_mutex mutex;
  std::atomic<const void*> writer = nullptr;
  std::atomic<int> readers = 0;
};

// Maps the address of a lock to its implementation. Windows has no call to destroy a lock, so an
// implementation exists until the program ends; a new lock at the same address finds it unlocked.
tSlimLock& implementationOf(const SRWLOCK* lock) {
  static std::mutex& tableMutex = *new std::mutex;
  static auto& table = *new std::unordered_map<const SRWLOCK*, std::unique_ptr<tSlimLock>>;
  const std::lock_guard guard(tableMutex);
  std::unique_ptr<tSlimLock>& found = table[lock];
  if (!found) {
    found = std::make_unique<tSlimLock>();
  }
  return *found;
}

tSubject subjectOf(const SRWLOCK* lock) {
  return {"lock", reinterpret_cast<uintptr_t>(lock)};
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
  const auto firstSignalled = [call, handles] {
    return std::find_if(handles.begin(), handles.end(), [call](HANDLE handle) {
      const std::optional<bool> signalled = objects().isSignalled(handle);
      expectSupported(signalled.has_value(), call,
                      "neither an event nor a thread, or closed already");
      return *signalled;
    });
  };
  static_cast<void>(objects().waitUntil(lock, nameOf(call), subjectOf(handles.front()), INFINITE,
                                        [&] { return firstSignalled() != handles.end(); }));
  const auto found = firstSignalled();
  tEvent* const event = objects().find<tEvent>(*found);
  if (event != nullptr && !event->manualReset) {
    event->signalled = false;
  }
  return static_cast<size_t>(found - handles.begin());
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
  if (tScheduler::isActive()) {
    return scheduler().now();
  }
  const auto sinceStart = std::chrono::steady_clock::now().time_since_epoch();
  return static_cast<ULONGLONG>(
      std::chrono::duration_cast<std::chrono::milliseconds>(sinceStart).count());
}

void WINAPI Sleep(DWORD milliseconds) {
  if (tScheduler::isActive()) {
    scheduler().await(
        "Sleep", {}, [] { return false; }, milliseconds);
    return;
  }
  std::this_thread::sleep_for(std::chrono::milliseconds(milliseconds));
}

// ---- Completion ports ----

HANDLE WINAPI CreateIoCompletionPort(HANDLE file, HANDLE port, ULONG_PTR key, DWORD threads) {
  const tInside inside;
  constexpr auto kCall = tCall::createIoCompletionPort;
  expectSupported(threads <= 1, kCall, "an unusual number of threads");
  if (file != INVALID_HANDLE_VALUE) {
    scheduler().point(nameOf(kCall), subjectOf(file));
  }
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
  if (!objects().waitUntil(lock, nameOf(kCall), subjectOf(handle), milliseconds, hasPacket)) {
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
  scheduler().point(nameOf(kCall), subjectOf(handle));
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
  section->LockSemaphore = new tSection;
  ++criticalSectionsAlive;
  return TRUE;
}

void WINAPI EnterCriticalSection(CRITICAL_SECTION* section) {
  const tInside inside;
  constexpr const char* kCall = "EnterCriticalSection";
  tSection& entered = implementationOf(section, kCall);
  scheduler().await(kCall, subjectOf(section), [&entered, self = &thisThread] {
    return entered.owner == nullptr || entered.owner == self;
  });
  entered.mutex.lock();
  entered.owner = &thisThread;
  ++entered.depth;
  ++criticalSectionEntries;
}

void WINAPI LeaveCriticalSection(CRITICAL_SECTION* section) {
  const tInside inside;
  constexpr const char* kCall = "LeaveCriticalSection";
  tSection& left = implementationOf(section, kCall);
  if (left.owner != &thisThread) {
    stop(kCall, "the critical section belongs to another thread or to none");
  }
  if (--left.depth == 0) {
    left.owner = nullptr;
  }
  left.mutex.unlock();
  scheduler().point(kCall, subjectOf(section));
}

void WINAPI DeleteCriticalSection(CRITICAL_SECTION* section) {
  const tInside inside;
  constexpr const char* kCall = "DeleteCriticalSection";
  scheduler().point(kCall, subjectOf(section));
  tSection& deleted = implementationOf(section, kCall);
  if (deleted.owner != nullptr) {
    stop(kCall, "a thread is in the critical section");
  }
  delete &deleted;
  section->LockSemaphore = nullptr;
  --criticalSectionsAlive;
}

void WINAPI AcquireSRWLockExclusive(PSRWLOCK lock) {
  const tInside inside;
  constexpr const char* kCall = "AcquireSRWLockExclusive";
  tSlimLock& acquired = implementationOf(lock);
  if (acquired.writer == &thisThread) {
    stop(kCall, "the thread holds the lock already");
  }
  scheduler().await(kCall, subjectOf(lock),
                    [&acquired] { return acquired.writer == nullptr && acquired.readers == 0; });
  acquired.mutex.lock();
  acquired.writer = &thisThread;
  ++exclusiveAcquisitions;
}

void WINAPI ReleaseSRWLockExclusive(PSRWLOCK lock) {
  const tInside inside;
  constexpr const char* kCall = "ReleaseSRWLockExclusive";
  tSlimLock& released = implementationOf(lock);
  if (released.writer != &thisThread) {
    stop(kCall, "another thread holds the lock, or none");
  }
  released.writer = nullptr;
  released.mutex.unlock();
  scheduler().point(kCall, subjectOf(lock));
}

void WINAPI AcquireSRWLockShared(PSRWLOCK lock) {
  const tInside inside;
  constexpr const char* kCall = "AcquireSRWLockShared";
  tSlimLock& acquired = implementationOf(lock);
  if (acquired.writer == &thisThread) {
    stop(kCall, "the thread holds the lock already");
  }
  scheduler().await(kCall, subjectOf(lock), [&acquired] { return acquired.writer == nullptr; });
  acquired.mutex.lock_shared();
  ++acquired.readers;
  ++sharedAcquisitions;
}

void WINAPI ReleaseSRWLockShared(PSRWLOCK lock) {
  const tInside inside;
  constexpr const char* kCall = "ReleaseSRWLockShared";
  tSlimLock& released = implementationOf(lock);
  if (released.readers.fetch_sub(1) <= 0) {
    stop(kCall, "no thread holds the lock");
  }
  released.mutex.unlock_shared();
  scheduler().point(kCall, subjectOf(lock));
}
