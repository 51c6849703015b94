#include <exception>
#include <regex>
#include <string_view>

#include "source/user/machine/smbiosfields.h"
#include "source/user/preconditions/preconditions.h"

namespace nQUENRA1400 {
namespace {

constexpr const char* kModelFamilies[] = {"^qmod-710[0-9]$", "^qbrd-43[0-9]2$"};

bool isInAFamily(std::string_view name) {
  for (const char* family : kModelFamilies) {
    if (std::regex_match(name.begin(), name.end(), std::regex(family))) {
      return true;
    }
  }
  return false;
}

}  // namespace

bool IsOutsideModelFamilies(nZOSMBIOS_1_1::cZoSmBiosProvider& provider) noexcept {
  const tProviderText name(provider, nPlatformFields::kProductName, 0);
  if (name.result() != 0) {
    return false;
  }
  try {
    return !isInAFamily(name.view());
  } catch (const std::exception&) {
    // No memory for the patterns: a machine that cannot be identified is not supported.
    return false;
  }
}

}  // namespace nQUENRA1400
