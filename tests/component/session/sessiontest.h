// What the tests of opening on the fake Windows share.
#ifndef TESTS_COMPONENT_SESSION_SESSIONTEST_H
#define TESTS_COMPONENT_SESSION_SESSIONTEST_H

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <memory>
#include <string>

#include "quenra.h"
#include "simulator/control/tsimulatedmachine.h"
#include "source/user/session/tcontrollerusersession.h"
#include "tests/builders/referencetable.h"
#include "tests/fakewindows/fakewindowstest.h"
#include "zosmbios/czosmbioswindowsprovider.h"

#if defined(__has_feature)
#if __has_feature(address_sanitizer)
#include <sanitizer/lsan_interface.h>
#define TESTS_CAN_FIND_LEAKS 1
#endif
#endif

namespace nTests {

// Where and how something failed, as its status tells.
struct tOutcome {
  int32_t code = 0;
  std::string file;  // without its folders
  uint32_t line = 0;
  bool operator==(const tOutcome&) const = default;
};
inline void PrintTo(const tOutcome& outcome, std::ostream* out) {
  *out << outcome.code << " at " << outcome.file << " line " << outcome.line;
}

inline tOutcome outcomeOf(const zoerr::Status& status) {
  tOutcome outcome{status.code, "", 0};
  const std::string text = status.description == nullptr ? "" : status.description;
  if (const size_t file = text.find("\"file\":\""); file != std::string::npos) {
    const std::string path = text.substr(file + 8, text.find('"', file + 8) - file - 8);
    outcome.file = path.substr(path.find_last_of('\\') + 1);
  }
  if (const size_t line = text.find("\"line\":"); line != std::string::npos) {
    outcome.line = static_cast<uint32_t>(std::stoul(text.substr(line + 7)));
  }
  return outcome;
}

inline tOutcome success() {
  return {};
}
inline tOutcome sessionFailure(int32_t code, uint32_t line) {
  return {code, "tControllerUserSession", line};
}

inline void expectNoLeak() {
#ifdef TESTS_CAN_FIND_LEAKS
  EXPECT_EQ(__lsan_do_recoverable_leak_check(), 0) << "memory was leaked";
#endif
}

class SessionTest : public nFakeWindows::FakeWindowsTest {
 protected:
  void SetUp() override {
    FakeWindowsTest::SetUp();
    useTable(tReferenceTable());
    nFakeWindows::faultPlan().reset();
  }

  static void useTable(const tReferenceTable& table) {
    nSimulator::tSimulatedMachine machine;
    machine.setTable(table.build());
  }
  static void usePresence(uint32_t controllers, uint32_t martens) {
    nSimulator::tSimulatedMachine machine;
    machine.setPresence({controllers, martens, 1});
  }

  // Opens and closes a session of its own.
  tOutcome open() {
    zoerr::tOwnedStatus status;
    const nQUENRA1400::tControllerUserSession session(provider_, status);
    return outcomeOf(status);
  }

 private:
  nQUENRA1400::nZOSMBIOS_1_1::cZoSmBiosWindowsProvider provider_;
};

}  // namespace nTests

#endif
