#ifndef TESTS_COMPONENT_COMMANDLINE_TSCRIPTEDFACTS_H
#define TESTS_COMPONENT_COMMANDLINE_TSCRIPTEDFACTS_H

#include "tools/quenra/update/iupdatefacts.h"

namespace nTests {

// A machine that may be updated, unless told otherwise.
class tScriptedFacts final : public nCommandLine::iUpdateFacts {
 public:
  [[nodiscard]] nCommandLine::tDriveProtection driveProtection() noexcept override {
    return protection;
  }
  [[nodiscard]] bool hasDriverStoreTool() noexcept override { return hasTool; }

  nCommandLine::tDriveProtection protection;
  bool hasTool = true;
};

}  // namespace nTests

#endif
