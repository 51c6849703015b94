// Reading and writing the attributes of the controller.
#ifndef SOURCE_USER_ATTRIBUTES_ATTRIBUTES_H
#define SOURCE_USER_ATTRIBUTES_ATTRIBUTES_H

#include <cstdint>

#include "codegen/apalcodegen/tinterfaceproxy_hostcontroller.h"
#include "codegen/apalcodegen/tinterfaceproxy_hostmarten.h"
#include "source/user/machine/tmemorymodules.h"
#include "zoapal/protons/status/zoerrstatus.h"
#include "zosmbios/czosmbiosprovider.h"

namespace nQUENRA1400 {

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
