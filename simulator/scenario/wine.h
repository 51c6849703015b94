// Restricts the simulated machine to Wine: on Windows it would replace parts of the system.
#ifndef SIMULATOR_SCENARIO_WINE_H
#define SIMULATOR_SCENARIO_WINE_H

#include <windows.h>

namespace nSimulator {

// An export of Wine's ntdll that Windows' ntdll does not have.
inline constexpr const char* kWineLibrary = "ntdll.dll";
inline constexpr const char* kWineExport = "wine_get_version";

// `find` returns the address of an export of a loaded library, or null.
template <class Find>
[[nodiscard]] bool isWine(Find find) noexcept {
  return find(kWineLibrary, kWineExport) != nullptr;
}

// True if this process runs under Wine.
[[nodiscard]] inline bool runsUnderWine() noexcept {
  return isWine([](const char* library, const char* function) noexcept {
    const HMODULE module = GetModuleHandleA(library);
    return module == nullptr ? nullptr : GetProcAddress(module, function);
  });
}

// Runs `act`, the work of a simulated system component, under Wine; elsewhere returns `refusal`.
template <class Answer, class Act>
[[nodiscard]] Answer answerUnderWine(bool isWine, Answer refusal, Act act) {
  return isWine ? static_cast<Answer>(act()) : refusal;
}

}  // namespace nSimulator

#endif
