#include "tests/fakewindows/objects.h"

#include <algorithm>

namespace nFakeWindows {

tObjects& objects() {
  // Never destroyed: the library under test may still close handles while the program ends.
  static tObjects& theObjects = *new tObjects;
  return theObjects;
}

HANDLE tObjects::add(tObject object) {
  const uintptr_t handle = next_;
  next_ += 4;
  objects_.emplace(handle, std::move(object));
  return reinterpret_cast<HANDLE>(handle);
}

bool tObjects::remove(HANDLE handle) {
  return objects_.erase(number(handle)) != 0;
}

std::vector<std::string> tObjects::open() {
  const std::lock_guard lock(mutex);
  std::vector<std::string> lines;
  for (const auto& [handle, object] : objects_) {
    static constexpr const char* kKinds[] = {"event", "file", "device information set", "process",
                                             "thread"};
    lines.push_back(std::string(kKinds[object.index()]) + " " + std::to_string(handle));
  }
  return lines;
}

void tObjects::complete(OVERLAPPED& overlapped, DWORD status, DWORD bytes) {
  overlapped.Internal = status;
  overlapped.InternalHigh = bytes;
  if (tEvent* const event = find<tEvent>(overlapped.hEvent)) {
    event->signalled = true;
  }
  for (auto& [handle, object] : objects_) {
    if (tFile* const file = std::get_if<tFile>(&object)) {
      std::erase(file->pending, &overlapped);
    }
  }
  changed.notify_all();
}

void tObjects::addThread(std::thread thread) {
  const std::lock_guard lock(mutex);
  threads_.push_back(std::move(thread));
}

void tObjects::waitForThreads() {
  std::vector<std::thread> threads;
  {
    const std::lock_guard lock(mutex);
    threads.swap(threads_);
  }
  for (std::thread& thread : threads) {
    thread.join();
  }
}

}  // namespace nFakeWindows
