#ifndef ZOAPAL_PROTONS_THREAD_WINDOWSU_THREADNAME_H
#define ZOAPAL_PROTONS_THREAD_WINDOWSU_THREADNAME_H

#include <windows.h>

namespace nQUENRA1400::nZOAPAL000 {

// Tells a debugger, if there is one, to call a thread of this process "quenra". Nothing else notices.
void nameThreadForDebuggers(DWORD threadId) noexcept;

}  // namespace nQUENRA1400::nZOAPAL000

#endif
