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

int32_t tController::write(const tAttributeAddress& address, const tAttributeValue& value) const {
  if (const auto* const text = std::get_if<std::string>(&value)) {
    return library_.setAttributeUTF8(handle_, address.id(), text->c_str());
  }
  return library_.setAttributeU32(handle_, address.id(), std::get<uint32_t>(value));
}

int32_t tController::selfTest() const noexcept {
  return library_.performSelfTest(handle_);
}

uint32_t tController::presentInterfaces(tInterface which) const noexcept {
  return library_.presentInterfaces(which);
}

int32_t tController::update(std::string_view image, bool onlyNewer) const noexcept {
  constexpr uint32_t kOnlyNewer = 0;
  constexpr uint32_t kEverything = 1;
  return library_.updateFirmware2(handle_, image.data(), image.size(),
                                  onlyNewer ? kOnlyNewer : kEverything);
}

}  // namespace nCommandLine
