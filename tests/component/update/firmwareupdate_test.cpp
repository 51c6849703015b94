#include <cstring>

#include "protocol/controllerrequests.h"
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
  // Updates on a session of its own.
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

  // Puts a file in place of the temporary directory, so that no folder can be created in it.
  void blockFolders() {
    std::filesystem::remove_all(temporary);
    std::ofstream(temporary) << "a file";
  }
  void expectNoEffect() {
    EXPECT_EQ(marker(), kMarkerBefore);
    EXPECT_THAT(nSimulator::tSimulatedMachine().firmware(), IsEmpty());
    EXPECT_THAT(programs().started(), IsEmpty());
    for (const auto& entry : std::filesystem::recursive_directory_iterator(temporary)) {
      EXPECT_TRUE(entry.is_directory()) << entry.path();
    }
    expectNoLeak();
  }

 private:
  nQUENRA1400::nZOSMBIOS_1_1::cZoSmBiosWindowsProvider provider_;
};

// ---- Failures and their lines ----

TEST_F(FirmwareUpdate, RefusedMachineOrFlags_FailAtTheirLines) {
  EXPECT_EQ(run(completeImage(), 2), sessionFailure(QUENRA_STATUS_INVALID_VALUE, 1826));
  com()->useVolumes({{VT_I4, 1}});
  EXPECT_EQ(run(completeImage(), 2), sessionFailure(QUENRA_STATUS_DRIVE_PROTECTED, 1787))
      << "before the options";
  com()->useVolumes({});
  useEligibility(0, 0);
  EXPECT_EQ(run(completeImage(), 2), sessionFailure(QUENRA_STATUS_NOT_SUPPORTED, 1810));
  useEligibility(1, 2);
  EXPECT_EQ(run(completeImage()), sessionFailure(QUENRA_STATUS_NOT_SUPPORTED, 1810));
  tReferenceTable table;
  table.remove(0x9E);
  useTable(table);
  EXPECT_EQ(run(completeImage()), sessionFailure(QUENRA_STATUS_NO_CONTROLLER, 1798));
  table = tReferenceTable();
  table.structure(0x9E) = tSmbiosStructure(0x9E, 0x05).byte(4, 1);
  useTable(table);
  EXPECT_EQ(run(completeImage()), sessionFailure(QUENRA_STATUS_NO_CONTROLLER, 1798))
      << "the second byte is missing";
}

TEST_F(FirmwareUpdate, MartenSectionWithoutAMarten_FailsAtItsLine) {
  usePresence(1, 0);
  EXPECT_EQ(run(completeImage()), sessionFailure(QUENRA_STATUS_INVALID_IMAGE, 1868));
  EXPECT_EQ(run(completeImage(), 0), sessionFailure(QUENRA_STATUS_INVALID_IMAGE, 1868));
}

TEST_F(FirmwareUpdate, FileThatCannotBeOpened_FailsAtItsLineAndRemovesTheFolder) {
  EXPECT_EQ(run(firmwareImage({tFirmwareSection::capsule("no/such/folder.cap")})),
            sessionFailure(QUENRA_STATUS_UPDATE_ENVIRONMENT, 2978));
  EXPECT_TRUE(std::filesystem::is_empty(temporary));
  EXPECT_EQ(marker(), kMarkerBefore);
}

TEST_F(FirmwareUpdate, ToolThatIsMissing_FailsAtItsLineAndRestoresEverything) {
  programs().reset();
  EXPECT_EQ(run(completeImage()), sessionFailure(QUENRA_STATUS_UPDATE_ENVIRONMENT, 2331));
  EXPECT_TRUE(std::filesystem::is_empty(temporary));
  EXPECT_EQ(marker(), kMarkerBefore);
}

