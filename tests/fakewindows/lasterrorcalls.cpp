#include <windows.h>

namespace {

thread_local DWORD lastError = 0;

}  // namespace

DWORD WINAPI GetLastError(void) {
  return lastError;
}

void WINAPI SetLastError(DWORD error) {
  lastError = error;
}
