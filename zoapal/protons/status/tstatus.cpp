#include "zoapal/protons/status/tstatus.h"

#include <algorithm>
#include <cstring>

#include "zoapal/protons/status/mergerule.h"

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

}  // namespace

bool mergeStatus(tStatus& status, int32_t code, const char* component, const char* file,
                 uint32_t line) noexcept {
  if (!replacesCode(status.code, code)) {
    return false;
  }
  status.code = code;
  if (status.isFull()) {
    const char* name = textOrEmpty(component);
    assignText(status.component, name, std::strlen(name));
    assignFile(status.file, textOrEmpty(file));
    status.line = line;
    status.extension[0] = 0;
  }
  return true;
}

bool mergeStatus(tStatus& status, int32_t code, const tSourceLocation& location) noexcept {
  return mergeStatus(status, code, location.component, location.file, location.line);
}

}  // namespace nZOAPALS100
