#ifndef ZOAPAL_PROTONS_STATUS_TSTATUS_H
#define ZOAPAL_PROTONS_STATUS_TSTATUS_H

#include <cstddef>
#include <cstdint>
#include <memory>
#include <type_traits>

namespace nZOAPALS100 {

inline constexpr const char* kComponent = "quenra";

// Identifies a site that raises an error. File and line are identifiers, not positions in today's source:
// users report them and search for them, so a site keeps its numbers when its code moves.
struct tSourceLocation {
  const char* file;
  uint32_t line;
  const char* component = kComponent;
  const char* errorConstant = nullptr;  // symbolic name of the code, if the site reports it
};

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

// The rule by which every status record accepts a new code: the first error wins, an error replaces a
// warning, a warning never replaces a warning, and success replaces nothing.
[[nodiscard]] constexpr bool replacesCode(int32_t current, int32_t next) noexcept {
  return current == 0 ? next != 0 : current > 0 && next < 0;
}

// The status record of the driver-access layer: a code, and in its full form the location that raised it.
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
  // Of a full record. Refers to the record's own texts.
  [[nodiscard]] tSourceLocation location() const noexcept { return {file, line, component}; }
};

static_assert(sizeof(tStatus) == tStatus::kFullSize);
static_assert(offsetof(tStatus, code) == 4);
static_assert(offsetof(tStatus, component) == 8);
static_assert(offsetof(tStatus, file) == 18);
static_assert(offsetof(tStatus, line) == 120);
static_assert(offsetof(tStatus, extension) == 128);

// Stores `code` under the merge rule, in a full record together with its location: at most 9 characters
// of the component, and at most 100 of the file. A longer file is shortened in its middle and keeps its
// beginning and its file name. Clears the extension. Null texts count as empty; the texts may point into
// the record itself. True when the code was stored.
bool mergeStatus(tStatus& status, int32_t code, const tSourceLocation& location) noexcept;

inline bool mergeStatus(tStatus& status, int32_t code, const char* component, const char* file,
                        uint32_t line) noexcept {
  return mergeStatus(status, code, {file, line, component});
}

// A full record that exists from the first failure on. Zeroing a record takes longer than many an
// operation that succeeds; std::optional would zero the space for it.
class tFailureRecord {
 public:
  // NOLINTNEXTLINE(cppcoreguidelines-pro-type-member-init): the record does not exist yet
  tFailureRecord() noexcept {}
  tFailureRecord(const tFailureRecord&) = delete;
  tFailureRecord& operator=(const tFailureRecord&) = delete;
  ~tFailureRecord() = default;

  [[nodiscard]] bool exists() const noexcept { return exists_; }
  [[nodiscard]] int32_t code() const noexcept { return exists_ ? record_.code : 0; }
  // The record, which must exist.
  [[nodiscard]] const tStatus& record() const noexcept { return record_; }

  // Creates an empty record.
  tStatus& create() noexcept {
    exists_ = true;
    return *std::construct_at(&record_);
  }
  void discard() noexcept { exists_ = false; }
  void merge(int32_t code, const tSourceLocation& location) noexcept {
    mergeStatus(exists_ ? record_ : create(), code, location);
  }

 private:
  static_assert(std::is_trivially_destructible_v<tStatus>);

  union {
    tStatus record_;
  };
  bool exists_ = false;
};

// The status code for a Windows error: 0 for 0, kGenericFailure for an error without a code of its
// own. Pending I/O gives a warning on purpose.
[[nodiscard]] int32_t statusOfWin32Error(uint32_t win32Error) noexcept;

// Merges the code for a Windows error, raised by kComponent. Error 0 changes nothing.
void mergeWin32Error(uint32_t win32Error, tStatus& status, const char* file,
                     uint32_t line) noexcept;

// For a call that is known to have failed: as mergeWin32Error, except that a missing error (0) is a
// failure too, kGenericFailure, so that it can never look like success.
void mergeWin32Failure(uint32_t win32Error, tStatus& status,
                       const tSourceLocation& location) noexcept;

}  // namespace nZOAPALS100

#endif
