#ifndef ZOAPAL_PROTONS_TEXT_WINDOWSU_CODEPAGE_H
#define ZOAPAL_PROTONS_TEXT_WINDOWSU_CODEPAGE_H

#include <windows.h>

#include <string>
#include <string_view>

namespace nQUENRA1400::nZOAPAL000 {

// Convert between the code page of the process, which narrow file names have, and UTF-16. Nothing is
// replaced: a text with a byte or a character without a counterpart fails with ERROR_NO_UNICODE_TRANSLATION.
// Both throw std::bad_alloc, std::length_error for 2 GiB and more, and std::system_error with the error of
// the system.
[[nodiscard]] std::u16string utf16FromCodePage(std::string_view text);
[[nodiscard]] std::string codePageFromUtf16(std::u16string_view text);

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