TEST_F(FirmwareUpdate, ToolThatCannotBeStarted_FailsAtItsLineAndRestoresEverything) {
  faultPlan().failCall(tCall::createProcess, 1, ERROR_ACCESS_DENIED);
  EXPECT_EQ(run(completeImage()), sessionFailure(QUENRA_STATUS_INVALID_IMAGE, 2359));
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

// ---- A system that fails ----

TEST_F(FirmwareUpdate, WithoutRandomBytes_FailsAtItsLineBeforeAnyEffect) {
  afterOpening = [] { faultPlan().failEveryCall(tCall::getRandom, ERROR_ACCESS_DENIED); };
  EXPECT_EQ(run(completeImage()), sessionFailure(QUENRA_STATUS_UPDATE_ENVIRONMENT, 1827));
  expectNoEffect();
}

TEST_F(FirmwareUpdate, WithoutATemporaryDirectory_FailsAtItsLineBeforeAnyEffect) {
  std::filesystem::remove_all(temporary);
  EXPECT_EQ(run(completeImage()), sessionFailure(QUENRA_STATUS_UPDATE_ENVIRONMENT, 1828));
  EXPECT_EQ(update(completeImage()), QUENRA_STATUS_UPDATE_ENVIRONMENT);
  std::filesystem::create_directory(temporary);
  expectNoEffect();
}

TEST_F(FirmwareUpdate, FolderThatCannotBeCreated_FailsAtItsLineAndRestoresTheMarker) {
  afterOpening = [this] {
    faultPlan().reset();
    // The version marker: read in two calls, and written.
    faultPlan().beforeCall(tCall::deviceIoControl, 3, [this] { blockFolders(); });
  };
  EXPECT_EQ(run(firmwareImage({tFirmwareSection::capsule("bios.cap")})),
            sessionFailure(QUENRA_STATUS_UPDATE_ENVIRONMENT, 2979));
  EXPECT_EQ(marker(), kMarkerBefore);
  expectNoLeak();
}

TEST_F(FirmwareUpdate, NameThatCannotBeConverted_FailsAtItsLineAndLeavesNoFile) {
  // The name is converted for the file and for the tool, in two calls each, and back to compare.
  for (const auto& [call, calls] : {std::pair<tCall, unsigned>{tCall::multiByteToWideChar, 8},
                                    {tCall::wideCharToMultiByte, 4}}) {
    for (unsigned nth = 1; nth <= calls; ++nth) {
      SCOPED_TRACE(nth);
      afterOpening = [nth, refused = call] {
        faultPlan().failCall(refused, nth, ERROR_NO_UNICODE_TRANSLATION);
      };
      EXPECT_EQ(run(firmwareImage({tFirmwareSection::capsule("driver.inf")})),
                sessionFailure(QUENRA_STATUS_UPDATE_ENVIRONMENT, 2980));
      faultPlan().reset();
      expectNoEffect();
    }
  }
}

TEST_F(FirmwareUpdate, TemporaryDirectoryOutsideTheCodePage_FailsAtTheLineOfTheConversion) {
  const std::filesystem::path outside = temporary / std::filesystem::path(u"\u0141");
  std::filesystem::create_directory(outside);
  setenv("TMPDIR", outside.c_str(), 1);
  EXPECT_EQ(run(firmwareImage({tFirmwareSection::capsule("driver.inf")})),
            sessionFailure(QUENRA_STATUS_UPDATE_ENVIRONMENT, 2980));
  expectNoEffect();
}

TEST_F(FirmwareUpdate, SystemThatIsShortOfMemory_FailsWithOutOfMemoryAtTheSameLines) {
  for (const uint32_t error : {8u, 1450u}) {  // ERROR_NOT_ENOUGH_MEMORY, ERROR_NO_SYSTEM_RESOURCES
    for (const auto& [call, line] : {std::pair<tCall, uint32_t>{tCall::getRandom, 1827},
                                     {tCall::getTempPath, 1828},
                                     {tCall::createDirectory, 2979},
                                     {tCall::multiByteToWideChar, 2980},
                                     {tCall::wideCharToMultiByte, 2980}}) {
      afterOpening = [error, refused = call] { faultPlan().failEveryCall(refused, error); };
      EXPECT_EQ(run(firmwareImage({tFirmwareSection::capsule("driver.inf")})),
                sessionFailure(QUENRA_STATUS_OUT_OF_MEMORY, line));
      faultPlan().reset();
      expectNoEffect();
    }
  }
}

// ---- The folder and other processes ----

TEST_F(FirmwareUpdate, Folder_IsCreatedOnceAndProtected) {
  EXPECT_EQ(
      run(firmwareImage({tFirmwareSection::capsule("a.cap"), tFirmwareSection::capsule("b.cap"),
                         tFirmwareSection::capsule("driver.inf")})),
      success());
  EXPECT_EQ(faultPlan().callCount(tCall::createDirectory), 1u);
  ASSERT_THAT(nFakeWindows::disk().protections(), testing::SizeIs(1));
  const nFakeWindows::tProtection protection = nFakeWindows::disk().protections()[0];
  EXPECT_TRUE(protection.isNew);
  EXPECT_EQ(protection.path, std::filesystem::directory_iterator(temporary)->path());
  EXPECT_THAT(protection.descriptor, testing::StartsWith("D:P("));
}

TEST_F(FirmwareUpdate, FolderThatCannotBeProtected_FailsAtTheLineOfTheFolder) {
  const std::pair<uint32_t, int32_t> kErrors[] = {
      {ERROR_ACCESS_DENIED, QUENRA_STATUS_UPDATE_ENVIRONMENT},
      {ERROR_NOT_ENOUGH_MEMORY, QUENRA_STATUS_OUT_OF_MEMORY}};
  for (const tCall call :
       {tCall::getTokenInformation, tCall::convertSecurityDescriptor, tCall::createDirectory,
        tCall::createDiskFile, tCall::getFileInformation}) {
    for (const auto& [error, code] : kErrors) {
      SCOPED_TRACE(nameOf(call));
      afterOpening = [call, refusal = error] { faultPlan().failCall(call, 1, refusal); };
      EXPECT_EQ(run(firmwareImage({tFirmwareSection::capsule("driver.inf")})),
                sessionFailure(code, 2979));
      faultPlan().reset();
      EXPECT_TRUE(std::filesystem::is_empty(temporary));
      expectNoEffect();
    }
  }
}

// Calls that open a file: the folder, then the payload.
TEST_F(FirmwareUpdate, FileThatAnotherProcessWrites_FailsLikeOneThatCannotBeOpened) {
  afterOpening = [] { faultPlan().failCall(tCall::createDiskFile, 2, ERROR_SHARING_VIOLATION); };
  EXPECT_EQ(run(firmwareImage({tFirmwareSection::capsule("driver.inf")})),
            sessionFailure(QUENRA_STATUS_UPDATE_ENVIRONMENT, 2978));
  faultPlan().reset();
  EXPECT_TRUE(std::filesystem::is_empty(temporary));
  expectNoEffect();
}

TEST_F(FirmwareUpdate, FileThatCannotBeHeldForAnotherReason_IsNotReported) {
  afterOpening = [] { faultPlan().failCall(tCall::createDiskFile, 2, ERROR_ACCESS_DENIED); };
  EXPECT_EQ(run(firmwareImage({tFirmwareSection::capsule("driver.inf")})), success());
  EXPECT_EQ(programs().started().size(), 1u);
}

TEST_F(FirmwareUpdate, SectionsWithOneFile_WriteItInTurnAndHoldItInTheEnd) {
  afterOpening = [] { faultPlan().reset(); };
  EXPECT_EQ(
      run(firmwareImage({tFirmwareSection::capsule("bios.cap").payload(firmwareBytes(50, 4)),
                         tFirmwareSection::capsule("./bios.cap").payload(firmwareBytes(20, 5))})),
      success());
  EXPECT_EQ(faultPlan().callCount(tCall::createNewFile), 3u) << "the second section twice";
  EXPECT_EQ(faultPlan().callCount(tCall::createDiskFile), 4u)
      << "the folder; held once, then twice";
  const std::filesystem::directory_entry folder = *std::filesystem::directory_iterator(temporary);
  EXPECT_EQ(std::filesystem::file_size(folder.path() / "bios.cap"), 20u);
}

TEST_F(FirmwareUpdate,
       FileOfSeveralSectionsThatAnotherProcessWrites_FailsLikeOneThatCannotBeOpened) {
  const auto deny = [] {
    faultPlan().reset();
    faultPlan().failCall(tCall::createDiskFile, 3, ERROR_SHARING_VIOLATION);
  };
  afterOpening = deny;
  EXPECT_EQ(run(firmwareImage({tFirmwareSection::capsule("driver.inf"),
                               tFirmwareSection::capsule("driver.inf")})),
            sessionFailure(QUENRA_STATUS_UPDATE_ENVIRONMENT, 2978));
  faultPlan().reset();
  EXPECT_TRUE(std::filesystem::is_empty(temporary));
  expectNoEffect();
}

TEST_F(FirmwareUpdate, PayloadWithoutBytes_CreatesAnEmptyFile) {
  EXPECT_EQ(run(firmwareImage({tFirmwareSection::capsule("a.cap").payload({})})), success());
  const std::filesystem::directory_entry folder = *std::filesystem::directory_iterator(temporary);
  EXPECT_TRUE(std::filesystem::is_empty(folder.path() / "a.cap"));
  EXPECT_EQ(faultPlan().callCount(tCall::writeFile), 0u);
}

TEST_F(FirmwareUpdate, FileThatCannotBeWritten_IsNotReported) {
  afterOpening = [] { faultPlan().failEveryCall(tCall::writeFile, ERROR_DISK_FULL); };
  EXPECT_EQ(run(firmwareImage({tFirmwareSection::capsule("driver.inf")})), success());
  EXPECT_EQ(programs().started().size(), 1u);
}

TEST_F(FirmwareUpdate, FileThatIsReadOnly_FailsLikeOneThatCannotBeOpened) {
  const std::filesystem::path file = temporary / "beside.cap";
  std::ofstream(file) << "content";
  std::filesystem::permissions(file, std::filesystem::perms::owner_read);
  EXPECT_EQ(run(firmwareImage({tFirmwareSection::capsule("../beside.cap")})),
            sessionFailure(QUENRA_STATUS_UPDATE_ENVIRONMENT, 2978));
  EXPECT_EQ(std::filesystem::file_size(file), 7u);
}

TEST_F(FirmwareUpdate, NameOfADevice_IsOpenedForWritingOnly) {
  EXPECT_EQ(run(firmwareImage({tFirmwareSection::capsule("//dev/null")})), success());
  EXPECT_EQ(faultPlan().callCount(tCall::createDiskFile), 1u) << "the folder";
}

TEST_F(FirmwareUpdate, FileInATemporaryDirectoryOnAnotherMachine_IsHeld) {
  setenv("TMPDIR", ("/" + temporary.string()).c_str(), 1);
  EXPECT_EQ(run(firmwareImage({tFirmwareSection::capsule("driver.inf")})), success());
  EXPECT_EQ(faultPlan().callCount(tCall::createDiskFile), 2u) << "the folder and its file";
}

// ---- File names ----

TEST_F(FirmwareUpdate, NameInTheCodePage_IsOpenedInTheCodePage) {
  EXPECT_EQ(run(firmwareImage({tFirmwareSection::capsule("b\xE9 c.cap")})), success());
  const std::filesystem::directory_entry folder = *std::filesystem::directory_iterator(temporary);
  EXPECT_TRUE(std::filesystem::exists(folder.path() / "b\xE9 c.cap"));
}

TEST_F(FirmwareUpdate, NameWithADriveLetter_IsAPathOfItsOwn) {
  std::filesystem::current_path(temporary);
  EXPECT_EQ(run(firmwareImage({tFirmwareSection::capsule("D:x.cap")})), success());
  EXPECT_TRUE(std::filesystem::exists(temporary / "D:x.cap"));
  std::filesystem::current_path("/");
}

TEST_F(FirmwareUpdate, NameWithOneLeadingSeparator_StaysInTheFolder) {
  EXPECT_EQ(run(firmwareImage({tFirmwareSection::capsule("/x.cap")})), success());
  const std::filesystem::directory_entry folder = *std::filesystem::directory_iterator(temporary);
  EXPECT_TRUE(std::filesystem::exists(folder.path() / "x.cap"));
}

TEST_F(FirmwareUpdate, InfAnywhereInAName_MakesADriverPackage) {
  EXPECT_EQ(run(firmwareImage({tFirmwareSection::capsule("a.information.cap"),
                               tFirmwareSection::capsule("b.INF"),
                               tFirmwareSection::capsule("inf.cap")})),
            success());
  ASSERT_EQ(programs().started().size(), 1u);
  EXPECT_THAT(programs().started()[0].commandLine, testing::HasSubstr("a.information.cap"));
}

// ---- The versions installed ----

TEST_F(FirmwareUpdate, MissingBiosVersion_IsOlderThanAny) {
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
  EXPECT_EQ(run(completeImage(), 0).code, QUENRA_STATUS_NOT_SUPPORTED);
  EXPECT_THAT(nSimulator::tSimulatedMachine().firmware(), IsEmpty());
}

TEST_F(FirmwareUpdate, EmptyMarker_IsRestoredEmpty) {
  setMarker("");
  programs().reset();
  EXPECT_EQ(run(completeImage()).code, QUENRA_STATUS_UPDATE_ENVIRONMENT);
  EXPECT_EQ(marker(), "");
}

TEST_F(FirmwareUpdate, MarkerOfAnImplausibleSize_FailsWithOutOfMemory) {
  tSimulatorScript script{};
  script.interfaceKind = kSimulatorInterfaceMarten;
  script.requestCode = REQUEST_GET_ATTRIBUTE;
  script.action = kSimulatorActionReply;
  script.replySize = 8;
  const uint32_t size = 0xFFFFFFFF;
  const int32_t tooSmall = QUENRA_STATUS_BUFFER_TOO_SMALL;
  std::memcpy(script.reply, &size, 4);
  std::memcpy(script.reply + 4, &tooSmall, 4);
  nSimulator::tSimulatedMachine().addScript(script);
  EXPECT_EQ(update(completeImage()), QUENRA_STATUS_OUT_OF_MEMORY);
}

// ---- Each call fails in turn ----

TEST_F(FirmwareUpdate, EachWindowsCallThatFails_LeavesNothingHalfDone) {
  ASSERT_EQ(update(completeImage()), 0);
  setMarker(kMarkerBefore);
  faultPlan().reset();
  ASSERT_EQ(update(completeImage()), 0);
  const unsigned calls = faultPlan().callCount();
  ASSERT_GT(calls, 40u);
  unsigned failures = 0;
  for (unsigned nth = 1; nth <= calls; ++nth) {
    SCOPED_TRACE(nth);
    faultPlan().reset();
    setMarker(kMarkerBefore);
    faultPlan().reset();
    faultPlan().failAnyCall(nth, kRefused);
    const int32_t code = update(completeImage());
    faultPlan().reset();
    EXPECT_THAT(nFakeWindows::objects().open(), IsEmpty());
    if (code >= 0) {
      EXPECT_EQ(marker(), kMarkerAfter);
    } else {
      ++failures;
      EXPECT_EQ(marker(), kMarkerBefore) << code;
    }
  }
  EXPECT_GT(failures, 20u);
  EXPECT_EQ(update(completeImage()), 0);
  expectNoLeak();
}

}  // namespace
}  // namespace nTests
