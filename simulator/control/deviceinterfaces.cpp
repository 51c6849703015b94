#include "simulator/control/deviceinterfaces.h"

#include <windows.h>
// setupapi.h requires windows.h.
#include <setupapi.h>

#include <array>
#include <bit>
#include <cstddef>

namespace nSimulator {
namespace {

std::string pathOf(HDEVINFO set, SP_DEVICE_INTERFACE_DATA& data) {
  alignas(SP_DEVICE_INTERFACE_DETAIL_DATA_A) std::array<char, 512> area{};
  void* const memory = area.data();
  auto* const detail = static_cast<SP_DEVICE_INTERFACE_DETAIL_DATA_A*>(memory);
  detail->cbSize = sizeof *detail;
  if (!SetupDiGetDeviceInterfaceDetailA(set, &data, detail, static_cast<DWORD>(area.size()),
                                        nullptr, nullptr)) {
    return {};
  }
  return area.data() + offsetof(SP_DEVICE_INTERFACE_DETAIL_DATA_A, DevicePath);
}

}  // namespace

std::vector<std::string> presentInterfaces(const tInterfaceClass& interfaceClass) {
  const auto guid = std::bit_cast<GUID>(interfaceClass);
  const HDEVINFO set =
      SetupDiGetClassDevsA(&guid, nullptr, nullptr, DIGCF_PRESENT | DIGCF_DEVICEINTERFACE);
  std::vector<std::string> paths;
  if (set == INVALID_HANDLE_VALUE) {
    return paths;
  }
  SP_DEVICE_INTERFACE_DATA data{};
  data.cbSize = sizeof data;
  for (DWORD i = 0; SetupDiEnumDeviceInterfaces(set, nullptr, &guid, i, &data); ++i) {
    paths.push_back(pathOf(set, data));
  }
  SetupDiDestroyDeviceInfoList(set);
  return paths;
}

}  // namespace nSimulator
