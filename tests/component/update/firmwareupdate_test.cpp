#include <cstring>

#include "tests/component/update/updatetest.h"

namespace nTests {
namespace {

using nFakeWindows::com;
using nFakeWindows::faultPlan;
using nFakeWindows::programs;
using nFakeWindows::tCall;
using nQUENRA1400::tControllerUserSession;
using testing::IsEmpty;

constexpr uint32_t kRefused = 0x80070005;  // also as a result of COM

class FirmwareUpdate : public UpdateTest {
 protected:
  // On a session of its own: where and how it failed.
  tOutcome run(const std::string& image, uint32_t flags = 1) {
    zoerr::tOwnedStatus status;
    tControllerUserSession session(provider_, status);
    EXPECT_EQ(status.code, 0);
    afterOpening();
    session.updateFirmware(image.data(), image.size(), flags, status);
    return outcomeOf(status);
  }
  // Runs once the session is open.
  std::function<void()> afterOpening = [] {};

  // From the next call that hands a value to the driver on, no folder can be made: there is a file
  // in the place of the temporary directory.
  void blockFolders() {
    std::filesystem::remove_all(temporary);
    std::ofstream(temporary) << "in the way";
  }

 private:
  nQUENRA1400::nZOSMBIOS_1_1::cZoSmBiosWindowsProvider provider_;
};

// ---- Where it fails ----

TEST_F(FirmwareUpdate, Failures_TellTheirPlace) {
  EXPECT_EQ(run(wholeImage(), 2), sessionFailure(-26935, 1826));
  com()->useVolumes({{VT_I4, 1}});
  EXPECT_EQ(run(wholeImage(), 2), sessionFailure(-26942, 1787)) << "before the options";
  com()->useVolumes({});
  useEligibility(0, 0);
  EXPECT_EQ(run(wholeImage(), 2), sessionFailure(-26934, 1810));
  useEligibility(1, 2);
  EXPECT_EQ(run(wholeImage()), sessionFailure(-26934, 1810));
  tReferenceTable table;
  table.remove(0x9E);
  useTable(table);
  EXPECT_EQ(run(wholeImage()), sessionFailure(-26932, 1798));
  table = tReferenceTable();
  table.structure(0x9E) = tSmbiosStructure(0x9E, 0x05).byte(4, 1);
  useTable(table);
  EXPECT_EQ(run(wholeImage()), sessionFailure(-26932, 1798)) << "the second byte is missing";
}

TEST_F(FirmwareUpdate, MartenSectionWithoutAMarten_IsToldAtLine1868) {
  usePresence(1, 0);
  EXPECT_EQ(run(wholeImage()), sessionFailure(-26938, 1868));
  EXPECT_EQ(run(wholeImage(), 0), sessionFailure(-26938, 1868));
}

TEST_F(FirmwareUpdate, FileThatCannotBeOpened_IsToldAtLine2978) {
  EXPECT_EQ(run(firmwareImage({tFirmwareSection::capsule("no/such/folder.cap")})),
            sessionFailure(-26937, 2978));
  EXPECT_TRUE(std::filesystem::is_empty(temporary));
  EXPECT_EQ(marker(), kMarkerBefore);
}

TEST_F(FirmwareUpdate, ToolThatIsMissing_IsToldAtLine2331AndEverythingIsTakenBack) {
  programs().reset();
  EXPECT_EQ(run(wholeImage()), sessionFailure(-26937, 2331));
  EXPECT_TRUE(std::filesystem::is_empty(temporary));
  EXPECT_EQ(marker(), kMarkerBefore);
}

TEST_F(FirmwareUpdate, ToolThatCannotBeStarted_IsToldAtLine2359AndEverythingIsTakenBack) {
  faultPlan().failCall(tCall::createProcess, 1, ERROR_ACCESS_DENIED);
  EXPECT_EQ(run(wholeImage()), sessionFailure(-26938, 2359));
  EXPECT_TRUE(std::filesystem::is_empty(temporary));
  EXPECT_EQ(marker(), kMarkerBefore);
}

TEST_F(FirmwareUpdate, StatusInError_DoesNothing) {
  zoerr::tOwnedStatus status;
  nQUENRA1400::nZOSMBIOS_1_1::cZoSmBiosWindowsProvider provider;
  tControllerUserSession session(provider, status);
  status.set(-1, {"test", 1});
  faultPlan().reset();
  session.updateFirmware(nullptr, 0, 9, status);
  EXPECT_EQ(status.code, -1);
  EXPECT_EQ(faultPlan().callCount(), 0u);
}

// ---- Exceptions ----

TEST_F(FirmwareUpdate, FolderThatCannotBeMade_IsAFilesystemErrorAndTheMarkerIsGivenBack) {
  afterOpening = [this] {
    faultPlan().reset();
    // The version marker: read in two calls, and written.
    faultPlan().beforeCall(tCall::deviceIoControl, 3, [this] { blockFolders(); });
  };
  try {
    run(firmwareImage({tFirmwareSection::capsule("bios.cap")}));
    FAIL() << "nothing is thrown";
  } catch (const std::filesystem::filesystem_error& error) {
    EXPECT_THAT(error.what(), testing::HasSubstr("create_directories"));
  }
  EXPECT_EQ(marker(), kMarkerBefore);
}

TEST_F(FirmwareUpdate, WithoutATemporaryDirectory_IsAFilesystemErrorBeforeAnythingIsChanged) {
  std::filesystem::remove_all(temporary);
  try {
    run(wholeImage());
    FAIL() << "nothing is thrown";
  } catch (const std::filesystem::filesystem_error& error) {
    EXPECT_THAT(error.what(), testing::HasSubstr("temp_directory_path"));
  }
  EXPECT_EQ(update(wholeImage()), QUENRA_STATUS_INTERNAL_ERROR) << "exports throw nothing";
  EXPECT_EQ(marker(), kMarkerBefore);
}

TEST_F(FirmwareUpdate, NameThatCannotBeConverted_StopsItBeforeTheToolIsStartedOnAnother) {
  // Converted for its file and for the tool, and each time measured first.
  for (unsigned nth = 1; nth <= 4; ++nth) {
    for (const tCall call : {tCall::multiByteToWideChar, tCall::wideCharToMultiByte}) {
      faultPlan().reset();
      faultPlan().failCall(call, nth, 1113 /* ERROR_NO_UNICODE_TRANSLATION */);
      EXPECT_EQ(update(wholeImage()), QUENRA_STATUS_INTERNAL_ERROR);
      EXPECT_EQ(programs().started().size(), 0u);
      EXPECT_EQ(marker(), kMarkerBefore);
    }
  }
}

// ---- File names ----

TEST_F(FirmwareUpdate, NameInTheCodePage_IsOpenedInTheCodePage) {
  EXPECT_EQ(run(firmwareImage({tFirmwareSection::capsule("b\xE9 c.cap")})), success());
  const std::filesystem::directory_entry folder = *std::filesystem::directory_iterator(temporary);
  EXPECT_TRUE(std::filesystem::exists(folder.path() / "b\xE9 c.cap"));
}

TEST_F(FirmwareUpdate, NameWithADriveLetter_StandsForItself) {
  std::filesystem::current_path(temporary);
  EXPECT_EQ(run(firmwareImage({tFirmwareSection::capsule("D:x.cap")})), success());
  EXPECT_TRUE(std::filesystem::exists(temporary / "D:x.cap"));
  std::filesystem::current_path("/");
}

TEST_F(FirmwareUpdate, NameWithASeparatorInFront_StaysInTheFolder) {
  EXPECT_EQ(run(firmwareImage({tFirmwareSection::capsule("/x.cap")})), success());
  const std::filesystem::directory_entry folder = *std::filesystem::directory_iterator(temporary);
  EXPECT_TRUE(std::filesystem::exists(folder.path() / "x.cap"));
}

TEST_F(FirmwareUpdate, PackageIsKnownByItsNameAnywhere) {
  EXPECT_EQ(run(firmwareImage({tFirmwareSection::capsule("a.information.cap"),
                               tFirmwareSection::capsule("b.INF"),
                               tFirmwareSection::capsule("inf.cap")})),
            success());
  ASSERT_EQ(programs().started().size(), 1u);
  EXPECT_THAT(programs().started()[0].commandLine, testing::HasSubstr("a.information.cap"));
}

// ---- The versions installed ----

TEST_F(FirmwareUpdate, BiosVersionThatIsNotThere_IsOlderThanAny) {
  tReferenceTable table;
  table.structure(0x9E) = tSmbiosStructure(0x9E, 0x06).byte(4, 1).byte(5, 0);
  table.remove(0x00);
  useTable(table);
  const tFirmwareSection bios = tFirmwareSection("BIOS").version("0.0.0d1");
  EXPECT_EQ(run(firmwareImage({bios}), 0), success());
  EXPECT_EQ(nSimulator::tSimulatedMachine().firmware().size(), 1u);
}

TEST_F(FirmwareUpdate, MartenVersionThatCannotBeRead_StopsTheUpdate) {
  nSimulator::tSimulatedMachine().removeAttribute(kSimulatorInterfaceMarten, kMarker);
  EXPECT_EQ(run(wholeImage(), 0).code, -26934);
  EXPECT_THAT(nSimulator::tSimulatedMachine().firmware(), IsEmpty());
}

TEST_F(FirmwareUpdate, MarkerThatIsEmpty_IsGivenBackEmpty) {
  setMarker("");
  programs().reset();
  EXPECT_EQ(run(wholeImage()).code, -26937);
  EXPECT_EQ(marker(), "");
}

TEST_F(FirmwareUpdate, MarkerOfAnIncredibleSize_IsNotBelieved) {
  tSimulatorScript script{};
  script.interfaceKind = kSimulatorInterfaceMarten;
  script.requestCode = REQUEST_GET_ATTRIBUTE;
  script.action = kSimulatorActionReply;
  script.replySize = 8;
  const uint32_t size = 0xFFFFFFFF;
  const int32_t tooSmall = -26930;
  std::memcpy(script.reply, &size, 4);
  std::memcpy(script.reply + 4, &tooSmall, 4);
  nSimulator::tSimulatedMachine().addScript(script);
  EXPECT_EQ(update(wholeImage()), QUENRA_STATUS_OUT_OF_MEMORY);
}

// ---- Everything fails in turn ----

TEST_F(FirmwareUpdate, EachWindowsCallThatFails_LeavesNothingHalfDone) {
  ASSERT_EQ(update(wholeImage()), 0);
  setMarker(kMarkerBefore);
  faultPlan().reset();
  ASSERT_EQ(update(wholeImage()), 0);
  const unsigned calls = faultPlan().callCount();
  ASSERT_GT(calls, 40u);
  unsigned failures = 0;
  for (unsigned nth = 1; nth <= calls; ++nth) {
    SCOPED_TRACE(nth);
    faultPlan().reset();
    setMarker(kMarkerBefore);
    faultPlan().reset();
    faultPlan().failAnyCall(nth, kRefused);
    const int32_t code = update(wholeImage());
    faultPlan().reset();
    EXPECT_THAT(nFakeWindows::objects().open(), IsEmpty());
    if (code >= 0) {
      EXPECT_EQ(marker(), kMarkerAfter);
    } else {
      ++failures;
      // The text, with or without the NUL that its first owner gave it.
      EXPECT_EQ(marker(), kMarkerBefore) << code;
    }
  }
  EXPECT_GT(failures, 20u);
  EXPECT_EQ(update(wholeImage()), 0);
  expectNoLeak();
}

}  // namespace
}  // namespace nTests
