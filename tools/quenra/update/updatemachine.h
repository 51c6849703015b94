#ifndef TOOLS_QUENRA_UPDATE_UPDATEMACHINE_H
#define TOOLS_QUENRA_UPDATE_UPDATEMACHINE_H

#include <cstdint>
#include <optional>
#include <string>

#include "tools/quenra/reading/tcontroller.h"

namespace nCommandLine {

// What a controller tells that decides about an update.
struct tUpdateMachine {
  tReading takesUpdates;
  bool hasMarten = false;
  tReading bios;    // the installed version
  tReading marten;  // ... of a machine that has one

  // Nothing where it cannot be read.
  [[nodiscard]] std::optional<std::string> biosVersion() const;
  [[nodiscard]] std::optional<std::string> martenVersion() const;
};

[[nodiscard]] tUpdateMachine readUpdateMachine(const tController& controller);

}  // namespace nCommandLine

#endif
