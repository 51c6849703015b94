#include "tests/fakewindows/faultplan.h"

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <numeric>

#include "tests/fakewindows/scheduler.h"

namespace nFakeWindows {
namespace {

// Never destroyed: the library under test may still be called while the program ends.
union tLastingPlan {
  constexpr tLastingPlan() : plan() {}
  ~tLastingPlan() {}  // NOLINT(modernize-use-equals-default)
  tFaultPlan plan;
};
constinit tLastingPlan thePlan;

// ERROR_NOT_ENOUGH_MEMORY, with which any call may fail.
constexpr uint32_t kFaultOfASchedule = 8;

// Calls that report their failure, on a path that concerns other threads.
constexpr bool mayFailInASchedule(tCall call) {
  return call >= tCall::createFile && call <= tCall::postQueuedCompletionStatus;
}

constexpr const char* kNames[kCalls] = {
    "SetupDiGetClassDevsA",
    "SetupDiEnumDeviceInterfaces",
    "SetupDiGetDeviceInterfaceDetailA",
    "SetupDiDestroyDeviceInfoList",
    "CreateFileA",
    "CreateEventA",
    "DeviceIoControl",
    "ReadFile",
    "WriteFile",
    "GetOverlappedResult",
    "CancelIoEx",
    "WaitForSingleObject",
    "WaitForMultipleObjects",
    "_beginthreadex",
    "GetThreadPriority",
    "SetThreadPriority",
    "GetModuleHandleExA",
    "CreateIoCompletionPort",
    "GetQueuedCompletionStatus",
    "PostQueuedCompletionStatus",
    "MultiByteToWideChar",
    "WideCharToMultiByte",
    "AddVectoredExceptionHandler",
    "CloseHandle",
    "InitializeCriticalSectionEx",
    "GetSystemFirmwareTable",
    "CoInitializeEx",
    "CoUninitialize",
    "CoInitializeSecurity",
    "CoCreateInstance",
    "CoSetProxyBlanket",
    "SysAllocString",
    "IWbemLocator::ConnectServer",
    "IWbemServices::ExecQuery",
    "IEnumWbemClassObject::Next",
    "IWbemClassObject::Get",
    "GetFileAttributesA",
    "CreateProcessA",
    "GetTokenInformation",
    "ConvertStringSecurityDescriptorToSecurityDescriptorW",
    "SetKernelObjectSecurity",
    "CreateDirectoryW",
    "CreateFileW",
    "CreateFileA of a new file",
    "GetFileAttributesW",
    "GetTempPathW",
    "GetFileInformationByHandle",
    "GetFileInformationByHandleEx",
    "SetFileInformationByHandle",
    "GetFinalPathNameByHandleW",
    "CompareStringOrdinal",
    "getrandom",
};

}  // namespace

tFaultPlan& faultPlan() noexcept {
  return thePlan.plan;
}

const char* nameOf(tCall call) noexcept {
  return kNames[static_cast<size_t>(call)];
}

void tFaultPlan::reset() {
  const std::lock_guard lock(mutex_);
  counts_.fill(0);
  record_.clear();
  failures_.clear();
  hooks_.clear();
  decisions_.clear();
  completion_ = tCompletion::atOnce;
  completionError_ = 0;
}

void tFaultPlan::failCall(tCall call, unsigned nth, uint32_t error) {
  const std::lock_guard lock(mutex_);
  failures_.push_back({call, nth, error});
}

void tFaultPlan::failAnyCall(unsigned nth, uint32_t error) {
  const std::lock_guard lock(mutex_);
  failures_.push_back({std::nullopt, nth, error});
}

void tFaultPlan::failEveryCall(tCall call, uint32_t error) {
  failCall(call, 0, error);
}

void tFaultPlan::decide(tDecision decision) {
  const std::lock_guard lock(mutex_);
  decisions_.push_back(std::move(decision));
}

void tFaultPlan::beforeCall(tCall call, unsigned nth, std::function<void()> hook) {
  const std::lock_guard lock(mutex_);
  hooks_.push_back({call, nth, std::move(hook)});
}

void tFaultPlan::complete(tCompletion completion, uint32_t error) {
  const std::lock_guard lock(mutex_);
  completion_ = completion;
  completionError_ = error;
}

tCompletion tFaultPlan::completion() const {
  const std::lock_guard lock(mutex_);
  return completion_;
}

uint32_t tFaultPlan::completionError() const {
  const std::lock_guard lock(mutex_);
  return completionError_;
}

unsigned tFaultPlan::callCount() const {
  const std::lock_guard lock(mutex_);
  return std::accumulate(counts_.begin(), counts_.end(), 0u);
}

unsigned tFaultPlan::callCount(tCall call) const {
  const std::lock_guard lock(mutex_);
  return counts_[static_cast<size_t>(call)];
}

std::array<unsigned, kCalls> tFaultPlan::callCounts() const {
  const std::lock_guard lock(mutex_);
  return counts_;
}

std::vector<tCallRecord> tFaultPlan::calls() const {
  const std::lock_guard lock(mutex_);
  return record_;
}

std::optional<uint32_t> tFaultPlan::enter(tCall call, std::string argument) {
  if (tOffTheRecord::isActive()) {
    return std::nullopt;
  }
  std::function<void()> hook;
  std::optional<uint32_t> error;
  {
    const std::lock_guard lock(mutex_);
    const unsigned nth = ++counts_[static_cast<size_t>(call)];
    const unsigned nthOfAny = std::accumulate(counts_.begin(), counts_.end(), 0u);
    for (const tDecision& decision : decisions_) {
      error = error ? error : decision(call, argument);
    }
    record_.push_back({call, std::move(argument)});
    for (const tHook& candidate : hooks_) {
      if (candidate.call == call && candidate.nth == nth) {
        hook = candidate.run;
      }
    }
    for (const tFailure& failure : failures_) {
      const unsigned count = failure.call ? nth : nthOfAny;
      if (failure.call.value_or(call) == call && (failure.nth == 0 || failure.nth == count)) {
        error = failure.error;
      }
    }
  }
  // Not locked: a hook may change the plan or call the fake.
  if (hook) {
    hook();
  }
  if (!error && mayFailInASchedule(call) && scheduler().fails(nameOf(call))) {
    error = kFaultOfASchedule;
  }
  return error;
}

thread_local int tInside::depth = 0;
thread_local int tOffTheRecord::depth = 0;

void stop(const char* function, const char* what) {
  std::fprintf(stderr, "the fake Windows: %s: %s\n", function, what);
  if (tScheduler::isActive()) {
    const tInside inside;
    std::fputs(scheduler().table().c_str(), stderr);
  }
  std::abort();
}

}  // namespace nFakeWindows
