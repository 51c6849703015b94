#include <fstream>
#include <iterator>
#include <optional>

#include "simulator/control/tsimulatedmachine.h"
#include "simulator/quenra-sim/verbs/verb.h"

namespace nSimulator {
namespace {

struct tScenario {
  std::optional<uint32_t> controllers;
  std::optional<uint32_t> martens;
  std::optional<uint32_t> devicePaths;
  std::optional<std::string> tableFile;
  std::optional<std::string> versionText;
};

std::vector<uint8_t> readFile(const std::string& name) {
  std::ifstream file(name, std::ios::binary);
  if (!file) {
    throw tUsageError("file '" + name + "' cannot be read");
  }
  std::vector<uint8_t> bytes{std::istreambuf_iterator<char>(file),
                             std::istreambuf_iterator<char>()};
  if (bytes.size() > SIMULATOR_TABLE_CAPACITY) {
    throw tUsageError("file '" + name + "' has more than " +
                      std::to_string(SIMULATOR_TABLE_CAPACITY) + " bytes");
  }
  return bytes;
}

void apply(const tScenario& scenario) {
  if (!scenario.controllers && !scenario.martens && !scenario.devicePaths && !scenario.tableFile &&
      !scenario.versionText) {
    throw tUsageError("scenario: say what is to change, or use 'quenra-sim reset'");
  }
  // Everything that can be wrong is found before anything is changed.
  const std::vector<uint8_t> table =
      scenario.tableFile ? readFile(*scenario.tableFile) : std::vector<uint8_t>();
  tSimulatedMachine machine;
  tSimulatorPresence presence = machine.presence();
  presence.controllers = scenario.controllers.value_or(presence.controllers);
  presence.martens = scenario.martens.value_or(presence.martens);
  presence.devicePaths = scenario.devicePaths.value_or(presence.devicePaths);
  if (scenario.tableFile) {
    machine.setTable(table);
  }
  if (scenario.versionText) {
    machine.setVersionText(*scenario.versionText + '\0');
  }
  machine.setPresence(presence);
}

}  // namespace

void addScenario(CLI::App& app, tAction& action) {
  static tScenario scenario;
  CLI::App* const verb = app.add_subcommand("scenario", "Change what the next program finds");
  verb->add_option("--controllers", scenario.controllers, "Controller interfaces present")
      ->check(CLI::Range(0, 2));
  verb->add_option("--martens", scenario.martens, "Marten interfaces present")
      ->check(CLI::Range(0, 2));
  verb->add_option("--device-paths", scenario.devicePaths, "Device path interfaces present")
      ->check(CLI::Range(0, 1));
  verb->add_option("--table", scenario.tableFile,
                   "SMBIOS structure table that the driver hands over, from a file as it is");
  verb->add_option("--version-text", scenario.versionText, "SMBIOS version text")
      ->check([](const std::string& text) {
        return text.size() < SIMULATOR_TEXT_CAPACITY ? std::string() : std::string("is too long");
      });
  verb->callback([&action] { action = [] { apply(scenario); }; });
}

}  // namespace nSimulator
