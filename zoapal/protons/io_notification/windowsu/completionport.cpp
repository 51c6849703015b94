#include "zoapal/protons/io_notification/windowsu/completionport.h"

#include <windows.h>

#include "zoapal/protons/status/win32error.h"

namespace nQUENRA1400::nZOAPAL000 {

tUniquePort createCompletionPort(nZOAPALS100::tStatus& status) noexcept {
  constexpr const char* kFile = "tionotification";
  constexpr uint32_t kCreateLine = 31;
  constexpr DWORD kThreads = 1;
  if (status.isError()) {
    return {};
  }
  tUniquePort port(CreateIoCompletionPort(INVALID_HANDLE_VALUE, nullptr, 0, kThreads));
  if (!port) {
    mergeWin32Failure(GetLastError(), status, kFile, kCreateLine);
  }
  return port;
}

}  // namespace nQUENRA1400::nZOAPAL000
