// Starts the client library and returns; the exit code of the process is that of the client's static
// destructor, or one of these.
#include <windows.h>

#include "protocol/interfaces.h"
#include "zoapal/protons/enumeration/windows/tdeviceinterfaceiterator.h"

int main() {
  constexpr int kClientNotUsable = 101;
  constexpr int kDestructorNotRun = 102;
  nZOAPALS100::tStatus status;
  nQUENRA1400::nZOAPAL000::tDeviceInterfaceIterator iterator(kDevicePathInterfaceClass, status);
  const char* const devicePath = iterator.getDevicePath(status).text;
  const HMODULE library = LoadLibraryA("unloadclient.dll");
  const FARPROC found = library == nullptr ? nullptr : GetProcAddress(library, "useLibrary");
  bool (*useLibrary)(const char*) = nullptr;
  __builtin_memcpy(&useLibrary, &found, sizeof useLibrary);
  return useLibrary != nullptr && useLibrary(devicePath) ? kDestructorNotRun : kClientNotUsable;
}
