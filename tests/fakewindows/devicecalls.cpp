// Device interfaces, and the files and devices that are opened by path.
#include <windows.h>
// setupapi.h requires windows.h.
#include <setupapi.h>

#include <algorithm>
#include <bit>
#include <cstring>
#include <filesystem>
#include <functional>
#include <system_error>

#include "tests/fakewindows/disk.h"
#include "tests/fakewindows/faultplan.h"
#include "tests/fakewindows/objects.h"

using namespace nFakeWindows;

namespace {

std::string classText(const GUID& interfaceClass) {
  return std::to_string(interfaceClass.Data1);
}

tDeviceInformationSet& setOf(HDEVINFO handle, tCall call) {
  tDeviceInformationSet* const set = objects().find<tDeviceInformationSet>(handle);
  expectSupported(set != nullptr, call, "not a device information set");
  return *set;
}

struct tOutcome {
  DWORD error;
  DWORD bytes;
};

// A device control request. As with Windows' buffered method, the driver receives a copy of the
// input made at the time of the call, and the caller receives as many bytes as the driver reports.
tOutcome carryOut(const tModelFile& file, DWORD code, const std::vector<uint8_t>& in, void* out,
                  DWORD outSize, const OVERLAPPED* overlapped) {
  std::vector<uint8_t> buffer(std::max<size_t>(in.size(), outSize));
  std::copy(in.begin(), in.end(), buffer.begin());
  const tModelReply reply =
      machine().answer({file, code, buffer.data(), static_cast<uint32_t>(in.size()), buffer.data(),
                        outSize, reinterpret_cast<uintptr_t>(overlapped)});
  expectSupported(reply.size <= outSize, tCall::deviceIoControl, "a reply larger than its buffer");
  std::copy_n(buffer.begin(), reply.size, static_cast<uint8_t*>(out));
  return {reply.windowsError, reply.size};
}

// Makes a call fail as planned. Like Windows, leaves the OVERLAPPED of a rejected request at
// STATUS_PENDING.
BOOL refuseTransfer(OVERLAPPED* overlapped, DWORD error) {
  if (overlapped != nullptr && error != ERROR_IO_PENDING) {
    overlapped->Internal = kStatusPending;
  }
  SetLastError(error);
  return FALSE;
}

// Lets the driver complete a request: in a run of the scheduler as an event, otherwise on a thread.
void completeLater(tCompletion completion, const OVERLAPPED* overlapped,
                   const std::function<void()>& finish) {
  const auto mayComplete = [completion] {
    return completion != tCompletion::uncancellable ||
           faultPlan().callCount(tCall::cancelIoEx) != 0;
  };
  if (tScheduler::isActive()) {
    scheduler().postEvent("completion", overlapped, mayComplete, finish);
    return;
  }
  objects().startThread("driver", [mayComplete, finish] {
    do {
      Sleep(1);
    } while (!mayComplete());
    finish();
  });
}

// The common part of the three kinds of transfer. `work` performs the transfer.
template <class Work>
BOOL transfer(tCall call, HANDLE handle, void* out, DWORD* bytes, OVERLAPPED* overlapped,
              Work work) {
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
    tFile& started = *objects().find<tFile>(handle);
    expectSupported(event != nullptr || (overlapped->hEvent == nullptr && started.port != nullptr),
                    call, "neither an event nor a port would report the completion");
    expectSupported(event == nullptr || (reinterpret_cast<uintptr_t>(overlapped->hEvent) & 1) != 0,
                    call, "an event without its lowest bit set: the completion would go to a port");
    if (event != nullptr) {
      event->signalled = false;
    }
    if (started.find(*overlapped) != started.pending.end()) {
      stop(nameOf(call), "the OVERLAPPED of a request that is pending");
    }
    overlapped->Internal = kStatusPending;
    started.pending.push_back({overlapped, out});
  }
  const auto finish = [=](const tModelFile& on) {
    const tOutcome outcome = plannedError != 0 ? tOutcome{plannedError, 0} : work(on);
    const std::lock_guard lock(objects().mutex);
    if (outcome.error != 0 && outcome.error != ERROR_IO_PENDING &&
        completion == tCompletion::atOnce) {
      objects().refuse(*overlapped);
    } else if (outcome.error != ERROR_IO_PENDING) {
      objects().complete(*overlapped, outcome.error, outcome.bytes);
    }
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
  if (completion != tCompletion::never) {
    completeLater(completion, overlapped, [finish, file] { finish(file); });
  }
  SetLastError(ERROR_IO_PENDING);
  return FALSE;
}

}  // namespace

