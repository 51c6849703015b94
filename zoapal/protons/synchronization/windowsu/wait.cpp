#include "zoapal/protons/synchronization/windowsu/wait.h"

#include <iterator>

namespace nQUENRA1400::nZOAPAL000 {
namespace {

constexpr DWORD kPauseMilliseconds = 1;

}  // namespace

void waitFor(HANDLE object) noexcept {
  while (WaitForSingleObject(object, INFINITE) == WAIT_FAILED) {
    Sleep(kPauseMilliseconds);
  }
}

void waitForEither(HANDLE first, HANDLE second) noexcept {
  const HANDLE objects[] = {first, second};
  while (WaitForMultipleObjects(std::size(objects), objects, FALSE, INFINITE) == WAIT_FAILED) {
    Sleep(kPauseMilliseconds);
  }
}

}  // namespace nQUENRA1400::nZOAPAL000
