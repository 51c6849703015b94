#ifndef ZOAPAL_PROTONS_SYNCHRONIZATION_WINDOWSU_WAIT_H
#define ZOAPAL_PROTONS_SYNCHRONIZATION_WINDOWSU_WAIT_H

#include <windows.h>

#include <cstdint>

#include "zoapal/protons/status/tsourcelocation.h"
#include "zoapal/protons/trace/assertion.h"

namespace nQUENRA1400::nZOAPAL000 {

// Wait without limit for an end that must come before memory is freed or used again. A wait that
// fails is repeated, because continuing without it would be worse; after kMaxAttempts failures in a
// row the process ends with an assertion.
void waitFor(HANDLE object) noexcept;
// Returns when at least one of the objects is signalled.
void waitForEither(HANDLE first, HANDLE second) noexcept;

// Failing attempts are a millisecond apart.
inline constexpr int kMaxAttempts = 1000;

// Repeats `attempt` until it returns true, at most kMaxAttempts times, then asserts at this line.
template <class Attempt>
void repeatUntilDone(uint32_t line, const char* assertion, Attempt attempt) noexcept {
  constexpr DWORD kPauseMilliseconds = 1;
  for (int i = 0; i < kMaxAttempts; ++i) {
    if (attempt()) {
      return;
    }
    Sleep(kPauseMilliseconds);
  }
  assertionFailed(nZOAPALS100::kComponent, "wait", line, assertion);
}

}  // namespace nQUENRA1400::nZOAPAL000

#endif
