#ifndef ZOAPAL_PROTONS_TEXT_WINDOWSU_CODEPAGE_H
#define ZOAPAL_PROTONS_TEXT_WINDOWSU_CODEPAGE_H

#include <string>
#include <string_view>

namespace nQUENRA1400::nZOAPAL000 {

// Between the code page of the process, in which narrow file names are, and UTF-16, as the operating
// system converts. What has no counterpart becomes the system's replacement. Both throw
// std::bad_alloc, and std::system_error when the system converts nothing.
[[nodiscard]] std::u16string utf16FromCodePage(std::string_view text);
[[nodiscard]] std::string codePageFromUtf16(std::u16string_view text);

}  // namespace nQUENRA1400::nZOAPAL000

#endif
