#include "simulator/quenra-sim/installation/installation.h"

#include <windows.h>
// These require windows.h.
#include <newdev.h>
#include <setupapi.h>
#include <winsvc.h>

#include <array>
#include <string>
#include <string_view>

namespace nSimulator {
namespace {

constexpr const char* kService = "quenrasim";

// A kind of device: its hardware id, as in the driver and its INF, and the number of devices.
struct tRootDevice {
  const char* hardwareId;
  unsigned count;
};
constexpr tRootDevice kRootDevices[] = {
    {"root\\quenra_controller", 2},
    {"root\\quenra_marten", 2},
    {"root\\quenra_devicepath", 1},
    {"root\\quenra_control", 1},
};

// The device setup class "System".
constexpr GUID kSystemClass = {
    0x4D36E97D, 0xE325, 0x11CE, {0xBF, 0xC1, 0x08, 0x00, 0x2B, 0xE1, 0x03, 0x18}};

class tDeviceSet {
 public:
  explicit tDeviceSet(HDEVINFO set) : set_(set) {
    require(set_ != INVALID_HANDLE_VALUE, "the system's devices cannot be listed");
  }
  tDeviceSet(const tDeviceSet&) = delete;
  tDeviceSet& operator=(const tDeviceSet&) = delete;
  ~tDeviceSet() { SetupDiDestroyDeviceInfoList(set_); }
  [[nodiscard]] HDEVINFO get() const { return set_; }

 private:
  HDEVINFO set_;
};

void createDevice(HDEVINFO set, const std::string& hardwareId, unsigned index) {
  const std::string instance = hardwareId + "\\000" + std::to_string(index);
  SP_DEVINFO_DATA device{};
  device.cbSize = sizeof device;
  require(
      SetupDiCreateDeviceInfoA(set, instance.c_str(), &kSystemClass, nullptr, nullptr, 0, &device),
      "device " + instance + " cannot be created");
  // A list of texts that ends with an empty one.
  const std::string ids = hardwareId + '\0';
  const void* const bytes = ids.c_str();
  require(SetupDiSetDeviceRegistryPropertyA(set, &device, SPDRP_HARDWAREID,
                                            static_cast<const BYTE*>(bytes),
                                            static_cast<DWORD>(ids.size() + 1)),
          "device " + instance + " does not accept its hardware id");
  require(SetupDiCallClassInstaller(DIF_REGISTERDEVICE, set, &device),
          "device " + instance + " cannot be registered");
}

bool isOurs(HDEVINFO set, SP_DEVINFO_DATA& device) {
  std::array<char, 256> id{};
  void* const bytes = id.data();
  if (!SetupDiGetDeviceRegistryPropertyA(set, &device, SPDRP_HARDWAREID, nullptr,
                                         static_cast<BYTE*>(bytes),
                                         static_cast<DWORD>(id.size()) - 1, nullptr)) {
    return false;
  }
  for (const tRootDevice& known : kRootDevices) {
    if (std::string_view(known.hardwareId) == id.data()) {
      return true;
    }
  }
  return false;
}

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
  constexpr unsigned kTimeoutTenthsOfASecond = 100;
  SERVICE_STATUS status{};
  for (unsigned i = 0; i < kTimeoutTenthsOfASecond; ++i) {
    if (!QueryServiceStatus(service, &status) || status.dwCurrentState == SERVICE_STOPPED) {
      return;
    }
    Sleep(100);
  }
}

}  // namespace

void createRootDevices() {
  const tDeviceSet set(SetupDiCreateDeviceInfoList(&kSystemClass, nullptr));
  for (const tRootDevice& kind : kRootDevices) {
    for (unsigned index = 0; index < kind.count; ++index) {
      createDevice(set.get(), kind.hardwareId, index);
    }
  }
}

void removeRootDevices() {
  const tDeviceSet set(SetupDiGetClassDevsA(nullptr, "root", nullptr, DIGCF_ALLCLASSES));
  SP_DEVINFO_DATA device{};
  device.cbSize = sizeof device;
  for (DWORD i = 0; SetupDiEnumDeviceInfo(set.get(), i, &device); ++i) {
    if (isOurs(set.get(), device)) {
      require(SetupDiCallClassInstaller(DIF_REMOVE, set.get(), &device),
              "a device of the simulated machine cannot be removed");
    }
  }
}

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
