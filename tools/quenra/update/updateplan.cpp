#include "tools/quenra/update/updateplan.h"

#include <algorithm>

#include "quenra_attributes.h"
#include "source/user/firmware/imageformat.h"
#include "tools/quenra/firmware/firmwareimage.h"

namespace nCommandLine {
namespace {

using nQUENRA1400::packedVersion;
using nQUENRA1400::tSectionFacts;
namespace nImageFormat = nQUENRA1400::nImageFormat;

constexpr std::string_view kActionNames[] = {
    "send-to-controller", "send-to-marten", "install-package", "write-file", "nothing",
    "leave-out",          "refuse",         "keep-back"};

bool isForBios(const tImageSection& section) {
  return section.header.targetDevice == nImageFormat::kBios;
}

// The installed version to compare a section with; empty if it cannot be read.
std::optional<std::string> installedFor(const tImageSection& section,
                                        const tUpdateMachine& machine) {
  return isForBios(section)                                     ? machine.biosVersion()
         : section.header.targetDevice == nImageFormat::kMarten ? machine.martenVersion()
                                                                : std::nullopt;
}

// Text of another form and an unreadable BIOS version count as the oldest version. A missing Marten
// or an unreadable version of it is an obstacle that stops the update.
tSectionFacts factsOf(const tImageSection& section, const tUpdateMachine* comparedWith) {
  tSectionFacts facts{section.header.targetDevice, section.header.targetFileName,
                      packedVersion(section.header.version)};
  facts.isFaulty = section.fault.has_value();
  if (comparedWith != nullptr) {
    const auto installed = installedFor(section, *comparedWith);
    if (installed || isForBios(section)) {
      facts.installedVersion = packedVersion(installed.value_or(""));
    }
  }
  return facts;
}

// Why a section is left out, or is applied although it is not newer.
std::string comparisonOf(const tImageSection& section, tSectionAction action,
                         const tUpdateMachine* machine) {
  const auto installed = machine == nullptr ? std::nullopt : installedFor(section, *machine);
  if (installed && factsOf(section, machine).isCurrent()) {
    const std::string_view version = section.header.version;
    return packedVersion(version) == 0 ? notAVersion(version) + " and counts as the oldest"
                                       : "it is not newer than the installed " + *installed;
  }
  if (action != tSectionAction::leaveOut) {
    return "";
  }
  return isForBios(section) && !installed ? "its version cannot be compared"
                                          : "another section of the device is not newer, and the "
                                            "comparison applies to all of them";
}

std::string reasonFor(const tImageSection& section, tSectionAction action,
                      const tUpdateMachine* machine) {
  switch (action) {
    case tSectionAction::refuse:
      return section.fault ? faultText(section) : "this machine has no Marten";
    case tSectionAction::keepBack:
      return "another section is refused";
    case tSectionAction::nothing:
      return "the library ignores sections for " + std::string(section.header.targetDevice);
    case tSectionAction::sendToController:
    case tSectionAction::sendToMarten:
    case tSectionAction::installPackage:
    case tSectionAction::writeFile:
    case tSectionAction::leaveOut:
      break;
  }
  return comparisonOf(section, action, machine);
}

std::optional<std::string> textOf(const tReading& reading) {
  const auto* const text = std::get_if<std::string>(&reading.value);
  const bool isPresent = reading.state() == tReadingState::value && text != nullptr;
  return isPresent ? std::optional(*text) : std::nullopt;
}

bool hasMarten(const tReading& interfaces) {
  return interfaces.state() == tReadingState::value &&
         (std::get<uint32_t>(interfaces.value) & QUENRA_SELECTOR_MARTEN) != 0;
}

}  // namespace

std::optional<std::string> tUpdateMachine::biosVersion() const {
  return textOf(bios);
}
std::optional<std::string> tUpdateMachine::martenVersion() const {
  return hasMarten ? textOf(marten) : std::nullopt;
}

bool tUpdateMachine::awaitsRestart() const {
  return martenVersion() == nQUENRA1400::kIncompleteVersion;
}

std::string pendingRestartText() {
  return "an update awaits a restart: until then the Marten reports version " +
         std::string(nQUENRA1400::kIncompleteVersion);
}

tUpdateMachine readUpdateMachine(const tController& controller) {
  return {controller.read({QUENRA_ATTRIBUTE_FIRMWARE_UPDATE_SUPPORT}),
          hasMarten(controller.read({QUENRA_ATTRIBUTE_INTERFACES_PRESENT})),
          controller.read({QUENRA_ATTRIBUTE_FIRMWARE_VERSION, 0, tInterface::controller}),
          controller.read({QUENRA_ATTRIBUTE_FIRMWARE_VERSION, 0, tInterface::marten})};
}

std::string_view actionName(tSectionAction action) noexcept {
  return kActionNames[static_cast<size_t>(action)];
}

bool changesAnything(const std::vector<tPlannedSection>& plan) noexcept {
  return std::ranges::any_of(plan, nQUENRA1400::changesMachine, &tPlannedSection::action);
}

std::vector<tPlannedSection> planSections(const tFirmwareImage& image,
                                          const tUpdateMachine* machine, bool onlyNewer) {
  std::vector<tSectionFacts> facts;
  for (const tImageSection& section : image.sections) {
    facts.push_back(factsOf(section, onlyNewer ? machine : nullptr));
  }
  const auto decisions =
      nQUENRA1400::planUpdate(facts, machine == nullptr || machine->hasMarten).sections;
  std::vector<tPlannedSection> plan;
  for (size_t i = 0; i < decisions.size(); ++i) {
    const tImageSection& section = image.sections[i];
    const tSectionAction action = decisions[i].action;
    plan.push_back({i + 1, &section, decisions[i].intended, action,
                    reasonFor(section, action, machine), decisions[i].refusal});
  }
  std::ranges::stable_sort(plan, {},
                           [](const tPlannedSection& planned) { return planned.section->order; });
  return plan;
}

}  // namespace nCommandLine
