#include <chrono>
#include <iostream>

#include "simulator/quenra-sim/installation/driverservice.h"
#include "simulator/quenra-sim/installation/driverstoretool.h"
#include "simulator/quenra-sim/installation/managementservice.h"
#include "simulator/quenra-sim/installation/readiness.h"
#include "simulator/quenra-sim/installation/rootdevices.h"
#include "simulator/quenra-sim/installation/steps.h"
#include "simulator/quenra-sim/verbs/verb.h"

namespace nSimulator {
namespace {

// Restores the system's locator first: other programs depend on it.
void uninstall() {
  runEveryStep({removeManagementService, [] { putDriverStoreTool(tDriverStoreTool::missing); },
                removeRootDevices, removeDriverService});
}

void install() {
  // Another version may be installed.
  uninstall();
  createRootDevices();
  installDriver();
  installManagementService();
  putDriverStoreTool(tDriverStoreTool::working);
  waitUntilReady(std::chrono::seconds(15));
  std::cout << "the simulated controller is installed\n";
}

}  // namespace

void addInstall(CLI::App& app, tAction& action) {
  app.add_subcommand(
         "install",
         "Install the driver from the files beside this program and create the devices; "
         "replaces what is installed; with the stand-ins for what surrounds the controller")
      ->callback([&action] { action = install; });
}

void addUninstall(CLI::App& app, tAction& action) {
  app.add_subcommand("uninstall", "Remove the devices and the driver")->callback([&action] {
    action = [] {
      uninstall();
      std::cout << "the simulated controller is removed\n";
    };
  });
}

void addWait(CLI::App& app, tAction& action) {
  static double seconds = 15;
  CLI::App* const verb = app.add_subcommand("wait", "Wait until the simulated machine is ready");
  verb->add_option("--timeout", seconds, "Give up after this many seconds")
      ->check(CLI::Range(0.0, 600.0))
      ->capture_default_str();
  verb->callback([&action] {
    action = [] {
      waitUntilReady(std::chrono::milliseconds(static_cast<int64_t>(seconds * 1000)));
    };
  });
}

}  // namespace nSimulator
