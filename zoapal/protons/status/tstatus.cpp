#include "zoapal/protons/status/tstatus.h"

#include <algorithm>
#include <cstring>
#include <iterator>

namespace nZOAPALS100 {
namespace {

// Copies up to N - 1 characters and fills the rest with zeros. The source may be the destination.
template <size_t N>
void assignText(char (&destination)[N], const char* source, size_t length) noexcept {
  const size_t kept = std::min(length, N - 1);
  std::memmove(destination, source, kept);
  std::memset(destination + kept, 0, N - kept);
}

void assignFile(char (&destination)[101], const char* file) noexcept {
  constexpr size_t kKeptAtEachEnd = 49;
  const size_t length = std::strlen(file);
  if (length < sizeof destination) {
    assignText(destination, file, length);
    return;
  }
  std::memmove(destination, file, kKeptAtEachEnd);
  std::memcpy(destination + kKeptAtEachEnd, "..", 2);
  std::memmove(destination + kKeptAtEachEnd + 2, file + length - kKeptAtEachEnd, kKeptAtEachEnd);
  destination[sizeof destination - 1] = '\0';
}

const char* textOrEmpty(const char* text) noexcept {
  return text == nullptr ? "" : text;
}

struct tRow {
  uint32_t win32Error;
  int32_t code;
};

// Searched in this order; the first match counts.
constexpr tRow kRows[] = {
    {0, 0},
    {997, kIoPending},         // ERROR_IO_PENDING
    {8, kMemoryFull},          // ERROR_NOT_ENOUGH_MEMORY
    {1450, kMemoryFull},       // ERROR_NO_SYSTEM_RESOURCES
    {50, kNotSupported},       // ERROR_NOT_SUPPORTED
    {1, kNotSupported},        // ERROR_INVALID_FUNCTION
    {31, kGenericFailure},     // ERROR_GEN_FAILURE
    {1117, kGenericFailure},   // ERROR_IO_DEVICE
    {87, kInvalidParameter},   // ERROR_INVALID_PARAMETER
    {2, kNotFound},            // ERROR_FILE_NOT_FOUND
    {121, kTimeOut},           // ERROR_SEM_TIMEOUT
    {1359, kInternalError},    // ERROR_INTERNAL_ERROR
    {5, kAccessDenied},        // ERROR_ACCESS_DENIED
    {21, kNotReady},           // ERROR_NOT_READY
    {1617, kDeviceRemoved},    // ERROR_DEVICE_REMOVED
    {38, kEndOfFile},          // ERROR_HANDLE_EOF
    {122, kPathTooLong},       // ERROR_INSUFFICIENT_BUFFER
    {639, kSystemRefused},     //
    {183, kAlreadyExists},     // ERROR_ALREADY_EXISTS
    {0xE0000204u, kNotFound},  // SetupAPI ERROR_KEY_DOES_NOT_EXIST
    {258, kTimeOut},           // WAIT_TIMEOUT
    {170, kBusy},              // ERROR_BUSY
};
static_assert(std::size(kRows) == 22);

}  // namespace

bool mergeStatus(tStatus& status, int32_t code, const tSourceLocation& location) noexcept {
  if (!replacesCode(status.code, code)) {
    return false;
  }
  status.code = code;
  if (status.isFull()) {
    const char* const component = textOrEmpty(location.component);
    assignText(status.component, component, std::strlen(component));
    assignFile(status.file, textOrEmpty(location.file));
    status.line = location.line;
    status.extension[0] = 0;
  }
  return true;
}

int32_t statusOfWin32Error(uint32_t win32Error) noexcept {
  const tRow* row = std::find_if(std::begin(kRows), std::end(kRows), [win32Error](const tRow& r) {
    return r.win32Error == win32Error;
  });
  return row == std::end(kRows) ? kGenericFailure : row->code;
}

void mergeWin32Error(uint32_t win32Error, tStatus& status, const char* file,
                     uint32_t line) noexcept {
  mergeStatus(status, statusOfWin32Error(win32Error), {file, line});
}

void mergeWin32Failure(uint32_t win32Error, tStatus& status,
                       const tSourceLocation& location) noexcept {
  const int32_t code = win32Error == 0 ? kGenericFailure : statusOfWin32Error(win32Error);
  mergeStatus(status, code, location);
}

}  // namespace nZOAPALS100
