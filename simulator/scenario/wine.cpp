#include "simulator/scenario/wine.h"

#include <windows.h>

namespace nSimulator {

bool runsUnderWine() noexcept {
  return isWine([](const char* library, const char* function) noexcept {
    const HMODULE module = GetModuleHandleA(library);
    return module == nullptr ? nullptr : GetProcAddress(module, function);
  });
}

}  // namespace nSimulator
