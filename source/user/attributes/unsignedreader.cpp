#include <algorithm>
#include <iterator>
#include <string_view>

#include "source/user/attributes/attributes.h"
#include "source/user/attributes/attributetables.h"
#include "source/user/machine/drivercalls.h"
#include "source/user/machine/smbiosfields.h"

namespace nQUENRA1400 {
namespace {

using nZOSMBIOS_1_1::cZoSmBiosProvider;
using nZOSMBIOS_1_1::tFieldId;
using nZOSMBIOS_1_1::tWidthClass;
using nZOSMBIOS_1_1::widthClassOf;

constexpr auto kMartenNotOpen = sessionLocation(956);
constexpr auto kUnknownPrivateAttribute = sessionLocation(1003);
constexpr auto kUpdateSupportUnknown = sessionLocation(1324);
constexpr auto kControllerNotOpen = sessionLocation(1345);
constexpr auto kUnknownAttribute = sessionLocation(1364);
constexpr auto kUnknownWidth = sessionLocation(1428);
constexpr auto kUnknownRevision = sessionLocation(1560);

constexpr uint32_t kHighestPlatformKind = 5;
constexpr uint32_t kPlatformRevisions[] = {0x10, 0x15, 0x20, 0x30};

struct tNamedKind {
  std::string_view name;
  uint32_t kind;
};
constexpr tNamedKind kLinkKinds[] = {{"ExpressCard", QUENRA_LINK_EXPRESSCARD},
                                     {"GPIB", QUENRA_LINK_GPIB},
                                     {"Thunderbolt", QUENRA_LINK_THUNDERBOLT}};
constexpr tNamedKind kExpansionKinds[] = {{"PCI", QUENRA_EXPANSION_PCI}};

bool hasText(cZoSmBiosProvider& provider, tFieldId field) noexcept {
  return tProviderText(provider, field, 0).result() == 0;
}

bool hasByte(cZoSmBiosProvider& provider, tFieldId field) noexcept {
  uint8_t ignored = 0;
  return provider.readByte(field, 0, &ignored) == 0;
}

// The kind of controller: 1 to 3 by the bus structures of the table; without them 1 to 5 by the
// platform structure; else QUENRA_KIND_OTHER.
uint32_t controllerKind(cZoSmBiosProvider& provider) noexcept {
  if (hasText(provider, nPlatformFields::kBusLocation)) {
    return 1;
  }
  if (hasByte(provider, nPlatformFields::kSlotCount)) {
    return 2;
  }
  if (hasByte(provider, nPlatformFields::kCapabilities)) {
    return 3;
  }
  uint8_t kind = 0;
  const bool known = provider.readByte(nPlatformFields::kKind, 0, &kind) == 0 && kind >= 1 &&
                     kind <= kHighestPlatformKind;
  return known ? kind : QUENRA_KIND_OTHER;
}

class tUnsignedReading {
 public:
  tUnsignedReading(const tAttributeAccess& access, tAttributeId attribute, uint32_t& value,
                   zoerr::Status& status) noexcept
      : access_(access), attribute_(attribute), value_(value), status_(status) {}

  void readFromMarten() const noexcept;
  void readRow(const tUnsignedRow& row) const noexcept;

 private:
  void readListEntry(const tListSource& list) const noexcept;
  void readPlatformRevision(tFieldId field) const noexcept;
  void readFromController(const tUnsignedRow& row) const noexcept;
  void computeFirmwareUpdateSupport(const tUnsignedRow& row) const noexcept;
  void computeInterfacesPresent() const noexcept;
  void rejectOtherInstances(const tUnsignedRow& row) const noexcept;

  [[nodiscard]] uint32_t readField(tFieldId field, uint32_t instance) const noexcept;
  template <size_t N>
  [[nodiscard]] uint32_t readKind(tFieldId field, const tNamedKind (&kinds)[N]) const noexcept;
  void deliver(uint32_t value) const noexcept;
  void readFromMartenInstead() const noexcept;

