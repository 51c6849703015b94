#ifndef TESTS_COMPONENT_ROUTINGADAPTORINTERFACE_ROUTINGCLIENT_H
#define TESTS_COMPONENT_ROUTINGADAPTORINTERFACE_ROUTINGCLIENT_H

#include "quenra_routing.h"
#include "tests/component/zoarkra/scriptedrouter.h"
#include "zoapal/protons/status/zoerrstatus.h"

namespace nTests {

// A copy of a client's record as a record of the library, for reading.
inline zoerr::Status recordOf(const zoerr_Status& client) {
  zoerr::Status record;
  record.code = client.code;
  record.capacity = client.capacity;
  record.description = client.description;
  return record;
}

// A client's record for a scope.
struct tClientStatus : zoerr_Status {
  tClientStatus() : zoerr_Status(zoerr_Status_initial()) {}
  tClientStatus(const tClientStatus&) = delete;
  tClientStatus& operator=(const tClientStatus&) = delete;
  ~tClientStatus() { zoerr_Status_release(this); }
};

// Sessions created from now on open the scripted device instead of the system's.
void useDevice(tRoutingDeviceScript& script) noexcept;

}  // namespace nTests

#endif
