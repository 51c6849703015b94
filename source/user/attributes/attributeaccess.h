#ifndef SOURCE_USER_ATTRIBUTES_ATTRIBUTEACCESS_H
#define SOURCE_USER_ATTRIBUTES_ATTRIBUTEACCESS_H

#include "codegen/apalcodegen/iinterfaceproxy_hostcontroller.h"
#include "codegen/apalcodegen/iinterfaceproxy_hostmarten.h"
#include "source/user/session/tmemorymodules.h"
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

}  // namespace nQUENRA1400

#endif
