// A code page whose 256 characters are the first 256 of Unicode.
#include <windows.h>

#include "tests/fakewindows/unusual.h"

using namespace nFakeWindows;

namespace {

constexpr WCHAR kLastCharacter = 0xFF;

}  // namespace

INT WINAPI MultiByteToWideChar(UINT codePage, DWORD flags, LPCSTR text, INT length, LPWSTR wide,
                               INT room) {
  const tInside inside;
  // Every byte is a character of this code page: the flag never causes a failure.
  expectUsual(codePage == CP_ACP && flags == MB_ERR_INVALID_CHARS && length >= 0,
              tCall::multiByteToWideChar,
              "only texts of a given length in the code page of the process are converted");
  if (const auto error = faultPlan().enter(tCall::multiByteToWideChar)) {
    SetLastError(*error);
    return 0;
  }
  for (INT i = 0; i < length && i < room; ++i) {
    wide[i] = static_cast<unsigned char>(text[i]);
  }
  return length;
}

INT WINAPI WideCharToMultiByte(UINT codePage, DWORD flags, LPCWSTR wide, INT length, LPSTR text,
                               INT room, LPCSTR replacement, LPBOOL replaced) {
  const tInside inside;
  expectUsual(codePage == CP_ACP && flags == 0 && length >= 0 && replacement == nullptr &&
                  replaced == nullptr,
              tCall::wideCharToMultiByte,
              "only texts of a given length in the code page of the process are converted");
  if (const auto error = faultPlan().enter(tCall::wideCharToMultiByte)) {
    SetLastError(*error);
    return 0;
  }
  for (INT i = 0; i < length && i < room; ++i) {
    text[i] = wide[i] > kLastCharacter ? '?' : static_cast<char>(wide[i]);
  }
  return length;
}
