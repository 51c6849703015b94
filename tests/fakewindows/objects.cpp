#include "tests/fakewindows/objects.h"

#include <algorithm>
#include <atomic>
#include <cstdlib>
#include <string_view>

namespace nFakeWindows {
namespace {

// In the order of the alternatives of tObjects::tObject.
constexpr const char* kKinds[] = {
    "event",   "thread", "file",     "completion port", "device information set",
    "process", "thread", "disk file"};

constexpr DWORD kStatusCancelled = 0xC0000120;
// The status of a request that failed with a Windows error: the error with a mark.
constexpr DWORD kErrorMark = 0xC0070000;

DWORD statusOfError(DWORD error) {
  if (error == ERROR_OPERATION_ABORTED) {
    return kStatusCancelled;
  }
  return error == 0 ? 0 : kErrorMark | error;
}

bool suppressesPacket(const OVERLAPPED& overlapped) {
  return (reinterpret_cast<uintptr_t>(overlapped.hEvent) & 1) != 0;
}

// After this the code that started the request may reuse the OVERLAPPED.
void storeStatus(OVERLAPPED& overlapped, DWORD error, DWORD bytes) {
  overlapped.InternalHigh = bytes;
  std::atomic_ref<ULONG_PTR>(overlapped.Internal)
      .store(statusOfError(error), std::memory_order_release);
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

tFinalStatus finalStatusOfThisRun() {
  const char* const chosen = std::getenv("FAKE_WINDOWS_FINAL_STATUS");
  return chosen != nullptr && std::string_view(chosen) == "dequeue" ? tFinalStatus::atDequeue
                                                                    : tFinalStatus::atCompletion;
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
  if (const tPort* const port = find<tPort>(handle)) {
    losePackets(*port);
  }
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

bool tObjects::mayOpen(const std::filesystem::path& path, DWORD uses, DWORD sharing) const {
  return std::none_of(objects_.begin(), objects_.end(), [&](const auto& entry) {
    const tDiskFile* const open = std::get_if<tDiskFile>(&entry.second);
    // The share mode does not apply to a handle for attributes only.
    return open != nullptr && open->path == path && uses != 0 && open->uses != 0 &&
           ((uses & ~open->sharing) != 0 || (open->uses & ~sharing) != 0);
  });
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

bool tObjects::mayBeWritten(const void* memory, size_t size) const {
  const auto* const first = static_cast<const std::byte*>(memory);
  const auto isInside = [first, size](const void* address) {
    const auto* const byte = static_cast<const std::byte*>(address);
    return std::greater_equal<>()(byte, first) && std::less<>()(byte, first + size);
  };
  return std::any_of(objects_.begin(), objects_.end(), [&](const auto& entry) {
    const tFile* const file = std::get_if<tFile>(&entry.second);
    const tPort* const port = std::get_if<tPort>(&entry.second);
    return (file != nullptr && std::any_of(file->pending.begin(), file->pending.end(),
                                           [&](const tTransfer& transfer) {
                                             return isInside(transfer.overlapped) ||
                                                    isInside(transfer.out);
                                           })) ||
           (port != nullptr &&
            std::any_of(port->packets.begin(), port->packets.end(), [&](const tPacket& packet) {
              return packet.carriesStatus && isInside(packet.overlapped);
            }));
  });
}

void tObjects::refuse(OVERLAPPED& overlapped) {
  if (tFile* const file = fileOf(overlapped)) {
    file->pending.erase(file->find(overlapped));
  }
  changed.notify_all();
}

void tObjects::complete(OVERLAPPED& overlapped, DWORD error, DWORD bytes) {
  tFile* const file = fileOf(overlapped);
  if (file == nullptr) {
    // Already completed; its status may still be in a packet.
    return;
  }
  file->pending.erase(file->find(overlapped));
  scheduler().withdrawEvents(&overlapped);
  const bool completesToPort = file->port != nullptr && !suppressesPacket(overlapped);
  const bool isDeferred = completesToPort && finalStatus_ == tFinalStatus::atDequeue;
  if (completesToPort) {
    queuePackets({bytes, file->key, &overlapped, error, isDeferred}, file->port);
  }
  if (tEvent* const event = find<tEvent>(overlapped.hEvent)) {
    event->signalled = true;
  }
  if (!isDeferred) {
    storeStatus(overlapped, error, bytes);
  }
  changed.notify_all();
}

void tObjects::queuePackets(tPacket packet, HANDLE handle) {
  tPort* const port = find<tPort>(handle);
  if (port == nullptr) {
    ++lostPackets_;
    return;
  }
  port->packets.push_back(packet);
  packet.carriesStatus = false;
  port->packets.insert(port->packets.end(), repeats_ - 1, packet);
}

tPacket tObjects::dequeue(tPort& port) {
  const tPacket packet = port.packets.front();
  port.packets.pop_front();
  if (packet.carriesStatus) {
    storeStatus(*packet.overlapped, packet.error, packet.bytes);
  }
  return packet;
}

void tObjects::losePackets(const tPort& port) {
  lostPackets_ += static_cast<unsigned>(
      std::count_if(port.packets.begin(), port.packets.end(),
                    [](const tPacket& packet) { return packet.overlapped != nullptr; }));
}

void tObjects::startThread(std::string name, std::function<void()> routine) {
  if (tScheduler::isActive()) {
    scheduler().start(std::move(name), std::move(routine));
    return;
  }
  const std::lock_guard lock(mutex);
  threads_.emplace_back(std::move(routine));
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
