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

// A location text whose leading group is padded to two digits: "7:12" becomes "07:12". With segments
// separated by commas the leading group of each is: "1:2,3:4" becomes "01:2,03:4".
class tNormalisedText {
 public:
  // `text` has at most cZoSmBiosProvider::kMaxStringLength characters.
  // NOLINTNEXTLINE(cppcoreguidelines-pro-type-member-init): only `length_` characters are read
  tNormalisedText(std::string_view text, tSegments segments) noexcept {
    text = text.substr(0, characters_.size() / 2);
    if (text.empty()) {
      append('\0');
      return;
    }
    bool segmentStarts = true;
    for (size_t i = 0; i + 1 < text.size(); ++i) {
      if (segmentStarts && text[i + 1] == ':') {
        append('0');
      }
      append(text[i]);
      segmentStarts = segments == tSegments::separatedByCommas && text[i] == ',';
    }
    append(text.back());
  }

  // The result, without a terminating NUL. For an empty text it is one NUL character, so that a reader
  // needs a buffer of 2 bytes to receive an empty text.
  [[nodiscard]] std::string_view view() const noexcept { return {characters_.data(), length_}; }

 private:
  void append(char character) noexcept { characters_[length_++] = character; }

  // In the worst case every character begins a group.
  std::array<char, size_t{2} * nZOSMBIOS_1_1::cZoSmBiosProvider::kMaxStringLength> characters_;
  size_t length_ = 0;
};

}  // namespace nQUENRA1400

#endif
