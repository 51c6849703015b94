#include <cstdint>
#include <cstring>

#include "protocol/controllerrequests.h"
#include "protocol/interfaces.h"
#include "quenra.h"
#include "source/user/exports/callboundary.h"
#include "source/user/exports/tprocessstate.h"
#include "source/user/failuresites.h"
#include "zoapal/protons/enumeration/windows/tdeviceinterfaceiterator.h"
#include "zosmbios/czosmbiosprovider.h"

namespace {

using nQUENRA1400::processState;
using nQUENRA1400::runWithoutThrowing;
using nQUENRA1400::sessionLocation;
using nQUENRA1400::tCallersNumber;
using nQUENRA1400::tControllerUserSession;

namespace nZOAPAL000 = nQUENRA1400::nZOAPAL000;

constexpr auto kNoSignedAttribute = sessionLocation(1590);
constexpr auto kNoFloatingAttribute = sessionLocation(1611);
constexpr auto kNoDevicePath = sessionLocation(1711);
constexpr auto kPathDoesNotFit = sessionLocation(1712);
constexpr auto kBufferMissing = sessionLocation(1713);
constexpr auto kValueMissing = sessionLocation(1721);

// The status of a call, of which the caller receives the code only: without memory for a description, so
// that a failed read costs no more than one that succeeds.
constexpr zoerr::Status codeOnly() noexcept {
  return {0, 0, nullptr, nullptr};
}

// Null, with the reason in the status, when the library is not ready or no session is open.
tControllerUserSession* findSession(zoerr::Status& status) noexcept {
  processState().startUp().mergeInto(status);
  return status.isError() ? nullptr : processState().session(status);
}

// The prologue of the exports on a handle: checks the handle, the start-up state and the session, in
// this order. An invalid handle is refused without the lock. The operation runs outside the lock.
template <class Operation>
int32_t runOnSession(uint64_t handle, Operation operation) noexcept {
  if (handle != QUENRA_HANDLE) {
    return QUENRA_STATUS_INVALID_HANDLE;
  }
  zoerr::Status status = codeOnly();
  if (tControllerUserSession* const session = findSession(status)) {
    runWithoutThrowing(status, [&] { operation(*session, status); });
  }
  return status.code;
}

// Reads QUENRA_ATTRIBUTE_DEVICE_PATH, which needs no session and no lock.
void readDevicePath(char* buffer, uint64_t* size, zoerr::Status& status) noexcept {
  nZOAPALS100::tStatus search;
  nZOAPAL000::tDeviceInterfaceIterator first(kDevicePathInterfaceClass, search);
  if (first.isEnd()) {
    // Interfaces that cannot be listed count as absent.
    status.set(QUENRA_STATUS_NO_CONTROLLER, kNoDevicePath);
    return;
  }
  const nZOAPAL000::tDevicePath& path = first.getDevicePath(search);
  status.mergeFrom(search);
  if (path.isEmpty()) {
    return;
  }
  if (size == nullptr || *size < path.length) {
    if (size != nullptr) {
      *size = path.length;
    }
    status.set(QUENRA_STATUS_BUFFER_TOO_SMALL, kPathDoesNotFit);
  } else if (buffer == nullptr) {
    status.set(nZOAPALS100::kInvalidParameter, kBufferMissing);
  } else {
    std::memcpy(buffer, path.text, path.length);
  }
}

}  // namespace

int32_t QUENRA_openController(uint64_t* handle) {
  if (handle == nullptr) {
    return nZOAPALS100::kInvalidParameter;
  }
  zoerr::Status status = codeOnly();
  processState().startUp().mergeInto(status);
  if (!status.isError()) {
    runWithoutThrowing(status, [&status] { processState().open(status); });
  }
  if (!status.isError()) {
    *tCallersNumber(handle).get() = QUENRA_HANDLE;
  }
  return status.code;
}

void QUENRA_closeController(uint64_t handle) {
  if (handle == QUENRA_HANDLE && processState().startUp().isReady()) {
    processState().close();
  }
}

int32_t QUENRA_getAttributeUTF8(uint64_t handle, uint32_t attribute, char* buffer, uint64_t* size) {
  if (attribute == QUENRA_ATTRIBUTE_DEVICE_PATH) {
    zoerr::Status status = codeOnly();
    readDevicePath(buffer, tCallersNumber(size).get(), status);
    return status.code;
  }
  return runOnSession(handle, [=](tControllerUserSession& session, zoerr::Status& status) {
    session.readText(attribute, buffer, tCallersNumber(size).get(), status);
  });
}

int32_t QUENRA_getAttributeU32(uint64_t handle, uint32_t attribute, uint32_t* value) {
  return runOnSession(handle, [=](tControllerUserSession& session, zoerr::Status& status) {
    if (value == nullptr) {
      status.set(nZOAPALS100::kInvalidParameter, kValueMissing);
    } else {
      session.readUnsigned(attribute, *tCallersNumber(value).get(), status);
    }
  });
}

