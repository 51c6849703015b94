// The decision of a firmware update: the action for each section of an image. The library applies the
// plan; the command line prints it.
#ifndef SOURCE_USER_UPDATE_UPDATEPLAN_H
#define SOURCE_USER_UPDATE_UPDATEPLAN_H

#include <cstdint>
#include <optional>
#include <span>
#include <string_view>
#include <vector>

#include "source/user/failuresites.h"

namespace nQUENRA1400 {

// The version of a Marten whose firmware is incomplete, until a restart completes it. An update writes it
// before it sends anything.
inline constexpr std::string_view kIncompleteVersion = "0.0.0f0";

// Packs a version such as "1.4.0f7" into a number that is larger for a later version: major 0 to 255,
// minor and update 0 to 15, phase d, a, b or f, and build 0 to 16383. Characters after the build are
// ignored. Returns 0 for a text of any other form.
[[nodiscard]] uint32_t packedVersion(std::string_view text) noexcept;

// The facts about a section that decide its action.
struct tSectionFacts {
  std::string_view targetDevice;
  std::string_view targetFileName;
  uint32_t version = 0;  // packed
  // The packed version of its device's firmware; none if the update does not compare, or if the device
  // has no version to compare.
  std::optional<uint32_t> installedVersion = std::nullopt;
  bool isFaulty = false;  // the parser refuses the section

  // True if the installed firmware is not older.
  [[nodiscard]] bool isCurrent() const noexcept {
    return installedVersion && *installedVersion >= version;
  }
};

enum class tSectionAction : uint8_t {
  sendToController,
  sendToMarten,
  installPackage,  // after its file is written
  writeFile,       // the last action that changes the machine; changesMachine relies on the order
  nothing,         // the library ignores such a section
  leaveOut,        // the installed version is not older
  refuse,          // prevents the complete image from being applied
  keepBack,        // not applied because another section is refused
};

// True if the action sends, installs or writes anything.
[[nodiscard]] constexpr bool changesMachine(tSectionAction action) noexcept {
  return action <= tSectionAction::writeFile;
}

struct tSectionDecision {
  tSectionAction intended;  // the action if no other section is refused
  tSectionAction action;
  const tFailureSite* refusal = nullptr;  // of a section that the machine lacks the device for
};

struct tUpdatePlan {
  std::vector<tSectionDecision> sections;  // parallel to the facts
  // Both devices are current, which counts for all sections: the update changes nothing, not even the
  // version marker.
  bool isEverythingCurrent = false;

  // The site of the first section that the machine lacks the device for; null if there is none.
  [[nodiscard]] const tFailureSite* refusal() const noexcept;
};

// One section that is current marks its device as current for the complete image. Throws
// std::bad_alloc.
[[nodiscard]] tUpdatePlan planUpdate(std::span<const tSectionFacts> sections, bool hasMarten);

}  // namespace nQUENRA1400

#endif
