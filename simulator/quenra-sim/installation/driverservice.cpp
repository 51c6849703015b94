#include "simulator/quenra-sim/installation/driverservice.h"

#include <windows.h>
// Both require windows.h.
#include <newdev.h>
#include <winsvc.h>

#include <string>

#include "simulator/quenra-sim/installation/hardwareids.h"
#include "simulator/quenra-sim/installation/ownfolder.h"
#include "simulator/quenra-sim/installation/windowserror.h"

namespace nSimulator {
namespace {

constexpr const char* kService = "quenrasim";
constexpr unsigned kPatience = 100;  // tenths of a second

class tServiceHandle {
 public:
  explicit tServiceHandle(SC_HANDLE handle) : handle_(handle) {}
  tServiceHandle(const tServiceHandle&) = delete;
  tServiceHandle& operator=(const tServiceHandle&) = delete;
  ~tServiceHandle() {
    if (handle_ != nullptr) {
      CloseServiceHandle(handle_);
    }
  }
  [[nodiscard]] SC_HANDLE get() const { return handle_; }

 private:
  SC_HANDLE handle_;
};

void waitUntilStopped(SC_HANDLE service) {
  SERVICE_STATUS status{};
  for (unsigned i = 0; i < kPatience; ++i) {
    if (!QueryServiceStatus(service, &status) || status.dwCurrentState == SERVICE_STOPPED) {
      return;
    }
    Sleep(100);
  }
}

}  // namespace

void installDriver() {
  const std::string description = ownFolder() + "quenrasim.inf";
  for (const tRootDevice& kind : kRootDevices) {
    BOOL reboot = FALSE;
    require(UpdateDriverForPlugAndPlayDevicesA(nullptr, kind.hardwareId, description.c_str(),
                                               INSTALLFLAG_FORCE, &reboot),
            "the driver of " + std::string(kind.hardwareId) + " cannot be installed from " +
                description);
  }
}

void removeDriverService() {
  const tServiceHandle manager(OpenSCManagerA(nullptr, nullptr, SC_MANAGER_CONNECT));
  const tServiceHandle service(
      OpenServiceA(manager.get(), kService, SERVICE_STOP | SERVICE_QUERY_STATUS | DELETE));
  if (service.get() == nullptr) {
    return;
  }
  SERVICE_STATUS status{};
  if (ControlService(service.get(), SERVICE_CONTROL_STOP, &status)) {
    waitUntilStopped(service.get());
  }
  require(DeleteService(service.get()), "the driver's service cannot be removed");
}

}  // namespace nSimulator
