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
  writeFile,  // the last action that changes the machine; changesAnything relies on the order
  nothing,    // the library ignores such a section
  leaveOut,   // the installed version is not older
  refuse,     // prevents the complete image from being applied
  keepBack,   // not applied because another section is refused
};

struct tUpdateOptions {
  bool onlyNewer = false;
  bool force = false;         // compare versions even if an update awaits a restart
  bool allowAnyPath = false;  // apply file names that are not one plain component
};

// "send-to-marten"
[[nodiscard]] std::string_view actionName(tSectionAction action) noexcept;

struct tPlannedSection {
  size_t number;  // its position in the image, from 1
  const tImageSection* section;
  tSectionAction intended;  // the action if no other section is refused
  tSectionAction action;
  std::string reason;  // why it is not applied, or is applied although not newer; often empty

  // The remedy for a section that an option leaves out; empty for any other section.
  [[nodiscard]] std::string_view remedy() const noexcept {
    return action == tSectionAction::leaveOut ? "without --only-newer it is applied" : "";
  }
};

// Returns the sections in the order of application, or of the image if one is refused. `machine` is
// null if no controller is open. The result points into `image`.
[[nodiscard]] std::vector<tPlannedSection> planSections(const tFirmwareImage& image,
                                                        const tUpdateMachine* machine,
                                                        bool onlyNewer);

// True if the library would send, install or write anything.
[[nodiscard]] bool changesAnything(const std::vector<tPlannedSection>& plan) noexcept;

}  // namespace nCommandLine

#endif
