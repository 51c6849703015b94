#ifndef ZOAPAL_PROTONS_THREAD_WINDOWSU_STARTTHREAD_H
#define ZOAPAL_PROTONS_THREAD_WINDOWSU_STARTTHREAD_H

#include <windows.h>

#include "zoapal/protons/handles/windowsu/tuniquehandle.h"

namespace nQUENRA1400::nZOAPAL000 {

using tThreadRoutine = void (*)(void* argument) noexcept;
using tThreadMain = unsigned(__stdcall*)(void* argument);

// Gives back the reference to the module and ends the calling thread, in one call: the code after a
// plain FreeLibrary might no longer be mapped. Not noexcept, so that an implementation which unwinds
// the stack can pass through the thread's main function.
[[noreturn]] void releaseModuleAndEndThread();

// Takes a reference to the module that contains the library and starts a thread, which gives it back.
// On failure the handle is empty, and the last error may give the reason.
[[nodiscard]] tUniqueThread startThreadInModule(tThreadMain main, void* argument,
                                                DWORD& id) noexcept;

template <tThreadRoutine kRoutine>
unsigned __stdcall runInModule(void* argument) {
  kRoutine(argument);
  releaseModuleAndEndThread();
}

// Starts a thread that holds a reference to the library's module until it ends: unloading the library
// while the thread runs does not unmap the thread's code.
template <tThreadRoutine kRoutine>
[[nodiscard]] tUniqueThread startThread(void* argument, DWORD& id) noexcept {
  return startThreadInModule(&runInModule<kRoutine>, argument, id);
}

}  // namespace nQUENRA1400::nZOAPAL000

#endif
