#ifndef ZOAPAL_PROTONS_STATUS_ZOERRSTATUS_H
#define ZOAPAL_PROTONS_STATUS_ZOERRSTATUS_H

#include <cstddef>
#include <cstdint>
#include <exception>
#include <type_traits>

#include "zoapal/protons/status/tstatus.h"

namespace zoerr {

struct Status;

// The reallocation function of every status that the library creates itself. Capacity 0 frees the
// buffer; a capacity that the buffer already has changes nothing; any other enlarges it to 512 bytes
// or the next power of two, keeps its text, zeroes the rest and writes the marker last. Above 2^31 - 1
// bytes and when memory is short, returns false and keeps the old buffer.
bool defaultReallocate(Status& status, uint32_t newCapacity) noexcept;

// The status record above the driver layer: a code, and a description that grows through
// `reallocate`. It crosses the routing interface by pointer, so its layout is fixed and it has no
// destructor; tOwnedStatus below is the one that releases.
struct Status {
  int32_t code = 0;
  uint32_t capacity = 0;  // of the description buffer in bytes; 0 when there is none
  bool (*reallocate)(Status& status, uint32_t newCapacity) = &defaultReallocate;
  char* description = nullptr;  // NUL-terminated JSON text, or null

  [[nodiscard]] bool isError() const noexcept { return code < 0; }

  // Stores `newCode` under the merge rule and writes its location to the description: file, line,
  // component. True when the code was stored, even if memory for the description was short.
  bool set(int32_t newCode, const nZOAPALS100::tSourceLocation& location) noexcept;

  // As set; the description begins with the location's error constant.
  bool setWithConstant(int32_t newCode, const nZOAPALS100::tSourceLocation& location) noexcept;

  // Stores the code of a driver-layer status under the merge rule and writes its location, if it has
  // one, to the description. False only when memory for the description was short; the code is stored
  // even then. A client's buffer that can hold no member (without marker, not a JSON text) is left
  // unchanged, which is not a failure.
  bool mergeFrom(const nZOAPALS100::tStatus& source) noexcept;

  // The same for another status of this kind: the description becomes a copy of its text, in this
  // status's own memory. If the source has none, an existing description becomes empty.
  bool mergeFrom(const Status& source) noexcept;

  // Back to success, without a description.
  void clear() noexcept;

  // Frees the description the way it was allocated.
  void releaseDescription() noexcept;

 private:
  [[nodiscard]] bool ensureCapacity(uint32_t needed) noexcept;
  [[nodiscard]] bool grow() noexcept;
  void resetExistingDescription() noexcept;
  // False only when the buffer could not grow; a member that an unusable text cannot hold is dropped.
  template <class Append>
  [[nodiscard]] bool appendGrowing(Append append) noexcept;
  [[nodiscard]] bool appendTextMember(const char* key, const char* value) noexcept;
  [[nodiscard]] bool appendLineMember(uint32_t line) noexcept;
  [[nodiscard]] bool appendLocation(const nZOAPALS100::tSourceLocation& location) noexcept;
};

static_assert(std::is_standard_layout_v<Status>);
static_assert(sizeof(Status) == 24);
static_assert(offsetof(Status, capacity) == 4);
static_assert(offsetof(Status, reallocate) == 8);
static_assert(offsetof(Status, description) == 16);

// A status on the stack of an exported function, which owns its description.
struct tOwnedStatus : Status {
  tOwnedStatus() = default;
  tOwnedStatus(const tOwnedStatus&) = delete;
  tOwnedStatus& operator=(const tOwnedStatus&) = delete;
  ~tOwnedStatus() { releaseDescription(); }
};

// Carries a status from the failing operation to an exported function. No member throws; if memory for
// a copy of the description is short, only the code is copied.
class ExceptionBase {
 public:
  ExceptionBase() noexcept = default;
  // Copies the code. Takes ownership of the description if both statuses use the default reallocation
  // function, and leaves the source without one; otherwise copies its text. A status of success leaves
  // the exception empty.
  explicit ExceptionBase(Status& status) noexcept;
  // Copies code and text.
  explicit ExceptionBase(const Status& status) noexcept;
  ExceptionBase(const ExceptionBase& other) noexcept;
  ExceptionBase& operator=(const ExceptionBase& other) noexcept;
  virtual ~ExceptionBase();

  [[nodiscard]] const Status& status() const noexcept { return status_; }

 private:
  Status status_;
};

// The exception that the library throws. Catch it by reference, after std::bad_alloc.
class Exception : public virtual ExceptionBase, public virtual std::exception {
 public:
  Exception() noexcept = default;
  explicit Exception(Status& status) noexcept : ExceptionBase(status) {}
  explicit Exception(const Status& status) noexcept : ExceptionBase(status) {}
  Exception(const Exception&) noexcept = default;
  Exception& operator=(const Exception&) noexcept = default;
  ~Exception() override;

  // The description as JSON text; empty if there is none.
  [[nodiscard]] const char* what() const noexcept override;
};

}  // namespace zoerr

#endif
