#ifndef SOURCE_USER_SESSION_TCONTROLLERUSERSESSION_H
#define SOURCE_USER_SESSION_TCONTROLLERUSERSESSION_H

#include <cstdint>

#include "codegen/apalcodegen/tinterfaceproxy_hostcontroller.h"
#include "codegen/apalcodegen/tinterfaceproxy_hostmarten.h"
#include "protocol/interfaces.h"
#include "source/user/attributes/attributes.h"
#include "source/user/machine/smbiosfields.h"
#include "zoapal/protons/driver/windowsu/tdeviceinterfaceproxy.h"
#include "zoapal/protons/status/zoerrstatus.h"
#include "zosmbios/czosmbiosprovider.h"

namespace nQUENRA1400 {

// The one object that every valid handle refers to. The exports create, count and destroy it under
// their lock; reads and writes change nothing in it and may run concurrently.
class tControllerUserSession {
 public:
  // Opens the driver's interfaces, installs the machine's SMBIOS table in the provider and checks that
  // the library supports the machine. After an error no interface is open, and the caller destroys
  // the session. The provider must outlive the session.
  tControllerUserSession(nZOSMBIOS_1_1::cZoSmBiosProvider& provider,
                         zoerr::Status& status) noexcept;
  tControllerUserSession(const tControllerUserSession&) = delete;
  tControllerUserSession& operator=(const tControllerUserSession&) = delete;
  ~tControllerUserSession();

  void addReference() noexcept { ++referenceCount_; }
  // True when the last reference was dropped: the caller destroys the session.
  [[nodiscard]] bool dropReference() noexcept { return --referenceCount_ == 0; }

  void readText(uint32_t attribute, char* buffer, uint64_t* size, zoerr::Status& status) noexcept;
  void readUnsigned(uint32_t attribute, uint32_t& value, zoerr::Status& status) noexcept;
  void writeText(uint32_t attribute, const char* text, zoerr::Status& status) noexcept;
  void writeUnsigned(uint32_t attribute, uint32_t value, zoerr::Status& status) noexcept;
  // Throws the exceptions of updateFirmware in update/firmwareupdate.h.
  void updateFirmware(const void* image, uint64_t imageSize, uint32_t flags, zoerr::Status& status);

 private:
  void openControllerInterface(zoerr::Status& status) noexcept;
  void openMartenInterface(zoerr::Status& status) noexcept;
  void closeInterfaces() noexcept;

  nZOSMBIOS_1_1::cZoSmBiosProvider& provider_;
  tMemoryModules memoryModules_;
  uint64_t referenceCount_ = 1;
  nZOAPAL000::tDeviceInterfaceProxy controllerDevice_;
  nZOAPAL000::tDeviceInterfaceProxy martenDevice_;
  nZOAPAL000::tInterfaceProxy_hostController controller_{controllerDevice_};
  nZOAPAL000::tInterfaceProxy_hostMarten marten_{martenDevice_};
  // The constructor states which interfaces are open; that never changes.
  tAttributeAccess access_{provider_, memoryModules_, controller_, marten_, false, false};
};

}  // namespace nQUENRA1400

#endif
