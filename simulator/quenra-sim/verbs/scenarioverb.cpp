// scenario: the machine that later programs find.
#include <algorithm>
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
  std::optional<uint64_t> controllers;
  std::optional<uint64_t> martens;
  std::optional<uint64_t> devicePaths;
  std::optional<std::string> tableFile;
  std::optional<std::string> versionText;
  std::vector<std::string> structureBytes;  // as "0x9D/4=1"
  std::vector<std::string> structureTexts;  // as "1/7=VQ0300017"
  std::vector<uint8_t> removedStructures;   // types
  std::optional<uint64_t> pathLength;
  std::optional<std::string> topographyName;

  [[nodiscard]] bool changesTable() const {
    return tableFile || !structureBytes.empty() || !structureTexts.empty() ||
           !removedStructures.empty();
  }
};

// The value of `--structure-byte` or `--structure-text`.
struct tStructureChange {
  uint8_t type;
  uint8_t offset;
  std::string value;
};

uint8_t byteOf(const std::string& text, std::string_view option, const std::string& argument) {
  try {
    size_t used = 0;
    const unsigned long number = std::stoul(text, &used, 0);
    if (used == text.size() && number <= UINT8_MAX && text.front() != '-') {
      return static_cast<uint8_t>(number);
    }
  } catch (const std::exception&) {
    // Reported below.
  }
  const bool isText = option == nWords::kStructureText;
  throw tUsageError("'" + argument + "' does not have the form TYPE/OFFSET=" +
                        (isText ? "TEXT" : "VALUE") + " with numbers up to 255",
                    "Give " + std::string(option) + " such a value, for example " +
                        (isText ? "1/7=VQ0300017." : "0x9D/4=1."));
}

tStructureChange parseStructureChange(std::string_view option, const std::string& text) {
  const size_t slash = text.find('/');
  const size_t equals = text.find('=', slash == std::string::npos ? 0 : slash);
  if (slash == std::string::npos || equals == std::string::npos) {
    return {byteOf("", option, text), 0, ""};
  }
  return {byteOf(text.substr(0, slash), option, text),
          byteOf(text.substr(slash + 1, equals - slash - 1), option, text),
          text.substr(equals + 1)};
}

std::vector<uint8_t> readFile(const std::string& name) {
  std::ifstream file(name, std::ios::binary);
  if (!file) {
    const std::error_code reason(errno, std::generic_category());
    throw tUsageError(
        "cannot read '" + name + "': " + reason.message(),
        "Give --table a file of this system, such as 'Z:\\\\home\\\\me\\\\dump.bin'.");
  }
  std::vector<uint8_t> bytes{std::istreambuf_iterator<char>(file),
                             std::istreambuf_iterator<char>()};
  if (bytes.size() > SIMULATOR_TABLE_CAPACITY) {
    throw tUsageError(
        "'" + name + "' has more than " + std::to_string(SIMULATOR_TABLE_CAPACITY) + " bytes",
        "Give --table the structures only, without the eight bytes before them.");
  }
  return bytes;
}

constexpr const char* kTableAdvice =
    "The table is that of the machine, or of --table; 'quenra-sim reset' restores the default one.";

void editTable(std::vector<uint8_t>& table, const tScenario& scenario) {
  for (const uint8_t type : scenario.removedStructures) {
    if (!removeStructures(table, type)) {
      throw tUsageError("the table has no structure of type " + std::to_string(type), kTableAdvice);
    }
  }
  for (const std::string& text : scenario.structureBytes) {
    const tStructureChange change = parseStructureChange(nWords::kStructureByte, text);
    const uint8_t value = byteOf(change.value, nWords::kStructureByte, text);
    if (!changeStructureByte(table, change.type, change.offset, value)) {
      throw tUsageError("the table has no structure with the byte '" + text + "'", kTableAdvice);
    }
  }
  for (const std::string& text : scenario.structureTexts) {
    const tStructureChange change = parseStructureChange(nWords::kStructureText, text);
    if (change.value.empty()) {
      throw tUsageError("'" + text + "' has no text", "Give at least one character.");
    }
    if (!changeStructureText(table, change.type, change.offset, change.value)) {
      throw tUsageError("the table has no structure with the text '" + text + "'", kTableAdvice);
    }
  }
}

// The value of an option, which must be shorter than the capacity.
std::optional<std::string> textShorterThan(size_t capacity, const tArguments& arguments,
                                           std::string_view name) {
  auto text = arguments.optional(name);
  if (text && text->size() >= capacity) {
    throw tUsageError(
        "the text of " + std::string(name) + " has " + std::to_string(text->size()) + " bytes",
        "Give at most " + std::to_string(capacity - 1) + " bytes.");
  }
  return text;
}

tScenario scenarioOf(const tArguments& arguments) {
  if (std::ranges::none_of(arguments.verb().options, [&](const nCommandLine::tOptionRow& row) {
        return arguments.has(row.name);
      })) {
    throw tUsageError("the change is missing",
                      "Run 'quenra-sim scenario --help' to list the options.");
  }
  tScenario scenario;
  scenario.controllers = optionalNumber(arguments, nWords::kControllers, 0, 2);
  scenario.martens = optionalNumber(arguments, nWords::kMartens, 0, 2);
  scenario.devicePaths = optionalNumber(arguments, nWords::kDevicePaths, 0, 1);
  scenario.tableFile = arguments.optional(nWords::kTable);
  scenario.versionText = textShorterThan(SIMULATOR_TEXT_CAPACITY, arguments, nWords::kVersionText);
  scenario.structureBytes = arguments.all(nWords::kStructureByte);
  scenario.structureTexts = arguments.all(nWords::kStructureText);
  for (const std::string& type : arguments.all(nWords::kWithoutStructure)) {
    scenario.removedStructures.push_back(
        static_cast<uint8_t>(numberOf(arguments, nWords::kWithoutStructure, type, 0, UINT8_MAX)));
  }
  scenario.pathLength = optionalNumber(arguments, nWords::kPathLength);
  scenario.topographyName =
      textShorterThan(SIMULATOR_TOPOGRAPHY_NAME_CAPACITY, arguments, nWords::kTopography);
  return scenario;
}

}  // namespace

void runScenario(const tArguments& arguments) {
  const tScenario scenario = scenarioOf(arguments);
  // All errors are found before the first change.
  tSimulatedMachine machine;
  std::vector<uint8_t> table = scenario.tableFile ? readFile(*scenario.tableFile) : machine.table();
  editTable(table, scenario);
  tSimulatorPresence presence = machine.presence();
  presence.controllers = static_cast<uint32_t>(scenario.controllers.value_or(presence.controllers));
  presence.martens = static_cast<uint32_t>(scenario.martens.value_or(presence.martens));
  presence.devicePaths = static_cast<uint32_t>(scenario.devicePaths.value_or(presence.devicePaths));
  if (scenario.changesTable()) {
    machine.setTable(table);
  }
  if (scenario.versionText) {
    machine.setVersionText(*scenario.versionText + '\0');
  }
  if (scenario.pathLength) {
    machine.setPathLength(static_cast<uint32_t>(*scenario.pathLength));
  }
  if (scenario.topographyName) {
    machine.setTopographyName(*scenario.topographyName + '\0');
  }
  machine.setPresence(presence);
}

}  // namespace nSimulator
