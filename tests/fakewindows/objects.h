#ifndef TESTS_FAKEWINDOWS_OBJECTS_H
#define TESTS_FAKEWINDOWS_OBJECTS_H

#include <windows.h>

#include <atomic>
#include <condition_variable>
#include <deque>
#include <filesystem>
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
// A request under way, and where its reply goes.
struct tTransfer {
  OVERLAPPED* overlapped;
  void* out;
};
struct tFile {
  tModelFile file;
  bool overlapped;
  std::vector<tTransfer> pending;
  HANDLE port = nullptr;  // where completions go, if anywhere
  ULONG_PTR key = 0;

  // The end when it is not under way here.
  [[nodiscard]] std::vector<tTransfer>::iterator find(const OVERLAPPED& request);
};
struct tPacket {
  DWORD bytes;
  ULONG_PTR key;
  OVERLAPPED* overlapped;
  DWORD error;
  // Dequeuing the packet is the moment at which its OVERLAPPED receives the final status.
  bool carriesStatus = false;
};
struct tPort {
  std::deque<tPacket> packets;
};
struct tDeviceInformationSet {
  std::vector<tDeviceInterface> interfaces;
};
struct tProcess {
  DWORD milliseconds;  // how long it runs
};
struct tProgramThread {};
// A file or folder of the disk.
struct tDiskFile {
  std::filesystem::path path;  // without links, but for the entry itself
  DWORD access = 0;
  DWORD uses = 0;  // the access that it needs to be shared for, in the bits of FILE_SHARE_
  DWORD sharing = 0;
  bool isRemovedOnClose = false;
  bool isListed = false;
  std::vector<std::u16string> names;  // of a listing, still to come
};

// What an OVERLAPPED says of its request.
inline constexpr DWORD kStatusPending = 0x103;
[[nodiscard]] DWORD errorOfStatus(DWORD status) noexcept;

// When the OVERLAPPED of a request that completes to a port receives its final status. Windows
// permits both; code that works with one only is wrong.
enum class tFinalStatus : uint8_t {
  atCompletion,
  atDequeue,  // not before the packet is dequeued, and never if the port is closed first
};
// As the environment variable FAKE_WINDOWS_FINAL_STATUS says: "dequeue", or absent.
[[nodiscard]] tFinalStatus finalStatusOfThisRun();

// Everything that has a handle, under one lock. Handles are never used twice, so that one that is
// used after its end is noticed.
class tObjects {
 public:
  using tObject = std::variant<tEvent, tThread, tFile, tPort, tDeviceInformationSet, tProcess,
                               tProgramThread, tDiskFile>;

  // Guards all members below, and what they give access to.
  std::mutex mutex;
  // Something was signalled or completed.
  std::condition_variable changed;

  [[nodiscard]] HANDLE add(tObject object);
  // Null when the handle is not one of such an object. The lowest bit of a handle does not count.
  template <class Object>
  [[nodiscard]] Object* find(HANDLE handle) {
    const auto found = objects_.find(number(handle));
    return found == objects_.end() ? nullptr : std::get_if<Object>(&found->second);
  }
  [[nodiscard]] bool remove(HANDLE handle);

  // Null when nothing has the handle. With the lock held.
  [[nodiscard]] const char* kindOf(HANDLE handle);

  // One line for each thing that is open.
  [[nodiscard]] std::vector<std::string> open();

  // An event, or a thread; null when the handle is neither. With the lock held.
  [[nodiscard]] std::optional<bool> isSignalled(HANDLE handle);

  // False when the handle is no event. Takes the lock.
  [[nodiscard]] bool signal(HANDLE handle);

  // The rest with the lock held.

  // True if a new handle on a file or folder and those that are open share it with each other.
  [[nodiscard]] bool mayOpen(const std::filesystem::path& path, DWORD uses, DWORD sharing) const;

  // Copies a reply to where the request behind an OVERLAPPED wants it.
  void handOver(const OVERLAPPED& overlapped, const void* reply, size_t size);
  // Completes the request behind an OVERLAPPED, which reaches the port of its file unless its event
  // keeps it off.
  void complete(OVERLAPPED& overlapped, DWORD error, DWORD bytes);
  // Ends one that fails while it is being made: nothing tells of that but the call, and the OVERLAPPED
  // goes on saying that the request is under way.
  void refuse(OVERLAPPED& overlapped);

  // How often each completion reaches its port from now on; a well-behaved driver completes a
  // request once.
  void repeatCompletions(unsigned times) { repeats_ = times; }

  // When requests that complete to a port receive their final status from now on.
  void useFinalStatus(tFinalStatus when) { finalStatus_ = when; }
  // Takes the next packet off a port, which has one, and stores the status that it carries.
  [[nodiscard]] tPacket dequeue(tPort& port);
  // Requests whose packet can no longer be dequeued, because their port was closed first. Their
  // OVERLAPPED never receives a final status. Counted from the last call on.
  [[nodiscard]] unsigned takeLostPackets() { return lostPackets_.exchange(0); }

  // Threads that the library started or that complete requests; joined by waitForThreads().
  void addThread(std::thread thread);
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

// The priority with which threads come to life from now on.
void startThreadsWithPriority(int priority);

// Critical sections that live.
[[nodiscard]] int criticalSections();

}  // namespace nFakeWindows

#endif
