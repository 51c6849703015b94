// install, uninstall, wait, status and reset: the installation and the state of the machine.
#include <chrono>
#include <iostream>
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

void reset() {
  tSimulatedMachine().reset();
  setEncryption({});
  setDriverStoreBehaviour({});
  clearDriverStoreRuns();
  installDriverStoreTool(tDriverStoreTool::working);
}

}  // namespace

void addInstall(CLI::App& app, tAction& action) {
  app.add_subcommand(
         "install",
         "Install the driver from the files beside this program, create the devices, and replace "
         "the operating system services; replaces an earlier installation")
      ->callback([&action] { action = install; });
}

void addUninstall(CLI::App& app, tAction& action) {
  app.add_subcommand("uninstall", "Remove the driver and the devices, and restore the services")
      ->callback([&action] {
        action = [] {
          uninstall();
          std::cout << "the simulated controller is removed\n";
        };
      });
}

void addWait(CLI::App& app, tAction& action) {
  static double seconds = kDefaultTimeout.count();
  CLI::App* const verb = app.add_subcommand("wait", "Wait until the simulated machine is ready");
  verb->add_option("--timeout", seconds, "Fail after this many seconds")
      ->check(CLI::Range(0.0, 600.0))
      ->capture_default_str();
  verb->callback([&action] {
    action = [] {
      waitUntilReady(std::chrono::milliseconds(static_cast<int64_t>(seconds * 1000)));
    };
  });
}

void addStatus(CLI::App& app, tAction& action) {
  static bool asJson = false;
  CLI::App* const verb = app.add_subcommand("status", "Show the present devices");
  verb->add_flag("--json", asJson, "Print one JSON document");
  verb->callback([&action] { action = [] { showStatus(asJson); }; });
}

void addReset(CLI::App& app, tAction& action) {
  app.add_subcommand("reset",
                     "Restore the default machine, without scripted answers and with an empty log")
      ->callback([&action] { action = reset; });
}

}  // namespace nSimulator
