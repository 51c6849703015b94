#ifndef TOOLS_QUENRA_UPDATE_IUPDATEFACTS_H
#define TOOLS_QUENRA_UPDATE_IUPDATEFACTS_H

#include <cstdint>

namespace nCommandLine {

// What the library finds out about the encryption of drive C: before an update.
struct tDriveProtection {
  bool isOn = false;
  int32_t code = 0;   // negative when it cannot be found out
  uint32_t line = 0;  // of the step that failed
};

// What decides about an update and no attribute tells.
class iUpdateFacts {
 public:
  iUpdateFacts() = default;
  iUpdateFacts(const iUpdateFacts&) = delete;
  iUpdateFacts& operator=(const iUpdateFacts&) = delete;
  virtual ~iUpdateFacts() = default;

  [[nodiscard]] virtual tDriveProtection driveProtection() noexcept = 0;
  // Whether the tool is there that installs driver packages.
  [[nodiscard]] virtual bool hasDriverStoreTool() noexcept = 0;
};

}  // namespace nCommandLine

#endif
