#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <boost/uuid/entropy_error.hpp>

#include <algorithm>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <string>
#include <system_error>

#include "quenra_attributes.h"
#include "quenra_status.h"
#include "source/user/update/driverpackage.h"
#include "source/user/update/environmentstep.h"
#include "source/user/update/tmartenmarker.h"
#include "source/user/update/updatefiles.h"
#include "tests/builders/ttemporaryfolder.h"
#include "tests/component/session/sessiontest.h"
#include "tests/component/user/readingtest.h"
#include "tests/fakewindows/fakewindowstest.h"
#include "tests/fakewindows/faultplan.h"
#include "zoapal/protons/files/windowsu/folders.h"

namespace nTests {
namespace {

// The steps of an update that call the system: the driver-store tool, and the folder of its files.
using nFakeWindows::faultPlan;
using nFakeWindows::programs;
using nFakeWindows::tCall;
using nQUENRA1400::randomFolderName;
using nQUENRA1400::tUpdateFolder;
using testing::HasSubstr;
using testing::StartsWith;

// ---- The driver-store tool ----

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
  EXPECT_EQ(install(), sessionFailure(QUENRA_STATUS_UPDATE_ENVIRONMENT, 2331));
  EXPECT_EQ(faultPlan().callCount(tCall::createProcess), 0u);
}

TEST_F(DriverPackage, ToolWhoseAttributesCannotBeRead_CountsAsMissing) {
  faultPlan().failCall(tCall::getFileAttributes, 1, ERROR_ACCESS_DENIED);
  EXPECT_EQ(install(), sessionFailure(QUENRA_STATUS_UPDATE_ENVIRONMENT, 2331));
}

TEST_F(DriverPackage, FolderInPlaceOfTheTool_CountsAsMissing) {
  programs().install(kTool, 0, FILE_ATTRIBUTE_DIRECTORY | FILE_ATTRIBUTE_HIDDEN);
  EXPECT_EQ(install(), sessionFailure(QUENRA_STATUS_UPDATE_ENVIRONMENT, 2331));
}

TEST_F(DriverPackage, ToolThatCannotBeStarted_FailsWithInvalidImage) {
  faultPlan().failCall(tCall::createProcess, 1, ERROR_BAD_EXE_FORMAT);
  EXPECT_EQ(install(), sessionFailure(QUENRA_STATUS_INVALID_IMAGE, 2359));
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

// ---- The folder ----

using UpdateFolder = nFakeWindows::FakeWindowsTest;

TEST_F(UpdateFolder, NameWithTwoLeadingSeparatorsOfEitherKind_IsAbsolute) {
  const tUpdateFolder folder(randomFolderName());
  for (const std::u16string_view name :
       {u"\\\\srv\\share\\x.cap", u"//srv/share/x.cap", u"\\/srv/share/x.cap",
        u"/\\srv/share/x.cap", u"\\\\?\\C:\\x.cap", u"\\\\", u"//"}) {
    EXPECT_EQ(folder.pathOf(name), name);
  }
}

TEST_F(UpdateFolder, NameWithADriveLetter_IsAbsolute) {
  const tUpdateFolder folder(randomFolderName());
  for (const std::u16string_view name : {u"C:\\x.cap", u"z:/x.cap", u"D:x.cap", u"A:"}) {
    EXPECT_EQ(folder.pathOf(name), name);
  }
}

TEST_F(UpdateFolder, AnyOtherName_LiesInTheFolder) {
  const tUpdateFolder folder(randomFolderName());
  for (const std::u16string_view name : {u"x.cap", u"\\x.cap", u"/x.cap", u"sub\\\\x.cap",
                                         u"1:x.cap", u"\u00C4:x.cap", u"C", u"\\", u"x//y"}) {
    const std::u16string path = folder.pathOf(name);
    EXPECT_TRUE(path.ends_with(name));
    EXPECT_TRUE(path.starts_with(nQUENRA1400::nZOAPAL000::temporaryDirectory()));
    EXPECT_GT(path.size(), name.size() + 36);
  }
}

TEST_F(UpdateFolder, WithoutRandomBytes_ThrowsTheErrorOfTheGenerator) {
  faultPlan().failEveryCall(tCall::getRandom, ERROR_ACCESS_DENIED);
  try {
    static_cast<void>(randomFolderName());
    FAIL() << "nothing is thrown";
  } catch (const boost::uuids::entropy_error& error) {
    EXPECT_THAT(error.what(), HasSubstr("getrandom"));
  }
}

TEST_F(UpdateFolder, WithoutATemporaryDirectory_ThrowsTheErrorOfTheSystem) {
  const tTemporaryFolder missing;
  setenv("TMPDIR", (missing.path() / "none").c_str(), 1);
  try {
    const tUpdateFolder folder("name");
    ADD_FAILURE() << "nothing is thrown";
  } catch (const std::system_error& error) {
    EXPECT_EQ(error.code(), std::error_code(ERROR_FILE_NOT_FOUND, std::system_category()));
    EXPECT_THAT(error.what(), StartsWith("temp_directory_path"));
  }
  unsetenv("TMPDIR");
}

TEST_F(UpdateFolder, FileInItsPlace_ThrowsTheErrorOfTheSystem) {
  const tTemporaryFolder parent;
  setenv("TMPDIR", parent.path().c_str(), 1);
  tUpdateFolder folder("name");
  unsetenv("TMPDIR");
  std::ofstream(parent.path() / "name") << "a file";
  try {
    folder.create();
    FAIL() << "nothing is thrown";
  } catch (const std::system_error& error) {
    EXPECT_EQ(error.code(), std::error_code(ERROR_DIRECTORY, std::system_category()));
    EXPECT_THAT(error.what(), StartsWith("create_directories"));
  }
}

TEST_F(UpdateFolder, TemporaryDirectoryThatWasRemoved_IsCreatedAgain) {
  const tTemporaryFolder parent;
  const std::filesystem::path temporary = parent.path() / "a" / "b";
  std::filesystem::create_directories(temporary);
  setenv("TMPDIR", temporary.c_str(), 1);
  tUpdateFolder folder("name");
  unsetenv("TMPDIR");
  std::filesystem::remove_all(parent.path() / "a");
  folder.create();
  EXPECT_TRUE(std::filesystem::is_directory(temporary / "name"));
}

// ---- Held files ----

class HeldFiles : public nFakeWindows::FakeWindowsTest {
 protected:
  void SetUp() override {
    FakeWindowsTest::SetUp();
    for (const std::u16string& file : {first, second}) {
      std::ofstream(std::filesystem::path(file)) << "content";
    }
  }
  // By another process, sharing all access.
  static HANDLE openForWriting(const std::u16string& file) {
    const nFakeWindows::tOffTheRecord offTheRecord;
    return CreateFileW(reinterpret_cast<LPCWSTR>(file.c_str()), GENERIC_WRITE,
                       FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE, nullptr,
                       OPEN_EXISTING, FILE_ATTRIBUTE_NORMAL, nullptr);
  }
  static bool isHeld(const std::u16string& file) {
    const HANDLE handle = openForWriting(file);
    if (handle != INVALID_HANDLE_VALUE) {
      CloseHandle(handle);
    }
    return handle == INVALID_HANDLE_VALUE;
  }

  const tTemporaryFolder files_;
  const std::u16string first = (files_.path() / "first").u16string();
  const std::u16string second = (files_.path() / "second").u16string();
  tUpdateFolder folder{"name"};
};

TEST_F(HeldFiles, HoldingThatIsDeferred_HoldsEveryFileInTheEnd) {
  EXPECT_FALSE(folder.deferHolding()) << "no file is held";
  EXPECT_TRUE(folder.holdDeferred());
  EXPECT_TRUE(folder.hold(first));
  EXPECT_TRUE(isHeld(first));
  EXPECT_TRUE(folder.deferHolding());
  EXPECT_FALSE(folder.deferHolding()) << "deferred already";
  EXPECT_TRUE(folder.hold(second));
  EXPECT_FALSE(isHeld(first));
  EXPECT_FALSE(isHeld(second));
  EXPECT_TRUE(folder.holdDeferred());
  EXPECT_TRUE(isHeld(first));
  EXPECT_TRUE(isHeld(second));
  EXPECT_TRUE(folder.deferHolding()) << "a second time";
}

TEST_F(HeldFiles, DeferredFileThatAnotherProcessWrites_IsReported) {
  EXPECT_TRUE(folder.hold(first));
  EXPECT_TRUE(folder.deferHolding());
  const HANDLE writer = openForWriting(first);
  ASSERT_NE(writer, INVALID_HANDLE_VALUE);
  EXPECT_FALSE(folder.holdDeferred());
  CloseHandle(writer);
}

TEST_F(HeldFiles, FileThatIsMissing_IsNotReported) {
  EXPECT_TRUE(folder.hold((files_.path() / "missing").u16string()));
}

TEST_F(HeldFiles, EndOfTheUpdate_ReleasesTheFiles) {
  {
    tUpdateFolder ending("name");
    EXPECT_TRUE(ending.hold(first));
  }
  EXPECT_FALSE(isHeld(first));
}

using namespace std::string_literals;

constexpr uint32_t kVersion = QUENRA_ATTRIBUTE_FIRMWARE_VERSION;

class MartenText : public testing::Test {
 protected:
  std::string read() {
    zoerr::tOwnedStatus status;
    std::string text = nQUENRA1400::readMartenText(marten, kVersion, status);
    failure = failureOf(status);
    return text;
  }

  tScriptedMarten marten;
  tFailure failure{};  // of the last read
};

TEST_F(MartenText, WithNul_EndsBeforeIt) {
  marten.replyWithText(kVersion, "1.4.0f7");
  EXPECT_EQ(read(), "1.4.0f7");
  EXPECT_EQ(failure, (tFailure{QUENRA_STATUS_SUCCESS, 0}));
  EXPECT_THAT(marten.requests, testing::ElementsAre(tAttributeRequest{kVersion, 0, 0},
                                                    tAttributeRequest{kVersion, 8, 0}));
  marten.replies[kVersion] = {"1.4\0f7"s, 0};
  EXPECT_EQ(read(), "1.4");
}

// An update writes the version without a NUL.
TEST_F(MartenText, WithoutNul_IsComplete) {
  marten.replies[kVersion] = {"0.0.0f0", 0};
  EXPECT_EQ(read(), "0.0.0f0");
  EXPECT_EQ(failure, (tFailure{QUENRA_STATUS_SUCCESS, 0}));
}

TEST_F(MartenText, Empty_IsReadWithOneRequest) {
  marten.replies[kVersion] = {"", 0};
  EXPECT_EQ(read(), "");
  EXPECT_EQ(failure, (tFailure{QUENRA_STATUS_SUCCESS, 0}));
  EXPECT_EQ(marten.requests.size(), 1u);
}

TEST_F(MartenText, DriverWarning_IsReportedWithTheText) {
  marten.replies[kVersion] = {"1.4.0f7", 9};
  EXPECT_EQ(read(), "1.4.0f7");
  EXPECT_EQ(failure, (tFailure{9, 3}));
}

TEST_F(MartenText, DriverFailure_IsReportedWithoutAText) {
  EXPECT_EQ(read(), "");
  EXPECT_EQ(failure, (tFailure{QUENRA_STATUS_NOT_SUPPORTED, 1}));
  EXPECT_EQ(marten.requests.size(), 1u);
}

TEST_F(MartenText, ImplausibleSize_IsOutOfMemoryWithoutASecondRequest) {
  marten.replies[kVersion] = {std::string((1 << 20) + 1, 'x'), 0};
  EXPECT_EQ(read(), "");
  EXPECT_EQ(failure, (tFailure{QUENRA_STATUS_OUT_OF_MEMORY, 1701}));
  EXPECT_EQ(marten.requests.size(), 1u);
  marten.replies[kVersion].bytes.resize(1 << 20);
  EXPECT_EQ(read().size(), 1u << 20);
}

}  // namespace
}  // namespace nTests
