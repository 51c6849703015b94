#ifndef TESTS_FAKEWINDOWS_OBJECTS_H
#define TESTS_FAKEWINDOWS_OBJECTS_H

#include <windows.h>

#include <atomic>
#include <chrono>
#include <condition_variable>
#include <cstdio>
#include <deque>
#include <filesystem>
#include <functional>
#include <map>
#include <memory>
#include <mutex>
#include <optional>
#include <string>
#include <thread>
#include <variant>
#include <vector>

#include "simulator/model/model.h"
#include "tests/fakewindows/machine.h"
#include "tests/fakewindows/scheduler.h"

namespace nFakeWindows {

struct tEvent {
  bool manualReset;
  bool signalled;
};
struct tThread {
  DWORD id;
  bool ended = false;
  int priority = THREAD_PRIORITY_NORMAL;
};
// A pending request, and the destination of its reply.
struct tTransfer {
  OVERLAPPED* overlapped;
  void* out;
};
struct tFile {
  tModelFile file;
  bool overlapped;
  std::vector<tTransfer> pending;
  HANDLE port = nullptr;  // receives completions; may be null
  ULONG_PTR key = 0;

  // end() if the request is not pending on this file.
  [[nodiscard]] std::vector<tTransfer>::iterator find(const OVERLAPPED& request);
};
struct tPacket {
  DWORD bytes;
  ULONG_PTR key;
  OVERLAPPED* overlapped;
  DWORD error;
  // Dequeuing the packet stores the final status in its OVERLAPPED.
  bool carriesStatus = false;
};
struct tPort {
  std::deque<tPacket> packets;
};
struct tDeviceInformationSet {
  std::vector<tDeviceInterface> interfaces;
};
struct tProcess {
  DWORD milliseconds;  // its run time
};
struct tProgramThread {};
// A file or folder of the disk.
struct tDiskFile {
  std::filesystem::path path;  // without links, except for the last component
  DWORD access = 0;
  DWORD uses = 0;  // the share mode that other handles must grant, in bits of FILE_SHARE_
  DWORD sharing = 0;
  bool isRemovedOnClose = false;
  std::shared_ptr<std::FILE> content;  // of a file opened for writing
  bool isListed = false;
  std::vector<std::u16string> names;  // of a listing, not returned yet
};

// Values of OVERLAPPED::Internal.
inline constexpr DWORD kStatusPending = 0x103;
[[nodiscard]] DWORD errorOfStatus(DWORD status) noexcept;

// The time at which Windows stores the final status in the OVERLAPPED of a request that completes
// to a port. Windows permits both; correct code works with either.
enum class tFinalStatus : uint8_t {
  atCompletion,
  atDequeue,  // not before the packet is dequeued, and never if the port is closed first
};
// Read from the environment variable FAKE_WINDOWS_FINAL_STATUS: "dequeue", or not set.
[[nodiscard]] tFinalStatus finalStatusOfThisRun();

// All objects with a handle, under one lock. Handle values are never reused, so that the use of a
// closed handle is detected.
class tObjects {
 public:
  using tObject = std::variant<tEvent, tThread, tFile, tPort, tDeviceInformationSet, tProcess,
                               tProgramThread, tDiskFile>;

  // Guards all members below, and the objects that they return.
  std::mutex mutex;
  // Notified when an object is signalled or a request completes.
  std::condition_variable changed;

  // Waits for a condition on objects, with the lock held before and after; false after the time-out.
  template <class Condition>
  [[nodiscard]] bool waitUntil(std::unique_lock<std::mutex>& lock, const char* call,
                               tSubject subject, DWORD milliseconds, Condition condition) {
    if (tScheduler::isActive()) {
      lock.unlock();
      const bool isTrue = scheduler().await(
          call, subject,
          [this, &condition] {
            const std::lock_guard guard(mutex);
            return condition();
          },
          milliseconds == INFINITE ? std::nullopt : std::optional<uint64_t>(milliseconds));
      lock.lock();
      return isTrue;
    }
    if (milliseconds == INFINITE) {
      changed.wait(lock, condition);
      return true;
    }
    return changed.wait_for(lock, std::chrono::milliseconds(milliseconds), condition);
  }

