#include "source/user/update/firmwareversion.h"

#include <algorithm>

namespace nQUENRA1400 {
namespace {

struct tPhase {
  char letter;
  uint32_t bits;
};
constexpr tPhase kPhases[] = {{'d', 0x0000}, {'a', 0x4000}, {'b', 0x8000}, {'f', 0xC000}};

constexpr uint32_t kMaxMajor = 255;
constexpr uint32_t kMaxMinor = 15;
constexpr uint32_t kMaxUpdate = 15;
constexpr uint32_t kMaxBuild = 16383;

// More digits than the largest number has. Reading stops there: a version can be as long as an image.
constexpr size_t kMaxDigits = 6;

constexpr bool isDigit(char character) noexcept {
  return character >= '0' && character <= '9';
}

// Reads the parts of a version in their order, and remembers whether one of them is wrong.
class tVersionReader {
 public:
  explicit tVersionReader(std::string_view text) noexcept : rest_(text) {}

  uint32_t number(uint32_t limit) noexcept {
    const bool beginsWithZero = rest_.starts_with('0');
    const size_t available = std::min(rest_.size(), kMaxDigits);
    uint32_t value = 0;
    size_t digits = 0;
    while (digits < available && isDigit(rest_[digits])) {
      value = value * 10 + static_cast<uint32_t>(rest_[digits] - '0');
      ++digits;
    }
    isGood_ = isGood_ && digits != 0 && value <= limit && !(beginsWithZero && digits > 1);
    rest_.remove_prefix(digits);
    return value;
  }
  void dot() noexcept {
    isGood_ = isGood_ && rest_.starts_with('.');
    skip();
  }
  uint32_t phase() noexcept {
    for (const tPhase& phase : kPhases) {
      if (rest_.starts_with(phase.letter)) {
        skip();
        return phase.bits;
      }
    }
    isGood_ = false;
    return 0;
  }
  [[nodiscard]] bool isGood() const noexcept { return isGood_; }

 private:
  void skip() noexcept { rest_.remove_prefix(rest_.empty() ? 0 : 1); }

  std::string_view rest_;
  bool isGood_ = true;
};

}  // namespace

uint32_t packedVersion(std::string_view text) noexcept {
  tVersionReader reader(text);
  uint32_t packed = reader.number(kMaxMajor) << 24;
  reader.dot();
  packed |= reader.number(kMaxMinor) << 20;
  reader.dot();
  packed |= reader.number(kMaxUpdate) << 16;
  packed |= reader.phase();
  packed |= reader.number(kMaxBuild);
  return reader.isGood() ? packed : 0;
}

}  // namespace nQUENRA1400
