// The module of the library: here the program, with a count of its references.
#include <windows.h>

#include <atomic>

#include "tests/fakewindows/threads.h"
#include "tests/fakewindows/unusual.h"

using namespace nFakeWindows;

namespace nFakeWindows {
namespace {

std::atomic<int> references = 0;

}  // namespace

int moduleReferences() {
  return references;
}

}  // namespace nFakeWindows

extern "C" IMAGE_DOS_HEADER __ImageBase;  // NOLINT(bugprone-reserved-identifier)
IMAGE_DOS_HEADER __ImageBase{};           // NOLINT(bugprone-reserved-identifier)

BOOL WINAPI GetModuleHandleExA(DWORD flags, LPCSTR address, HMODULE* module) {
  const tInside inside;
  constexpr auto kCall = tCall::getModuleHandleEx;
  expectUsual(flags == GET_MODULE_HANDLE_EX_FLAG_FROM_ADDRESS &&
                  address == reinterpret_cast<LPCSTR>(&__ImageBase),
              kCall, "the library takes references to its own module only");
  if (const auto error = faultPlan().enter(kCall)) {
    *module = nullptr;
    SetLastError(*error);
    return FALSE;
  }
  ++references;
  *module = reinterpret_cast<HMODULE>(&__ImageBase);
  return TRUE;
}

BOOL WINAPI FreeLibrary(HMODULE module) {
  if (module != reinterpret_cast<HMODULE>(&__ImageBase) || --references < 0) {
    stop("FreeLibrary", "not a module, or one without a reference");
  }
  return TRUE;
}

VOID WINAPI FreeLibraryAndExitThread(HMODULE module, DWORD exitCode) {
  FreeLibrary(module);
  throw tThreadEnd{exitCode};
}
