// A library that uses quenra.dll and, because it loads it later, is unloaded after it when the process
// ends. Its static destructor then calls exports and ends the process with 0 if all of them behave
// as documented.
#include <windows.h>

#include <cstdint>

#include "tests/component/unload/exportsafterunload.h"

namespace {

struct tClient {
  nTests::tExports exports{};
  zoroco_RoutingAdaptorSession* session = nullptr;

  tClient() = default;
  tClient(const tClient&) = delete;
  tClient& operator=(const tClient&) = delete;
  ~tClient() {
    if (session != nullptr) {
      TerminateProcess(GetCurrentProcess(),
                       static_cast<UINT>(nTests::firstMisbehavingExport(exports, session)));
    }
  }
};

tClient client;

template <class Function>
void lookUp(HMODULE library, const char* name, Function& function) {
  const FARPROC found = GetProcAddress(library, name);
  static_assert(sizeof found == sizeof function);
  __builtin_memcpy(&function, &found, sizeof function);
}

}  // namespace

// Loads the library, opens the controller and creates a routing session. Returns false on failure.
extern "C" __declspec(dllexport) bool useLibrary(const char* devicePath) {
  const HMODULE library = LoadLibraryA("quenra.dll");
  if (library == nullptr) {
    return false;
  }
  lookUp(library, "QUENRA_openController", client.exports.open);
  lookUp(library, "QUENRA_closeController", client.exports.close);
  lookUp(library, "QUENRA_getAttributeU32", client.exports.getU32);
  lookUp(library, "QUENRA_setAttributeUTF8", client.exports.setText);
  lookUp(library, "zoroco_ra_quenra_createSession", client.exports.createSession);
  lookUp(library, "zoroco_ra_quenra_programRoute", client.exports.programRoute);
  lookUp(library, "zoroco_ra_quenra_unprogramRoute", client.exports.unprogramRoute);
  lookUp(library, "zoroco_ra_quenra_destroySession", client.exports.destroySession);
  uint64_t handle = 0;
  zoerr_Status status = zoerr_Status_initial();
  client.session = client.exports.open(&handle) < 0
                       ? nullptr
                       : client.exports.createSession(devicePath, nullptr, &status);
  zoerr_Status_release(&status);
  return client.session != nullptr;
}
