#ifndef TESTS_FAKEWINDOWS_FAULTPLAN_H
#define TESTS_FAKEWINDOWS_FAULTPLAN_H

#include <array>
#include <cstdint>
#include <functional>
#include <mutex>
#include <optional>
#include <string>
#include <vector>

namespace nFakeWindows {

// The functions of the fake Windows that can fail or are counted.
enum class tCall : uint8_t {
  setupDiGetClassDevs,
  setupDiEnumDeviceInterfaces,
  setupDiGetDeviceInterfaceDetail,
  setupDiDestroyDeviceInfoList,
  createFile,
  createEvent,
  deviceIoControl,
  readFile,
  writeFile,
  getOverlappedResult,
  cancelIoEx,
  waitForSingleObject,
  waitForMultipleObjects,
  beginThread,
  getThreadPriority,
  setThreadPriority,
  getModuleHandleEx,
  createIoCompletionPort,
  getQueuedCompletionStatus,
  postQueuedCompletionStatus,
  multiByteToWideChar,
  wideCharToMultiByte,
  addVectoredExceptionHandler,
  closeHandle,
  initializeCriticalSectionEx,
  getSystemFirmwareTable,
  // COM: the error is the HRESULT of the call.
  coInitializeEx,
  coUninitialize,
  coInitializeSecurity,
  coCreateInstance,
  coSetProxyBlanket,
  sysAllocString,
  connectServer,
  execQuery,
  next,
  get,
  getFileAttributes,
  createProcess,
  getTokenInformation,
  convertSecurityDescriptor,
  setKernelObjectSecurity,
  createDirectory,
  createDiskFile,  // its argument is "folder" or "file"
  createNewFile,
  getDiskAttributes,
  getTempPath,
  getFileInformation,
  getFileInformationEx,
  setFileInformation,
  getFinalPathName,
  compareStringOrdinal,
  getRandom,  // of the native system; Windows builds call BCrypt
};
inline constexpr size_t kCalls = static_cast<size_t>(tCall::getRandom) + 1;

[[nodiscard]] const char* nameOf(tCall call) noexcept;

// The time at which an overlapped request completes.
enum class tCompletion : uint8_t {
  atOnce,
  later,          // pending first; another thread completes it
  uncancellable,  // pending until cancelled; completes in spite of the cancellation
  never,          // pending until cancelled
};

// A recorded call.
struct tCallRecord {
  tCall call;
  std::string argument;  // distinguishes calls: a path, a kind of handle
};

// Planned faults, and a record of the calls. Calls are numbered from 1 after reset().
// Any thread.
class tFaultPlan {
 public:
  constexpr tFaultPlan() = default;

  // Clears plans, counts and the record.
  void reset();

  // Makes the nth call of a function, or of any function, fail with a Windows error.
  void failCall(tCall call, unsigned nth, uint32_t error);
  void failAnyCall(unsigned nth, uint32_t error);
  // Makes all later calls of the function fail.
  void failEveryCall(tCall call, uint32_t error);

  // Calls `decision` for each call, one at a time. It returns the error if the call is to fail.
  using tDecision = std::function<std::optional<uint32_t>(tCall call, const std::string& argument)>;
  void decide(tDecision decision);

  // Runs a hook before the nth call of a function does its work.
  void beforeCall(tCall call, unsigned nth, std::function<void()> hook);

  // Sets how later overlapped requests complete, and with which error.
  void complete(tCompletion completion, uint32_t error = 0);
  [[nodiscard]] tCompletion completion() const;
  [[nodiscard]] uint32_t completionError() const;

  [[nodiscard]] unsigned callCount() const;
  [[nodiscard]] unsigned callCount(tCall call) const;
  [[nodiscard]] std::array<unsigned, kCalls> callCounts() const;
  [[nodiscard]] std::vector<tCallRecord> calls() const;

  // Called by the functions of the fake. Records a call; returns the error if it is to fail.
  [[nodiscard]] std::optional<uint32_t> enter(tCall call, std::string argument = {});

 private:
  struct tFailure {
    std::optional<tCall> call;  // none: any
    unsigned nth;               // 0: every
    uint32_t error;
  };
  struct tHook {
    tCall call;
    unsigned nth;
    std::function<void()> run;
  };

  mutable std::mutex mutex_;
  std::array<unsigned, kCalls> counts_{};
  std::vector<tCallRecord> record_;
  std::vector<tFailure> failures_;
  std::vector<tHook> hooks_;
  std::vector<tDecision> decisions_;
  tCompletion completion_ = tCompletion::atOnce;
  uint32_t completionError_ = 0;
};

// The plan of this process. Constant-initialised, so that faults can be planned before the library
// under test is initialised.
[[nodiscard]] tFaultPlan& faultPlan() noexcept;

// Marks a thread as executing the fake Windows, whose own allocations must not fail.
class tInside {
 public:
  tInside() noexcept { ++depth; }
  tInside(const tInside&) = delete;
  tInside& operator=(const tInside&) = delete;
  ~tInside() { --depth; }

  [[nodiscard]] static bool isActive() noexcept { return depth != 0; }

 private:
  static thread_local int depth;
};

// During its lifetime, calls and allocations of its thread belong to the test: they are not counted
// and do not fail.
class tOffTheRecord {
 public:
  tOffTheRecord() noexcept { ++depth; }
  tOffTheRecord(const tOffTheRecord&) = delete;
  tOffTheRecord& operator=(const tOffTheRecord&) = delete;
  ~tOffTheRecord() { --depth; }

  [[nodiscard]] static bool isActive() noexcept { return depth != 0; }

 private:
  static thread_local int depth;
  const tInside inside_;
};

// Ends the program with a message, and the schedule of a run: the library called the function in a
// way that it never should.
[[noreturn]] void stop(const char* function, const char* what);

// Ends the program unless the fake supports the arguments of the call.
inline void expectSupported(bool supported, tCall call, const char* what) {
  if (!supported) {
    stop(nameOf(call), what);
  }
}

}  // namespace nFakeWindows

#endif
