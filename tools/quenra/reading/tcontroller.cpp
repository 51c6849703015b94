#include "tools/quenra/reading/tcontroller.h"

#include "tools/quenra/reading/readattribute.h"

namespace nCommandLine {

tController::tController(iQuenra& library) noexcept
    : library_(library), code_(library.openController(&handle_)) {}

tController::~tController() {
  if (code_ >= 0) {
    library_.closeController(handle_);
  }
}

tReading tController::read(const tAttributeAddress& address) const {
  return readAttribute(library_, handle_, address);
}

}  // namespace nCommandLine
