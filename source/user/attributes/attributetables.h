// The attributes that are read from the SMBIOS table, computed, or read from the driver: one row each.
#ifndef SOURCE_USER_ATTRIBUTES_ATTRIBUTETABLES_H
#define SOURCE_USER_ATTRIBUTES_ATTRIBUTETABLES_H

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdint>
#include <iterator>

#include "quenra_attributes.h"
#include "source/user/machine/smbiosfields.h"
#include "zosmbios/fieldid.h"

namespace nQUENRA1400 {

// A list inside one SMBIOS structure: a byte holds the number of entries in use, and the attribute's
// instance is the position in the list.
struct tListSource {
  nZOSMBIOS_1_1::tFieldId count;
  nZOSMBIOS_1_1::tFieldId first;  // the entry at position 0
  uint8_t step;                   // bytes from entry to entry
  uint8_t capacity;               // of the structure, in entries
  uint32_t line;                  // of the failure of a position beyond the list

  [[nodiscard]] constexpr nZOSMBIOS_1_1::tFieldId entry(uint32_t position) const noexcept {
    return first + step * position;
  }
};

// The rows of a table by the numbers of their attributes: a read finds its row without a search.
template <class Row>
class tRowIndex {
 public:
  template <size_t N>
  explicit constexpr tRowIndex(const Row (&rows)[N]) noexcept : rows_(rows) {
    static_assert(N < 0xFF);
    for (size_t i = 0; i < N; ++i) {
      positions_[numberOf(rows[i].attribute)] = static_cast<uint8_t>(i + 1);
    }
  }

  // Null for an attribute that the table does not have.
  [[nodiscard]] constexpr const Row* find(uint32_t attribute) const noexcept {
    const size_t number = numberOf(attribute);
    if (number >= kNumbers || positions_[number] == 0) {
      return nullptr;
    }
    const Row& row = rows_[positions_[number] - 1];
    return row.attribute == attribute ? &row : nullptr;
  }

  // False if two rows have the same number, or a number is beyond the index.
  template <size_t N>
  [[nodiscard]] constexpr bool findsAll(const Row (&rows)[N]) const noexcept {
    return std::all_of(std::begin(rows), std::end(rows),
                       [this](const Row& row) { return find(row.attribute) == &row; });
  }

 private:
  static constexpr size_t kNumbers = 2048;

  static constexpr size_t numberOf(uint32_t attribute) noexcept {
    return (attribute & QUENRA_ATTRIBUTE_NUMBER_MASK) >> 8;
  }

  const Row* rows_;
  std::array<uint8_t, kNumbers> positions_{};  // from 1; 0: no row
};

// ---- Text ----

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

using nZOSMBIOS_1_1::textField;

inline constexpr tListSource kSlotLocations{nPlatformFields::kSlotCount, textField(0x98, 0x05), 1,
                                            4, 732};
inline constexpr tListSource kBridgeLocations{nPlatformFields::kBridgeCount, textField(0xA3, 0x07),
                                              2, 5, 795};
inline constexpr tListSource kBridgeMembers{nPlatformFields::kBridgeCount, textField(0xA3, 0x08), 2,
                                            5, 858};

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

inline constexpr tRowIndex<tTextRow> kIndex(kRows);
static_assert(kIndex.findsAll(kRows));

}  // namespace nTextTable

// Null for an attribute that the table does not have.
[[nodiscard]] constexpr const tTextRow* findTextRow(uint32_t attribute) noexcept {
  return nTextTable::kIndex.find(attribute);
}

// ---- Unsigned ----

// The source of an unsigned attribute and the treatment of its value.
enum class tUnsignedRule : uint8_t {
  // A field of the SMBIOS table. When it cannot be read, the value comes from an open Marten interface.
  asItIs,
  ofMemoryModule,    // the instance is a populated memory module
  ofList,            // the instance is a position in a list
  lowNibble,         // the low four bits
  platformRevision,  // 0x10, 0x15, 0x20 or 0x30
  linkKind,          // a number for a text
  expansionKind,     // a number for a text
  // Computed.
  controllerKind,
  memoryModuleCount,
  firmwareUpdateSupport,
  interfacesPresent,
  // Read from the driver's controller interface; instance 0 only.
  driver,
};

struct tUnsignedRow {
  uint32_t attribute;
  tUnsignedRule rule;
  nZOSMBIOS_1_1::tFieldId field = 0;  // of the rules that read a field
  const tListSource* list = nullptr;
  uint32_t instanceLine = 0;  // of the failure of an instance other than 0
};

