#include <windows.h>

#include <algorithm>

#include "tests/fakewindows/objects.h"
#include "tests/fakewindows/unusual.h"

using namespace nFakeWindows;

namespace {

constexpr DWORD kStatusPending = 0x103;
constexpr DWORD kStatusCancelled = 0xC0000120;
// The status of a request that failed with a Windows error: the error, marked as one.
constexpr DWORD kErrorMark = 0xC0070000;

DWORD statusOf(DWORD error) {
  return error == 0 ? 0 : kErrorMark | error;
}

DWORD errorOf(DWORD status) {
  return status == kStatusCancelled ? ERROR_OPERATION_ABORTED : status & 0xFFFF;
}

struct tOutcome {
  DWORD error;
  DWORD bytes;
};

// A device request. As with the system's buffered method, the driver works on a copy of the input,
// and the caller receives as many bytes as the driver says.
tOutcome carryOut(const tModelFile& file, DWORD code, const void* in, DWORD inSize, void* out,
                  DWORD outSize) {
  std::vector<uint8_t> buffer(std::max(inSize, outSize));
  std::copy_n(static_cast<const uint8_t*>(in), inSize, buffer.begin());
  const tModelReply reply =
      machine().request({file, code, buffer.data(), inSize, buffer.data(), outSize});
  std::copy_n(buffer.begin(), reply.size, static_cast<uint8_t*>(out));
  return {reply.windowsError, reply.size};
}

// What the three kinds of transfer have in common. `work` carries the transfer out.
template <class Work>
BOOL transfer(tCall call, HANDLE handle, DWORD* bytes, OVERLAPPED* overlapped, Work work) {
  tModelFile file{};
  bool isOverlapped = false;
  {
    const std::lock_guard lock(objects().mutex);
    tFile* const found = objects().find<tFile>(handle);
    if (found == nullptr) {
      stop(nameOf(call), "not a file, or one that was closed");
    }
    file = found->file;
    isOverlapped = found->overlapped;
  }
  if (isOverlapped != (overlapped != nullptr)) {
    stop(nameOf(call),
         "an OVERLAPPED goes with a file opened for overlapped calls, and only there");
  }
  if (overlapped == nullptr) {
    const tOutcome outcome = work(file);
    *bytes = outcome.bytes;
    SetLastError(outcome.error);
    return outcome.error == 0;
  }

  const tCompletion completion = faultPlan().completion();
  const DWORD plannedError = faultPlan().completionError();
  {
    const std::lock_guard lock(objects().mutex);
    tEvent* const event = objects().find<tEvent>(overlapped->hEvent);
    expectUsual(event != nullptr, call, "an OVERLAPPED without an event");
    expectUsual((reinterpret_cast<uintptr_t>(overlapped->hEvent) & 1) != 0, call,
                "an event without its lowest bit set: the completion would go to a port");
    event->signalled = false;
    overlapped->Internal = kStatusPending;
    objects().find<tFile>(handle)->pending.push_back(overlapped);
  }
  const auto finish = [=](const tModelFile& on) {
    const tOutcome outcome = plannedError != 0 ? tOutcome{plannedError, 0} : work(on);
    const std::lock_guard lock(objects().mutex);
    objects().complete(*overlapped, statusOf(outcome.error), outcome.bytes);
    return outcome;
  };
  if (completion == tCompletion::atOnce) {
    const tOutcome outcome = finish(file);
    if (outcome.error == 0 && bytes != nullptr) {
      *bytes = outcome.bytes;
    }
    SetLastError(outcome.error);
    return outcome.error == 0;
  }
  if (completion == tCompletion::later) {
    objects().addThread(std::thread([finish, file] {
      Sleep(1);
      finish(file);
    }));
  }
  SetLastError(ERROR_IO_PENDING);
  return FALSE;
}

}  // namespace

HANDLE WINAPI CreateFileA(LPCSTR path, DWORD access, DWORD sharing, SECURITY_ATTRIBUTES* security,
                          DWORD creation, DWORD flags, HANDLE templateFile) {
  const tInside inside;
  constexpr auto kCall = tCall::createFile;
  expectUsual(path != nullptr && security == nullptr && templateFile == nullptr, kCall,
              "only a path can be given");
  expectUsual(access == (GENERIC_READ | GENERIC_WRITE) &&
                  sharing == (FILE_SHARE_READ | FILE_SHARE_WRITE) && creation == OPEN_EXISTING,
              kCall, "a device is opened for reading and writing, shared");
  expectUsual((flags & ~DWORD{FILE_FLAG_OVERLAPPED}) == 0, kCall, "unusual flags");
  if (const auto error = faultPlan().enter(kCall, path)) {
    SetLastError(*error);
    return INVALID_HANDLE_VALUE;
  }
  const auto device = machine().findPath(path);
  if (!device) {
    SetLastError(ERROR_FILE_NOT_FOUND);
    return INVALID_HANDLE_VALUE;
  }
  const tModelFile file = machine().open(*device);
  const std::lock_guard lock(objects().mutex);
  return objects().add(tFile{file, (flags & FILE_FLAG_OVERLAPPED) != 0, {}});
}