int32_t QUENRA_getAttributeI32(uint64_t handle, uint32_t, int32_t*) {
  return runOnSession(handle, [](tControllerUserSession&, zoerr::Status& status) {
    status.set(QUENRA_STATUS_NOT_SUPPORTED, kNoSignedAttribute);
  });
}

int32_t QUENRA_getAttributeDBL(uint64_t handle, uint32_t, double*) {
  return runOnSession(handle, [](tControllerUserSession&, zoerr::Status& status) {
    status.set(QUENRA_STATUS_NOT_SUPPORTED, kNoFloatingAttribute);
  });
}

// Unlike the other exports, this one reports every missing session as QUENRA_STATUS_NO_CONTROLLER.
int32_t QUENRA_setAttributeUTF8(uint64_t handle, uint32_t attribute, const char* text) {
  if (handle != QUENRA_HANDLE) {
    return QUENRA_STATUS_INVALID_HANDLE;
  }
  zoerr::Status status = codeOnly();
  tControllerUserSession* const session = findSession(status);
  if (session == nullptr) {
    return QUENRA_STATUS_NO_CONTROLLER;
  }
  runWithoutThrowing(status, [&] { session->writeText(attribute, text, status); });
  return status.code;
}

int32_t QUENRA_setAttributeU32(uint64_t handle, uint32_t attribute, uint32_t value) {
  return runOnSession(handle, [=](tControllerUserSession& session, zoerr::Status& status) {
    session.writeUnsigned(attribute, value, status);
  });
}

int32_t QUENRA_updateFirmware(uint64_t handle, const void* image, uint64_t size) {
  return QUENRA_updateFirmware2(handle, image, size, QUENRA_UPDATE_ALL);
}

int32_t QUENRA_updateFirmware2(uint64_t handle, const void* image, uint64_t size,
                               uint32_t options) {
  return runOnSession(handle, [=](tControllerUserSession& session, zoerr::Status& status) {
    session.updateFirmware(image, size, options, status);
  });
}

int32_t QUENRA_performSelfTest(uint64_t handle) {
  return runOnSession(handle, [](tControllerUserSession&, zoerr::Status&) {});
}

namespace nQUENRA1400 {

// The layers below name their codes themselves; applications see them under the public names.
static_assert(nZOAPALS100::kMemoryFull == QUENRA_STATUS_MEMORY_FULL);
static_assert(nZOAPALS100::kNotSupported == QUENRA_STATUS_REQUEST_NOT_SUPPORTED);
static_assert(nZOAPALS100::kGenericFailure == QUENRA_STATUS_GENERIC_FAILURE);
static_assert(nZOAPALS100::kInvalidParameter == QUENRA_STATUS_INVALID_PARAMETER);
static_assert(nZOAPALS100::kNotFound == QUENRA_STATUS_NOT_FOUND);
static_assert(nZOAPALS100::kTimeOut == QUENRA_STATUS_TIME_OUT);
static_assert(nZOAPALS100::kInternalError == QUENRA_STATUS_INTERNAL_ERROR);
static_assert(nZOAPALS100::kAccessDenied == QUENRA_STATUS_ACCESS_DENIED);
static_assert(nZOAPALS100::kNotReady == QUENRA_STATUS_NOT_READY);
static_assert(nZOAPALS100::kIoPending == QUENRA_STATUS_IO_PENDING);
static_assert(nZOAPALS100::kEndOfFile == QUENRA_STATUS_END_OF_FILE);
static_assert(nZOAPALS100::kAlreadyExists == QUENRA_STATUS_ALREADY_EXISTS);
static_assert(nZOAPALS100::kPathTooLong == QUENRA_STATUS_PATH_TOO_LONG);
static_assert(nZOAPALS100::kDeviceRemoved == QUENRA_STATUS_DEVICE_REMOVED);
static_assert(nZOAPALS100::kSystemRefused == QUENRA_STATUS_SYSTEM_REFUSED);
static_assert(nZOAPALS100::kBusy == QUENRA_STATUS_BUSY);
static_assert(nZOSMBIOS_1_1::kNoString == QUENRA_STATUS_SMBIOS_NO_STRING);
static_assert(nZOSMBIOS_1_1::kBufferTooSmall == QUENRA_STATUS_SMBIOS_BUFFER_TOO_SMALL);
static_assert(nZOSMBIOS_1_1::kFieldNotFound == QUENRA_STATUS_SMBIOS_NOT_FOUND);
static_assert(nZOSMBIOS_1_1::kTableMalformed == QUENRA_STATUS_SMBIOS_MALFORMED);
static_assert(nZOSMBIOS_1_1::kNoTable == QUENRA_STATUS_SMBIOS_NO_TABLE);
static_assert(DRIVER_STATUS_BUFFER_TOO_SMALL == QUENRA_STATUS_DRIVER_BUFFER_TOO_SMALL);

}  // namespace nQUENRA1400
