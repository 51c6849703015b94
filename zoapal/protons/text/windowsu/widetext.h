#ifndef ZOAPAL_PROTONS_TEXT_WINDOWSU_WIDETEXT_H
#define ZOAPAL_PROTONS_TEXT_WINDOWSU_WIDETEXT_H

#include <windows.h>

namespace nQUENRA1400::nZOAPAL000 {

// UTF-16 text as the parameter of a Windows call: the same 16 bits under the system's name.
static_assert(sizeof(WCHAR) == sizeof(char16_t));

[[nodiscard]] inline LPWSTR wideText(char16_t* text) noexcept {
  return reinterpret_cast<LPWSTR>(text);
}
[[nodiscard]] inline LPCWSTR wideText(const char16_t* text) noexcept {
  return reinterpret_cast<LPCWSTR>(text);
}

}  // namespace nQUENRA1400::nZOAPAL000

#endif
