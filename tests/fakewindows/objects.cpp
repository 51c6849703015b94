#include "tests/fakewindows/objects.h"

#include <algorithm>
#include <atomic>

namespace nFakeWindows {
namespace {

constexpr DWORD kStatusCancelled = 0xC0000120;
// The status of a request that failed with a Windows error: the error, marked as one.
constexpr DWORD kErrorMark = 0xC0070000;

DWORD statusOfError(DWORD error) {
  if (error == ERROR_OPERATION_ABORTED) {
    return kStatusCancelled;
  }
  return error == 0 ? 0 : kErrorMark | error;
}

}  // namespace

DWORD errorOfStatus(DWORD status) noexcept {
  return status == kStatusCancelled ? DWORD{ERROR_OPERATION_ABORTED} : status & 0xFFFF;
}

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
    static constexpr const char* kKinds[] = {"event", "thread", "file", "device information set"};
    lines.push_back(std::string(kKinds[object.index()]) + " " + std::to_string(handle));
  }
  return lines;
}

std::optional<bool> tObjects::isSignalled(HANDLE handle) {
  if (const tEvent* const event = find<tEvent>(handle)) {
    return event->signalled;
  }
  if (const tThread* const thread = find<tThread>(handle)) {
    return thread->ended;
  }
  return std::nullopt;
}

bool tObjects::signal(HANDLE handle) {
  const std::lock_guard lock(mutex);
  tEvent* const event = find<tEvent>(handle);
  if (event != nullptr) {
    event->signalled = true;
    changed.notify_all();
  }
  return event != nullptr;
}

void tObjects::complete(OVERLAPPED& overlapped, DWORD error, DWORD bytes) {
  overlapped.InternalHigh = bytes;
  // As with the system, whoever started the request may look whether it has ended.
  std::atomic_ref<ULONG_PTR>(overlapped.Internal)
      .store(statusOfError(error), std::memory_order_release);
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
