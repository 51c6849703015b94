#include "zoapal/protons/text/windowsu/codepage.h"

#include <windows.h>

#include <limits>
#include <stdexcept>
#include <system_error>

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

// As the system takes it; nothing it could convert is longer.
template <class Text>
int lengthOf(const Text& text) {
  if (text.size() > std::numeric_limits<int>::max()) {
    throw std::length_error("a name of 2 GiB");
  }
  return static_cast<int>(text.size());
}

// What is not converted whole is no name of anything: better none than another.
size_t converted(int characters, std::string_view call) {
  if (characters <= 0) {
    throw std::system_error(static_cast<int>(GetLastError()), std::system_category(),
                            std::string(call));
  }
  return static_cast<size_t>(characters);
}

}  // namespace

std::u16string utf16FromCodePage(std::string_view text) {
  constexpr std::string_view kCall = "MultiByteToWideChar";
  const int length = lengthOf(text);
  std::u16string result;
  // For an empty text the system gives 0, as for a failure.
  if (length != 0) {
    result.resize(
        converted(MultiByteToWideChar(CP_ACP, 0, text.data(), length, nullptr, 0), kCall));
    result.resize(converted(MultiByteToWideChar(CP_ACP, 0, text.data(), length, wide(result.data()),
                                                static_cast<int>(result.size())),
                            kCall));
  }
  return result;
}

std::string codePageFromUtf16(std::u16string_view text) {
  constexpr std::string_view kCall = "WideCharToMultiByte";
  const int length = lengthOf(text);
  std::string result;
  if (length != 0) {
    result.resize(converted(
        WideCharToMultiByte(CP_ACP, 0, wide(text.data()), length, nullptr, 0, nullptr, nullptr),
        kCall));
    result.resize(converted(WideCharToMultiByte(CP_ACP, 0, wide(text.data()), length, result.data(),
                                                static_cast<int>(result.size()), nullptr, nullptr),
                            kCall));
  }
  return result;
}

}  // namespace nQUENRA1400::nZOAPAL000
