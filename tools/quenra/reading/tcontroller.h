#ifndef TOOLS_QUENRA_READING_TCONTROLLER_H
#define TOOLS_QUENRA_READING_TCONTROLLER_H

#include <cstdint>
#include <string_view>

#include "tools/quenra/reading/iquenra.h"
#include "tools/quenra/reading/reading.h"

namespace nCommandLine {

// The controller, open for as long as the object lives, unless `code()` is negative: then it could
// not be opened.
class tController {
 public:
  explicit tController(iQuenra& library) noexcept;
  tController(const tController&) = delete;
  tController& operator=(const tController&) = delete;
  ~tController();

  // The result of opening; positive is a warning.
  [[nodiscard]] int32_t code() const noexcept { return code_; }
  [[nodiscard]] tReading read(const tAttributeAddress& address) const;
  // The value is of the attribute's type.
  [[nodiscard]] int32_t write(const tAttributeAddress& address, const tAttributeValue& value) const;
  [[nodiscard]] int32_t selfTest() const noexcept;
  // Also known where the controller could not be opened.
  [[nodiscard]] uint32_t presentInterfaces(tInterface which) const noexcept;
  // Applies a firmware image, or with `onlyNewer` what of it is newer than what is installed.
  [[nodiscard]] int32_t update(std::string_view image, bool onlyNewer) const noexcept;

 private:
  iQuenra& library_;
  uint64_t handle_ = 0;
  int32_t code_;
};

}  // namespace nCommandLine

#endif
