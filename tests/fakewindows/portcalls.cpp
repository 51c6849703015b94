#include <windows.h>

#include <chrono>

#include "tests/fakewindows/objects.h"
#include "tests/fakewindows/unusual.h"

using namespace nFakeWindows;

HANDLE WINAPI CreateIoCompletionPort(HANDLE file, HANDLE port, ULONG_PTR key, DWORD threads) {
  const tInside inside;
  constexpr auto kCall = tCall::createIoCompletionPort;
  expectUsual(threads <= 1, kCall, "an unusual number of threads");
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
    expectUsual(port != nullptr, kCall, "not a port, or one that was closed");
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
  expectUsual(port != nullptr, kCall, "not a port, or one that was closed");
  port->packets.push_back({bytes, key, overlapped, 0, false});
  objects().changed.notify_all();
  return TRUE;
}
