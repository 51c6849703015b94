#include "simulator/quenra-sim/installation/rootdevices.h"

#include <windows.h>
// setupapi.h requires windows.h.
#include <setupapi.h>

#include <array>
#include <string>
#include <string_view>

#include "simulator/quenra-sim/installation/hardwareids.h"
#include "simulator/quenra-sim/installation/windowserror.h"

namespace nSimulator {
namespace {

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
      "device " + instance + " cannot be made");
  // A list of texts that ends with an empty one.
  const std::string ids = hardwareId + '\0';
  const void* const bytes = ids.c_str();
  require(SetupDiSetDeviceRegistryPropertyA(set, &device, SPDRP_HARDWAREID,
                                            static_cast<const BYTE*>(bytes),
                                            static_cast<DWORD>(ids.size() + 1)),
          "device " + instance + " cannot be given its hardware id");
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

}  // namespace nSimulator
