#ifndef SOURCE_USER_FIRMWARE_TFORWARDSEARCH_H
#define SOURCE_USER_FIRMWARE_TFORWARDSEARCH_H

#include <algorithm>
#include <cstddef>
#include <string_view>

#include "source/user/firmware/timagetext.h"

namespace nQUENRA1400 {

// Searches an image for one pattern from positions that never decrease. It remembers its last result, so
// that all searches together read the image once.
class tForwardSearch {
 public:
  // The anchor is that of tImageText::find.
  constexpr explicit tForwardSearch(std::string_view pattern, size_t anchor = 0) noexcept
      : pattern_(pattern), anchor_(anchor) {}

  // Returns the start of the first occurrence in [from, to), or tImageText::kNotFound.
  [[nodiscard]] size_t find(const tImageText& text, size_t from,
                            size_t to = tImageText::kNotFound) noexcept {
    to = std::min(to, text.size());
    if (found_ == tImageText::kNotFound || found_ < from) {
      const size_t unread = std::max(from, read_);
      found_ = text.find(pattern_, unread, to, anchor_);
      // An occurrence that ends beyond `to` may begin in its last bytes.
      read_ = found_ != tImageText::kNotFound
                  ? found_ + 1
                  : std::max(unread, to - std::min(to, pattern_.size() - 1));
    }
    const bool isInside = found_ != tImageText::kNotFound && found_ + pattern_.size() <= to;
    return isInside ? found_ : tImageText::kNotFound;
  }

 private:
  std::string_view pattern_;
  size_t anchor_;
  size_t found_ = tImageText::kNotFound;
  size_t read_ = 0;  // Before this position nothing is left to be found but `found_`.
};

}  // namespace nQUENRA1400

#endif
