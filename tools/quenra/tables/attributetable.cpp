#include "tools/quenra/tables/attributetable.h"

#include <algorithm>
#include <iterator>

#include "tools/quenra/text/names.h"

namespace nCommandLine {
namespace {

// ---- Rows ----

constexpr tSubjectRow kIdentity{"identity", "Identity"};
constexpr tSubjectRow kPlatform{"platform", "Platform"};
constexpr tSubjectRow kMemory{"memory", "Memory"};
constexpr tSubjectRow kProcessor{"processor", "Processor"};
constexpr tSubjectRow kSlots{"slots-and-buses", "Slots and buses"};
constexpr tSubjectRow kDriver{"driver", "Driver"};

constexpr const tSubjectRow* kSubjectOrder[] = {&kIdentity,  &kPlatform, &kMemory,
                                                &kProcessor, &kSlots,    &kDriver};

constexpr tInstanceRow kSingle{""};
constexpr tInstanceRow kPerModule{"populated memory module", QUENRA_ATTRIBUTE_MEMORY_MODULE_COUNT,
                                  kInstanceLimit};
constexpr tInstanceRow kPerProcessor{"processor", 0, kInstanceLimit};
constexpr tInstanceRow kPerSlot{"slot, at most 4", QUENRA_ATTRIBUTE_SLOT_COUNT, 4};
constexpr tInstanceRow kPerBridge{"bridge, at most 5", QUENRA_ATTRIBUTE_BRIDGE_COUNT, 5};

constexpr uint32_t kOther = 0xFFFFFFFF;
constexpr tNamedValue kControllerKinds[] = {{kOther, "unknown"}};
constexpr tNamedValue kLinkKinds[] = {
    {1, "ExpressCard"}, {2, "GPIB"}, {3, "Thunderbolt"}, {kOther, "another"}};
constexpr tNamedValue kExpansionKinds[] = {{1, "PCI"}, {kOther, "another"}};
constexpr tNamedValue kNoOrYes[] = {{0, "no"}, {1, "yes"}};
// The memory types of the SMBIOS standard that current machines report.
constexpr tNamedValue kMemoryTypes[] = {
    {0x01, "other"},  {0x02, "unknown"}, {0x03, "DRAM"}, {0x0F, "SDRAM"}, {0x12, "DDR"},
    {0x13, "DDR2"},   {0x18, "DDR3"},    {0x1A, "DDR4"}, {0x1B, "LPDDR"}, {0x1C, "LPDDR2"},
    {0x1D, "LPDDR3"}, {0x1E, "LPDDR4"},  {0x22, "DDR5"}, {0x23, "LPDDR5"}};

using enum tValueForm;

// clang-format off
constexpr tAttributeRow kAttributeRows[] = {
    {QUENRA_ATTRIBUTE_SYSTEM_MANUFACTURER, "system-manufacturer", &kIdentity, &kSingle, "",
     "Manufacturer of the system", "SMBIOS type 1, text at 0x04"},
    {QUENRA_ATTRIBUTE_PRODUCT_NAME, "product-name", &kIdentity, &kSingle, "",
     "Product name of the controller", "SMBIOS type 1, text at 0x05"},
    {QUENRA_ATTRIBUTE_SERIAL_NUMBER, "serial-number", &kIdentity, &kSingle, "",
     "Serial number; not supported where the firmware says \"Not Applicable\"", "SMBIOS type 1, text at 0x07"},
    {QUENRA_ATTRIBUTE_SYSTEM_VERSION, "system-version", &kIdentity, &kSingle, "",
     "Hardware version; not supported where it repeats the BIOS version", "SMBIOS type 1, text at 0x06"},
    {QUENRA_ATTRIBUTE_FIRMWARE_VERSION, "firmware-version", &kIdentity, &kSingle, "",
     "Firmware version of the Marten if present, else (and with --controller) of the BIOS", "Marten interface, or SMBIOS type 0, text at 0x05", plain, {}, tAccess::read, true},
    {QUENRA_ATTRIBUTE_PLATFORM_IDENTIFIER, "platform-identifier", &kIdentity, &kSingle, "",
     "Platform identifier, from platform generation 7 on", "SMBIOS type 0x96, text at 0x0D"},
    {QUENRA_ATTRIBUTE_CONTROLLER_KIND, "controller-kind", &kIdentity, &kSingle, "",
     "Kind of controller: 1, 2 and 3 by the bus structures found, else 1 to 5 from the platform", "computed from SMBIOS types 0x97, 0x98, 0x9F and 0x96, byte at 0x0C", plain, kControllerKinds},
    {QUENRA_ATTRIBUTE_PLATFORM_CODE, "platform-code", &kIdentity, &kSingle, "",
     "Platform code", "SMBIOS type 0x96, word at 0x06", hexadecimal},

    {QUENRA_ATTRIBUTE_PLATFORM_TEXT_1, "platform-text-1", &kPlatform, &kSingle, "",
     "First text of the platform", "SMBIOS type 0x96, text at 0x09"},
    {QUENRA_ATTRIBUTE_PLATFORM_TEXT_2, "platform-text-2", &kPlatform, &kSingle, "",
     "Second text of the platform", "SMBIOS type 0x96, text at 0x0A"},
    {QUENRA_ATTRIBUTE_PLATFORM_TEXT_3, "platform-text-3", &kPlatform, &kSingle, "",
     "Third text of the platform", "SMBIOS type 0x9C, text at 0x04"},
    {QUENRA_ATTRIBUTE_PLATFORM_GENERATION, "platform-generation", &kPlatform, &kSingle, "",
     "Platform generation (a private attribute)", "SMBIOS type 0x96, byte at 0x04"},
    {QUENRA_ATTRIBUTE_PLATFORM_OPTION, "platform-option", &kPlatform, &kSingle, "",
     "Option byte of the platform", "SMBIOS type 0x96, byte at 0x0B", hexadecimal},
    {QUENRA_ATTRIBUTE_PLATFORM_REVISION, "platform-revision", &kPlatform, &kSingle, "",
     "Platform revision: 0x10, 0x15, 0x20 or 0x30; other values are not supported", "SMBIOS type 0xB4, byte at 0x07", hexadecimal},
    {QUENRA_ATTRIBUTE_PLATFORM_REVISION_BASE, "platform-revision-base", &kPlatform, &kSingle, "",
     "Revision that the platform revision is based on", "SMBIOS type 0xB4, byte at 0x06", hexadecimal},
    {QUENRA_ATTRIBUTE_CAPABILITY_1, "capability-1", &kPlatform, &kSingle, "",
     "First capability byte", "SMBIOS type 0x9F, byte at 0x04", hexadecimal},
    {QUENRA_ATTRIBUTE_CAPABILITY_2, "capability-2", &kPlatform, &kSingle, "",
     "Second capability byte", "SMBIOS type 0x9F, byte at 0x05", hexadecimal},
    {QUENRA_ATTRIBUTE_FIRMWARE_UPDATE_SUPPORT, "firmware-update-support", &kPlatform, &kSingle, "",
     "1 if the platform supports firmware updates, else 0", "computed from SMBIOS type 0x9E, bytes at 0x04 and 0x05", plain, kNoOrYes},
    {QUENRA_ATTRIBUTE_TEXT_SETTING_SUPPORT, "text-setting-support", &kPlatform, &kSingle, "",
     "Not 0 if text settings can be written", "SMBIOS type 0x9D, byte at 0x04", plain, kNoOrYes},

    {QUENRA_ATTRIBUTE_MEMORY_MODULE_COUNT, "memory-module-count", &kMemory, &kSingle, "",
     "Number of populated memory modules", "counted when the controller is opened"},
    {QUENRA_ATTRIBUTE_MEMORY_LOCATOR, "memory-locator", &kMemory, &kPerModule, "",
     "Location of the module", "SMBIOS type 17, text at 0x10"},
    {QUENRA_ATTRIBUTE_MEMORY_SIZE, "memory-size", &kMemory, &kPerModule, "MiB",
     "Size of the module; in KiB when bit 15 of the value is set", "SMBIOS type 17, word at 0x0C", memorySize},
    {QUENRA_ATTRIBUTE_MEMORY_TYPE, "memory-type", &kMemory, &kPerModule, "",
     "Type of the module, an SMBIOS number", "SMBIOS type 17, byte at 0x12", plain, kMemoryTypes},
    {QUENRA_ATTRIBUTE_MEMORY_SPEED, "memory-speed", &kMemory, &kPerModule, "MT/s",
     "Maximum speed of the module", "SMBIOS type 17, word at 0x15"},
    {QUENRA_ATTRIBUTE_MEMORY_CONFIGURED_SPEED, "memory-configured-speed", &kMemory, &kPerModule, "MT/s",
     "Configured speed of the module", "SMBIOS type 17, word at 0x20"},
    {QUENRA_ATTRIBUTE_MEMORY_MANUFACTURER, "memory-manufacturer", &kMemory, &kPerModule, "",
     "Manufacturer of the module", "SMBIOS type 17, text at 0x17"},
    {QUENRA_ATTRIBUTE_MEMORY_PART_NUMBER, "memory-part-number", &kMemory, &kPerModule, "",
     "Part number of the module", "SMBIOS type 17, text at 0x1A"},
    {QUENRA_ATTRIBUTE_MEMORY_SERIAL_NUMBER, "memory-serial-number", &kMemory, &kPerModule, "",
     "Serial number of the module", "SMBIOS type 17, text at 0x18"},

    {QUENRA_ATTRIBUTE_PROCESSOR_MANUFACTURER, "processor-manufacturer", &kProcessor, &kPerProcessor, "",
     "Manufacturer of the processor", "SMBIOS type 4, text at 0x07"},
    {QUENRA_ATTRIBUTE_PROCESSOR_VERSION, "processor-version", &kProcessor, &kPerProcessor, "",
     "Version text of the processor", "SMBIOS type 4, text at 0x10"},
    {QUENRA_ATTRIBUTE_PROCESSOR_STEPPING, "processor-stepping", &kProcessor, &kPerProcessor, "",
     "Stepping: the low four bits of the processor id", "SMBIOS type 4, quad word at 0x08"},
    {QUENRA_ATTRIBUTE_PROCESSOR_MAXIMUM_SPEED, "processor-maximum-speed", &kProcessor, &kPerProcessor, "MHz",
     "Maximum speed of the processor", "SMBIOS type 4, word at 0x14"},
    {QUENRA_ATTRIBUTE_PROCESSOR_THREAD_COUNT, "processor-thread-count", &kProcessor, &kPerProcessor, "",
     "Number of hardware threads", "SMBIOS type 4, byte at 0x25"},
    {QUENRA_ATTRIBUTE_PROCESSOR_SETTING, "processor-setting", &kProcessor, &kSingle, "",
     "Processor setting of the driver", "controller interface"},

    {QUENRA_ATTRIBUTE_BUS_LOCATION, "bus-location", &kSlots, &kSingle, "",
     "Location of the bus", "SMBIOS type 0x97, text at 0x04"},
    {QUENRA_ATTRIBUTE_SLOT_COUNT, "slot-count", &kSlots, &kSingle, "",
     "Number of slots", "SMBIOS type 0x98, byte at 0x04"},
    {QUENRA_ATTRIBUTE_SLOT_NUMBER, "slot-number", &kSlots, &kPerSlot, "",
     "Number of the slot", "SMBIOS type 0x98, bytes at 0x09 to 0x0C"},
    {QUENRA_ATTRIBUTE_SLOT_LOCATION, "slot-location", &kSlots, &kPerSlot, "",
     "Location of the slot", "SMBIOS type 0x98, texts at 0x05 to 0x08"},
    {QUENRA_ATTRIBUTE_LINK_KIND, "link-kind", &kSlots, &kSingle, "",
     "Kind of link: 1 ExpressCard, 2 GPIB, 3 Thunderbolt, 0xFFFFFFFF another", "SMBIOS type 0x99, text at 0x04", plain, kLinkKinds},
    {QUENRA_ATTRIBUTE_LINK_LOCATION, "link-location", &kSlots, &kSingle, "",
     "Location of the link", "SMBIOS type 0x99, text at 0x05"},
    {QUENRA_ATTRIBUTE_LINK_TEXT, "link-text", &kSlots, &kSingle, "",
     "Text of the firmware about the link", "SMBIOS type 0x99, text at 0x06"},
    {QUENRA_ATTRIBUTE_EXPANSION_KIND, "expansion-kind", &kSlots, &kSingle, "",
     "Kind of expansion: 1 PCI, 0xFFFFFFFF another", "SMBIOS type 0x9A, text at 0x04", plain, kExpansionKinds},
    {QUENRA_ATTRIBUTE_EXPANSION_LOCATION, "expansion-location", &kSlots, &kSingle, "",
     "Location of the expansion", "SMBIOS type 0x9A, text at 0x05"},
    {QUENRA_ATTRIBUTE_BRIDGE_COUNT, "bridge-count", &kSlots, &kSingle, "",
     "Number of bridges", "SMBIOS type 0xA3, byte at 0x06"},
    {QUENRA_ATTRIBUTE_BRIDGE_LOCATION, "bridge-location", &kSlots, &kPerBridge, "",
     "Location of the bridge", "SMBIOS type 0xA3, texts at 0x07, 0x09, ... 0x0F"},
    {QUENRA_ATTRIBUTE_BRIDGE_MEMBERS, "bridge-members", &kSlots, &kPerBridge, "",
     "Locations downstream of the bridge, separated by commas", "SMBIOS type 0xA3, texts at 0x08, 0x0A, ... 0x10"},

    {QUENRA_ATTRIBUTE_INTERFACES_PRESENT, "interfaces-present", &kDriver, &kSingle, "",
     "Interfaces present: 0x100000 the controller's, 0x200000 the Marten's", "found when the controller is opened", interfaceSet},
    {QUENRA_ATTRIBUTE_DEVICE_PATH, "device-path", &kDriver, &kSingle, "",
     "Path of the controller's device interface; needs no open controller", "the system's device interfaces"},
    {QUENRA_ATTRIBUTE_DRIVER_SETTING_1, "driver-setting-1", &kDriver, &kSingle, "",
     "First setting of the driver", "controller interface", plain, {}, tAccess::readAndWrite},
    {QUENRA_ATTRIBUTE_DRIVER_SETTING_2, "driver-setting-2", &kDriver, &kSingle, "",
     "Second setting of the driver", "controller interface", plain, {}, tAccess::readAndWrite},
};
// clang-format on

constexpr tAttributeRow kSettingRows[] = {
    {QUENRA_TEXT_SETTING_OF_BOTH,
     "text-setting-of-both",
     &kDriver,
     &kSingle,
     "",
     "Text that the controller and the Marten interface accept at once; write-only",
     "controller and Marten interface",
     plain,
     {},
     tAccess::write},
};

// ---- Lookup ----

constexpr std::string_view kConstantPrefix = "QUENRA_ATTRIBUTE_";
constexpr std::string_view kSettingPrefix = "QUENRA_";

template <class Predicate>
const tAttributeRow* findRow(std::span<const tAttributeRow> rows, Predicate matches) {
  const auto row = std::ranges::find_if(rows, matches);
  return row == rows.end() ? nullptr : &*row;
}

const tAttributeRow* findId(std::span<const tAttributeRow> rows, uint32_t id) noexcept {
  return findRow(rows, [id](const tAttributeRow& row) { return row.id == id; });
}

const tAttributeRow* findName(std::span<const tAttributeRow> rows, const std::string& name) {
  return findRow(rows, [&name](const tAttributeRow& row) { return row.name == name; });
}

std::string withoutPrefix(std::string_view text, std::string_view constantPrefix) {
  std::string name = comparableName(text);
  const std::string prefix = comparableName(constantPrefix);
  return name.starts_with(prefix) ? name.substr(prefix.size()) : name;
}

std::vector<std::string_view> namesOf(std::span<const tAttributeRow> rows) {
  std::vector<std::string_view> names;
  std::ranges::transform(rows, std::back_inserter(names), &tAttributeRow::name);
  return names;
}

}  // namespace

constinit const std::span<const tSubjectRow* const> kSubjects{kSubjectOrder};
constinit const std::span<const tAttributeRow> kAttributes{kAttributeRows};
constinit const std::span<const tAttributeRow> kSettings{kSettingRows};

const tAttributeRow* findAttribute(uint32_t id) noexcept {
  return findId(kAttributes, id);
}

const tAttributeRow* findAttribute(std::string_view name) {
  return findName(kAttributes, withoutPrefix(name, kConstantPrefix));
}

const tAttributeRow* findSetting(uint32_t id) noexcept {
  return findId(kSettings, id);
}

const tAttributeRow* findSetting(std::string_view name) {
  return findName(kSettings, withoutPrefix(name, kSettingPrefix));
}

std::vector<std::string> suggestAttributes(std::string_view name) {
  return suggest(withoutPrefix(name, kConstantPrefix), namesOf(kAttributes));
}

std::vector<std::string> suggestWritable(std::string_view name) {
  std::vector<std::string_view> names = namesOf(kAttributes);
  std::ranges::copy(namesOf(kSettings), std::back_inserter(names));
  const std::string attributeName = withoutPrefix(name, kConstantPrefix);
  return suggest(withoutPrefix(attributeName, kSettingPrefix), names);
}

const tAttributeRow* countingAttribute(const tInstanceRow& instances) noexcept {
  return instances.countAttribute == 0 ? nullptr : findAttribute(instances.countAttribute);
}

std::string instancesText(const tAttributeRow& row) {
  if (row.instances->meaning.empty()) {
    return "";
  }
  std::string text = "1 per " + std::string(row.instances->meaning);
  const tAttributeRow* const counter = countingAttribute(*row.instances);
  return counter == nullptr ? text : text.append(", counted by ").append(counter->name);
}

std::string constantOf(const tAttributeRow& row) {
  std::string constant(row.isReadable() ? kConstantPrefix : kSettingPrefix);
  for (const char character : row.name) {
    const bool lower = character >= 'a' && character <= 'z';
    constant +=
        lower ? static_cast<char>(character - 'a' + 'A') : (character == '-' ? '_' : character);
  }
  return constant;
}

}  // namespace nCommandLine
