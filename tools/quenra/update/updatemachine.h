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

// The attributes that decide about an update.
struct tUpdateMachine {
  tReading takesUpdates;
  bool hasMarten = false;
  tReading bios;    // the installed version
  tReading marten;  // ... of a machine that has one

  // Nothing where it cannot be read.
  [[nodiscard]] std::optional<std::string> biosVersion() const;
  [[nodiscard]] std::optional<std::string> martenVersion() const;
  // True if the Marten has not started the firmware of an earlier update yet.
  [[nodiscard]] bool awaitsRestart() const;
};

[[nodiscard]] tUpdateMachine readUpdateMachine(const tController& controller);

}  // namespace nCommandLine

#endif
