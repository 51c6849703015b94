#include "zosmbios/stringset.h"

#include <algorithm>

#include "zosmbios/czosmbiosprovider.h"
#include "zosmbios/location.h"

namespace nQUENRA1400::nZOSMBIOS_1_1 {
namespace {

constexpr auto kLeavesTable = providerLocation(394);
constexpr auto kSetEnds = providerLocation(405);
constexpr auto kStringEmpty = providerLocation(438);
constexpr auto kStringTooLong = providerLocation(462);

}  // namespace

std::string_view findString(const tStructureTable& table, size_t set, uint8_t number,
                            size_t longest, nZOAPALS100::tStatus& status) noexcept {
  const auto bytes = table.bytes();
  auto position = bytes.begin() + static_cast<ptrdiff_t>(std::min(set, bytes.size()));
  for (uint8_t passed = 1; passed < number; ++passed) {
    if (position != bytes.end() && *position == 0) {
      mergeStatus(status, kTableMalformed, kSetEnds);
      return {};
    }
    const auto nul = std::find(position, bytes.end(), uint8_t{0});
    if (nul == bytes.end()) {
      mergeStatus(status, kTableMalformed, kLeavesTable);
      return {};
    }
    position = nul + 1;
  }
  if (position == bytes.end() || *position == 0) {
    mergeStatus(status, kTableMalformed, kStringEmpty);
    return {};
  }
  const auto room = std::min(bytes.end() - position, static_cast<ptrdiff_t>(longest) + 1);
  const auto nul = std::find(position, position + room, uint8_t{0});
  if (nul == position + room) {
    mergeStatus(status, kTableMalformed, kStringTooLong);
    return {};
  }
  const void* const first = &*position;
  return {static_cast<const char*>(first), static_cast<size_t>(nul - position)};
}

}  // namespace nQUENRA1400::nZOSMBIOS_1_1
