#ifndef TESTS_COMPONENT_COMMANDLINE_TSCRIPTEDFACTS_H
#define TESTS_COMPONENT_COMMANDLINE_TSCRIPTEDFACTS_H

#include "tools/quenra/update/updateports.h"

namespace nTests {

// A machine that accepts updates, unless a test changes it.
class tScriptedFacts final : public nCommandLine::iUpdateFacts {
 public:
  [[nodiscard]] nCommandLine::tDriveProtection driveProtection() noexcept override {
    return protection;
  }
  [[nodiscard]] nCommandLine::tDriverStoreTool driverStoreTool() override { return tool; }
  [[nodiscard]] std::string temporaryFolder() override { return temporary; }
  [[nodiscard]] std::error_code temporaryFolderFailure() override { return temporaryFailure; }

  nCommandLine::tDriveProtection protection;
  nCommandLine::tDriverStoreTool tool;
  std::string temporary = "C:\\Temp";
  std::error_code temporaryFailure;
};

}  // namespace nTests

#endif
