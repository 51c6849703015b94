// Texts: conversion with a code page whose 256 characters are the first 256 of Unicode, and
// comparison.
#include <windows.h>

#include <algorithm>
#include <compare>

#include "tests/fakewindows/faultplan.h"

using namespace nFakeWindows;

namespace {

constexpr WCHAR kLastCharacter = 0xFF;

}  // namespace

INT WINAPI MultiByteToWideChar(UINT codePage, DWORD flags, LPCSTR text, INT length, LPWSTR wide,
                               INT capacity) {
  const tInside inside;
  // Every byte is a character of this code page: the flag never causes a failure.
  expectSupported(codePage == CP_ACP && flags == MB_ERR_INVALID_CHARS && length >= 0,
                  tCall::multiByteToWideChar,
                  "only texts of a given length in the code page of the process are converted");
  if (const auto error = faultPlan().enter(tCall::multiByteToWideChar)) {
    SetLastError(*error);
    return 0;
  }
  for (INT i = 0; i < length && i < capacity; ++i) {
    wide[i] = static_cast<unsigned char>(text[i]);
  }
  return length;
}

INT WINAPI WideCharToMultiByte(UINT codePage, DWORD flags, LPCWSTR wide, INT length, LPSTR text,
                               INT capacity, LPCSTR replacement, LPBOOL replaced) {
  const tInside inside;
  expectSupported(codePage == CP_ACP && flags == 0 && length >= 0 && replacement == nullptr &&
                      replaced == nullptr,
                  tCall::wideCharToMultiByte,
                  "only texts of a given length in the code page of the process are converted");
  if (const auto error = faultPlan().enter(tCall::wideCharToMultiByte)) {
    SetLastError(*error);
    return 0;
  }
  for (INT i = 0; i < length && i < capacity; ++i) {
    text[i] = wide[i] > kLastCharacter ? '?' : static_cast<char>(wide[i]);
  }
  return length;
}

INT WINAPI CompareStringOrdinal(LPCWSTR left, INT leftLength, LPCWSTR right, INT rightLength,
                                BOOL ignoresCase) {
  const tInside inside;
  constexpr auto kCall = tCall::compareStringOrdinal;
  expectSupported(ignoresCase && leftLength >= 0 && rightLength >= 0, kCall,
                  "texts of a given length, without regard to case");
  if (const auto error = faultPlan().enter(kCall)) {
    SetLastError(*error);
    return 0;
  }
  const auto upper = [](WCHAR character) {
    return character >= 'a' && character <= 'z' ? character - ('a' - 'A') : int{character};
  };
  const auto order = std::lexicographical_compare_three_way(
      left, left + leftLength, right, right + rightLength,
      [upper](WCHAR one, WCHAR other) { return upper(one) <=> upper(other); });
  return std::is_lt(order) ? CSTR_LESS_THAN : std::is_gt(order) ? CSTR_GREATER_THAN : CSTR_EQUAL;
}
