#ifndef ZOARKRA_TOPOGRAPHY_H
#define ZOARKRA_TOPOGRAPHY_H

#include <cstdint>
#include <span>
#include <string_view>

namespace zoark {

// A trigger terminal. Texts are constants; a null one is absent.
struct tTerminal {
  const char* name;
  uint32_t id;  // unique, from 1
  bool isExternal;
  bool isOwned;
  const char* visibility;
  const char* busType;
  uint32_t busLine;
  const char* busName;
  bool isAlias;
  const char* canonicalName;
  bool isMaskedOut;
};

// The terminals of a trigger router. The driver reports the name of its topography.
struct tTopography {
  const char* name;
  uint64_t terminalCount;
  const tTerminal* firstTerminal;
  uint32_t words[2];  // part of the record; the library does not read them

  [[nodiscard]] constexpr std::span<const tTerminal> terminals() const noexcept {
    return {firstTerminal, terminalCount};
  }
};

// The id of the terminal with exactly this name, or ROUTE_NO_TERMINAL.
[[nodiscard]] uint32_t terminalIdOf(const tTopography& topography, std::string_view name) noexcept;

// The name of the terminal with this id, or an empty text.
[[nodiscard]] const char* terminalNameOf(const tTopography& topography, uint32_t id) noexcept;

// The topography with this name. Traces an unknown name and throws zoerr::Exception with kBadSelector.
[[nodiscard]] const tTopography& findTopography(std::string_view name);

// The driver's flag for a reset mode: 0 for "default", 1 for "floating". Throws zoerr::Exception with
// kBadSelector for any other mode, also null.
[[nodiscard]] uint32_t floatingFlagOf(const char* mode);

}  // namespace zoark

#endif
