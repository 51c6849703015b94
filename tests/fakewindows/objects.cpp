#include "tests/fakewindows/objects.h"

#include <algorithm>
#include <atomic>

namespace nFakeWindows {
namespace {

// As tObjects::tObject has them.
constexpr const char* kKinds[] = {
    "event", "thread", "file", "completion port", "device information set", "process", "thread"};

constexpr DWORD kStatusCancelled = 0xC0000120;
// The status of a request that failed with a Windows error: the error, marked as one.
constexpr DWORD kErrorMark = 0xC0070000;

DWORD statusOfError(DWORD error) {
  if (error == ERROR_OPERATION_ABORTED) {
    return kStatusCancelled;
  }
  return error == 0 ? 0 : kErrorMark | error;
}

bool isKeptOffPorts(const OVERLAPPED& overlapped) {
  return (reinterpret_cast<uintptr_t>(overlapped.hEvent) & 1) != 0;
}

}  // namespace

std::vector<tTransfer>::iterator tFile::find(const OVERLAPPED& request) {
  return std::find_if(pending.begin(), pending.end(), [&request](const tTransfer& transfer) {
    return transfer.overlapped == &request;
  });
}

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

const char* tObjects::kindOf(HANDLE handle) {
  const auto found = objects_.find(number(handle));
  return found == objects_.end() ? nullptr : kKinds[found->second.index()];
}

std::vector<std::string> tObjects::open() {
  const std::lock_guard lock(mutex);
  std::vector<std::string> lines;
  for (const auto& [handle, object] : objects_) {
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

tFile* tObjects::fileOf(const OVERLAPPED& overlapped) {
  for (auto& [handle, object] : objects_) {
    tFile* const file = std::get_if<tFile>(&object);
    if (file != nullptr && file->find(overlapped) != file->pending.end()) {
      return file;
    }
  }
  return nullptr;
}

void tObjects::handOver(const OVERLAPPED& overlapped, const void* reply, size_t size) {
  if (tFile* const file = fileOf(overlapped)) {
    std::copy_n(static_cast<const uint8_t*>(reply), size,
                static_cast<uint8_t*>(file->find(overlapped)->out));
  }
}

void tObjects::refuse(OVERLAPPED& overlapped) {
  if (tFile* const file = fileOf(overlapped)) {
    file->pending.erase(file->find(overlapped));
  }
  changed.notify_all();
}

void tObjects::complete(OVERLAPPED& overlapped, DWORD error, DWORD bytes) {
  overlapped.InternalHigh = bytes;
  if (tFile* const file = fileOf(overlapped)) {
    file->pending.erase(file->find(overlapped));
    tPort* const port = find<tPort>(file->port);
    if (port != nullptr && !isKeptOffPorts(overlapped)) {
      port->packets.insert(port->packets.end(), repeats_, {bytes, file->key, &overlapped, error});
    }
  }
  if (tEvent* const event = find<tEvent>(overlapped.hEvent)) {
    event->signalled = true;
  }
  // As with the system, whoever started the request may look whether it has ended, and then do with
  // the OVERLAPPED what they like.
  std::atomic_ref<ULONG_PTR>(overlapped.Internal)
      .store(statusOfError(error), std::memory_order_release);
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
