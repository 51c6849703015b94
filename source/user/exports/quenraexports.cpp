#include <cstdint>
#include <cstring>

#include "quenra.h"
#include "source/user/exports/devicepathattribute.h"
#include "source/user/exports/exceptionboundary.h"
#include "source/user/exports/tprocessstate.h"
#include "source/user/location.h"
#include "source/user/statuscodes.h"

namespace {

using nQUENRA1400::processState;
using nQUENRA1400::readDevicePath;
using nQUENRA1400::runWithoutThrowing;
using nQUENRA1400::sessionLocation;
using nQUENRA1400::tControllerUserSession;

constexpr auto kNoSignedAttribute = sessionLocation(1590);
constexpr auto kNoFloatingAttribute = sessionLocation(1611);
constexpr auto kValueMissing = sessionLocation(1721);

// Null, with the reason in the status, when the library is not ready or no session is open.
tControllerUserSession* findSession(zoerr::Status& status) noexcept {
  processState().startUp().mergeInto(status);
  return status.isError() ? nullptr : processState().session(status);
}

// Access to a possibly misaligned variable of the caller, through a copy that the destructor writes
// back.
template <class Number>
class tCallersNumber {
 public:
  explicit tCallersNumber(Number* callers) noexcept
      : callers_(callers), isAligned_(reinterpret_cast<uintptr_t>(callers) % alignof(Number) == 0) {
    if (!isAligned_) {
      std::memcpy(&copy_, callers_, sizeof copy_);
    }
  }
  tCallersNumber(const tCallersNumber&) = delete;
  tCallersNumber& operator=(const tCallersNumber&) = delete;
  ~tCallersNumber() {
    if (!isAligned_) {
      std::memcpy(callers_, &copy_, sizeof copy_);
    }
  }

  // Null if the caller passes none.
  [[nodiscard]] Number* get() noexcept {
    return isAligned_ ? static_cast<Number*>(callers_) : &copy_;
  }

 private:
  // Untyped: compilers assume that a typed pointer is aligned.
  void* const callers_;
  const bool isAligned_;
  Number copy_{};
};

// The prologue of the exports on a handle: checks the handle, the start-up state and the session, in
// this order. An invalid handle is refused without the lock. The operation runs outside the lock.
template <class Operation>
int32_t runOnSession(uint64_t handle, Operation operation) noexcept {
  if (handle != QUENRA_HANDLE) {
    return nQUENRA1400::kInvalidHandle;
  }
  zoerr::tOwnedStatus status;
  if (tControllerUserSession* const session = findSession(status)) {
    runWithoutThrowing(status, [&] { operation(*session, status); });
  }
  return status.code;
}

}  // namespace

int32_t QUENRA_openController(uint64_t* handle) {
  if (handle == nullptr) {
    return nZOAPALS100::kInvalidParameter;
  }
  zoerr::tOwnedStatus status;
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
    zoerr::tOwnedStatus status;
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
    status.set(nQUENRA1400::kAttributeNotSupported, kNoSignedAttribute);
  });
}

int32_t QUENRA_getAttributeDBL(uint64_t handle, uint32_t, double*) {
  return runOnSession(handle, [](tControllerUserSession&, zoerr::Status& status) {
    status.set(nQUENRA1400::kAttributeNotSupported, kNoFloatingAttribute);
  });
}

// Unlike the other exports, this one reports every missing session as kNoController.
int32_t QUENRA_setAttributeUTF8(uint64_t handle, uint32_t attribute, const char* text) {
  if (handle != QUENRA_HANDLE) {
    return nQUENRA1400::kInvalidHandle;
  }
  zoerr::tOwnedStatus status;
  tControllerUserSession* const session = findSession(status);
  if (session == nullptr) {
    return nQUENRA1400::kNoController;
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
