#include "source/user/attributes/unsignedreader.h"

#include <algorithm>
#include <iterator>
#include <string_view>

#include "source/user/attributes/attributeid.h"
#include "source/user/attributes/controllerkind.h"
#include "source/user/attributes/drivercalls.h"
#include "source/user/attributes/providerresult.h"
#include "source/user/attributes/providertext.h"
#include "source/user/attributes/unsignedtable.h"
#include "source/user/location.h"
#include "source/user/statuscodes.h"

namespace nQUENRA1400 {
namespace {

using nZOAPALS100::tStatus;
using nZOSMBIOS_1_1::byteField;
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

constexpr auto kRevisionBase = byteField(0xB4, 0x06);
constexpr auto kUpdateCapability = byteField(0x9E, 0x04);
constexpr auto kUpdateRestriction = byteField(0x9E, 0x05);

constexpr uint32_t kPlatformRevisions[] = {0x10, 0x15, 0x20, 0x30};

struct tNamedKind {
  std::string_view name;
  uint32_t kind;
};
constexpr tNamedKind kLinkKinds[] = {{"ExpressCard", QUENRA_LINK_EXPRESSCARD},
                                     {"GPIB", QUENRA_LINK_GPIB},
                                     {"Thunderbolt", QUENRA_LINK_THUNDERBOLT}};
constexpr tNamedKind kExpansionKinds[] = {{"PCI", QUENRA_EXPANSION_PCI}};

template <size_t N>
uint32_t kindOf(const tNamedKind (&kinds)[N], std::string_view name) noexcept {
  const auto* found = std::find_if(std::begin(kinds), std::end(kinds),
                                   [name](const tNamedKind& kind) { return kind.name == name; });
  return found == std::end(kinds) ? kOtherKind : found->kind;
}

class tUnsignedReading {
 public:
  tUnsignedReading(const tAttributeAccess& access, tAttributeId attribute, uint32_t& value,
                   zoerr::Status& status) noexcept
      : access_(access), attribute_(attribute), value_(value), status_(status) {}

  void readFromMarten() const noexcept;
  void readRow(const tUnsignedRow& row) const noexcept;

 private:
  void readFieldRow(const tUnsignedRow& row) const noexcept;
  void readKindRow(const tUnsignedRow& row) const noexcept;
  void readListRow(const tUnsignedRow& row) const noexcept;
  void readFromController(const tUnsignedRow& row) const noexcept;
  void computeFirmwareUpdateSupport(const tUnsignedRow& row) const noexcept;
  void computeInterfacesPresent() const noexcept;
  void refuseOtherInstances(const tUnsignedRow& row) const noexcept;

  [[nodiscard]] uint32_t readField(tFieldId field, uint32_t instance) const noexcept;
  template <class Number>
  [[nodiscard]] Number readNumber(int32_t (cZoSmBiosProvider::*read)(tFieldId, uint32_t, Number*),
                                  tFieldId field, uint32_t instance) const noexcept;
  void deliver(tUnsignedRule rule, uint32_t value) const noexcept;
  void readFromMartenInstead() const noexcept;