// ---- Device interfaces ----

HDEVINFO WINAPI SetupDiGetClassDevsA(const GUID* interfaceClass, PCSTR enumerator, HWND parent,
                                     DWORD flags) {
  const tInside inside;
  constexpr auto kCall = tCall::setupDiGetClassDevs;
  expectSupported(interfaceClass != nullptr && enumerator == nullptr && parent == nullptr, kCall,
                  "only a class can be asked for");
  expectSupported(flags == (DIGCF_PRESENT | DIGCF_DEVICEINTERFACE), kCall,
                  "only present device interfaces can be asked for");
  if (const auto error = faultPlan().enter(kCall, classText(*interfaceClass))) {
    SetLastError(*error);
    return INVALID_HANDLE_VALUE;
  }
  tDeviceInformationSet set{machine().present(std::bit_cast<tInterfaceClass>(*interfaceClass))};
  const std::lock_guard lock(objects().mutex);
  return objects().add(std::move(set));
}

BOOL WINAPI SetupDiEnumDeviceInterfaces(HDEVINFO handle, PSP_DEVINFO_DATA device,
                                        const GUID* interfaceClass, DWORD index,
                                        PSP_DEVICE_INTERFACE_DATA data) {
  const tInside inside;
  constexpr auto kCall = tCall::setupDiEnumDeviceInterfaces;
  expectSupported(device == nullptr && interfaceClass != nullptr, kCall, "only a class is listed");
  expectSupported(data != nullptr && data->cbSize == sizeof *data, kCall, "a wrong cbSize");
  if (const auto error = faultPlan().enter(kCall, std::to_string(index))) {
    SetLastError(*error);
    return FALSE;
  }
  const std::lock_guard lock(objects().mutex);
  if (index >= setOf(handle, kCall).interfaces.size()) {
    SetLastError(ERROR_NO_MORE_ITEMS);
    return FALSE;
  }
  data->InterfaceClassGuid = *interfaceClass;
  data->Flags = SPINT_ACTIVE;
  data->Reserved = index + 1;
  return TRUE;
}

BOOL WINAPI SetupDiGetDeviceInterfaceDetailA(HDEVINFO handle, PSP_DEVICE_INTERFACE_DATA data,
                                             PSP_DEVICE_INTERFACE_DETAIL_DATA_A detail, DWORD size,
                                             PDWORD required, PSP_DEVINFO_DATA device) {
  const tInside inside;
  constexpr auto kCall = tCall::setupDiGetDeviceInterfaceDetail;
  expectSupported(device == nullptr, kCall, "device data is not supported");
  expectSupported(data != nullptr && data->Reserved != 0, kCall, "not an interface of a set");
  expectSupported(detail != nullptr && detail->cbSize == sizeof *detail, kCall, "a wrong cbSize");
  if (const auto error = faultPlan().enter(kCall)) {
    SetLastError(*error);
    return FALSE;
  }
  tDeviceInterface found{};
  {
    const std::lock_guard lock(objects().mutex);
    found = setOf(handle, kCall).interfaces.at(data->Reserved - 1);
  }
  constexpr size_t kPathOffset = offsetof(SP_DEVICE_INTERFACE_DETAIL_DATA_A, DevicePath);
  const std::string path = machine().pathOf(found);
  const auto needed = static_cast<DWORD>(kPathOffset + path.size() + 1);
  if (required != nullptr) {
    *required = needed;
  }
  if (size < needed) {
    SetLastError(ERROR_INSUFFICIENT_BUFFER);
    return FALSE;
  }
  void* const area = detail;
  std::memcpy(static_cast<char*>(area) + kPathOffset, path.c_str(), path.size() + 1);
  return TRUE;
}

BOOL WINAPI SetupDiDestroyDeviceInfoList(HDEVINFO handle) {
  const tInside inside;
  constexpr auto kCall = tCall::setupDiDestroyDeviceInfoList;
  static_cast<void>(faultPlan().enter(kCall));
  const std::lock_guard lock(objects().mutex);
  static_cast<void>(setOf(handle, kCall));
  return objects().remove(handle);
}

// ---- Files and devices ----

