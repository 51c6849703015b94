// Updates that are applied, refused or fail.
#include <algorithm>
#include <chrono>
#include <sstream>
#include <thread>

#include "tests/component/commandline/updateverbtest.h"
#include "tools/quenra/update/updaterun.h"

namespace nTests {
namespace {

using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::Not;
using testing::StartsWith;
using tUpdate = tScriptedLibrary::tUpdate;

TEST_F(UpdateVerb, FileWithoutASection_IsRefusedBeforeTheControllerIsOpened) {
  const std::string path = folder_.file("empty.fwi", "");
  for (const tWords& words : {tWords{"update", path}, tWords{"update", "--only-newer", path},
                              tWords{"update", "--plan", path}}) {
    const tRun result = run(words);
    EXPECT_EQ(result.exitCode, 1);
    EXPECT_THAT(result.out, IsEmpty());
    EXPECT_THAT(result.error,
                StartsWith("quenra: '" + path + "' is not a firmware image: the file is empty\n"));
  }
  EXPECT_EQ(library_.opens, 0);
  EXPECT_THAT(library_.updates, IsEmpty());
}

// ---- Updates ----

TEST_F(UpdateVerb, Image_GoesToTheLibraryAsItIs) {
  const tSections sections{section("MARTEN", "1.4.2f7"), section("BIOS", "1.0.0f0")};
  const std::string path = fileOf(sections);
  const tRun result = run({"update", path});
  EXPECT_EQ(result.exitCode, 0);
  EXPECT_THAT(library_.updates, ElementsAre(tUpdate{firmwareImage(sections), 1}));
  EXPECT_THAT(result.error, IsEmpty());
  EXPECT_THAT(result.out, StartsWith("installed: BIOS 3.1.0f2, Marten 1.4.0f7\n\n"
                                     "Section  Device  Version  File  Bytes  What will be done\n"));
  EXPECT_THAT(result.out,
              HasSubstr("\n"
                        "updating, which can take minutes: do not switch the machine off\n"));
  EXPECT_THAT(
      result.out,
      testing::EndsWith(" s\n"
                        "  section 2, BIOS 1.0.0f0, 9 bytes: sent to the controller interface\n"
                        "  section 1, MARTEN 1.4.2f7, 9 bytes: sent to the Marten interface\n"));
  EXPECT_TRUE(interruption_.isIntercepted);
}

TEST_F(UpdateVerb, OnlyNewer_IsTheLibrarysOption) {
  const tRun result = run({"update", "--only-newer",
                           fileOf({section("MARTEN", "1.4.0f7"), section("BIOS", "3.1.0f3")})});
  ASSERT_EQ(library_.updates.size(), 1u);
  EXPECT_EQ(library_.updates[0].options, 0u);
  EXPECT_THAT(result.out, HasSubstr("leave out: it is not newer than the installed 1.4.0f7; "
                                    "without --only-newer it is applied\n"));
  EXPECT_THAT(result.out, Not(HasSubstr("section 1, MARTEN 1.4.0f7, 9 bytes: ")));
}

// ---- No surprise downgrade ----

TEST_F(UpdateVerb, NothingToSend_DoesNotCallTheLibrary) {
  const std::pair<tSections, tWords> updates[] = {
      {{section("MARTEN", "1.3.0f0")}, {"--only-newer"}},
      {{section("BIOS", "3.1.0f2"), section("MARTEN", "1.4.0f7")}, {"--only-newer"}},
      {{section("SAFEMODE", "1.0.0f0")}, {}},
  };
  for (const auto& [sections, options] : updates) {
    tWords words{"update", fileOf(sections)};
    words.insert(words.end(), options.begin(), options.end());
    const tRun result = run(words);
    EXPECT_EQ(result.exitCode, 0);
    EXPECT_THAT(result.out, testing::EndsWith("\nnothing to do\n"));
    words.emplace_back("--json");
    const auto document = run(words).document();
    EXPECT_STREQ(document["outcome"].GetString(), "nothing-to-do");
    EXPECT_STREQ(document["sections"][0]["result"].GetString(), "not-applied");
    words.emplace_back("--plan");
    words.erase(std::ranges::find(words, "--json"));
    EXPECT_THAT(run(words).out, testing::EndsWith("\nnothing to do\n"));
  }
  EXPECT_THAT(library_.updates, IsEmpty());
}

TEST_F(UpdateVerb, OnlyNewerWhileAnUpdateAwaitsARestart_NeedsForce) {
  library_.text(kMartenVersion, "0.0.0f0");
  const std::string path = fileOf({section("BIOS", "4.0.0f0")});
  const tRun refused = run({"update", "--only-newer", path});
  EXPECT_EQ(refused.exitCode, 1);
  EXPECT_EQ(refused.error,
            "quenra: an update awaits a restart: the Marten reports version 0.0.0f0, and "
            "--only-newer cannot compare until the restart\n"
            "  Advice: Restart the machine and run the update again. With --force the comparison "
            "counts the Marten as the oldest version.\n"
            "quenra: the update was not started; nothing was changed\n");
  EXPECT_THAT(library_.updates, IsEmpty());
  const auto document = planOf({section("BIOS", "4.0.0f0")}, {"--only-newer"});
  EXPECT_TRUE(document["installed"]["awaitsRestart"].GetBool());
  EXPECT_TRUE(document["obstacles"][0]["status"].IsNull());
  EXPECT_EQ(run({"update", "--only-newer", "--force", path}).exitCode, 0);
  ASSERT_EQ(library_.updates.size(), 1u);
  EXPECT_EQ(library_.updates[0].options, 0u);
}

TEST_F(UpdateVerb, UpdateOfEverythingWhileAnUpdateAwaitsARestart_SaysSoAndIsApplied) {
  library_.text(kMartenVersion, "0.0.0f0");
  const tRun result = run({"update", fileOf({section("BIOS", "4.0.0f0")})});
  EXPECT_EQ(result.exitCode, 0);
  EXPECT_THAT(result.out, HasSubstr("\nan update awaits a restart: until then the Marten reports "
                                    "version 0.0.0f0\n"));
  EXPECT_EQ(library_.updates.size(), 1u);
}

TEST_F(UpdateVerb, ForceWithoutOnlyNewer_IsWrongUsage) {
  const tRun result = run({"update", "--force", fileOf({section("BIOS", "4.0.0f0")})});
  EXPECT_EQ(result.exitCode, 2);
  EXPECT_THAT(library_.updates, IsEmpty());
}

// ---- Obstacles ----

TEST_F(UpdateVerb, ObstaclesOfThePlan_StopTheUpdateBeforeItStarts) {
  facts_.protection = {true, 0, 0};
  const std::string path = fileOf({section("MARTEN", "1.5.0f0").with("CRC", "1")});
  const tRun result = run({"update", path});
  EXPECT_EQ(result.exitCode, 1);
  EXPECT_THAT(result.out, IsEmpty());
  EXPECT_THAT(result.error, StartsWith("quenra: drive C: is encrypted, and the protection is on\n"
                                       "  -26942 QUENRA_STATUS_DRIVE_PROTECTED, line 1787\n"));
  EXPECT_THAT(result.error, HasSubstr("\nquenra: section 1: "));
  EXPECT_THAT(result.error,
              testing::EndsWith("\nquenra: the update was not started; nothing was changed\n"));
  const auto document = run({"update", path, "--json"}).document();
  EXPECT_STREQ(document["kind"].GetString(), "error");
  EXPECT_STREQ(document["command"].GetString(), "update");
  EXPECT_EQ(document["exitCode"].GetInt(), 1);
  EXPECT_EQ(document["error"]["code"].GetInt(), QUENRA_STATUS_DRIVE_PROTECTED);
  EXPECT_STREQ(document["error"]["message"].GetString(),
               "drive C: is encrypted, and the protection is on");
  const auto& update = document["update"];
  EXPECT_THAT(memberNames(update),
              ElementsAre("started", "path", "onlyNewer", "installed", "sections", "obstacles"));
  EXPECT_FALSE(update["started"].GetBool());
  EXPECT_EQ(update["obstacles"].Size(), 2u);
  EXPECT_THAT(library_.updates, IsEmpty());
  EXPECT_FALSE(interruption_.isIntercepted);
}

TEST_F(UpdateVerb, MachineThatAcceptsNoFirmware_IsNotSupported) {
  library_.number(QUENRA_ATTRIBUTE_FIRMWARE_UPDATE_SUPPORT, 0);
  EXPECT_EQ(run({"update", fileOf({section("BIOS", "1.0.0f0")})}).exitCode, 3);
  EXPECT_THAT(library_.updates, IsEmpty());
}

using tTool = nCommandLine::tDriverStoreTool;

TEST_F(UpdateVerb, DriverStoreToolThatCannotBeTrusted_IsAnObstacle) {
  const std::tuple<tTool, const char*, int> tools[] = {
      {{"D:\\Windows", true, true, "", {}},
       "Windows is installed in 'D:\\Windows', and the library starts "
       "C:\\Windows\\Sysnative\\pnputil.exe",
       0},
      {{"", true, true, "", {}}, "Windows is installed in ''", 0},
      {{"c:\\windows", false, true, "", {}},
       "the system has no C:\\Windows\\Sysnative\\pnputil.exe to install a driver package with",
       2331},
      {{"C:\\WINDOWS", true, false, "RACK7\\operator", {}},
       "the owner of C:\\Windows\\Sysnative\\pnputil.exe is 'RACK7\\operator', not SYSTEM, "
       "Administrators or TrustedInstaller",
       0},
      {{"C:\\Windows", true, false, "", {}},
       "the owner of C:\\Windows\\Sysnative\\pnputil.exe is an unknown account",
       0},
      {{"C:\\Windows", true, true, "", std::make_error_code(std::errc::permission_denied)},
       "the driver-store tool could not be started: access denied",
       2359},
  };
  for (const auto& [tool, fact, line] : tools) {
    facts_.tool = tool;
    const auto document =
        run({"update", "--json",
             fileOf({section("BIOS", "4.0.0f0"), tFirmwareSection::capsule("a.inf")})})
            .document();
    const auto& obstacle = document["update"]["obstacles"][0];
    EXPECT_THAT(obstacle["fact"].GetString(), StartsWith(fact));
    EXPECT_EQ(obstacle["section"].GetInt(), 2);
    EXPECT_EQ(obstacle["line"].IsNull() ? 0 : obstacle["line"].GetInt(), line);
    EXPECT_EQ(obstacle["status"].IsNull(), line == 0);
    EXPECT_EQ(document["exitCode"].GetInt(), 1);
  }
  EXPECT_THAT(library_.updates, IsEmpty());
  EXPECT_EQ(run({"update", fileOf({section("BIOS", "4.0.0f0")})}).exitCode, 0)
      << "without a driver package the tool does not matter";
}

TEST_F(UpdateVerb, TemporaryDirectoryWithABlank_IsAnObstacleForDriverPackages) {
  facts_.temporary = "C:\\Users\\Rack 7\\Temp\\";
  const tRun result = run({"update", fileOf({tFirmwareSection::capsule("a.inf")})});
  EXPECT_EQ(result.exitCode, 1);
  EXPECT_THAT(result.error,
              StartsWith("quenra: section 1: the temporary directory 'C:\\Users\\Rack "
                         "7\\Temp\\' has a blank, which splits "));
  EXPECT_THAT(library_.updates, IsEmpty());
  EXPECT_EQ(run({"update", fileOf({tFirmwareSection::capsule("a.bin")})}).exitCode, 0);
}

TEST_F(UpdateVerb, AdviceForAMissingTool_IsALinkAndNeverACopy) {
  facts_.tool.exists = false;
  EXPECT_THAT(run({"update", fileOf({tFirmwareSection::capsule("a.inf")})}).error,
              HasSubstr("\n  Advice: As an administrator, run 'mklink /d C:\\Windows\\Sysnative "
                        "C:\\Windows\\System32': a link, never a copy of the tool.\n"));
}

TEST_F(UpdateVerb, FileNameThatIsNotPlain_NeedsAllowAnyPath) {
  const std::string path = fileOf({tFirmwareSection::capsule("C:\\x.cap").version("4.0.0f0")});
  const tRun refused = run({"update", path});
  EXPECT_EQ(refused.exitCode, 1);
  EXPECT_EQ(refused.error,
            "quenra: section 1: the file name 'C:\\x.cap' is not plain: it has a path separator\n"
            "  Advice: Use an image from a source that you trust; --allow-any-path applies it.\n"
            "quenra: the update was not started; nothing was changed\n");
  EXPECT_THAT(library_.updates, IsEmpty());
  EXPECT_EQ(run({"update", "--plan", path}).exitCode, 1);
  const tRun allowed = run({"update", "--allow-any-path", path});
  EXPECT_EQ(allowed.exitCode, 0);
  EXPECT_EQ(allowed.error,
            "quenra: warning: section 1: the file name 'C:\\x.cap' is not plain: it has a "
            "path separator\n");
  EXPECT_EQ(library_.updates.size(), 1u);
}

TEST_F(UpdateVerb, TextThatIsNoVersion_IsAWarningAndTheReason) {
  const std::string path = fileOf({section("MARTEN", "3.0")});
  const tRun result = run({"update", "--plan", "--only-newer", path});
  EXPECT_EQ(result.exitCode, 0);
  EXPECT_THAT(result.out,
              HasSubstr("leave out: '3.0' is not a version of the form 1.4.2f7 and counts "
                        "as the oldest; without"));
  EXPECT_EQ(result.error,
            "quenra: warning: section 1: '3.0' is not a version of the form 1.4.2f7 and "
            "counts as the oldest\n");
}

// ---- Failures ----

TEST_F(UpdateVerb, DriverPackage_IsHandedOverWithAnUnknownResult) {
  const std::string path = fileOf({tFirmwareSection::capsule("a.inf").version("1.0.0f0")});
  EXPECT_THAT(run({"update", path}).out,
              testing::EndsWith("  section 1, BIOS 1.0.0f0, 100 bytes: written to a file; package "
                                "passed to the driver store, which reports no result\n"));
  const auto document = run({"update", path, "--json"}).document();
  EXPECT_STREQ(document["sections"][0]["result"].GetString(), "handed-over");
  EXPECT_STREQ(document["outcome"].GetString(), "done");
}

TEST_F(UpdateVerb, SectionThatTheDriverRefuses_IsReportedWithItsCode) {
  library_.updateCode = -777;
  const std::string path = fileOf({section("MARTEN", "1.5.0f0")});
  const tRun result = run({"update", path});
  EXPECT_EQ(result.exitCode, 1);
  EXPECT_THAT(result.error, StartsWith("quenra: section 1, MARTEN: the Marten interface does not "
                                       "accept the section\n  -777\n"));
  EXPECT_THAT(result.error, testing::EndsWith("\n  section 1, MARTEN 1.5.0f0, 9 bytes: failed\n"));
  EXPECT_THAT(result.out, Not(HasSubstr("done after")));
  const auto document = run({"update", path, "--json"}).document();
  EXPECT_EQ(document["error"]["code"].GetInt(), -777);
  const auto& update = document["update"];
  EXPECT_THAT(memberNames(update),
              ElementsAre("started", "path", "onlyNewer", "installed", "sections", "failure"));
  EXPECT_TRUE(update["started"].GetBool());
  EXPECT_STREQ(update["sections"][0]["result"].GetString(), "failed");
  EXPECT_THAT(memberNames(update["failure"]),
              ElementsAre("fact", "section", "device", "status", "line"));
  EXPECT_EQ(update["failure"]["section"].GetInt(), 1);
  EXPECT_STREQ(update["failure"]["device"].GetString(), "MARTEN");
}

TEST_F(UpdateVerb, SeveralSectionsToSend_LeaveOpenWhichOneFailed) {
  library_.updateCode = -777;
  const auto document = run({"update", "--json",
                             fileOf({section("MARTEN", "1.5.0f0"), section("BIOS", "4.0.0f0"),
                                     section("SAFEMODE", "1.0.0f0")})})
                            .document();
  const auto& update = document["update"];
  EXPECT_TRUE(update["failure"]["section"].IsNull());
  EXPECT_STREQ(update["sections"][0]["result"].GetString(), "unknown");
  EXPECT_STREQ(update["sections"][1]["result"].GetString(), "unknown");
  EXPECT_STREQ(update["sections"][2]["result"].GetString(), "not-applied");
}

TEST_F(UpdateVerb, ToolThatCannotBeStarted_IsNoMalformedImage) {
  library_.updateCode = QUENRA_STATUS_INVALID_IMAGE;
  library_.duringUpdate = [this] {
    facts_.tool.startFailure = std::make_error_code(std::errc::permission_denied);
  };
  const std::string path = fileOf({section("MARTEN", "1.5.0f0"), section("BIOS", "4.0.0f0"),
                                   tFirmwareSection::capsule("a.inf").version("1.0.0f0"),
                                   tFirmwareSection::capsule("a.bin").version("1.0.0f0")});
  const tRun result = run({"update", path});
  EXPECT_EQ(result.exitCode, 1);
  EXPECT_THAT(result.error,
              StartsWith("quenra: section 3, BIOS: the driver-store tool could not be started: "
                         "access denied\n  -26938 QUENRA_STATUS_INVALID_IMAGE\n"));
  EXPECT_THAT(result.error, Not(HasSubstr("malformed")));
  EXPECT_THAT(result.error, Not(HasSubstr("Fetch the image")));
  facts_.tool.startFailure.clear();
  const auto document = run({"update", path, "--json"}).document();
  const auto& sections = document["update"]["sections"];
  std::vector<std::string> results;
  for (const auto& planned : sections.GetArray()) {
    results.push_back(std::to_string(planned["section"].GetInt()) + " " +
                      planned["result"].GetString());
  }
  EXPECT_THAT(results, ElementsAre("3 failed", "2 not-applied", "1 not-applied", "4 not-applied"));
  EXPECT_EQ(document["update"]["failure"]["line"].GetInt(), 2359);
}

TEST_F(UpdateVerb, SectionsBeforeAPackageThatFails_WereSent) {
  library_.updateCode = QUENRA_STATUS_UPDATE_ENVIRONMENT;
  library_.duringUpdate = [this] { facts_.tool.exists = false; };
  const std::string path =
      fileOf({tFirmwareSection::capsule("a.inf").version("1.0.0f0"), section("BIOS", "4.0.0f0")});
  const tRun result = run({"update", path});
  EXPECT_THAT(result.error, StartsWith("quenra: section 1, BIOS: the system has no "));
  EXPECT_THAT(result.error,
              HasSubstr("\n  section 2, BIOS 4.0.0f0, 9 bytes: sent to the controller "
                        "interface\n  section 1, BIOS 1.0.0f0, 100 bytes: failed\n"));
}

TEST_F(UpdateVerb, FilesThatCannotBeWritten_AreReportedWithTheReasonOfTheSystem) {
  library_.updateCode = QUENRA_STATUS_UPDATE_ENVIRONMENT;
  facts_.temporaryFailure = std::make_error_code(std::errc::no_space_on_device);
  const std::string path = fileOf({section("BIOS", "4.0.0f0"), tFirmwareSection::capsule("a.bin")});
  const tRun result = run({"update", path});
  EXPECT_THAT(result.error, StartsWith("quenra: cannot write the files of the image below "
                                       "'C:\\Temp': no space left on the disk\n"
                                       "  -26937 QUENRA_STATUS_UPDATE_ENVIRONMENT\n"));
  EXPECT_THAT(result.error, HasSubstr("section 1, BIOS 4.0.0f0, 9 bytes: not applied\n"));
}

TEST_F(UpdateVerb, AnyOtherCodeOfTheLibrary_LeavesTheResultOpen) {
  library_.updateCode = QUENRA_STATUS_OUT_OF_MEMORY;
  const auto document = run({"update", "--json", fileOf({section("BIOS", "4.0.0f0")})}).document();
  EXPECT_STREQ(document["error"]["message"].GetString(), "the update failed");
  EXPECT_STREQ(document["update"]["sections"][0]["result"].GetString(), "unknown");
  for (const int32_t code : {QUENRA_STATUS_NOT_SUPPORTED, QUENRA_STATUS_NO_CONTROLLER}) {
    library_.updateCode = code;
    EXPECT_EQ(run({"update", fileOf({section("BIOS", "4.0.0f0")})}).exitCode, 3);
  }
}

TEST_F(UpdateVerb, MartenThatRefusesItsMarker_IsNamedWhenNothingIsSent) {
  library_.updateCode = -777;
  const tRun result = run({"update", fileOf({tFirmwareSection::capsule("a.bin")})});
  EXPECT_THAT(result.error,
              StartsWith("quenra: the Marten does not accept its version marker\n  -777\n"));
}

TEST_F(UpdateVerb, NoController_HasAnExitCodeOfItsOwn) {
  library_.openCode = QUENRA_STATUS_NO_CONTROLLER;
  const tRun result = run({"update", fileOf({section("BIOS", "1.0.0f0")})});
  EXPECT_EQ(result.exitCode, 4);
  EXPECT_THAT(result.out, IsEmpty());
  EXPECT_THAT(library_.updates, IsEmpty());
}

TEST_F(UpdateVerb, MissingFile_IsAFailureAndMissingNameWrongUsage) {
  for (const char* const option : {"--plan", "--only-newer"}) {
    const tRun result = run({"update", option, folder_.path("nothing.fwi")});
    EXPECT_EQ(result.exitCode, 1);
    EXPECT_EQ(result.error,
              "quenra: cannot read '" + folder_.path("nothing.fwi") + "': no such file\n");
    EXPECT_EQ(run({"update", option}).exitCode, 2);
  }
  EXPECT_EQ(library_.opens, 0);
}

TEST_F(UpdateVerb, Warnings_AreReported) {
  library_.openCode = 77;
  library_.updateCode = 78;
  const tRun result = run({"update", "--json", fileOf({section("BIOS", "1.0.0f0")})});
  EXPECT_EQ(result.exitCode, 0);
  EXPECT_THAT(result.error, HasSubstr("warning: the update\n  78\n"));
  EXPECT_EQ(result.document()["warnings"].Size(), 2u);
}

TEST_F(UpdateVerb, Document_HasThePromisedMembers) {
  const auto document = run({"update", "--json", fileOf({section("BIOS", "1.0.0f0")})}).document();
  EXPECT_STREQ(document["kind"].GetString(), "update");
  EXPECT_THAT(memberNames(document),
              ElementsAre("format", "kind", "exitCode", "warnings", "path", "onlyNewer",
                          "installed", "sections", "elapsedMilliseconds", "outcome"));
}

TEST_F(UpdateVerb, CtrlC_StopsNothing) {
  interruption_.isPressed = true;
  library_.duringUpdate = [this] { interruption_.waitForPolls(2); };
  const tRun result = run({"update", fileOf({section("BIOS", "1.0.0f0")})});
  EXPECT_EQ(result.exitCode, 0);
  EXPECT_EQ(result.error, "quenra: the update cannot be interrupted; wait for its end\n");
}

TEST_F(UpdateVerb, Terminal_ShowsTheElapsedTimeInOneLine) {
  library_.duringUpdate = [this] { interruption_.waitForPolls(interruption_.polls + 2); };
  const tRun result = runOnTerminal({"update", fileOf({section("BIOS", "1.0.0f0")})});
  EXPECT_THAT(result.out, HasSubstr("do not switch the machine off\n\rupdating: "));
  EXPECT_THAT(result.out, HasSubstr(" s\rupdating: "));
  EXPECT_THAT(result.out, HasSubstr(" s\ndone after "));
  const tRun asDocument = runOnTerminal({"update", "--json", fileOf({section("BIOS", "1.0.0f0")})});
  EXPECT_FALSE(asDocument.document().HasParseError());
}

// ---- Concurrent updates ----

using nCommandLine::tLockState;

TEST_F(UpdateVerb, AnotherUpdate_IsWaitedFor) {
  lock_.states = {tLockState::busy, tLockState::busy, tLockState::acquired};
  library_.duringUpdate = [this] { EXPECT_EQ(lock_.held, 1); };
  const tRun result = run({"update", fileOf({section("BIOS", "4.0.0f0")})});
  EXPECT_EQ(result.exitCode, 0);
  EXPECT_EQ(result.error,
            "quenra: another update is running; waiting for its end (Ctrl-C ends the wait)\n");
  EXPECT_EQ(library_.updates.size(), 1u);
}

TEST_F(UpdateVerb, AnotherUpdateWithNoWait_IsAFailure) {
  lock_.states = {tLockState::busy};
  const tRun result = run({"update", "--no-wait", fileOf({section("BIOS", "4.0.0f0")})});
  EXPECT_EQ(result.exitCode, 1);
  EXPECT_EQ(result.error,
            "quenra: another update is running on this machine\n"
            "  Without --no-wait this update waits for its end.\n");
  EXPECT_EQ(library_.opens, 0);
}

TEST_F(UpdateVerb, CtrlCDuringTheWait_EndsItAndChangesNothing) {
  lock_.states = {tLockState::busy, tLockState::busy};
  interruption_.isPressed = true;
  const tRun result = run({"update", fileOf({section("BIOS", "4.0.0f0")})});
  EXPECT_EQ(result.exitCode, 1);
  EXPECT_THAT(
      result.error,
      testing::EndsWith("\nquenra: interrupted while another update was running; nothing was "
                        "changed\n"));
  EXPECT_EQ(library_.opens, 0);
}

TEST_F(UpdateVerb, LockThatCannotBeUsed_IsAFailureWithTheReason) {
  lock_.states = {tLockState::failed};
  const tRun result = run({"update", fileOf({section("BIOS", "4.0.0f0")})});
  EXPECT_EQ(result.exitCode, 1);
  EXPECT_THAT(result.error, StartsWith("quenra: cannot use the lock of updates: access denied\n"));
  EXPECT_EQ(library_.opens, 0);
}

TEST_F(UpdateVerb, AbandonedLock_IsAcquiredWithAWarning) {
  lock_.states = {tLockState::abandoned};
  const tRun result = run({"update", fileOf({section("BIOS", "4.0.0f0")})});
  EXPECT_EQ(result.exitCode, 0);
  EXPECT_EQ(result.error,
            "quenra: warning: the other update ended abnormally and may be incomplete\n");
}

// ---- Output that fails ----

TEST_F(UpdateVerb, OutputThatFailsAfterTheUpdate_HasAnExitCodeOfItsOwn) {
  for (const auto reason : {std::errc::no_space_on_device, std::errc::broken_pipe}) {
    for (const tWords& more : {tWords{}, tWords{"--json"}}) {
      library_.updates.clear();
      tWords words{"update", fileOf({section("BIOS", "4.0.0f0")})};
      words.insert(words.end(), more.begin(), more.end());
      const tRun result = runOnOutput(words, [this, reason] {
        return library_.updates.empty() ? std::error_code() : std::make_error_code(reason);
      });
      EXPECT_EQ(result.exitCode, 5);
      EXPECT_THAT(result.error, StartsWith("quenra: cannot write the output: "));
      EXPECT_THAT(
          result.error,
          HasSubstr(
              "\n  The change was applied: the firmware is updated. Do not repeat the command.\n"));
      EXPECT_EQ(library_.updates.size(), 1u);
    }
  }
}

TEST_F(UpdateVerb, OutputThatFailsBeforeTheUpdate_ChangesNothing) {
  const tRun result = runOnOutput({"update", fileOf({section("BIOS", "4.0.0f0")})},
                                  [] { return std::make_error_code(std::errc::broken_pipe); });
  EXPECT_EQ(result.exitCode, 1);
  EXPECT_EQ(result.error, "quenra: the update was not started: its output cannot be written\n");
  EXPECT_THAT(library_.updates, IsEmpty());
}

TEST_F(UpdateVerb, UpdateThatFailsAndItsOutputToo_HasTheExitCodeOfAFailure) {
  library_.updateCode = -777;
  const tRun result = runOnOutput({"update", fileOf({section("BIOS", "4.0.0f0")})}, [this] {
    return library_.updates.empty() ? std::error_code()
                                    : std::make_error_code(std::errc::no_space_on_device);
  });
  EXPECT_EQ(result.exitCode, 1);
}

TEST(Progress, ElsewhereThanOnATerminal_IsALineNowAndThen) {
  using std::chrono::milliseconds;
  std::ostringstream out;
  std::ostringstream error;
  nCommandLine::tStreams streams{out, error};
  tScriptedInterruption interruption;
  nCommandLine::tProgress progress("updating", streams, interruption, false,
                                   {milliseconds(10), milliseconds(100)});
  EXPECT_EQ(progress.run([&interruption] {
    interruption.waitForPolls(30);
    return 7;
  }),
            7);
  EXPECT_GE(progress.elapsed(), milliseconds(300));
  EXPECT_THAT(out.str(), StartsWith("updating: "));
  EXPECT_THAT(out.str(), testing::EndsWith(" s\n"));
  const auto lines = std::ranges::count(out.str(), '\n');
  EXPECT_LE(lines * milliseconds(100), progress.elapsed()) << "as long as it took";
  EXPECT_THAT(error.str(), IsEmpty());
}

TEST(Progress, CallThatIsQuick_ShowsNothing) {
  std::ostringstream out;
  std::ostringstream error;
  nCommandLine::tStreams streams{out, error};
  tScriptedInterruption interruption;
  nCommandLine::tProgress progress("updating", streams, interruption);
  EXPECT_EQ(progress.run([] { return -1; }), -1);
  EXPECT_THAT(out.str(), IsEmpty());
}

}  // namespace
}  // namespace nTests
