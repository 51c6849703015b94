#ifndef TESTS_FAKEWINDOWS_OBJECTS_H
#define TESTS_FAKEWINDOWS_OBJECTS_H

#include <windows.h>

#include <condition_variable>
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
  bool ended;
};
struct tFile {
  tModelFile file;
  bool overlapped;
  std::vector<OVERLAPPED*> pending;
};
struct tDeviceInformationSet {
  std::vector<tDeviceInterface> interfaces;
};

// What an OVERLAPPED says of its request.
inline constexpr DWORD kStatusPending = 0x103;
[[nodiscard]] DWORD errorOfStatus(DWORD status) noexcept;

// Everything that has a handle, under one lock. Handles are never used twice, so that one that is
// used after its end is noticed.
class tObjects {
 public:
  using tObject = std::variant<tEvent, tThread, tFile, tDeviceInformationSet>;

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

  // One line for each thing that is open.
  [[nodiscard]] std::vector<std::string> open();

  // An event, or a thread; null when the handle is neither. With the lock held.
  [[nodiscard]] std::optional<bool> isSignalled(HANDLE handle);

  // False when the handle is no event. Takes the lock.
  [[nodiscard]] bool signal(HANDLE handle);

  // Completes the request behind an OVERLAPPED. With the lock held.
  void complete(OVERLAPPED& overlapped, DWORD error, DWORD bytes);

  // Threads that the library started or that complete requests; joined by waitForThreads().
  void addThread(std::thread thread);
  void waitForThreads();

 private:
  static uintptr_t number(HANDLE handle) {
    return reinterpret_cast<uintptr_t>(handle) & ~uintptr_t{3};
  }

  std::map<uintptr_t, tObject> objects_;
  std::vector<std::thread> threads_;
  uintptr_t next_ = 0x1000;
};

[[nodiscard]] tObjects& objects();

// Critical sections that live.
[[nodiscard]] int criticalSections();

}  // namespace nFakeWindows

#endif
