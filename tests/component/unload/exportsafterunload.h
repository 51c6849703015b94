// Calls of every kind of export after the library has been unloaded, native and on Windows.
#ifndef TESTS_COMPONENT_UNLOAD_EXPORTSAFTERUNLOAD_H
#define TESTS_COMPONENT_UNLOAD_EXPORTSAFTERUNLOAD_H

#include "quenra.h"
#include "quenra_routing.h"

namespace nTests {

// The exports that are called, as function pointers: a client may have looked them up at run time.
struct tExports {
  decltype(&QUENRA_openController) open;
  decltype(&QUENRA_closeController) close;
  decltype(&QUENRA_getAttributeU32) getU32;
  decltype(&QUENRA_setAttributeUTF8) setText;
  decltype(&zoroco_ra_quenra_createSession) createSession;
  decltype(&zoroco_ra_quenra_programRoute) programRoute;
  decltype(&zoroco_ra_quenra_unprogramRoute) unprogramRoute;
  decltype(&zoroco_ra_quenra_destroySession) destroySession;
};

// Returns the number of the first export that misbehaves, or 0. The controller is open; `session` is
// valid and is destroyed.
inline int firstMisbehavingExport(const tExports& exports, zoroco_RoutingAdaptorSession* session) {
  uint64_t handle = 17;
  if (exports.open(&handle) != QUENRA_STATUS_NOT_READY || handle != 17) {
    return 1;
  }
  uint32_t value = 17;
  if (exports.getU32(QUENRA_HANDLE, QUENRA_ATTRIBUTE_MEMORY_MODULE_COUNT, &value) !=
          QUENRA_STATUS_NOT_READY ||
      value != 17) {
    return 2;
  }
  if (exports.setText(QUENRA_HANDLE, QUENRA_ATTRIBUTE_PRODUCT_NAME, "x") !=
      QUENRA_STATUS_NO_CONTROLLER) {
    return 3;
  }
  exports.close(QUENRA_HANDLE);
  zoerr_Status status = zoerr_Status_initial();
  if (exports.createSession("device", nullptr, &status) != nullptr ||
      status.code != QUENRA_STATUS_NOT_READY) {
    return 4;
  }
  zoerr_Status_release(&status);
  status = zoerr_Status_initial();
  exports.programRoute(session, 1, &status);
  if (status.code != QUENRA_STATUS_NOT_READY) {
    return 5;
  }
  zoerr_Status_release(&status);
  exports.unprogramRoute(session, 1, 0, 0);
  exports.destroySession(session);
  exports.destroySession(session);
  return 0;
}

}  // namespace nTests

#endif