  const tAttributeAccess& access_;
  const tAttributeId attribute_;
  uint32_t& value_;
  zoerr::Status& status_;
};

void tUnsignedReading::readFromMarten() const noexcept {
  if (attribute_.instance() != 0 || !access_.martenIsOpen) {
    status_.set(QUENRA_STATUS_NO_CONTROLLER, kMartenNotOpen);
    return;
  }
  readFromDriver(access_.marten, attribute_.value(), value_, status_);
}

void tUnsignedReading::readRow(const tUnsignedRow& row) const noexcept {
  const uint32_t instance = attribute_.instance();
  switch (row.rule) {
    case tUnsignedRule::asItIs:
      deliver(readField(row.field, instance));
      break;
    case tUnsignedRule::ofMemoryModule:
      deliver(readField(row.field, access_.memoryModules.instanceOf(instance, status_)));
      break;
    case tUnsignedRule::ofList:
      readListEntry(*row.list);
      break;
    case tUnsignedRule::lowNibble:
      deliver(readField(row.field, instance) & 0xF);
      break;
    case tUnsignedRule::platformRevision:
      readPlatformRevision(row.field);
      break;
    case tUnsignedRule::linkKind:
      deliver(readKind(row.field, kLinkKinds));
      break;
    case tUnsignedRule::expansionKind:
      deliver(readKind(row.field, kExpansionKinds));
      break;
    case tUnsignedRule::controllerKind:
      value_ = controllerKind(access_.provider);
      rejectOtherInstances(row);
      break;
    case tUnsignedRule::memoryModuleCount:
      value_ = access_.memoryModules.count();
      rejectOtherInstances(row);
      break;
    case tUnsignedRule::firmwareUpdateSupport:
      computeFirmwareUpdateSupport(row);
      break;
    case tUnsignedRule::interfacesPresent:
      computeInterfacesPresent();
      break;
    case tUnsignedRule::driver:
      readFromController(row);
      break;
  }
}

void tUnsignedReading::rejectOtherInstances(const tUnsignedRow& row) const noexcept {
  if (attribute_.instance() != 0) {
    status_.set(QUENRA_STATUS_NOT_SUPPORTED, sessionLocation(row.instanceLine));
  }
}

void tUnsignedReading::readFromController(const tUnsignedRow& row) const noexcept {
  rejectOtherInstances(row);
  if (status_.isError()) {
    return;
  }
  readFromDriver(access_.controller, attribute_.value(), value_, status_);
}

void tUnsignedReading::computeFirmwareUpdateSupport(const tUnsignedRow& row) const noexcept {
  rejectOtherInstances(row);
  if (status_.isError()) {
    return;
  }
  if (const auto permitted = isPermitted(access_.provider, kFirmwareUpdatePermission)) {
    value_ = *permitted ? 1 : 0;
  } else {
    status_.set(QUENRA_STATUS_NO_CONTROLLER, kUpdateSupportUnknown);
  }
}

void tUnsignedReading::computeInterfacesPresent() const noexcept {
  if (!access_.controllerIsOpen) {
    status_.set(QUENRA_STATUS_NO_CONTROLLER, kControllerNotOpen);
    return;
  }
  constexpr uint32_t kController = QUENRA_SELECTOR_CONTROLLER;
  constexpr uint32_t kMarten = QUENRA_SELECTOR_MARTEN;
  value_ = access_.martenIsOpen ? kController | kMarten : kController;
}

void tUnsignedReading::readPlatformRevision(tFieldId field) const noexcept {
  const uint32_t instance = attribute_.instance();
  const uint32_t revision = readField(field, instance);
  // Without its base the revision is not available.
  static_cast<void>(readField(nPlatformFields::kRevisionBase, instance));
  const bool isKnown = std::find(std::begin(kPlatformRevisions), std::end(kPlatformRevisions),
                                 revision) != std::end(kPlatformRevisions);
  if (!status_.isError() && !isKnown) {
    status_.set(QUENRA_STATUS_NOT_SUPPORTED, kUnknownRevision);
  } else {
    deliver(revision);
  }
}

template <size_t N>
uint32_t tUnsignedReading::readKind(tFieldId field, const tNamedKind (&kinds)[N]) const noexcept {
  const tProviderText name(access_.provider, field, attribute_.instance());
  mergeProviderResult(name.result(), status_);
  const auto* const found =
      std::find_if(std::begin(kinds), std::end(kinds),
                   [&name](const tNamedKind& kind) { return kind.name == name.view(); });
  return found == std::end(kinds) ? QUENRA_KIND_OTHER : found->kind;
}

void tUnsignedReading::readListEntry(const tListSource& list) const noexcept {
  const uint32_t count = readField(list.count, 0);
  const uint32_t position = attribute_.instance();
  if (status_.isError()) {
    deliver(0);
  } else if (position >= count || position >= list.capacity) {
    status_.set(QUENRA_STATUS_NOT_SUPPORTED, sessionLocation(list.line));
  } else {
    deliver(readField(list.entry(position), 0));
  }
}

// 0 when the field cannot be read. A malformed field is not reported as an error.
uint32_t tUnsignedReading::readField(tFieldId field, uint32_t instance) const noexcept {
  if (status_.isError()) {
    return 0;
  }
  uint8_t byte = 0;
  uint16_t word = 0;
  uint64_t quadWord = 0;
  switch (widthClassOf(field)) {
    case tWidthClass::byte:
      mergeProviderResult(access_.provider.readByte(field, instance, &byte), status_);
      return byte;
    case tWidthClass::word:
      mergeProviderResult(access_.provider.readWord(field, instance, &word), status_);
      return word;
    case tWidthClass::quadWord:
      mergeProviderResult(access_.provider.readQword(field, instance, &quadWord), status_);
      return static_cast<uint32_t>(quadWord);
    // GCOVR_EXCL_START: no row of the attribute tables has another width
    case tWidthClass::text:
    case tWidthClass::doubleWord:
    case tWidthClass::provider:
      break;
  }
  status_.set(QUENRA_STATUS_NOT_SUPPORTED, kUnknownWidth);
  return 0;
  // GCOVR_EXCL_STOP
}

// Ends every read from the table: when the field could not be read, reads the attribute from the
// Marten interface.
void tUnsignedReading::deliver(uint32_t value) const noexcept {
  if (status_.isError()) {
    readFromMartenInstead();
  } else {
    value_ = value;
  }
}

void tUnsignedReading::readFromMartenInstead() const noexcept {
  if (attribute_.instance() != 0 || !access_.martenIsOpen) {
    return;
  }
  // A status of its own: with the error in the session's, the proxy would send nothing.
  nZOAPALS100::tStatus driver;
  uint32_t answer = 0;
  uint32_t size = sizeof answer;
  access_.marten.getAttribute(attribute_.value(), addressOf(&answer), size, driver);
  if (!driver.isError()) {
    value_ = answer;
    status_.clear();
  }
}

}  // namespace

void readUnsignedAttribute(const tAttributeAccess& access, uint32_t attribute, uint32_t& value,
                           zoerr::Status& status) noexcept {
  if (status.isError()) {
    return;
  }
  value = 0;
  const tAttributeId id(attribute);
  const tUnsignedReading reading(access, id, value, status);
  if (id.selectsMarten()) {
    reading.readFromMarten();
  } else if (id.isPrivate() && id.base() != QUENRA_ATTRIBUTE_PLATFORM_GENERATION) {
    status.set(QUENRA_STATUS_NOT_SUPPORTED, kUnknownPrivateAttribute);
  } else if (const tUnsignedRow* row = findUnsignedRow(id.base())) {
    reading.readRow(*row);
  } else {
    status.set(QUENRA_STATUS_NOT_SUPPORTED, kUnknownAttribute);
  }
}

}  // namespace nQUENRA1400
