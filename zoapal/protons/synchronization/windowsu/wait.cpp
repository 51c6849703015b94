#include "zoapal/protons/synchronization/windowsu/wait.h"

#include <iterator>

namespace nQUENRA1400::nZOAPAL000 {

void waitFor(HANDLE object) noexcept {
  constexpr uint32_t kLine = 22;
  repeatUntilDone(kLine, "ASSERT(WaitForSingleObject)", [object]() noexcept {
    return WaitForSingleObject(object, INFINITE) != WAIT_FAILED;
  });
}

void waitForEither(HANDLE first, HANDLE second) noexcept {
  constexpr uint32_t kLine = 31;
  repeatUntilDone(kLine, "ASSERT(WaitForMultipleObjects)", [=]() noexcept {
    const HANDLE objects[] = {first, second};
    return WaitForMultipleObjects(std::size(objects), objects, FALSE, INFINITE) != WAIT_FAILED;
  });
}

}  // namespace nQUENRA1400::nZOAPAL000
