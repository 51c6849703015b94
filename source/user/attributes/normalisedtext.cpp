#include "source/user/attributes/normalisedtext.h"

#include <algorithm>

namespace nQUENRA1400 {

tNormalisedText::tNormalisedText(std::string_view text, tSegments segments) noexcept {
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

}  // namespace nQUENRA1400
