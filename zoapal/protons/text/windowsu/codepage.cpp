#include "zoapal/protons/text/windowsu/codepage.h"

#include <windows.h>

namespace nQUENRA1400::nZOAPAL000 {
namespace {

// The same 16 bits under the system's name.
static_assert(sizeof(WCHAR) == sizeof(char16_t));

LPWSTR wide(char16_t* text) noexcept {
  return reinterpret_cast<LPWSTR>(text);
}
LPCWSTR wide(const char16_t* text) noexcept {
  return reinterpret_cast<LPCWSTR>(text);
}

}  // namespace

std::u16string utf16FromCodePage(std::string_view text) {
  const int length = static_cast<int>(text.size());
  std::u16string result;
  // Both calls give 0 for an empty text, and for one that cannot be converted.
  result.resize(
      static_cast<size_t>(MultiByteToWideChar(CP_ACP, 0, text.data(), length, nullptr, 0)));
  MultiByteToWideChar(CP_ACP, 0, text.data(), length, wide(result.data()),
                      static_cast<int>(result.size()));
  return result;
}

std::string codePageFromUtf16(std::u16string_view text) {
  const int length = static_cast<int>(text.size());
  std::string result;
  result.resize(static_cast<size_t>(
      WideCharToMultiByte(CP_ACP, 0, wide(text.data()), length, nullptr, 0, nullptr, nullptr)));
  WideCharToMultiByte(CP_ACP, 0, wide(text.data()), length, result.data(),
                      static_cast<int>(result.size()), nullptr, nullptr);
  return result;
}

}  // namespace nQUENRA1400::nZOAPAL000
