#include "tests/component/routingadaptorinterface/routingclient.h"

#include <memory>

namespace nTests {
namespace {

tRoutingDeviceScript* current = nullptr;

}  // namespace

void useDevice(tRoutingDeviceScript& script) noexcept {
  current = &script;
}

}  // namespace nTests

namespace zoark {

// Linked instead of the system's.
std::unique_ptr<iRoutingDevice> makeRoutingDevice() {
  return std::make_unique<nTests::tScriptedRoutingDevice>(*nTests::current);
}

}  // namespace zoark
