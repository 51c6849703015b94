#include "zoapal/protons/synchronization/windowsu/locks.h"

namespace nQUENRA1400::nZOAPAL000 {
namespace {

constexpr nZOAPALS100::tSourceLocation kInitialise{"tcriticalsection", 31};
// The lock is held for a pointer copy: worth a short wait on another processor before sleeping.
constexpr DWORD kSpinCount = 400;

}  // namespace

void tCriticalSection::initialise(nZOAPALS100::tStatus& status) noexcept {
  if (status.isError()) {
    return;
  }
  if (InitializeCriticalSectionEx(&section_, kSpinCount, 0)) {
    initialised_ = true;
  } else {
    mergeWin32Failure(GetLastError(), status, kInitialise);
  }
}

void tCriticalSection::destroy() noexcept {
  if (initialised_) {
    DeleteCriticalSection(&section_);
    initialised_ = false;
  }
}

void tCriticalSection::enter() noexcept {
  EnterCriticalSection(&section_);
}

void tCriticalSection::leave() noexcept {
  LeaveCriticalSection(&section_);
}

}  // namespace nQUENRA1400::nZOAPAL000
