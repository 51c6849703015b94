#ifndef ZOAPAL_PROTONS_TEXT_WINDOWSU_CODEPAGE_H
#define ZOAPAL_PROTONS_TEXT_WINDOWSU_CODEPAGE_H

#include <string>
#include <string_view>

namespace nQUENRA1400::nZOAPAL000 {

// Convert between the code page of the process, which narrow file names have, and UTF-16. Nothing is
// replaced: a text with a byte or a character without a counterpart fails with ERROR_NO_UNICODE_TRANSLATION.
// Both throw std::bad_alloc, std::length_error for 2 GiB and more, and std::system_error with the error of
// the system.
[[nodiscard]] std::u16string utf16FromCodePage(std::string_view text);
[[nodiscard]] std::string codePageFromUtf16(std::u16string_view text);

}  // namespace nQUENRA1400::nZOAPAL000

#endif
