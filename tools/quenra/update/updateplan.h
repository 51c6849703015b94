// The effect of an update on each section of an image, by the rules of the library.
#ifndef TOOLS_QUENRA_UPDATE_UPDATEPLAN_H
#define TOOLS_QUENRA_UPDATE_UPDATEPLAN_H

#include <string>
#include <string_view>
#include <vector>

#include "source/user/update/updateplan.h"
#include "tools/quenra/firmware/firmwareimage.h"
#include "tools/quenra/update/updatemachine.h"

namespace nCommandLine {

using nQUENRA1400::tSectionAction;

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
  const nQUENRA1400::tFailureSite* refusal;  // if the machine lacks the device of the section

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