  [[nodiscard]] HANDLE add(tObject object);
  // Null if the handle is not of an object of this type. Ignores the lowest bit of the handle.
  template <class Object>
  [[nodiscard]] Object* find(HANDLE handle) {
    const auto found = objects_.find(number(handle));
    return found == objects_.end() ? nullptr : std::get_if<Object>(&found->second);
  }
  [[nodiscard]] bool remove(HANDLE handle);

  // Null if the handle is invalid. The caller holds the lock.
  [[nodiscard]] const char* kindOf(HANDLE handle);

  // One line for each open handle.
  [[nodiscard]] std::vector<std::string> open();

  // The state of an event or a thread; none for other handles. The caller holds the lock.
  [[nodiscard]] std::optional<bool> isSignalled(HANDLE handle);

  // False if the handle is not an event. Acquires the lock.
  [[nodiscard]] bool signal(HANDLE handle);

  // The caller of the functions below holds the lock.

  // True if a new handle with this access and share mode is compatible with the open handles.
  [[nodiscard]] bool mayOpen(const std::filesystem::path& path, DWORD uses, DWORD sharing) const;

  // Copies a reply to the output buffer of the request that uses an OVERLAPPED.
  void handOver(const OVERLAPPED& overlapped, const void* reply, size_t size);
  // True if Windows may still write to memory in this range: a request is pending, or its packet,
  // which carries the final status, is in a port.
  [[nodiscard]] bool mayBeWritten(const void* memory, size_t size) const;
  // Completes the request that uses an OVERLAPPED and queues a packet to the port of its file,
  // unless the low bit of hEvent suppresses it.
  void complete(OVERLAPPED& overlapped, DWORD error, DWORD bytes);
  // Ends a request that fails in the call that starts it. Only the call reports the failure; the
  // OVERLAPPED stays at STATUS_PENDING, as on Windows.
  void refuse(OVERLAPPED& overlapped);

  // Sets how many packets each later completion queues to its port; a well-behaved driver completes
  // a request once.
  void repeatCompletions(unsigned times) { repeats_ = times; }

  // Sets when later requests that complete to a port receive their final status.
  void useFinalStatus(tFinalStatus when) { finalStatus_ = when; }
  // Dequeues the next packet of a port, which must not be empty, and stores the packet's status.
  [[nodiscard]] tPacket dequeue(tPort& port);
  // The number, since the last call, of requests whose port was closed before their packet was
  // dequeued. Their OVERLAPPED never receives a final status.
  [[nodiscard]] unsigned takeLostPackets() { return lostPackets_.exchange(0); }

  // Starts a thread: of the library, or one that completes requests. waitForThreads() joins it, unless
  // it belongs to a run of the scheduler.
  void startThread(std::string name, std::function<void()> routine);
  void waitForThreads();

 private:
  static uintptr_t number(HANDLE handle) {
    return reinterpret_cast<uintptr_t>(handle) & ~uintptr_t{3};
  }

  [[nodiscard]] tFile* fileOf(const OVERLAPPED& overlapped);
  void queuePackets(tPacket packet, HANDLE port);
  void losePackets(const tPort& port);

  std::map<uintptr_t, tObject> objects_;
  std::vector<std::thread> threads_;
  std::atomic<unsigned> repeats_ = 1;
  std::atomic<tFinalStatus> finalStatus_ = finalStatusOfThisRun();
  std::atomic<unsigned> lostPackets_ = 0;
  uintptr_t next_ = 0x1000;
};

[[nodiscard]] tObjects& objects();

// As the reports of the scheduler name an object.
[[nodiscard]] inline tSubject subjectOf(HANDLE handle) noexcept {
  return {"handle", reinterpret_cast<uintptr_t>(handle)};
}
[[nodiscard]] inline tSubject subjectOf(const OVERLAPPED* overlapped) noexcept {
  return {"OVERLAPPED", reinterpret_cast<uintptr_t>(overlapped)};
}

}  // namespace nFakeWindows

#endif
