// install, uninstall, wait, status and reset: the installation and the state of the machine.
#include <charconv>
#include <chrono>
#include <cstdint>
#include <iostream>
#include <string>
#include <system_error>
#include <thread>

#include "simulator/control/tsimulatedmachine.h"
#include "simulator/quenra-sim/installation/installation.h"
#include "simulator/quenra-sim/installation/steps.h"
#include "simulator/quenra-sim/verbs/verbs.h"
#include "simulator/scenario/servicescenarios.h"

namespace nSimulator {
namespace {

constexpr std::chrono::seconds kDefaultTimeout(15);

// True if the machine can be reached and the interfaces that it reports as present are enabled.
bool isReady() {
  const tSimulatorPresence presence = tSimulatedMachine().presence();
  return presentInterfaces(kControllerInterfaceClass).size() == presence.controllers &&
         presentInterfaces(kMartenInterfaceClass).size() == presence.martens &&
         presentInterfaces(kDevicePathInterfaceClass).size() == presence.devicePaths;
}

// Throws tControlError if the machine cannot be reached when the timeout has elapsed.
void waitUntilReady(std::chrono::milliseconds timeout) {
  constexpr std::chrono::milliseconds kStep(50);
  const auto end = std::chrono::steady_clock::now() + timeout;
  for (;;) {
    try {
      if (isReady()) {
        return;
      }
      if (std::chrono::steady_clock::now() >= end) {
        throw std::runtime_error("the simulated machine does not enable its device interfaces");
      }
    } catch (const tControlError&) {
      if (std::chrono::steady_clock::now() >= end) {
        throw;
      }
    }
    std::this_thread::sleep_for(kStep);
  }
}

// Restores the system's locator first: other programs depend on it.
void uninstall() {
  runEveryStep({removeManagementService, [] { installDriverStoreTool(tDriverStoreTool::missing); },
                removeRootDevices, removeDriverService});
}

void install() {
  // Another version may be installed.
  uninstall();
  createRootDevices();
  installDriver();
  installManagementService();
  installDriverStoreTool(tDriverStoreTool::working);
  waitUntilReady(kDefaultTimeout);
  std::cout << "the simulated controller is installed\n";
}

void showStatus(bool asJson) {
  tSimulatedMachine machine;
  const tSimulatorPresence presence = machine.presence();
  const size_t tableSize = machine.table().size();
  if (asJson) {
    tJsonDocument document;
    document.begin();
    document.member("controllers", presence.controllers);
    document.member("martens", presence.martens);
    document.member("devicePaths", presence.devicePaths);
    document.member("tableSize", tableSize);
    document.end();
  } else {
    std::cout << "controller interfaces   " << presence.controllers << '\n'
              << "Marten interfaces       " << presence.martens << '\n'
              << "device path interfaces  " << presence.devicePaths << '\n'
              << "SMBIOS table            " << tableSize << " bytes\n";
  }
}

std::chrono::milliseconds timeoutOf(const tArguments& arguments) {
  constexpr double kMaxSeconds = 600;
  const auto text = arguments.optional(nWords::kTimeout);
  if (!text) {
    return kDefaultTimeout;
  }
  double seconds = 0;
  const char* const end = text->data() + text->size();
  const auto [stop, error] = std::from_chars(text->data(), end, seconds);
  if (error != std::errc() || stop != end || !(seconds >= 0 && seconds <= kMaxSeconds)) {
    throw tUsageError("'" + *text + "' is not a number of seconds from 0 to 600",
                      "Give --timeout such a number, for example 15 or 0.5.");
  }
  return std::chrono::milliseconds(static_cast<int64_t>(seconds * 1000));
}

}  // namespace

void runInstall(const tArguments& /*arguments*/) {
  install();
}

void runUninstall(const tArguments& /*arguments*/) {
  uninstall();
  std::cout << "the simulated controller is removed\n";
}

void runWait(const tArguments& arguments) {
  waitUntilReady(timeoutOf(arguments));
}

void runStatus(const tArguments& arguments) {
  showStatus(arguments.has(nWords::kJson));
}

void resetSimulation() {
  tSimulatedMachine().reset();
  setEncryption({});
  setDriverStoreBehaviour({});
  clearDriverStoreRuns();
  installDriverStoreTool(tDriverStoreTool::working);
}

void runReset(const tArguments& /*arguments*/) {
  resetSimulation();
}

}  // namespace nSimulator