namespace nUnsignedTable {

using nZOSMBIOS_1_1::byteField;
using nZOSMBIOS_1_1::quadWordField;
using nZOSMBIOS_1_1::textField;
using nZOSMBIOS_1_1::wordField;

inline constexpr tListSource kSlotNumbers{nPlatformFields::kSlotCount, byteField(0x98, 0x09), 1, 4,
                                          1153};

// clang-format off
inline constexpr tUnsignedRow kRows[] = {
    {QUENRA_ATTRIBUTE_CONTROLLER_KIND,          tUnsignedRule::controllerKind, 0, nullptr, 1089},
    {QUENRA_ATTRIBUTE_PLATFORM_CODE,            tUnsignedRule::asItIs, wordField(0x96, 0x06)},
    {QUENRA_ATTRIBUTE_PLATFORM_OPTION,          tUnsignedRule::asItIs, byteField(0x96, 0x0B)},
    {QUENRA_ATTRIBUTE_MEMORY_TYPE,              tUnsignedRule::ofMemoryModule, byteField(0x11, 0x12)},
    {QUENRA_ATTRIBUTE_MEMORY_SPEED,             tUnsignedRule::ofMemoryModule, wordField(0x11, 0x15)},
    {QUENRA_ATTRIBUTE_MEMORY_CONFIGURED_SPEED,  tUnsignedRule::ofMemoryModule, wordField(0x11, 0x20)},
    {QUENRA_ATTRIBUTE_MEMORY_MODULE_COUNT,      tUnsignedRule::memoryModuleCount, 0, nullptr, 1047},
    {QUENRA_ATTRIBUTE_MEMORY_SIZE,              tUnsignedRule::ofMemoryModule, wordField(0x11, 0x0C)},
    {QUENRA_ATTRIBUTE_PROCESSOR_STEPPING,       tUnsignedRule::lowNibble, quadWordField(0x04, 0x08)},
    {QUENRA_ATTRIBUTE_PROCESSOR_MAXIMUM_SPEED,  tUnsignedRule::asItIs, wordField(0x04, 0x14)},
    {QUENRA_ATTRIBUTE_PROCESSOR_THREAD_COUNT,   tUnsignedRule::asItIs, byteField(0x04, 0x25)},
    {QUENRA_ATTRIBUTE_PROCESSOR_SETTING,        tUnsignedRule::driver, 0, nullptr, 1203},
    {QUENRA_ATTRIBUTE_PLATFORM_REVISION,        tUnsignedRule::platformRevision, byteField(0xB4, 0x07)},
    {QUENRA_ATTRIBUTE_PLATFORM_REVISION_BASE,   tUnsignedRule::asItIs, byteField(0xB4, 0x06)},
    {QUENRA_ATTRIBUTE_FIRMWARE_UPDATE_SUPPORT,  tUnsignedRule::firmwareUpdateSupport, 0, nullptr, 1315},
    {QUENRA_ATTRIBUTE_SLOT_COUNT,               tUnsignedRule::asItIs, byteField(0x98, 0x04)},
    {QUENRA_ATTRIBUTE_SLOT_NUMBER,              tUnsignedRule::ofList, kSlotNumbers.first, &kSlotNumbers},
    {QUENRA_ATTRIBUTE_LINK_KIND,                tUnsignedRule::linkKind, textField(0x99, 0x04)},
    {QUENRA_ATTRIBUTE_EXPANSION_KIND,           tUnsignedRule::expansionKind, textField(0x9A, 0x04)},
    {QUENRA_ATTRIBUTE_CAPABILITY_1,             tUnsignedRule::asItIs, byteField(0x9F, 0x04)},
    {QUENRA_ATTRIBUTE_CAPABILITY_2,             tUnsignedRule::asItIs, byteField(0x9F, 0x05)},
    {QUENRA_ATTRIBUTE_DRIVER_SETTING_1,         tUnsignedRule::driver, 0, nullptr, 1241},
    {QUENRA_ATTRIBUTE_TEXT_SETTING_SUPPORT,     tUnsignedRule::asItIs, byteField(0x9D, 0x04)},
    {QUENRA_ATTRIBUTE_DRIVER_SETTING_2,         tUnsignedRule::driver, 0, nullptr, 1278},
    {QUENRA_ATTRIBUTE_INTERFACES_PRESENT,       tUnsignedRule::interfacesPresent},
    {QUENRA_ATTRIBUTE_BRIDGE_COUNT,             tUnsignedRule::asItIs, byteField(0xA3, 0x06)},
    {QUENRA_ATTRIBUTE_PLATFORM_GENERATION,      tUnsignedRule::asItIs, byteField(0x96, 0x04)},
};
// clang-format on

inline constexpr tRowIndex<tUnsignedRow> kIndex(kRows);
static_assert(kIndex.findsAll(kRows));

}  // namespace nUnsignedTable

// Null for an attribute that the table does not have.
[[nodiscard]] constexpr const tUnsignedRow* findUnsignedRow(uint32_t attribute) noexcept {
  return nUnsignedTable::kIndex.find(attribute);
}

}  // namespace nQUENRA1400

#endif
