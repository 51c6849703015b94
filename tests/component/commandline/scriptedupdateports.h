// Doubles of the machine and of the lock that an update uses.
#ifndef TESTS_COMPONENT_COMMANDLINE_SCRIPTEDUPDATEPORTS_H
#define TESTS_COMPONENT_COMMANDLINE_SCRIPTEDUPDATEPORTS_H

#include <deque>

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

// A lock that no other update holds, unless a test scripts its states.
class tScriptedLock final : public nCommandLine::iUpdateLock {
 public:
  [[nodiscard]] nCommandLine::tLockState acquire(
      std::chrono::milliseconds /*timeout*/) noexcept override {
    using nCommandLine::tLockState;
    tLockState state = tLockState::acquired;
    if (!states.empty()) {
      state = states.front();
      states.pop_front();
    }
    held += state == tLockState::acquired || state == tLockState::abandoned ? 1 : 0;
    return state;
  }
  [[nodiscard]] std::error_code failure() const noexcept override {
    return std::make_error_code(std::errc::permission_denied);
  }
  void release() noexcept override { --held; }

  std::deque<nCommandLine::tLockState> states;  // results of the next calls; acquired after them
  int held = 0;
};

}  // namespace nTests

#endif
