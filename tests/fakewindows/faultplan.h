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

// The functions of the fake Windows that can fail or are worth counting.
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
  // COM: the error is the result with which the call fails.
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
  getFileInformation,
  getFileInformationEx,
  setFileInformation,
  getFinalPathName,
  compareStringOrdinal,
  getRandom,  // of the native system; Windows builds call BCrypt
};
inline constexpr size_t kCalls = static_cast<size_t>(tCall::getRandom) + 1;

[[nodiscard]] const char* nameOf(tCall call) noexcept;

// When an overlapped request completes.
enum class tCompletion : uint8_t {
  atOnce,
  later,       // it is pending first, and another thread completes it
  tooFarGone,  // it is pending until it is cancelled, and completes all the same
  never,       // it is pending until it is cancelled
};

// One call that was made.
struct tCallRecord {
  tCall call;
  std::string argument;  // what tells it from others: a path, a kind of handle
};

// What shall go wrong, and a record of what was called. Calls are counted from reset() on, from 1.
// Any thread.
class tFaultPlan {
 public:
  constexpr tFaultPlan() = default;

  // Forgets plans, counts and the record.
  void reset();

  // The nth call of a function, or of any function, fails with a Windows error.
  void failCall(tCall call, unsigned nth, uint32_t error);
  void failAnyCall(unsigned nth, uint32_t error);
  // All calls of the function from now on.
  void failEveryCall(tCall call, uint32_t error);

  // Asks about each call whether it is to fail, and with which error; one call at a time.
  using tDecision = std::function<std::optional<uint32_t>(tCall call, const std::string& argument)>;
  void decide(tDecision decision);

  // Runs before the nth call of a function does its work.
  void beforeCall(tCall call, unsigned nth, std::function<void()> hook);

  // How overlapped requests complete from now on. An error is what they complete with.
  void complete(tCompletion completion, uint32_t error = 0);
  [[nodiscard]] tCompletion completion() const;
  [[nodiscard]] uint32_t completionError() const;

  [[nodiscard]] unsigned callCount() const;
  [[nodiscard]] unsigned callCount(tCall call) const;
  [[nodiscard]] std::array<unsigned, kCalls> callCounts() const;
  [[nodiscard]] std::vector<tCallRecord> calls() const;

  // For the functions of the fake: notes a call. Gives the error with which it is to fail.
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

// The plan of this process. Constant-initialised, so that a plan can be made before the library
// under test is initialised.
[[nodiscard]] tFaultPlan& faultPlan() noexcept;

}  // namespace nFakeWindows

#endif