BOOL WINAPI DeviceIoControl(HANDLE handle, DWORD code, LPVOID in, DWORD inSize, LPVOID out,
                            DWORD outSize, LPDWORD bytes, LPOVERLAPPED overlapped) {
  const tInside inside;
  if (const auto error = faultPlan().enter(tCall::deviceIoControl, std::to_string(code))) {
    SetLastError(*error);
    return FALSE;
  }
  return transfer(tCall::deviceIoControl, handle, bytes, overlapped, [=](const tModelFile& file) {
    return carryOut(file, code, in, inSize, out, outSize);
  });
}

// The simulated driver takes neither reads nor writes.
BOOL WINAPI ReadFile(HANDLE handle, LPVOID, DWORD, LPDWORD bytes, LPOVERLAPPED overlapped) {
  const tInside inside;
  if (const auto error = faultPlan().enter(tCall::readFile)) {
    SetLastError(*error);
    return FALSE;
  }
  return transfer(tCall::readFile, handle, bytes, overlapped, [](const tModelFile&) {
    return tOutcome{ERROR_INVALID_FUNCTION, 0};
  });
}

BOOL WINAPI WriteFile(HANDLE handle, LPCVOID, DWORD, LPDWORD bytes, LPOVERLAPPED overlapped) {
  const tInside inside;
  if (const auto error = faultPlan().enter(tCall::writeFile)) {
    SetLastError(*error);
    return FALSE;
  }
  return transfer(tCall::writeFile, handle, bytes, overlapped, [](const tModelFile&) {
    return tOutcome{ERROR_INVALID_FUNCTION, 0};
  });
}

BOOL WINAPI GetOverlappedResult(HANDLE, LPOVERLAPPED overlapped, LPDWORD bytes, BOOL wait) {
  const tInside inside;
  constexpr auto kCall = tCall::getOverlappedResult;
  expectUsual(wait != FALSE, kCall, "only waiting is supported");
  if (const auto error = faultPlan().enter(kCall)) {
    SetLastError(*error);
    return FALSE;
  }
  std::unique_lock lock(objects().mutex);
  objects().changed.wait(lock, [=] { return overlapped->Internal != kStatusPending; });
  *bytes = static_cast<DWORD>(overlapped->InternalHigh);
  const auto status = static_cast<DWORD>(overlapped->Internal);
  if (status != 0) {
    SetLastError(errorOf(status));
  }
  return status == 0;
}

BOOL WINAPI CancelIoEx(HANDLE handle, LPOVERLAPPED overlapped) {
  const tInside inside;
  constexpr auto kCall = tCall::cancelIoEx;
  expectUsual(overlapped != nullptr, kCall, "only one request can be cancelled");
  if (const auto error = faultPlan().enter(kCall)) {
    SetLastError(*error);
    return FALSE;
  }
  const std::lock_guard lock(objects().mutex);
  tFile* const file = objects().find<tFile>(handle);
  expectUsual(file != nullptr, kCall, "not a file, or one that was closed");
  // A request that another thread is about to complete is too far gone to be cancelled.
  if (faultPlan().completion() != tCompletion::never || overlapped->Internal != kStatusPending) {
    SetLastError(ERROR_NOT_FOUND);
    return FALSE;
  }
  objects().complete(*overlapped, kStatusCancelled, 0);
  return TRUE;
}

namespace {

// Of what CloseHandle closes; null: nothing of that. With the lock of the objects held.
const char* kindOf(HANDLE handle) {
  if (objects().find<tEvent>(handle) != nullptr) {
    return "event";
  }
  if (objects().find<tFile>(handle) != nullptr) {
    return "file";
  }
  if (objects().find<tProcess>(handle) != nullptr) {
    return "process";
  }
  return objects().find<tProgramThread>(handle) != nullptr ? "thread" : nullptr;
}

}  // namespace

BOOL WINAPI CloseHandle(HANDLE handle) {
  const tInside inside;
  constexpr auto kCall = tCall::closeHandle;
  std::optional<tModelFile> closed;
  const char* kind = nullptr;
  {
    const std::lock_guard lock(objects().mutex);
    if (tFile* const file = objects().find<tFile>(handle)) {
      expectUsual(file->pending.empty(), kCall, "a file with a request under way");
      closed = file->file;
    }
    kind = kindOf(handle);
    expectUsual(kind != nullptr, kCall, "nothing that can be closed, or closed already");
    static_cast<void>(objects().remove(handle));
  }
  static_cast<void>(faultPlan().enter(kCall, kind));
  if (closed) {
    machine().close(*closed);
  }
  return TRUE;
}
