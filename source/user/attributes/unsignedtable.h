#ifndef SOURCE_USER_ATTRIBUTES_UNSIGNEDTABLE_H
#define SOURCE_USER_ATTRIBUTES_UNSIGNEDTABLE_H

#include <algorithm>
#include <cstdint>
#include <iterator>

#include "quenra_attributes.h"
#include "source/user/attributes/listsource.h"
#include "zosmbios/fieldid.h"

namespace nQUENRA1400 {

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

inline constexpr tListSource kSlotNumbers{byteField(0x98, 0x04), byteField(0x98, 0x09), 1, 4, 1153};

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

}  // namespace nUnsignedTable

// Null for an attribute that the table does not have.
[[nodiscard]] constexpr const tUnsignedRow* findUnsignedRow(uint32_t attribute) noexcept {
  const auto* row = std::find_if(
      std::begin(nUnsignedTable::kRows), std::end(nUnsignedTable::kRows),
      [attribute](const tUnsignedRow& candidate) { return candidate.attribute == attribute; });
  return row == std::end(nUnsignedTable::kRows) ? nullptr : row;
}

}  // namespace nQUENRA1400

#endif
