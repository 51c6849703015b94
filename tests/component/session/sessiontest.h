// The fixture of the tests of opening on the fake Windows.
#ifndef TESTS_COMPONENT_SESSION_SESSIONTEST_H
#define TESTS_COMPONENT_SESSION_SESSIONTEST_H

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <memory>
#include <string>
#include <string_view>

#include "quenra.h"
#include "simulator/control/tsimulatedmachine.h"
#include "source/user/session/tcontrollerusersession.h"
#include "tests/builders/smbiostablebuilder.h"
#include "tests/fakewindows/fakewindowstest.h"
#include "zosmbios/czosmbioswindowsprovider.h"

#if defined(__has_feature)
#if __has_feature(address_sanitizer)
#include <sanitizer/lsan_interface.h>
#define TESTS_CAN_FIND_LEAKS 1
#endif
#endif

namespace nTests {

// The code and the location in a status.
struct tOutcome {
  int32_t code = 0;
  std::string file;  // without its folders
  uint32_t line = 0;
  bool operator==(const tOutcome&) const = default;
};
inline void PrintTo(const tOutcome& outcome, std::ostream* out) {
  *out << outcome.code << " at " << outcome.file << " line " << outcome.line;
}

// The test fails unless the description, if any, has the members file, line and component as the
// library writes them, the session's file with its folders. Any thread: a regular expression would
// change the locale of the process.
inline tOutcome outcomeOf(const zoerr::Status& status) {
  const std::string text = status.description == nullptr ? "" : status.description;
  if (text.empty()) {
    return {status.code, "", 0};
  }
  constexpr std::string_view kBeforeFile = R"({"file":")";
  constexpr std::string_view kBeforeLine = R"(","line":)";
  const size_t middle = text.find(kBeforeLine);
  if (!text.starts_with(kBeforeFile) || middle == std::string::npos) {
    ADD_FAILURE() << "not a location: " << text;
    return {status.code, "", 0};
  }
  const std::string path = text.substr(kBeforeFile.size(), middle - kBeforeFile.size());
  const auto line = static_cast<uint32_t>(std::stoul(text.substr(middle + kBeforeLine.size())));
  EXPECT_EQ(text, std::string(kBeforeFile) + path + std::string(kBeforeLine) +
                      std::to_string(line) + R"(,"component":"quenra"})");
  const std::string file = path.substr(path.find_last_of('\\') + 1);
  if (file == "tControllerUserSession") {
    EXPECT_EQ(path, R"(source\\user\\tControllerUserSession)");
  }
  return {status.code, file, line};
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
