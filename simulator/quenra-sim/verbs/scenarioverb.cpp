// scenario: the machine that later programs find.
#include <cerrno>
#include <fstream>
#include <iterator>
#include <optional>
#include <system_error>

#include "simulator/control/tsimulatedmachine.h"
#include "simulator/quenra-sim/verbs/verbs.h"

namespace nSimulator {
namespace {

struct tScenario {
  std::optional<uint32_t> controllers;
  std::optional<uint32_t> martens;
  std::optional<uint32_t> devicePaths;
  std::optional<std::string> tableFile;
  std::optional<std::string> versionText;
  std::vector<std::string> structureBytes;  // as "0x9D/4=1"
  std::vector<uint16_t> removedStructures;  // types
  std::optional<uint32_t> pathLength;
  std::optional<std::string> topographyName;

  [[nodiscard]] bool changesTable() const {
    return tableFile || !structureBytes.empty() || !removedStructures.empty();
  }
};

// The value of `--structure-byte`.
struct tStructureByte {
  uint8_t type;
  uint8_t offset;
  uint8_t value;
};

uint8_t byteOf(const std::string& text, const std::string& argument) {
  try {
    size_t used = 0;
    const unsigned long number = std::stoul(text, &used, 0);
    if (used == text.size() && number <= UINT8_MAX && text.front() != '-') {
      return static_cast<uint8_t>(number);
    }
  } catch (const std::exception&) {
    // Reported below.
  }
  throw tUsageError("'" + argument +
                    "' does not have the form TYPE/OFFSET=VALUE, such as 0x9D/4=1");
}

tStructureByte parseStructureByte(const std::string& text) {
  const size_t slash = text.find('/');
  const size_t equals = text.find('=', slash == std::string::npos ? 0 : slash);
  if (slash == std::string::npos || equals == std::string::npos) {
    return {byteOf("", text), 0, 0};
  }
  return {byteOf(text.substr(0, slash), text),
          byteOf(text.substr(slash + 1, equals - slash - 1), text),
          byteOf(text.substr(equals + 1), text)};
}

std::vector<uint8_t> readFile(const std::string& name) {
  std::ifstream file(name, std::ios::binary);
  if (!file) {
    const std::error_code reason(errno, std::generic_category());
    throw tUsageError("cannot read '" + name + "': " + reason.message());
  }
  std::vector<uint8_t> bytes{std::istreambuf_iterator<char>(file),
                             std::istreambuf_iterator<char>()};
  if (bytes.size() > SIMULATOR_TABLE_CAPACITY) {
    throw tUsageError("'" + name + "' has more than " + std::to_string(SIMULATOR_TABLE_CAPACITY) +
                      " bytes");
  }
  return bytes;
}

void editTable(std::vector<uint8_t>& table, const tScenario& scenario) {
  for (const uint16_t type : scenario.removedStructures) {
    if (!removeStructures(table, static_cast<uint8_t>(type))) {
      throw tUsageError("the table has no structure of type " + std::to_string(type));
    }
  }
  for (const std::string& text : scenario.structureBytes) {
    const tStructureByte byte = parseStructureByte(text);
    if (!changeStructureByte(table, byte.type, byte.offset, byte.value)) {
      throw tUsageError("the table has no structure with the byte '" + text + "'");
    }
  }
}

void apply(const tScenario& scenario) {
  if (!scenario.controllers && !scenario.martens && !scenario.devicePaths &&
      !scenario.changesTable() && !scenario.versionText && !scenario.pathLength &&
      !scenario.topographyName) {
    throw tUsageError(
        "the change is missing; run 'quenra-sim scenario --help' to list the options");
  }
  // All errors are found before the first change.
  tSimulatedMachine machine;
  std::vector<uint8_t> table = scenario.tableFile ? readFile(*scenario.tableFile) : machine.table();
  editTable(table, scenario);
  tSimulatorPresence presence = machine.presence();
  presence.controllers = scenario.controllers.value_or(presence.controllers);
  presence.martens = scenario.martens.value_or(presence.martens);
  presence.devicePaths = scenario.devicePaths.value_or(presence.devicePaths);
  if (scenario.changesTable()) {
    machine.setTable(table);
  }
  if (scenario.versionText) {
    machine.setVersionText(*scenario.versionText + '\0');
  }
  if (scenario.pathLength) {
    machine.setPathLength(*scenario.pathLength);
  }
  if (scenario.topographyName) {
    machine.setTopographyName(*scenario.topographyName + '\0');
  }
  machine.setPresence(presence);
}

}  // namespace

void addScenario(CLI::App& app, tAction& action) {
  static tScenario scenario;
  CLI::App* const verb =
      app.add_subcommand("scenario", "Change the machine that later programs find");
  verb->add_option("--controllers", scenario.controllers, "Controller interfaces present")
      ->check(between(0, 2));
  verb->add_option("--martens", scenario.martens, "Marten interfaces present")
      ->check(between(0, 2));
  verb->add_option("--device-paths", scenario.devicePaths, "Device path interfaces present")
      ->check(between(0, 1));
  verb->add_option("--table", scenario.tableFile,
                   "File with the SMBIOS structure table that the driver returns");
  verb->add_option("--structure-byte", scenario.structureBytes,
                   "Change a byte of the first structure of a type in that table, such as 0x9D/4=1")
      ->type_name("TYPE/OFFSET=VALUE");
  verb->add_option("--without-structure", scenario.removedStructures,
                   "Remove the structures of a type from that table")
      ->check(between(0, 255))
      ->type_name("TYPE");
  verb->add_option("--version-text", scenario.versionText, "SMBIOS version text")
      ->check(shorterThan(SIMULATOR_TEXT_CAPACITY));
  verb->add_option("--path-length", scenario.pathLength,
                   "Terminals in the path of every trigger route, at least 2; 0: the real number");
  verb->add_option("--topography", scenario.topographyName,
                   "Name of the topography of the trigger router")
      ->check(shorterThan(SIMULATOR_TOPOGRAPHY_NAME_CAPACITY));
  verb->callback([&action] { action = [] { apply(scenario); }; });
}

}  // namespace nSimulator
