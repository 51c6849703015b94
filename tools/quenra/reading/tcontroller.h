#ifndef TOOLS_QUENRA_READING_TCONTROLLER_H
#define TOOLS_QUENRA_READING_TCONTROLLER_H

#include <cstdint>
#include <string_view>

#include "tools/quenra/reading/iquenra.h"
#include "tools/quenra/reading/reading.h"

namespace nCommandLine {

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

}  // namespace nCommandLine

#endif
