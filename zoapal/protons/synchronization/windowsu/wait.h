#ifndef ZOAPAL_PROTONS_SYNCHRONIZATION_WINDOWSU_WAIT_H
#define ZOAPAL_PROTONS_SYNCHRONIZATION_WINDOWSU_WAIT_H

#include <windows.h>

namespace nQUENRA1400::nZOAPAL000 {

// Both wait without limit for what has to be over before memory is left or reused: a wait that fails
// is tried again, since going on without it would be worse.
void waitFor(HANDLE object) noexcept;
// Returns when at least one of them is signalled.
void waitForEither(HANDLE first, HANDLE second) noexcept;

}  // namespace nQUENRA1400::nZOAPAL000

#endif
