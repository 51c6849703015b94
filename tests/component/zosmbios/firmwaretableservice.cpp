#include "tests/component/zosmbios/firmwaretableservice.h"

#include <windows.h>

#include <algorithm>

namespace {

DWORD lastError = 0;

}  // namespace

namespace nTests {

tFirmwareTableService& firmwareTableService() {
  static tFirmwareTableService service;
  return service;
}

}  // namespace nTests

extern "C" {

DWORD WINAPI GetLastError() {
  return lastError;
}

UINT WINAPI GetSystemFirmwareTable(DWORD provider, DWORD table, PVOID buffer, DWORD size) {
  nTests::tFirmwareTableService& service = nTests::firmwareTableService();
  service.calls.push_back({provider, table, buffer != nullptr, size});
  const auto whole = static_cast<uint32_t>(service.answer.size());
  if (buffer == nullptr) {
    lastError = service.firstError;
    return service.toldSize.value_or(whole);
  }
  lastError = service.secondError;
  std::copy_n(service.answer.begin(), std::min(size, whole), static_cast<uint8_t*>(buffer));
  return service.receivedSize.value_or(whole);
}

}  // extern "C"
