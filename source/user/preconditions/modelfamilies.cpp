#include <algorithm>
#include <cstddef>
#include <iterator>
#include <string_view>

#include "source/user/machine/smbiosfields.h"
#include "source/user/preconditions/preconditions.h"

namespace nQUENRA1400 {
namespace {

// Regular expressions of literal characters and the class kDigit, anchored at both ends.
constexpr std::string_view kModelFamilies[] = {"^qmod-710[0-9]$", "^qbrd-43[0-9]2$"};
constexpr std::string_view kDigit = "[0-9]";
constexpr std::string_view kSpecial = "^$\\.*+?()[]{}|";

constexpr bool isDigit(char character) noexcept {
  return character >= '0' && character <= '9';
}

// The length of the first element of a pattern: a class or a literal character.
constexpr size_t elementLength(std::string_view pattern) noexcept {
  return pattern.starts_with(kDigit) ? kDigit.size() : 1;
}

constexpr bool isSupported(std::string_view pattern) noexcept {
  if (!pattern.starts_with('^') || !pattern.ends_with('$')) {
    return false;
  }
  pattern = pattern.substr(1, pattern.size() - 2);
  while (!pattern.empty()) {
    const size_t length = elementLength(pattern);
    if (length == 1 && kSpecial.find(pattern.front()) != std::string_view::npos) {
      return false;
    }
    pattern.remove_prefix(length);
  }
  return true;
}
static_assert(std::all_of(std::begin(kModelFamilies), std::end(kModelFamilies), isSupported));

bool isMatch(std::string_view pattern, std::string_view name) noexcept {
  pattern.remove_prefix(1);  // the anchor
  for (const char character : name) {
    const bool isClass = pattern.starts_with(kDigit);
    if (isClass ? !isDigit(character) : !pattern.starts_with(character)) {
      return false;
    }
    pattern.remove_prefix(elementLength(pattern));
  }
  return pattern == "$";
}

}  // namespace

bool IsOutsideModelFamilies(nZOSMBIOS_1_1::cZoSmBiosProvider& provider) noexcept {
  const tProviderText name(provider, nPlatformFields::kProductName, 0);
  return name.result() == 0 &&
         std::none_of(std::begin(kModelFamilies), std::end(kModelFamilies),
                      [&name](std::string_view family) { return isMatch(family, name.view()); });
}

}  // namespace nQUENRA1400
