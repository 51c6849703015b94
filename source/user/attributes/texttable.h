#ifndef SOURCE_USER_ATTRIBUTES_TEXTTABLE_H
#define SOURCE_USER_ATTRIBUTES_TEXTTABLE_H

#include <algorithm>
#include <cstdint>
#include <iterator>

#include "quenra_attributes.h"
#include "source/user/attributes/listsource.h"
#include "zosmbios/fieldid.h"

namespace nQUENRA1400 {

// The treatment of a text attribute's field.
enum class tTextRule : uint8_t {
  asItIs,
  applicable,            // "Not Applicable" is not supported
  unlikeBiosVersion,     // a text that repeats the BIOS version is not supported
  onLaterPlatforms,      // as `applicable`, from platform generation 7 on
  ofMemoryModule,        // the instance is a populated memory module
  normalised,            // a location whose leading group is padded to two digits
  normalisedList,        // a list of such locations
  normalisedGroupsList,  // a list whose entries are such locations separated by commas
};

struct tTextRow {
  uint32_t attribute;
  nZOSMBIOS_1_1::tFieldId field;  // of a list: its first entry
  tTextRule rule = tTextRule::asItIs;
  const tListSource* list = nullptr;
};

namespace nTextTable {

using nZOSMBIOS_1_1::byteField;
using nZOSMBIOS_1_1::textField;

inline constexpr tListSource kSlotLocations{byteField(0x98, 0x04), textField(0x98, 0x05), 1, 4,
                                            732};
inline constexpr tListSource kBridgeLocations{byteField(0xA3, 0x06), textField(0xA3, 0x07), 2, 5,
                                              795};
inline constexpr tListSource kBridgeMembers{byteField(0xA3, 0x06), textField(0xA3, 0x08), 2, 5,
                                            858};

// clang-format off
inline constexpr tTextRow kRows[] = {
    {QUENRA_ATTRIBUTE_SYSTEM_MANUFACTURER,    textField(0x01, 0x04)},
    {QUENRA_ATTRIBUTE_PRODUCT_NAME,           textField(0x01, 0x05)},
    {QUENRA_ATTRIBUTE_SERIAL_NUMBER,          textField(0x01, 0x07), tTextRule::applicable},
    {QUENRA_ATTRIBUTE_SYSTEM_VERSION,         textField(0x01, 0x06), tTextRule::unlikeBiosVersion},
    {QUENRA_ATTRIBUTE_FIRMWARE_VERSION,       textField(0x00, 0x05)},
    {QUENRA_ATTRIBUTE_PLATFORM_IDENTIFIER,    textField(0x96, 0x0D), tTextRule::onLaterPlatforms},
    {QUENRA_ATTRIBUTE_PLATFORM_TEXT_1,        textField(0x96, 0x09)},
    {QUENRA_ATTRIBUTE_PLATFORM_TEXT_2,        textField(0x96, 0x0A)},
    {QUENRA_ATTRIBUTE_MEMORY_MANUFACTURER,    textField(0x11, 0x17), tTextRule::ofMemoryModule},
    {QUENRA_ATTRIBUTE_MEMORY_PART_NUMBER,     textField(0x11, 0x1A), tTextRule::ofMemoryModule},
    {QUENRA_ATTRIBUTE_MEMORY_SERIAL_NUMBER,   textField(0x11, 0x18), tTextRule::ofMemoryModule},
    {QUENRA_ATTRIBUTE_MEMORY_LOCATOR,         textField(0x11, 0x10), tTextRule::ofMemoryModule},
    {QUENRA_ATTRIBUTE_PROCESSOR_MANUFACTURER, textField(0x04, 0x07)},
    {QUENRA_ATTRIBUTE_PROCESSOR_VERSION,      textField(0x04, 0x10)},
    {QUENRA_ATTRIBUTE_BUS_LOCATION,           textField(0x97, 0x04), tTextRule::normalised},
    {QUENRA_ATTRIBUTE_SLOT_LOCATION,          kSlotLocations.first, tTextRule::normalisedList, &kSlotLocations},
    {QUENRA_ATTRIBUTE_LINK_LOCATION,          textField(0x99, 0x05), tTextRule::normalised},
    {QUENRA_ATTRIBUTE_LINK_TEXT,              textField(0x99, 0x06)},
    {QUENRA_ATTRIBUTE_EXPANSION_LOCATION,     textField(0x9A, 0x05), tTextRule::normalised},
    {QUENRA_ATTRIBUTE_PLATFORM_TEXT_3,        textField(0x9C, 0x04)},
    {QUENRA_ATTRIBUTE_BRIDGE_LOCATION,        kBridgeLocations.first, tTextRule::normalisedList, &kBridgeLocations},
    {QUENRA_ATTRIBUTE_BRIDGE_MEMBERS,         kBridgeMembers.first, tTextRule::normalisedGroupsList, &kBridgeMembers},
};
// clang-format on

}  // namespace nTextTable

// Null for an attribute that the table does not have.
[[nodiscard]] constexpr const tTextRow* findTextRow(uint32_t attribute) noexcept {
  const auto* row = std::find_if(
      std::begin(nTextTable::kRows), std::end(nTextTable::kRows),
      [attribute](const tTextRow& candidate) { return candidate.attribute == attribute; });
  return row == std::end(nTextTable::kRows) ? nullptr : row;
}

}  // namespace nQUENRA1400

#endif
