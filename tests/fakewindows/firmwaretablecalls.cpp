#include <windows.h>

#include <algorithm>

#include "tests/fakewindows/machine.h"
#include "tests/fakewindows/unusual.h"

using namespace nFakeWindows;

UINT WINAPI GetSystemFirmwareTable(DWORD provider, DWORD id, PVOID buffer, DWORD size) {
  const tInside inside;
  constexpr auto kCall = tCall::getSystemFirmwareTable;
  expectUsual(provider == 0x52534D42 && id == 0, kCall, "only 'RSMB', table 0, is there");
  expectUsual(buffer != nullptr || size == 0, kCall, "a size without a buffer");
  if (const auto error = faultPlan().enter(kCall, std::to_string(size))) {
    SetLastError(*error);
    return 0;
  }
  const std::vector<uint8_t> table = machine().firmwareTable();
  if (table.empty()) {
    SetLastError(machine().firmwareError());
    return 0;
  }
  if (size < table.size()) {
    SetLastError(ERROR_INSUFFICIENT_BUFFER);
  } else {
    std::copy(table.begin(), table.end(), static_cast<uint8_t*>(buffer));
  }
  return static_cast<UINT>(table.size());
}
