#include "zoapal/protons/thread/windowsu/startthread.h"

#include <process.h>

// The linker puts this symbol at the start of the image, whose address is the module's handle.
extern "C" IMAGE_DOS_HEADER __ImageBase;  // NOLINT(bugprone-reserved-identifier)

namespace nQUENRA1400::nZOAPAL000 {
namespace {

HMODULE ownModule() noexcept {
  return reinterpret_cast<HMODULE>(&__ImageBase);
}

}  // namespace

void releaseModuleAndEndThread() {
  FreeLibraryAndExitThread(ownModule(), 0);
}

tUniqueThread startThreadInModule(tThreadMain main, void* argument, DWORD& id) noexcept {
  id = 0;
  HMODULE reference = nullptr;
  if (!GetModuleHandleExA(GET_MODULE_HANDLE_EX_FLAG_FROM_ADDRESS,
                          reinterpret_cast<LPCSTR>(ownModule()), &reference)) {
    return {};
  }
  unsigned newId = 0;
  // 0 on failure, and the last error may be missing then.
  const uintptr_t thread = _beginthreadex(nullptr, 0, main, argument, 0, &newId);
  if (thread == 0) {
    const DWORD error = GetLastError();
    FreeLibrary(reference);
    SetLastError(error);
    return {};
  }
  id = newId;
  return tUniqueThread(reinterpret_cast<HANDLE>(thread));
}

}  // namespace nQUENRA1400::nZOAPAL000
