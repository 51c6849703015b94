#include "simulator/quenra-sim/installation/readiness.h"

#include <stdexcept>
#include <thread>

#include "simulator/control/deviceinterfaces.h"
#include "simulator/control/tsimulatedmachine.h"

namespace nSimulator {
namespace {

// True if the machine can be reached and the interfaces that it reports as present are enabled.
bool isReady() {
  const tSimulatorPresence presence = tSimulatedMachine().presence();
  return presentInterfaces(kControllerInterfaceClass).size() == presence.controllers &&
         presentInterfaces(kMartenInterfaceClass).size() == presence.martens &&
         presentInterfaces(kDevicePathInterfaceClass).size() == presence.devicePaths;
}

}  // namespace

void waitUntilReady(std::chrono::milliseconds timeout) {
  constexpr std::chrono::milliseconds kStep(50);
  const auto end = std::chrono::steady_clock::now() + timeout;
  for (;;) {
    try {
      if (isReady()) {
        return;
      }
      if (std::chrono::steady_clock::now() >= end) {
        throw std::runtime_error("the simulated machine does not show its device interfaces");
      }
    } catch (const tControlError&) {
      if (std::chrono::steady_clock::now() >= end) {
        throw;
      }
    }
    std::this_thread::sleep_for(kStep);
  }
}

}  // namespace nSimulator
