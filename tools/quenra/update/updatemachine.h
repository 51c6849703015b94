#ifndef TOOLS_QUENRA_UPDATE_UPDATEMACHINE_H
#define TOOLS_QUENRA_UPDATE_UPDATEMACHINE_H

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

#include "tools/quenra/reading/tcontroller.h"

namespace nCommandLine {

// The version that the Marten reports between an update and the restart that completes it.
inline constexpr std::string_view kRestartMarker = "0.0.0f0";

// The attributes that affect an update.
struct tUpdateMachine {
  tReading takesUpdates;
  bool hasMarten = false;
  tReading bios;    // the installed version
  tReading marten;  // ... if the machine has a Marten

  // Empty if the version cannot be read.
  [[nodiscard]] std::optional<std::string> biosVersion() const;
  [[nodiscard]] std::optional<std::string> martenVersion() const;
  // True if an earlier update still awaits the restart that completes it.
  [[nodiscard]] bool awaitsRestart() const;
};

[[nodiscard]] tUpdateMachine readUpdateMachine(const tController& controller);

}  // namespace nCommandLine

#endif
