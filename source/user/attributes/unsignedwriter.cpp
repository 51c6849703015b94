#include "source/user/attributes/unsignedwriter.h"

#include "source/user/attributes/attributeid.h"
#include "source/user/attributes/drivercalls.h"
#include "source/user/location.h"
#include "source/user/statuscodes.h"

namespace nQUENRA1400 {
namespace {

constexpr auto kMartenNotOpen = sessionLocation(1718);
constexpr auto kControllerNotOpen = sessionLocation(1736);

template <class Interface>
void writeToOpen(Interface& device, bool isOpen, const nZOAPALS100::tSourceLocation& notOpen,
                 tAttributeId attribute, uint32_t value, zoerr::Status& status) noexcept {
  if (isOpen) {
    writeToDriver(device, attribute, &value, sizeof value, status);
  } else {
    status.set(kNoController, notOpen);
  }
}

}  // namespace

void writeUnsignedAttribute(const tAttributeAccess& access, uint32_t attribute, uint32_t value,
                            zoerr::Status& status) noexcept {
  if (status.isError()) {
    return;
  }
  const tAttributeId id(attribute);
  if (id.selectsMarten()) {
    writeToOpen(access.marten, access.martenIsOpen, kMartenNotOpen, id, value, status);
  } else {
    writeToOpen(access.controller, access.controllerIsOpen, kControllerNotOpen, id, value, status);
  }
}

}  // namespace nQUENRA1400
