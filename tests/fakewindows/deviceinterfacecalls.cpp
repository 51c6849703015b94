#include <windows.h>
// setupapi.h requires windows.h.
#include <setupapi.h>

#include <bit>
#include <cstring>

#include "tests/fakewindows/faultplan.h"
#include "tests/fakewindows/objects.h"

using namespace nFakeWindows;

namespace {

std::string classText(const GUID& interfaceClass) {
  return std::to_string(interfaceClass.Data1);
}

tDeviceInformationSet& setOf(HDEVINFO handle, tCall call) {
  tDeviceInformationSet* const set = objects().find<tDeviceInformationSet>(handle);
  expectSupported(set != nullptr, call, "not a device information set");
  return *set;
}

}  // namespace

HDEVINFO WINAPI SetupDiGetClassDevsA(const GUID* interfaceClass, PCSTR enumerator, HWND parent,
                                     DWORD flags) {
  const tInside inside;
  constexpr auto kCall = tCall::setupDiGetClassDevs;
  expectSupported(interfaceClass != nullptr && enumerator == nullptr && parent == nullptr, kCall,
                  "only a class can be asked for");
  expectSupported(flags == (DIGCF_PRESENT | DIGCF_DEVICEINTERFACE), kCall,
                  "only present device interfaces can be asked for");
  if (const auto error = faultPlan().enter(kCall, classText(*interfaceClass))) {
    SetLastError(*error);
    return INVALID_HANDLE_VALUE;
  }
  tDeviceInformationSet set{machine().present(std::bit_cast<tInterfaceClass>(*interfaceClass))};
  const std::lock_guard lock(objects().mutex);
  return objects().add(std::move(set));
}

BOOL WINAPI SetupDiEnumDeviceInterfaces(HDEVINFO handle, PSP_DEVINFO_DATA device,
                                        const GUID* interfaceClass, DWORD index,
                                        PSP_DEVICE_INTERFACE_DATA data) {
  const tInside inside;
  constexpr auto kCall = tCall::setupDiEnumDeviceInterfaces;
  expectSupported(device == nullptr && interfaceClass != nullptr, kCall, "only a class is listed");
  expectSupported(data != nullptr && data->cbSize == sizeof *data, kCall, "a wrong cbSize");
  if (const auto error = faultPlan().enter(kCall, std::to_string(index))) {
    SetLastError(*error);
    return FALSE;
  }
  const std::lock_guard lock(objects().mutex);
  if (index >= setOf(handle, kCall).interfaces.size()) {
    SetLastError(ERROR_NO_MORE_ITEMS);
    return FALSE;
  }
  data->InterfaceClassGuid = *interfaceClass;
  data->Flags = SPINT_ACTIVE;
  data->Reserved = index + 1;
  return TRUE;
}

BOOL WINAPI SetupDiGetDeviceInterfaceDetailA(HDEVINFO handle, PSP_DEVICE_INTERFACE_DATA data,
                                             PSP_DEVICE_INTERFACE_DETAIL_DATA_A detail, DWORD size,
                                             PDWORD required, PSP_DEVINFO_DATA device) {
  const tInside inside;
  constexpr auto kCall = tCall::setupDiGetDeviceInterfaceDetail;
  expectSupported(device == nullptr, kCall, "device data is not supported");
  expectSupported(data != nullptr && data->Reserved != 0, kCall, "not an interface of a set");
  expectSupported(detail != nullptr && detail->cbSize == sizeof *detail, kCall, "a wrong cbSize");
  if (const auto error = faultPlan().enter(kCall)) {
    SetLastError(*error);
    return FALSE;
  }
  tDeviceInterface found{};
  {
    const std::lock_guard lock(objects().mutex);
    found = setOf(handle, kCall).interfaces.at(data->Reserved - 1);
  }
  constexpr size_t kPathOffset = offsetof(SP_DEVICE_INTERFACE_DETAIL_DATA_A, DevicePath);
  const std::string path = machine().pathOf(found);
  const auto needed = static_cast<DWORD>(kPathOffset + path.size() + 1);
  if (required != nullptr) {
    *required = needed;
  }
  if (size < needed) {
    SetLastError(ERROR_INSUFFICIENT_BUFFER);
    return FALSE;
  }
  void* const area = detail;
  std::memcpy(static_cast<char*>(area) + kPathOffset, path.c_str(), path.size() + 1);
  return TRUE;
}

BOOL WINAPI SetupDiDestroyDeviceInfoList(HDEVINFO handle) {
  const tInside inside;
  constexpr auto kCall = tCall::setupDiDestroyDeviceInfoList;
  static_cast<void>(faultPlan().enter(kCall));
  const std::lock_guard lock(objects().mutex);
  static_cast<void>(setOf(handle, kCall));
  return objects().remove(handle);
}
