// The controller: opening it, and reading one attribute or all of them.
#ifndef TOOLS_QUENRA_READING_TCONTROLLER_H
#define TOOLS_QUENRA_READING_TCONTROLLER_H

#include <cstdint>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "tools/quenra/output/diagnostics.h"
#include "tools/quenra/reading/iquenra.h"
#include "tools/quenra/reading/reading.h"
#include "tools/quenra/tables/attributetable.h"

namespace nCommandLine {

// Reads a text of any length, or an unsigned value. The device path ignores the handle.
[[nodiscard]] tReading readAttribute(iQuenra& library, uint64_t handle,
                                     const tAttributeAddress& address);

// Opens the controller and closes it in the destructor. A negative `code()` means that opening
// failed.
class tController {
 public:
  explicit tController(iQuenra& library) noexcept;
  tController(const tController&) = delete;
  tController& operator=(const tController&) = delete;
  ~tController();

  // The status of opening; positive for a warning.
  [[nodiscard]] int32_t code() const noexcept { return code_; }
  [[nodiscard]] tReading read(const tAttributeAddress& address) const;
  // The value must have the type of the attribute.
  [[nodiscard]] int32_t write(const tAttributeAddress& address, const tAttributeValue& value) const;
  [[nodiscard]] int32_t selfTest() const noexcept;
  // Available even if the controller could not be opened.
  [[nodiscard]] uint32_t presentInterfaces(tInterface which) const noexcept;
  // Applies a firmware image; with `onlyNewer`, only sections newer than the installed firmware.
  [[nodiscard]] int32_t update(std::string_view image, bool onlyNewer) const noexcept;

 private:
  iQuenra& library_;
  uint64_t handle_ = 0;
  int32_t code_;
};

// ---- Opening ----

// The exit code of a program that cannot open the controller.
[[nodiscard]] tExitCode exitCodeOfOpening(int32_t code) noexcept;

enum class tOpeningCause : uint8_t {
  unknown,
  interfaces,  // their number is not supported
  table,       // the driver replied; its SMBIOS table is unusable or that of an unsupported machine
};

// A failure to open the controller, with its cause as far as the present device interfaces show it.
struct tOpeningFailure {
  std::string fact;              // "cannot open the controller: ..."
  tSiteExplanation explanation;  // of the code
  tOpeningCause cause = tOpeningCause::unknown;
};

// Precondition: the controller's code is negative.
[[nodiscard]] tOpeningFailure explainOpeningFailure(const tController& controller);

// Throws tCommandError if opening the controller failed; adds its warning.
void checkOpening(int32_t code, std::vector<tWarning>& warnings);
// As above, with the cause as far as the present device interfaces show it.
void checkOpening(const tController& controller, std::vector<tWarning>& warnings);

// ---- The complete machine ----

// The readings of an attribute: of all its instances, in order, or of each interface. If the machine
// has no instance or does not report their number, the reading of instance 0, which holds the reason.
struct tAttributeReadings {
  const tAttributeRow* row;
  std::vector<tReading> readings;
};

// The number of instances on this machine, limited to those that the library serves.
[[nodiscard]] uint32_t countInstances(const tController& controller, const tInstanceRow& instances);

// Reads every attribute of these subjects, in the order of the table.
[[nodiscard]] std::vector<tAttributeReadings> readMachine(
    const tController& controller, std::span<const tSubjectRow* const> subjects = kSubjects);

}  // namespace nCommandLine

#endif