HANDLE WINAPI CreateFileA(LPCSTR path, DWORD access, DWORD sharing, SECURITY_ATTRIBUTES* security,
                          DWORD creation, DWORD flags, HANDLE templateFile) {
  const tInside inside;
  constexpr auto kCall = tCall::createFile;
  expectSupported(path != nullptr && security == nullptr && templateFile == nullptr, kCall,
                  "only a path can be given");
  if (creation == CREATE_ALWAYS) {
    return createNewFile(path, access, sharing, flags);
  }
  expectSupported(access == (GENERIC_READ | GENERIC_WRITE) &&
                      sharing == (FILE_SHARE_READ | FILE_SHARE_WRITE) && creation == OPEN_EXISTING,
                  kCall, "a device is opened for reading and writing, shared");
  expectSupported((flags & ~DWORD{FILE_FLAG_OVERLAPPED}) == 0, kCall, "unusual flags");
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
  scheduler().point(nameOf(tCall::deviceIoControl), {tSubject::kCode, code});
  if (const auto error = faultPlan().enter(tCall::deviceIoControl, std::to_string(code))) {
    return refuseTransfer(overlapped, *error);
  }
  const auto* const bytesIn = static_cast<const uint8_t*>(in);
  const std::vector<uint8_t> input(bytesIn, bytesIn + inSize);
  return transfer(tCall::deviceIoControl, handle, out, bytes, overlapped,
                  [=](const tModelFile& file) {
                    return carryOut(file, code, input, out, outSize, overlapped);
                  });
}

BOOL WINAPI ReadFile(HANDLE handle, LPVOID out, DWORD size, LPDWORD bytes,
                     LPOVERLAPPED overlapped) {
  const tInside inside;
  scheduler().point(nameOf(tCall::readFile), subjectOf(handle));
  if (const auto error = faultPlan().enter(tCall::readFile)) {
    return refuseTransfer(overlapped, *error);
  }
  return transfer(tCall::readFile, handle, out, bytes, overlapped, [=](const tModelFile&) {
    std::vector<uint8_t> buffer(size);
    const tModelReply reply = machine().read(buffer);
    expectSupported(reply.size <= size, tCall::readFile, "a reply larger than its buffer");
    std::copy_n(buffer.begin(), reply.size, static_cast<uint8_t*>(out));
    return tOutcome{reply.windowsError, reply.size};
  });
}

BOOL WINAPI WriteFile(HANDLE handle, LPCVOID in, DWORD size, LPDWORD bytes,
                      LPOVERLAPPED overlapped) {
  const tInside inside;
  scheduler().point(nameOf(tCall::writeFile), subjectOf(handle));
  if (const auto error = faultPlan().enter(tCall::writeFile)) {
    return refuseTransfer(overlapped, *error);
  }
  if (overlapped == nullptr) {
    const std::lock_guard lock(objects().mutex);
    if (tDiskFile* const file = objects().find<tDiskFile>(handle)) {
      return writeToDisk(*file, in, size, bytes);
    }
  }
  const auto* const bytesIn = static_cast<const uint8_t*>(in);
  const std::vector<uint8_t> written(bytesIn, bytesIn + size);
  return transfer(tCall::writeFile, handle, nullptr, bytes, overlapped, [=](const tModelFile&) {
    const tModelReply reply = machine().write(written);
    expectSupported(reply.size <= size, tCall::writeFile, "a reply larger than its buffer");
    return tOutcome{reply.windowsError, reply.size};
  });
}

BOOL WINAPI GetOverlappedResult(HANDLE, LPOVERLAPPED overlapped, LPDWORD bytes, BOOL wait) {
  const tInside inside;
  constexpr auto kCall = tCall::getOverlappedResult;
  expectSupported(wait != FALSE, kCall, "only waiting is supported");
  if (const auto error = faultPlan().enter(kCall)) {
    SetLastError(*error);
    return FALSE;
  }
  std::unique_lock lock(objects().mutex);
  static_cast<void>(objects().waitUntil(lock, nameOf(kCall), subjectOf(overlapped), INFINITE,
                                        [=] { return overlapped->Internal != kStatusPending; }));
  *bytes = static_cast<DWORD>(overlapped->InternalHigh);
  const auto status = static_cast<DWORD>(overlapped->Internal);
  if (status != 0) {
    SetLastError(errorOfStatus(status));
  }
  return status == 0;
}

