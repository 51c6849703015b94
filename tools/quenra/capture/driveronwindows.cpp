#include "tools/quenra/capture/driveronwindows.h"

#include <windows.h>

#include <algorithm>
#include <array>
#include <bit>
#include <chrono>
#include <string>

#include "codegen/apalcodegen/tinterfaceproxy_routing.h"
#include "protocol/interfaces.h"
#include "protocol/routingrequests.h"
#include "zoapal/protons/enumeration/windows/tdeviceinterfaceiterator.h"
#include "zoapal/protons/status/tstatus.h"

namespace nCommandLine {
namespace {

using nQUENRA1400::nZOAPAL000::tDeviceInterfaceIterator;
using nQUENRA1400::nZOAPAL000::tDeviceInterfaceProxy;
using nZOAPALS100::tStatus;

int32_t openFirst(const tInterfaceClass& interfaceClass, tDeviceInterfaceProxy& device) noexcept {
  tStatus status;
  tDeviceInterfaceIterator interfaces(interfaceClass, status);
  interfaces.openCurrent(device, status);
  return status.code;
}

}  // namespace

int32_t tMachineDriver::openController() noexcept {
  return openFirst(kControllerInterfaceClass, controllerDevice_);
}

int32_t tMachineDriver::openMarten() noexcept {
  return openFirst(kMartenInterfaceClass, martenDevice_);
}

void tMachineDriver::close() noexcept {
  for (tDeviceInterfaceProxy* const device : {&controllerDevice_, &martenDevice_}) {
    if (device->isOpen()) {
      device->close();
    }
  }
}

uint32_t tMachineDriver::devicePaths() noexcept {
  uint32_t count = 0;
  tStatus status;
  for (tDeviceInterfaceIterator i(kDevicePathInterfaceClass, status); !i.isEnd(); i.next()) {
    ++count;
  }
  return count;
}

nCapture::tTopography tMachineDriver::topography() {
  using tClock = std::chrono::steady_clock;
  tDeviceInterfaceProxy device;
  nCapture::tTopography topography;
  topography.result.code = openFirst(kDevicePathInterfaceClass, device);
  if (topography.result.code < 0) {
    return topography;
  }
  nQUENRA1400::nZOAPAL000::tInterfaceProxy_routing router(device);
  std::array<uint8_t, ROUTING_TOPOGRAPHY_NAME_SIZE> name{};
  tStatus status;
  const tClock::time_point start = tClock::now();
  router.getTopographyName(std::bit_cast<uintptr_t>(name.data()), name.size(), status);
  topography.result = {status.code,
                       std::chrono::duration_cast<nCapture::tDuration>(tClock::now() - start)};
  topography.name.assign(name.begin(), std::ranges::find(name, uint8_t{0}));
  device.close();
  return topography;
}

// GetVersionEx would report the version that the program's manifest names.
std::string tMachineDriver::systemVersion() {
  using tFunction = LONG(WINAPI*)(OSVERSIONINFOW*);
  const HMODULE system = GetModuleHandleW(L"ntdll.dll");
  const auto rtlGetVersion =
      system == nullptr ? nullptr
                        : std::bit_cast<tFunction>(GetProcAddress(system, "RtlGetVersion"));
  OSVERSIONINFOW version{};
  version.dwOSVersionInfoSize = sizeof version;
  if (rtlGetVersion == nullptr || rtlGetVersion(&version) != 0) {
    return "Windows, unknown version";
  }
  return "Windows " + std::to_string(version.dwMajorVersion) + "." +
         std::to_string(version.dwMinorVersion) + "." + std::to_string(version.dwBuildNumber);
}

}  // namespace nCommandLine
