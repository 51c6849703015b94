#include "zoapal/protons/text/windowsu/codepage.h"

#include <limits>
#include <stdexcept>
#include <system_error>

namespace nQUENRA1400::nZOAPAL000 {
namespace {

// The system's calls have a length of type int.
template <class Text>
int lengthOf(const Text& text) {
  if (text.size() > std::numeric_limits<int>::max()) {
    throw std::length_error("a name of 2 GiB");
  }
  return static_cast<int>(text.size());
}

[[noreturn]] void fail(DWORD error, std::string_view call) {
  throw std::system_error(static_cast<int>(error), std::system_category(), std::string(call));
}

size_t converted(int characters, std::string_view call) {
  if (characters <= 0) {
    fail(GetLastError(), call);
  }
  return static_cast<size_t>(characters);
}

}  // namespace

std::u16string utf16FromCodePage(std::string_view text) {
  constexpr std::string_view kCall = "MultiByteToWideChar";
  constexpr DWORD kFlags = MB_ERR_INVALID_CHARS;
  const int length = lengthOf(text);
  std::u16string result;
  // The call returns 0 for an empty text, as for a failure.
  if (length != 0) {
    result.resize(
        converted(MultiByteToWideChar(CP_ACP, kFlags, text.data(), length, nullptr, 0), kCall));
    result.resize(
        converted(MultiByteToWideChar(CP_ACP, kFlags, text.data(), length, wideText(result.data()),
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
        WideCharToMultiByte(CP_ACP, 0, wideText(text.data()), length, nullptr, 0, nullptr, nullptr),
        kCall));
    result.resize(
        converted(WideCharToMultiByte(CP_ACP, 0, wideText(text.data()), length, result.data(),
                                      static_cast<int>(result.size()), nullptr, nullptr),
                  kCall));
    // The system replaces a character that the code page lacks, often by a similar letter or a separator.
    // Its flag against that is refused for some code pages, UTF-8 among them.
    if (utf16FromCodePage(result) != text) {
      fail(ERROR_NO_UNICODE_TRANSLATION, kCall);
    }
  }
  return result;
}

}  // namespace nQUENRA1400::nZOAPAL000
