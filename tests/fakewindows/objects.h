#ifndef TESTS_FAKEWINDOWS_OBJECTS_H
#define TESTS_FAKEWINDOWS_OBJECTS_H

#include <windows.h>

#include <condition_variable>
#include <map>
#include <memory>
#include <mutex>
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
struct tFile {
  tModelFile file;
  bool overlapped;
  std::vector<OVERLAPPED*> pending;
};
struct tDeviceInformationSet {
  std::vector<tDeviceInterface> interfaces;
};
struct tProcess {
  DWORD milliseconds;  // how long it runs
};
struct tProgramThread {};

// Everything that has a handle, under one lock. Handles are never used twice, so that one that is
// used after its end is noticed.
class tObjects {
 public:
  using tObject = std::variant<tEvent, tFile, tDeviceInformationSet, tProcess, tProgramThread>;

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

  // Completes the request behind an OVERLAPPED. With the lock held.
  void complete(OVERLAPPED& overlapped, DWORD status, DWORD bytes);

  // Threads that complete requests; joined by waitForThreads().
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
