#include "tools/commandline/argumenttext.h"

#include <algorithm>
#include <array>
#include <bit>
#include <charconv>
#include <cstddef>
#include <cstdio>
#include <numeric>
#include <tuple>
#include <utility>

namespace nCommandLine {
namespace {

constexpr size_t kMaxSuggestions = 3;
// A shorter name occurs in too many others to be a useful match.
constexpr size_t kMinPartSize = 3;

// The minimum number of insertions, removals, replacements and swaps of neighbours that turns
// `from` into `to`. Row i holds the distances of the first i characters of `from`.
size_t editDistance(std::string_view from, std::string_view to) {
  std::vector<size_t> beforeLast;
  std::vector<size_t> last(to.size() + 1);
  std::iota(last.begin(), last.end(), size_t{0});
  for (size_t i = 1; i <= from.size(); ++i) {
    std::vector<size_t> row(to.size() + 1, i);
    for (size_t j = 1; j <= to.size(); ++j) {
      const size_t replaced = last[j - 1] + (from[i - 1] == to[j - 1] ? 0 : 1);
      row[j] = std::min({replaced, last[j] + 1, row[j - 1] + 1});
      const bool swapped = i > 1 && j > 1 && from[i - 1] == to[j - 2] && from[i - 2] == to[j - 1];
      if (swapped) {
        row[j] = std::min(row[j], beforeLast[j - 2] + 1);
      }
    }
    beforeLast = std::exchange(last, std::move(row));
  }
  return last[to.size()];
}

struct tCandidate {
  bool isPart;
  size_t distance;
  std::string_view name;

  // A typing error is more likely than an abbreviated name, so it ranks first.
  [[nodiscard]] auto rank() const { return std::tuple(isPart, distance, name); }
};

template <class Number>
std::optional<Number> parseNumber(std::string_view text, int base) noexcept {
  Number value{};
  const char* const end = text.data() + text.size();
  const auto [stop, error] = std::from_chars(text.data(), end, value, base);
  return error == std::errc{} && stop == end ? std::optional(value) : std::nullopt;
}

bool hasHexadecimalPrefix(std::string_view text) noexcept {
  return text.starts_with("0x") || text.starts_with("0X");
}

template <class Number>
std::optional<Number> parsePrefixed(std::string_view text) noexcept {
  return hasHexadecimalPrefix(text) ? parseNumber<Number>(text.substr(2), 16)
                                    : parseNumber<Number>(text, 10);
}

// Accepts any number of digits.
bool isInteger(std::string_view text) noexcept {
  const bool isHexadecimal = hasHexadecimalPrefix(text);
  text.remove_prefix(isHexadecimal ? 2 : text.starts_with('-') ? 1 : 0);
  return !text.empty() &&
         text.find_first_not_of(isHexadecimal ? "0123456789abcdefABCDEF" : "0123456789") ==
             std::string_view::npos;
}

}  // namespace

std::string comparableName(std::string_view name) {
  std::string result(name);
  for (char& character : result) {
    if (character >= 'A' && character <= 'Z') {
      character = static_cast<char>(character - 'A' + 'a');
    } else if (character == '_') {
      character = '-';
    }
  }
  return result;
}

std::vector<std::string> suggest(std::string_view name,
                                 const std::vector<std::string_view>& candidates) {
  const std::string sought = comparableName(name);
  const size_t tolerance = std::max<size_t>(1, sought.size() / 3);
  std::vector<tCandidate> found;
  for (const std::string_view candidate : candidates) {
    const std::string comparable = comparableName(candidate);
    const size_t distance = editDistance(sought, comparable);
    const bool near = distance <= tolerance;
    const bool part = sought.size() >= kMinPartSize && comparable.find(sought) != std::string::npos;
    if (near || part) {
      found.push_back({!near, distance, candidate});
    }
  }
  std::ranges::sort(found, {}, &tCandidate::rank);
  found.resize(std::min(found.size(), kMaxSuggestions));
  std::vector<std::string> names;
  names.reserve(found.size());
  for (const tCandidate& candidate : found) {
    names.emplace_back(candidate.name);
  }
  return names;
}

std::string alternatives(std::span<const std::string> names) {
  std::string text;
  for (size_t i = 0; i < names.size(); ++i) {
    if (i > 0) {
      text += i + 1 == names.size() ? " or " : ", ";
    }
    text += names[i];
  }
  return text;
}

bool looksLikeNumber(std::string_view text) noexcept {
  return !text.empty() && std::string_view("+-0123456789").find(text.front()) != text.npos;
}

std::optional<uint64_t> parseUnsigned64(std::string_view text) noexcept {
  return parsePrefixed<uint64_t>(text);
}

std::optional<uint32_t> parseUnsigned(std::string_view text) noexcept {
  return parsePrefixed<uint32_t>(text);
}

std::optional<std::chrono::milliseconds> parseSeconds(std::string_view text) noexcept {
  constexpr size_t kPlaces = 3;
  const size_t point = std::min(text.find('.'), text.size());
  const std::string_view places = point == text.size() ? "0" : text.substr(point + 1);
  const auto seconds = parseNumber<uint32_t>(text.substr(0, point), 10);
  const auto fraction = parseNumber<uint32_t>(places, 10);
  if (!seconds || !fraction || places.size() > kPlaces) {
    return std::nullopt;
  }
  constexpr uint32_t kMilliseconds[] = {0, 100, 10, 1};
  return std::chrono::seconds(*seconds) +
         std::chrono::milliseconds(*fraction * kMilliseconds[places.size()]);
}

std::optional<int32_t> parseStatusCode(std::string_view text) noexcept {
  if (text.starts_with('+')) {
    return parseUnsigned(text.substr(1)) ? parseStatusCode(text.substr(1)) : std::nullopt;
  }
  if (text.starts_with('-')) {
    return parseNumber<int32_t>(text, 10);
  }
  const auto bits = parseUnsigned(text);
  return bits ? std::optional(std::bit_cast<int32_t>(*bits)) : std::nullopt;
}

std::string numberFault(std::string_view text, std::string_view expected, int64_t minimum,
                        uint64_t maximum) {
  if (isInteger(text)) {
    return std::string(text) + " is out of range (" + std::to_string(minimum) + " to " +
           std::to_string(maximum) + ")";
  }
  return "'" + std::string(text) + "' is not " + std::string(expected);
}

std::string hexadecimalText(uint32_t value, int digits) {
  std::array<char, 16> text{};
  std::snprintf(text.data(), text.size(), "0x%0*X", digits, static_cast<unsigned>(value));
  return text.data();
}

}  // namespace nCommandLine
