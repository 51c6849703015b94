#ifndef SIMULATOR_MANAGEMENTSERVICE_WIDETEXT_H
#define SIMULATOR_MANAGEMENTSERVICE_WIDETEXT_H

#include <windows.h>

#include <cstddef>

namespace nSimulator {

// Windows wide texts without the C library, whose wchar_t has another size in native builds.

[[nodiscard]] constexpr size_t lengthOf(const WCHAR* text) noexcept {
  size_t length = 0;
  while (text[length] != 0) {
    ++length;
  }
  return length;
}

// False if `text` is null.
[[nodiscard]] constexpr bool isText(const WCHAR* text, const WCHAR* expected) noexcept {
  if (text == nullptr) {
    return false;
  }
  while (*text == *expected && *text != 0) {
    ++text;
    ++expected;
  }
  return *text == *expected;
}

}  // namespace nSimulator

#endif
