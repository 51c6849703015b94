#ifndef ZOARKRA_JSONNUMBER_H
#define ZOARKRA_JSONNUMBER_H

#include <string_view>

namespace zoark {

struct tNumberScan {
  const char* end;  // the character after the number, or the first one that breaks the grammar
  bool isSound;
};

// Follows the grammar of JSON numbers from `text` on, which ends with a NUL.
[[nodiscard]] tNumberScan scanNumber(const char* text) noexcept;

// The double nearest to a number that scanNumber accepts, in any locale: infinite beyond the range of
// a double, 0 below it. Digits and exponent are unbounded; only the value counts.
[[nodiscard]] double valueOfNumber(std::string_view number) noexcept;

}  // namespace zoark

#endif
