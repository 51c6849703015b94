#include "source/user/session/tcontrollerusersession.h"

#include "source/user/session/machineidentification.h"
#include "source/user/update/firmwareupdate.h"
#include "zoapal/protons/enumeration/windows/tdeviceinterfaceiterator.h"

namespace nQUENRA1400 {
namespace {

using nZOAPAL000::tDeviceInterfaceIterator;
using nZOAPAL000::tDeviceInterfaceProxy;
using nZOAPALS100::tSourceLocation;
using nZOAPALS100::tStatus;

constexpr auto kNoControllerInterface = sessionLocation(222);
constexpr auto kSecondControllerInterface = sessionLocation(242);
constexpr auto kSecondMartenInterface = sessionLocation(273);

// Opens the device on the iterator's interface. A second interface of the class is an error.
void openOnly(tDeviceInterfaceIterator& interfaces, tDeviceInterfaceProxy& device,
              const tSourceLocation& second, zoerr::Status& status) noexcept {
  tStatus opening;
  interfaces.openCurrent(device, opening);
  status.mergeFrom(opening);
  if (status.isError()) {
    return;
  }
  interfaces.next();
  if (!interfaces.isEnd()) {
    status.set(nZOAPALS100::kGenericFailure, second);
  }
}

}  // namespace

tControllerUserSession::tControllerUserSession(nZOSMBIOS_1_1::cZoSmBiosProvider& provider,
                                               zoerr::Status& status) noexcept
    : provider_(provider) {
  openControllerInterface(status);
  openMartenInterface(status);
  identifyMachine(controller_, provider_, memoryModules_, status);
  if (status.isError()) {
    closeInterfaces();
  }
  access_.controllerIsOpen = controllerDevice_.isOpen();
  access_.martenIsOpen = martenDevice_.isOpen();
}

tControllerUserSession::~tControllerUserSession() {
  closeInterfaces();
}

void tControllerUserSession::openControllerInterface(zoerr::Status& status) noexcept {
  if (status.isError()) {
    return;
  }
  // An interface class that cannot be listed counts as absent.
  tStatus listing;
  tDeviceInterfaceIterator interfaces(kControllerInterfaceClass, listing);
  if (interfaces.isEnd()) {
    status.set(QUENRA_STATUS_NO_CONTROLLER, kNoControllerInterface);
    return;
  }
  openOnly(interfaces, controllerDevice_, kSecondControllerInterface, status);
}

void tControllerUserSession::openMartenInterface(zoerr::Status& status) noexcept {
  if (status.isError()) {
    return;
  }
  tStatus listing;
  tDeviceInterfaceIterator interfaces(kMartenInterfaceClass, listing);
  status.mergeFrom(listing);
  if (!interfaces.isEnd()) {
    openOnly(interfaces, martenDevice_, kSecondMartenInterface, status);
  }
}

void tControllerUserSession::closeInterfaces() noexcept {
  if (controllerDevice_.isOpen()) {
    controllerDevice_.close();
  }
  if (martenDevice_.isOpen()) {
    martenDevice_.close();
  }
}

void tControllerUserSession::readText(uint32_t attribute, char* buffer, uint64_t* size,
                                      zoerr::Status& status) noexcept {
  readTextAttribute(access_, attribute, buffer, size, status);
}

void tControllerUserSession::readUnsigned(uint32_t attribute, uint32_t& value,
                                          zoerr::Status& status) noexcept {
  readUnsignedAttribute(access_, attribute, value, status);
}

void tControllerUserSession::writeText(uint32_t attribute, const char* text,
                                       zoerr::Status& status) noexcept {
  writeTextAttribute(access_, attribute, text, status);
}

void tControllerUserSession::writeUnsigned(uint32_t attribute, uint32_t value,
                                           zoerr::Status& status) noexcept {
  writeUnsignedAttribute(access_, attribute, value, status);
}

void tControllerUserSession::updateFirmware(const void* image, uint64_t imageSize, uint32_t flags,
                                            zoerr::Status& status) {
  nQUENRA1400::updateFirmware(access_, image, imageSize, flags, status);
}

}  // namespace nQUENRA1400
