// The simulated machine belongs into Wine: on Windows it would replace parts of the system.
#ifndef SIMULATOR_ENVIRONMENT_WINE_H
#define SIMULATOR_ENVIRONMENT_WINE_H

namespace nSimulator {

// Wine's ntdll has this export, that of Windows does not.
inline constexpr const char* kWineLibrary = "ntdll.dll";
inline constexpr const char* kWineExport = "wine_get_version";

// `find` returns the address of an exported function of a loaded library, null where it has none.
template <class Find>
[[nodiscard]] bool isWine(Find find) noexcept {
  return find(kWineLibrary, kWineExport) != nullptr;
}

// Of this process.
[[nodiscard]] bool runsUnderWine() noexcept;

// The answer of a stand-in for a part of the system; outside Wine it does nothing and answers `refusal`.
template <class Answer, class Act>
[[nodiscard]] Answer answerUnderWine(bool isWine, Answer refusal, Act act) {
  return isWine ? static_cast<Answer>(act()) : refusal;
}

}  // namespace nSimulator

#endif
