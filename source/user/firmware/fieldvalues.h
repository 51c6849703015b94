#ifndef SOURCE_USER_FIRMWARE_FIELDVALUES_H
#define SOURCE_USER_FIRMWARE_FIELDVALUES_H

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string_view>

namespace nQUENRA1400 {

// The characters of an image from one position up to another.
struct tTextRange {
  size_t begin = 0;
  size_t end = 0;

  [[nodiscard]] bool isEmpty() const noexcept { return begin == end; }
  [[nodiscard]] bool contains(const tTextRange& other) const noexcept {
    return begin <= other.begin && other.end <= end;
  }
  bool operator==(const tTextRange&) const = default;
};

// Converts the number at the beginning of a text as C does with a 32-bit result: blanks, a sign, digits;
// hexadecimal when the text begins with "0x" in lower case. The rest is ignored. Returns 0 when there is
// no number, and all ones when it is too large, whatever its sign; otherwise a minus sign negates it
// modulo 2^32.
[[nodiscard]] uint32_t numberOf(std::string_view text) noexcept;

// Returns the range between the first two double quotes of a value if the second one is its last
// character, otherwise the complete value; nothing when a quote is opened and never closed. The quotes
// are positions in the value, or tImageText::kNotFound.
[[nodiscard]] std::optional<tTextRange> withoutQuotes(tTextRange value, size_t firstQuote,
                                                      size_t secondQuote) noexcept;

}  // namespace nQUENRA1400

#endif
