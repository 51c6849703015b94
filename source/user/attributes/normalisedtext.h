#ifndef SOURCE_USER_ATTRIBUTES_NORMALISEDTEXT_H
#define SOURCE_USER_ATTRIBUTES_NORMALISEDTEXT_H

#include <array>
#include <cstddef>
#include <string_view>

#include "zosmbios/czosmbiosprovider.h"

namespace nQUENRA1400 {

enum class tSegments {
  one,
  separatedByCommas
};

// A location text in which a one-digit leading group has a zero before it: "7:12" becomes "07:12".
// With segments separated by commas each segment is treated so: "1:2,3:4" becomes "01:2,03:4".
class tNormalisedText {
 public:
  // `text` has at most cZoSmBiosProvider::kLongestString characters.
  tNormalisedText(std::string_view text, tSegments segments) noexcept;

  // The result, without a terminating NUL. For an empty text it is one NUL character: a reader's
  // buffer then has to have 2 bytes, and receives an empty text.
  [[nodiscard]] std::string_view view() const noexcept { return {characters_.data(), length_}; }

 private:
  void append(char character) noexcept { characters_[length_++] = character; }

  // At worst every character is the beginning of a group.
  std::array<char, size_t{2} * nZOSMBIOS_1_1::cZoSmBiosProvider::kLongestString> characters_{};
  size_t length_ = 0;
};

}  // namespace nQUENRA1400

#endif
