#include "source/user/update/driverpackage.h"

#include <algorithm>

#include "tests/component/session/sessiontest.h"

namespace nTests {
namespace {

using nFakeWindows::faultPlan;
using nFakeWindows::programs;
using nFakeWindows::tCall;

constexpr const char* kTool = "C:\\Windows\\Sysnative\\pnputil.exe";

class DriverPackage : public nFakeWindows::FakeWindowsTest {
 protected:
  void SetUp() override {
    FakeWindowsTest::SetUp();
    programs().install(kTool);
  }

  static tOutcome install(const std::string& path = "C:\\temp\\driver.inf") {
    zoerr::tOwnedStatus status;
    nQUENRA1400::installDriverPackage(path, status);
    return outcomeOf(status);
  }
  static std::vector<std::string> closed() {
    std::vector<std::string> kinds;
    for (const nFakeWindows::tCallRecord& record : faultPlan().calls()) {
      if (record.call == tCall::closeHandle) {
        kinds.push_back(record.argument);
      }
    }
    return kinds;
  }
};

TEST_F(DriverPackage, Tool_IsStartedWithItsCommandLine) {
  EXPECT_EQ(install(), success());
  const auto started = programs().started();
  ASSERT_EQ(started.size(), 1u);
  EXPECT_EQ(started[0].path, kTool);
  EXPECT_EQ(started[0].commandLine, " /add-driver C:\\temp\\driver.inf /install");
  EXPECT_TRUE(started[0].inheritsHandles);
  EXPECT_EQ(started[0].flags, DWORD{CREATE_NO_WINDOW});
}

TEST_F(DriverPackage, PathWithBlanksAndOtherCharacters_IsPassedUnchanged) {
  EXPECT_EQ(install("C:\\my folder\\dr\xE9 \"x\".inf"), success());
  EXPECT_EQ(programs().started().at(0).commandLine,
            " /add-driver C:\\my folder\\dr\xE9 \"x\".inf /install");
}

TEST_F(DriverPackage, Tool_IsWaitedForFiveMinutesAndItsHandlesAreClosed) {
  EXPECT_EQ(install(), success());
  const auto calls = faultPlan().calls();
  const auto wait = std::find_if(calls.begin(), calls.end(), [](const auto& record) {
    return record.call == tCall::waitForSingleObject;
  });
  ASSERT_NE(wait, calls.end());
  EXPECT_EQ(wait->argument, "300000");
  EXPECT_THAT(closed(), testing::UnorderedElementsAre("process", "thread"));
}

TEST_F(DriverPackage, ToolThatIsTooSlow_CountsAsDone) {
  programs().install(kTool, 300001);
  EXPECT_EQ(install(), success());
  EXPECT_THAT(closed(), testing::UnorderedElementsAre("process", "thread"));
}

TEST_F(DriverPackage, WaitThatFails_CountsAsDone) {
  faultPlan().failCall(tCall::waitForSingleObject, 1, ERROR_ACCESS_DENIED);
  EXPECT_EQ(install(), success());
  EXPECT_THAT(closed(), testing::UnorderedElementsAre("process", "thread"));
}

TEST_F(DriverPackage, ToolThatIsMissing_FailsWithUpdateEnvironment) {
  programs().reset();
  EXPECT_EQ(install(), sessionFailure(-26937, 2331));
  EXPECT_EQ(faultPlan().callCount(tCall::createProcess), 0u);
}

TEST_F(DriverPackage, ToolWhoseAttributesCannotBeRead_CountsAsMissing) {
  faultPlan().failCall(tCall::getFileAttributes, 1, ERROR_ACCESS_DENIED);
  EXPECT_EQ(install(), sessionFailure(-26937, 2331));
}

TEST_F(DriverPackage, FolderInPlaceOfTheTool_CountsAsMissing) {
  programs().install(kTool, 0, FILE_ATTRIBUTE_DIRECTORY | FILE_ATTRIBUTE_HIDDEN);
  EXPECT_EQ(install(), sessionFailure(-26937, 2331));
}

TEST_F(DriverPackage, ToolThatCannotBeStarted_FailsWithInvalidImage) {
  faultPlan().failCall(tCall::createProcess, 1, ERROR_BAD_EXE_FORMAT);
  EXPECT_EQ(install(), sessionFailure(-26938, 2359));
  EXPECT_EQ(faultPlan().callCount(tCall::waitForSingleObject), 0u);
  EXPECT_EQ(faultPlan().callCount(tCall::closeHandle), 0u);
}

TEST_F(DriverPackage, StatusThatHoldsAnError_IsLeftAlone) {
  zoerr::tOwnedStatus status;
  status.code = -5;
  nQUENRA1400::installDriverPackage("x.inf", status);
  EXPECT_EQ(status.code, -5);
  EXPECT_EQ(faultPlan().callCount(), 0u);
}

}  // namespace
}  // namespace nTests
