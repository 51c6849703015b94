// Reading and writing the attributes of the controller.
#ifndef SOURCE_USER_ATTRIBUTES_ATTRIBUTES_H
#define SOURCE_USER_ATTRIBUTES_ATTRIBUTES_H

#include <cstdint>

#include "codegen/apalcodegen/tinterfaceproxy_hostcontroller.h"
#include "codegen/apalcodegen/tinterfaceproxy_hostmarten.h"
#include "quenra_attributes.h"
#include "source/user/machine/smbiosfields.h"
#include "zoapal/protons/status/zoerrstatus.h"
#include "zosmbios/czosmbiosprovider.h"

namespace nQUENRA1400 {

// The parts of an attribute id.
class tAttributeId {
 public:
  explicit constexpr tAttributeId(uint32_t id) noexcept : id_(id) {}

  [[nodiscard]] constexpr uint32_t value() const noexcept { return id_; }
  // The id without selector and instance, by which the tables are searched.
  [[nodiscard]] constexpr uint32_t base() const noexcept {
    return id_ & ~(QUENRA_ATTRIBUTE_SELECTOR_MASK | QUENRA_ATTRIBUTE_INSTANCE_MASK);
  }
  [[nodiscard]] constexpr uint32_t withoutSelector() const noexcept {
    return id_ & ~QUENRA_ATTRIBUTE_SELECTOR_MASK;
  }
  [[nodiscard]] constexpr tAttributeId onMarten() const noexcept {
    return tAttributeId(withoutSelector() | QUENRA_SELECTOR_MARTEN);
  }
  [[nodiscard]] constexpr bool isPrivate() const noexcept {
    return (id_ & QUENRA_ATTRIBUTE_PRIVATE_MASK) != 0;
  }
  [[nodiscard]] constexpr uint32_t number() const noexcept {
    return (id_ & QUENRA_ATTRIBUTE_NUMBER_MASK) >> 8;
  }
  [[nodiscard]] constexpr uint32_t instance() const noexcept {
    return id_ & QUENRA_ATTRIBUTE_INSTANCE_MASK;
  }
  [[nodiscard]] constexpr bool selectsController() const noexcept {
    return (id_ & QUENRA_ATTRIBUTE_SELECTOR_MASK) == QUENRA_SELECTOR_CONTROLLER;
  }
  [[nodiscard]] constexpr bool selectsMarten() const noexcept {
    return (id_ & QUENRA_ATTRIBUTE_SELECTOR_MASK) == QUENRA_SELECTOR_MARTEN;
  }

 private:
  uint32_t id_;
};

// References to everything that attributes are read from and written to.
struct tAttributeAccess {
  nZOSMBIOS_1_1::cZoSmBiosProvider& provider;
  const tMemoryModules& memoryModules;
  nZOAPAL000::iInterfaceProxy_hostController& controller;
  nZOAPAL000::iInterfaceProxy_hostMarten& marten;
  bool controllerIsOpen;
  bool martenIsOpen;
};

// The following functions do nothing when the status holds an error.

// Reads a text attribute by the contract of QUENRA_getAttributeUTF8. Reads no field of an ordinary
// attribute when `size` is null.
void readTextAttribute(const tAttributeAccess& access, uint32_t attribute, char* buffer,
                       uint64_t* size, zoerr::Status& status) noexcept;

// Reads an unsigned attribute by the contract of QUENRA_getAttributeU32.
void readUnsignedAttribute(const tAttributeAccess& access, uint32_t attribute, uint32_t& value,
                           zoerr::Status& status) noexcept;

// Writes a text attribute by the contract of QUENRA_setAttributeUTF8.
void writeTextAttribute(const tAttributeAccess& access, uint32_t attribute, const char* text,
                        zoerr::Status& status) noexcept;

// Writes an unsigned attribute by the contract of QUENRA_setAttributeU32.
void writeUnsignedAttribute(const tAttributeAccess& access, uint32_t attribute, uint32_t value,
                            zoerr::Status& status) noexcept;

}  // namespace nQUENRA1400

#endif
