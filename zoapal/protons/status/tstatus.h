#ifndef ZOAPAL_PROTONS_STATUS_TSTATUS_H
#define ZOAPAL_PROTONS_STATUS_TSTATUS_H

#include <cstddef>
#include <cstdint>

#include "zoapal/protons/status/tsourcelocation.h"

namespace nZOAPALS100 {

// Codes of the platform layer.
inline constexpr int32_t kMemoryFull = -52000;
inline constexpr int32_t kNotSupported = -52002;
inline constexpr int32_t kGenericFailure = -52003;
inline constexpr int32_t kInvalidParameter = -52005;
inline constexpr int32_t kNotFound = -52006;
inline constexpr int32_t kTimeOut = -52007;
inline constexpr int32_t kInternalError = -52008;
inline constexpr int32_t kAccessDenied = -52009;
inline constexpr int32_t kNotReady = -52010;
inline constexpr int32_t kIoPending = 52011;
inline constexpr int32_t kEndOfFile = -52012;
inline constexpr int32_t kAlreadyExists = -52013;
inline constexpr int32_t kPathTooLong = -52019;
inline constexpr int32_t kDeviceRemoved = -52020;
inline constexpr int32_t kSystemRefused = -52021;
inline constexpr int32_t kNotificationTooLarge = -52024;
inline constexpr int32_t kBusy = -52031;

// The status record of the driver-access layer: a code, and in its full form the place that raised it.
// Its layout is fixed. A record whose structSize is below kFullSize is a short form: only structSize and
// code exist in memory.
//
// Every operation has one as its last argument, does nothing when it already holds an error, and reports
// failure by merging into it. A record belongs to one chain of calls and is never shared between threads.
struct tStatus {
  static constexpr uint32_t kFullSize = 208;

  uint32_t structSize = kFullSize;
  int32_t code = 0;
  char component[10] = {};  // NUL-terminated, rest zero
  char file[101] = {};      // NUL-terminated, rest zero
  uint32_t line = 0;
  uint64_t extension[10] = {};  // opaque words, ending at the first zero

  [[nodiscard]] bool isError() const noexcept { return code < 0; }
  [[nodiscard]] bool isFull() const noexcept { return structSize >= kFullSize; }
};

static_assert(sizeof(tStatus) == tStatus::kFullSize);
static_assert(offsetof(tStatus, code) == 4);
static_assert(offsetof(tStatus, component) == 8);
static_assert(offsetof(tStatus, file) == 18);
static_assert(offsetof(tStatus, line) == 120);
static_assert(offsetof(tStatus, extension) == 128);

// Stores `code` under the merge rule, in a full record together with its source: at most 9 characters
// of the component, and at most 100 of the file. A longer file is shortened in its middle and keeps its
// beginning and its file name. Clears the extension. Null texts count as empty; the texts may point into
// the record itself. True when the code was stored.
bool mergeStatus(tStatus& status, int32_t code, const char* component, const char* file,
                 uint32_t line) noexcept;

bool mergeStatus(tStatus& status, int32_t code, const tSourceLocation& location) noexcept;

}  // namespace nZOAPALS100

#endif
