#include "tools/quenra/update/updateplan.h"

#include <algorithm>

#include "source/user/update/firmwareversion.h"
#include "tools/quenra/firmware/sectionoutput.h"

namespace nCommandLine {
namespace {

using nQUENRA1400::packedVersion;

constexpr std::string_view kBios = "BIOS";
constexpr std::string_view kMarten = "MARTEN";
constexpr std::string_view kDriverPackage = ".inf";

constexpr std::string_view kActionNames[] = {
    "send-to-controller", "send-to-marten", "install-package", "write-file", "nothing",
    "leave-out",          "refuse",         "keep-back"};

bool isFor(const tImageSection& section, std::string_view device) {
  return section.header.targetDevice == device;
}

// The installed version to compare a section with; empty if it cannot be read.
std::optional<std::string> installedFor(const tImageSection& section,
                                        const tUpdateMachine* machine) {
  if (machine == nullptr) {
    return std::nullopt;
  }
  return isFor(section, kBios)     ? machine->biosVersion()
         : isFor(section, kMarten) ? machine->martenVersion()
                                   : std::nullopt;
}

// Text of another form and an unreadable BIOS version count as the oldest version. A missing Marten
// or an unreadable version of it is an obstacle that stops the update.
bool isAsNew(const tImageSection& section, const tUpdateMachine& machine) {
  const auto installed = installedFor(section, &machine);
  const bool counts = isFor(section, kBios) || (isFor(section, kMarten) && installed);
  return counts && packedVersion(installed.value_or("")) >= packedVersion(section.header.version);
}

// Chooses the action for a section without a fault.
class tPlanner {
 public:
  tPlanner(const tFirmwareImage& image, const tUpdateMachine* machine, bool onlyNewer)
      : machine_(machine) {
    for (const tImageSection& section : image.sections) {
      const bool asNew = onlyNewer && machine != nullptr && isAsNew(section, *machine);
      biosIsCurrent_ = biosIsCurrent_ || (asNew && isFor(section, kBios));
      martenIsCurrent_ = martenIsCurrent_ || (asNew && isFor(section, kMarten));
    }
  }

  [[nodiscard]] tSectionAction actionFor(const tImageSection& section) const {
    const std::string& file = section.header.targetFileName;
    if (isFor(section, kMarten) && machine_ != nullptr && !machine_->hasMarten) {
      return tSectionAction::refuse;
    }
    if (biosIsCurrent_ && martenIsCurrent_) {
      return tSectionAction::leaveOut;
    }
    if (isFor(section, kBios) && file.empty()) {
      return biosIsCurrent_ ? tSectionAction::leaveOut : tSectionAction::sendToController;
    }
    if (file.find(kDriverPackage) != std::string::npos) {
      return tSectionAction::installPackage;
    }
    if (isFor(section, kMarten)) {
      return martenIsCurrent_ ? tSectionAction::leaveOut : tSectionAction::sendToMarten;
    }
    return file.empty() ? tSectionAction::nothing : tSectionAction::writeFile;
  }

  [[nodiscard]] std::string reasonFor(const tImageSection& section, tSectionAction action) const {
    if (action == tSectionAction::refuse) {
      return "this machine has no Marten";
    }
    if (action == tSectionAction::nothing) {
      return "the library does nothing with sections for " +
             std::string(section.header.targetDevice);
    }
    const auto installed = installedFor(section, machine_);
    if (installed && isAsNew(section, *machine_)) {
      const std::string_view version = section.header.version;
      return packedVersion(version) == 0 ? notAVersion(version) + " and counts as the oldest"
                                         : "it is not newer than the installed " + *installed;
    }
    if (action != tSectionAction::leaveOut) {
      return "";
    }
    return isFor(section, kBios) && !installed
               ? "its version cannot be compared"
               : "another section is not newer than what is installed, which counts for all";
  }

 private:
  const tUpdateMachine* machine_;
  bool biosIsCurrent_ = false;
  bool martenIsCurrent_ = false;
};

tPlannedSection planFor(const tImageSection& section, size_t number, const tPlanner& planner) {
  if (section.fault) {
    return {number, &section, tSectionAction::refuse, tSectionAction::refuse, faultText(section)};
  }
  const tSectionAction action = planner.actionFor(section);
  return {number, &section, action, action, planner.reasonFor(section, action)};
}

// The library applies no section if it refuses one.
void keepOthersBack(std::vector<tPlannedSection>& plan) {
  for (tPlannedSection& planned : plan) {
    if (planned.action != tSectionAction::refuse) {
      planned.action = tSectionAction::keepBack;
      planned.reason = "another section is refused";
    }
  }
}

}  // namespace

std::string_view actionName(tSectionAction action) noexcept {
  return kActionNames[static_cast<size_t>(action)];
}

bool changesAnything(const std::vector<tPlannedSection>& plan) noexcept {
  return std::ranges::any_of(plan, [](const tPlannedSection& planned) {
    return planned.action <= tSectionAction::writeFile;
  });
}

std::vector<tPlannedSection> planSections(const tFirmwareImage& image,
                                          const tUpdateMachine* machine, bool onlyNewer) {
  const tPlanner planner(image, machine, onlyNewer);
  std::vector<tPlannedSection> plan;
  for (size_t i = 0; i < image.sections.size(); ++i) {
    plan.push_back(planFor(image.sections[i], i + 1, planner));
  }
  std::ranges::stable_sort(plan, {},
                           [](const tPlannedSection& planned) { return planned.section->order; });
  if (std::ranges::count(plan, tSectionAction::refuse, &tPlannedSection::action) > 0) {
    keepOthersBack(plan);
  }
  return plan;
}

}  // namespace nCommandLine
