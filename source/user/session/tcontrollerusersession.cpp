#include "source/user/session/tcontrollerusersession.h"

#include "source/user/attributes/textreader.h"
#include "source/user/attributes/textwriter.h"
#include "source/user/attributes/unsignedreader.h"
#include "source/user/attributes/unsignedwriter.h"
#include "source/user/location.h"
#include "source/user/preconditions/modelfamilies.h"
#include "source/user/session/smbioshandover.h"
#include "source/user/statuscodes.h"
#include "source/user/update/firmwareupdate.h"
#include "zoapal/protons/enumeration/windows/tdeviceinterfaceiterator.h"

namespace nQUENRA1400 {
namespace {

using nZOAPAL000::tDeviceInterfaceIterator;
using nZOAPAL000::tDeviceInterfaceProxy;
using nZOAPALS100::tSourceLocation;
using nZOAPALS100::tStatus;
using nZOSMBIOS_1_1::byteField;

constexpr auto kNoControllerInterface = sessionLocation(222);
constexpr auto kSecondControllerInterface = sessionLocation(242);
constexpr auto kSecondMartenInterface = sessionLocation(273);
constexpr auto kPlatformUnknown = sessionLocation(355);
constexpr auto kPlatformNotSupported = sessionLocation(368);
constexpr auto kModelNotSupported = sessionLocation(380);

constexpr auto kPlatformGeneration = byteField(0x96, 0x04);
constexpr auto kPlatformVariant = byteField(0x96, 0x05);
constexpr uint8_t kFirstSupportedGeneration = 2;
constexpr uint8_t kFirstUnsupportedVariant = 3;

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
  if (!status.isError()) {
    installSmbiosTable(controller_, provider_, status);
  }
  checkPlatform(status);
  checkModel(status);
  memoryModules_.find(provider_, status);
  if (status.isError()) {
    closeInterfaces();
  }
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
    status.set(kNoController, kNoControllerInterface);
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

void tControllerUserSession::checkPlatform(zoerr::Status& status) noexcept {
  if (status.isError()) {
    return;
  }
  uint8_t generation = 0;
  uint8_t variant = 0;
  if (provider_.readByte(kPlatformGeneration, 0, &generation) != 0 ||
      provider_.readByte(kPlatformVariant, 0, &variant) != 0) {
    status.set(kNoController, kPlatformUnknown);
  } else if (generation < kFirstSupportedGeneration || variant >= kFirstUnsupportedVariant) {
    status.set(kNoController, kPlatformNotSupported);
  }
}

void tControllerUserSession::checkModel(zoerr::Status& status) noexcept {
  if (!status.isError() && !IsOutsideModelFamilies(provider_)) {
    status.set(kNoController, kModelNotSupported);
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

tAttributeAccess tControllerUserSession::access() noexcept {
  return {provider_,
          memoryModules_,
          controller_,
          marten_,
          controllerDevice_.isOpen(),
          martenDevice_.isOpen()};
}

void tControllerUserSession::readText(uint32_t attribute, char* buffer, uint64_t* size,
                                      zoerr::Status& status) noexcept {
  readTextAttribute(access(), attribute, buffer, size, status);
}

void tControllerUserSession::readUnsigned(uint32_t attribute, uint32_t& value,
                                          zoerr::Status& status) noexcept {
  readUnsignedAttribute(access(), attribute, value, status);
}

void tControllerUserSession::writeText(uint32_t attribute, const char* text,
                                       zoerr::Status& status) noexcept {
  writeTextAttribute(access(), attribute, text, status);
}

void tControllerUserSession::writeUnsigned(uint32_t attribute, uint32_t value,
                                           zoerr::Status& status) noexcept {
  writeUnsignedAttribute(access(), attribute, value, status);
}

void tControllerUserSession::updateFirmware(const void* image, uint64_t imageSize, uint32_t flags,
                                            zoerr::Status& status) {
  nQUENRA1400::updateFirmware(access(), image, imageSize, flags, status);
}

}  // namespace nQUENRA1400