namespace {

// In a run of the scheduler the driver obeys a cancellation at any later time, as drivers do: posts
// that event for a pending request. False if there is no run, or if the request is not pending.
bool cancelsLater(HANDLE handle, OVERLAPPED* overlapped) {
  if (!tScheduler::isActive()) {
    return false;
  }
  const auto isPending = [handle, overlapped] {
    const std::lock_guard lock(objects().mutex);
    tFile* const file = objects().find<tFile>(handle);
    return file != nullptr && file->find(*overlapped) != file->pending.end();
  };
  const bool mayBeCancelled = isPending() && faultPlan().completion() != tCompletion::uncancellable;
  if (mayBeCancelled && !scheduler().hasEvent("cancellation", overlapped)) {
    scheduler().postEvent("cancellation", overlapped, nullptr, [overlapped] {
      static_cast<void>(machine().cancel(reinterpret_cast<uintptr_t>(overlapped)));
      const std::lock_guard lock(objects().mutex);
      objects().complete(*overlapped, ERROR_OPERATION_ABORTED, 0);
    });
  }
  return mayBeCancelled;
}

}  // namespace

BOOL WINAPI CancelIoEx(HANDLE handle, LPOVERLAPPED overlapped) {
  const tInside inside;
  constexpr auto kCall = tCall::cancelIoEx;
  expectSupported(overlapped != nullptr, kCall, "only one request can be cancelled");
  scheduler().point(nameOf(kCall), subjectOf(overlapped));
  if (const auto error = faultPlan().enter(kCall)) {
    SetLastError(*error);
    return FALSE;
  }
  if (cancelsLater(handle, overlapped)) {
    return TRUE;
  }
  // A request that the machine keeps pending ...
  const bool cancelled = machine().cancel(reinterpret_cast<uintptr_t>(overlapped));
  const std::lock_guard lock(objects().mutex);
  // Another thread may have closed the file, which ends the request.
  expectSupported(
      objects().find<tFile>(handle) != nullptr || overlapped->Internal != kStatusPending, kCall,
      "not a file, or one that was closed");
  // ... and one that was never sent to it. A request that another thread is about to complete
  // cannot be cancelled.
  const bool neverSent =
      faultPlan().completion() == tCompletion::never && overlapped->Internal == kStatusPending;
  if (!cancelled && !neverSent) {
    SetLastError(ERROR_NOT_FOUND);
    return FALSE;
  }
  objects().complete(*overlapped, ERROR_OPERATION_ABORTED, 0);
  return TRUE;
}

namespace {

std::optional<tModelFile> modelFileOf(HANDLE handle) {
  const std::lock_guard lock(objects().mutex);
  const tFile* const file = objects().find<tFile>(handle);
  return file == nullptr ? std::nullopt : std::optional(file->file);
}

// Returns the kind of the closed object; ends the program if CloseHandle rejects the handle.
const char* closeObject(HANDLE handle) {
  // Waits for requests that another thread has just cancelled and is about to complete.
  constexpr DWORD kTimeoutMilliseconds = 5000;
  std::unique_lock lock(objects().mutex);
  const auto nothingIsPending = [handle] {
    const tFile* const file = objects().find<tFile>(handle);
    return file == nullptr || file->pending.empty();
  };
  expectSupported(objects().waitUntil(lock, nameOf(tCall::closeHandle), subjectOf(handle),
                                      kTimeoutMilliseconds, nothingIsPending),
                  tCall::closeHandle, "a file with a pending request that no thread ends");
  const char* const kind = objects().kindOf(handle);
  expectSupported(kind != nullptr && objects().find<tDeviceInformationSet>(handle) == nullptr,
                  tCall::closeHandle, "nothing that can be closed, or closed already");
  const tDiskFile* const onDisk = objects().find<tDiskFile>(handle);
  if (onDisk != nullptr && onDisk->isRemovedOnClose) {
    std::error_code ignored;
    std::filesystem::remove(onDisk->path, ignored);
  }
  static_cast<void>(objects().remove(handle));
  return kind;
}

}  // namespace

BOOL WINAPI CloseHandle(HANDLE handle) {
  const tInside inside;
  scheduler().point(nameOf(tCall::closeHandle), subjectOf(handle));
  const std::optional<tModelFile> file = modelFileOf(handle);
  if (file) {
    machine().cleanUp(*file);
  }
  static_cast<void>(faultPlan().enter(tCall::closeHandle, closeObject(handle)));
  if (file) {
    machine().close(*file);
  }
  return TRUE;
}
