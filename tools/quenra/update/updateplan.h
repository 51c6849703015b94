// The effect of an update on each section of an image, by the rules of the library, which exports no
// function for it.
#ifndef TOOLS_QUENRA_UPDATE_UPDATEPLAN_H
#define TOOLS_QUENRA_UPDATE_UPDATEPLAN_H

#include <string>
#include <string_view>
#include <vector>

#include "tools/quenra/firmware/firmwareimage.h"
#include "tools/quenra/update/updatemachine.h"

namespace nCommandLine {

enum class tSectionAction : uint8_t {
  sendToController,
  sendToMarten,
  installPackage,
  writeFile,  // the last action that changes something
  nothing,    // the library does nothing with such a section
  leaveOut,   // what is installed is as new
  refuse,     // it keeps the whole image from being applied
  keepBack,   // another section does
};

struct tUpdateOptions {
  bool onlyNewer = false;
  bool force = false;         // compares although an update awaits a restart
  bool allowAnyPath = false;  // applies file names that are not plain
};

// "send-to-marten"
[[nodiscard]] std::string_view actionName(tSectionAction action) noexcept;

struct tPlannedSection {
  size_t number;  // its place in the image, from 1
  const tImageSection* section;
  tSectionAction intended;  // the action if no other section is refused
  tSectionAction action;
  std::string reason;  // why it is not applied, or is although it is not newer; often empty

  // How to have it applied all the same; empty where the option is not what keeps it from being.
  [[nodiscard]] std::string_view remedy() const noexcept {
    return action == tSectionAction::leaveOut ? "without --only-newer it is applied" : "";
  }
};

// In the order of application; in the order of the image where one is refused. `machine` is null where
// no controller is open. The sections are those of `image`.
[[nodiscard]] std::vector<tPlannedSection> planSections(const tFirmwareImage& image,
                                                        const tUpdateMachine* machine,
                                                        bool onlyNewer);

// True if the library would send, install or write anything.
[[nodiscard]] bool changesAnything(const std::vector<tPlannedSection>& plan) noexcept;

}  // namespace nCommandLine

#endif