  const tAttributeAccess& access_;
  const tAttributeId attribute_;
  uint32_t& value_;
  zoerr::Status& status_;
};

void tUnsignedReading::readFromMarten() const noexcept {
  if (attribute_.instance() != 0 || !access_.martenIsOpen) {
    status_.set(kNoController, kMartenNotOpen);
    return;
  }
  tStatus driver = recordFor(status_);
  readFromDriver(access_.marten, attribute_, value_, driver);
  status_.mergeFrom(driver);
}

void tUnsignedReading::readRow(const tUnsignedRow& row) const noexcept {
  switch (row.rule) {
    case tUnsignedRule::controllerKind:
      value_ = controllerKind(access_.provider);
      refuseOtherInstances(row);
      break;
    case tUnsignedRule::memoryModuleCount:
      value_ = access_.memoryModules.count();
      refuseOtherInstances(row);
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
    case tUnsignedRule::linkKind:
    case tUnsignedRule::expansionKind:
      readKindRow(row);
      break;
    case tUnsignedRule::ofList:
      readListRow(row);
      break;
    default:
      readFieldRow(row);
  }
}

void tUnsignedReading::refuseOtherInstances(const tUnsignedRow& row) const noexcept {
  if (attribute_.instance() != 0) {
    status_.set(kAttributeNotSupported, sessionLocation(row.instanceLine));
  }
}

void tUnsignedReading::readFromController(const tUnsignedRow& row) const noexcept {
  refuseOtherInstances(row);
  if (status_.isError()) {
    return;
  }
  tStatus driver = recordFor(status_);
  readFromDriver(access_.controller, attribute_, value_, driver);
  status_.mergeFrom(driver);
}

void tUnsignedReading::computeFirmwareUpdateSupport(const tUnsignedRow& row) const noexcept {
  refuseOtherInstances(row);
  if (status_.isError()) {
    return;
  }
  uint8_t capability = 0;
  uint8_t restriction = 0;
  if (access_.provider.readByte(kUpdateCapability, 0, &capability) != 0 ||
      access_.provider.readByte(kUpdateRestriction, 0, &restriction) != 0) {
    status_.set(kNoController, kUpdateSupportUnknown);
    return;
  }
  value_ = capability != 0 && restriction < 2 ? 1 : 0;
}

void tUnsignedReading::computeInterfacesPresent() const noexcept {
  if (!access_.controllerIsOpen) {
    status_.set(kNoController, kControllerNotOpen);
    return;
  }
  constexpr uint32_t kController = QUENRA_SELECTOR_CONTROLLER;
  constexpr uint32_t kMarten = QUENRA_SELECTOR_MARTEN;
  value_ = access_.martenIsOpen ? kController | kMarten : kController;
}

void tUnsignedReading::readFieldRow(const tUnsignedRow& row) const noexcept {
  uint32_t instance = attribute_.instance();
  if (row.rule == tUnsignedRule::ofMemoryModule) {
    instance = access_.memoryModules.instanceOf(instance, status_);
  }
  const uint32_t value = readField(row.field, instance);
  if (row.rule == tUnsignedRule::platformRevision) {
    // Without its base the revision is not available.
    static_cast<void>(readField(kRevisionBase, instance));
  }
  deliver(row.rule, value);
}

void tUnsignedReading::readKindRow(const tUnsignedRow& row) const noexcept {
  const tProviderText name(access_.provider, row.field, attribute_.instance());
  mergeProviderResult(name.result(), status_);
  deliver(row.rule, row.rule == tUnsignedRule::linkKind ? kindOf(kLinkKinds, name.view())
                                                        : kindOf(kExpansionKinds, name.view()));
}

void tUnsignedReading::readListRow(const tUnsignedRow& row) const noexcept {
  const uint32_t count = readField(row.list->count, 0);
  uint32_t value = 0;
  if (!status_.isError()) {
    const uint32_t position = attribute_.instance();
    if (position >= count || position >= row.list->capacity) {
      status_.set(kAttributeNotSupported, sessionLocation(row.list->line));
      return;
    }
    value = readField(row.list->entry(position), 0);
  }
  deliver(row.rule, value);
}

template <class Number>
Number tUnsignedReading::readNumber(int32_t (cZoSmBiosProvider::*read)(tFieldId, uint32_t, Number*),
                                    tFieldId field, uint32_t instance) const noexcept {
  Number number = 0;
  mergeProviderResult((access_.provider.*read)(field, instance, &number), status_);
  return number;
}

// 0 when the field cannot be read. A malformed field is not reported as an error.
uint32_t tUnsignedReading::readField(tFieldId field, uint32_t instance) const noexcept {
  if (status_.isError()) {
    return 0;
  }
  switch (widthClassOf(field)) {
    case tWidthClass::byte:
      return readNumber(&cZoSmBiosProvider::readByte, field, instance);
    case tWidthClass::word:
      return readNumber(&cZoSmBiosProvider::readWord, field, instance);
    case tWidthClass::quadWord:
      return static_cast<uint32_t>(readNumber(&cZoSmBiosProvider::readQword, field, instance));
    default:
      status_.set(kAttributeNotSupported, kUnknownWidth);
  }
  return 0;
}

// Ends every read from the table: applies the row's rule or, when the field could not be read, reads
// the attribute from the Marten interface.
void tUnsignedReading::deliver(tUnsignedRule rule, uint32_t value) const noexcept {
  if (status_.isError()) {
    readFromMartenInstead();
  } else if (rule == tUnsignedRule::platformRevision &&
             std::find(std::begin(kPlatformRevisions), std::end(kPlatformRevisions), value) ==
                 std::end(kPlatformRevisions)) {
    status_.set(kAttributeNotSupported, kUnknownRevision);
  } else {
    value_ = rule == tUnsignedRule::lowNibble ? value & 0xF : value;
  }
}

void tUnsignedReading::readFromMartenInstead() const noexcept {
  if (attribute_.instance() != 0 || !access_.martenIsOpen) {
    return;
  }
  // A record of its own: with the error in the session's record, the proxy would send nothing.
  tStatus driver;
  uint32_t answer = 0;
  readFromDriver(access_.marten, attribute_, answer, driver);
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
    status.set(kAttributeNotSupported, kUnknownPrivateAttribute);
  } else if (const tUnsignedRow* row = findUnsignedRow(id.base())) {
    reading.readRow(*row);
  } else {
    status.set(kAttributeNotSupported, kUnknownAttribute);
  }
}

}  // namespace nQUENRA1400
