// Plans of an update, with every obstacle.
#include "tools/quenra/update/updateplan.h"
#include "tests/builders/repositoryfile.h"
#include "tests/component/commandline/updateverbtest.h"

namespace nTests {
namespace {

using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::StartsWith;

using nCommandLine::tLockState;
using UpdatePlan = UpdateVerb;

TEST_F(UpdatePlan, Sections_AreShownWithWhatWouldBeDone) {
  const tRun result = run({"update", "--plan",
                           fileOf({section("MARTEN", "1.4.2f7"), section("SAFEMODE", "1.0.0f0"),
                                   section("BIOS", "3.1.0f2")})});
  EXPECT_EQ(result.exitCode, 0);
  EXPECT_THAT(result.error, IsEmpty());
  EXPECT_EQ(result.out,
            "installed: BIOS 3.1.0f2, Marten 1.4.0f7\n\n"
            "Section  Device    Version  File  Bytes  What would be done\n"
            "3        BIOS      3.1.0f2  -     9      send to the controller interface, although "
            "it is not newer than the installed 3.1.0f2\n"
            "1        MARTEN    1.4.2f7  -     9      send to the Marten interface\n"
            "2        SAFEMODE  1.0.0f0  -     9      nothing: the library ignores sections for "
            "SAFEMODE\n\n"
            "no obstacle was found\n");
  EXPECT_THAT(library_.updates, IsEmpty());
}

TEST_F(UpdatePlan, EveryKindOfSection_HasItsAction) {
  EXPECT_THAT(actionsFor({tFirmwareSection::capsule("a.bin"), tFirmwareSection::capsule("a.inf"),
                          section("SAFEMODE", "1"), section("MARTEN", "1.0.0f0"),
                          section("BIOS", "1.0.0f0")}),
              ElementsAre("5 send-to-controller", "2 install-package", "1 write-file", "3 nothing",
                          "4 send-to-marten"));
}

TEST_F(UpdatePlan, OnlyNewer_LeavesOutWhatIsAsNew) {
  const auto document =
      planOf({section("MARTEN", "1.4.0f7"), section("BIOS", "3.1.0f3")}, {"--only-newer"});
  EXPECT_TRUE(document["onlyNewer"].GetBool());
  EXPECT_EQ(document["exitCode"].GetInt(), 0);
  const auto& marten = document["sections"][1];
  EXPECT_STREQ(marten["action"].GetString(), "leave-out");
  EXPECT_STREQ(marten["reason"].GetString(), "it is not newer than the installed 1.4.0f7");
  EXPECT_STREQ(document["sections"][0]["action"].GetString(), "send-to-controller");
  EXPECT_STREQ(marten["remedy"].GetString(), "without --only-newer it is applied");
  EXPECT_TRUE(document["sections"][0]["reason"].IsNull());
  EXPECT_TRUE(document["sections"][0]["remedy"].IsNull());
}

TEST_F(UpdatePlan, OneSectionThatIsAsNew_CountsForAllOfItsDevice) {
  const auto document = planOf({section("BIOS", "9.0.0f0"), section("BIOS", "1.0.0f0"),
                                tFirmwareSection::capsule("a.inf").version("9.0.0f0")},
                               {"--only-newer"});
  for (const auto& planned : document["sections"].GetArray()) {
    const bool isCapsule = !planned["fileName"].IsNull();
    EXPECT_STREQ(planned["action"].GetString(), isCapsule ? "install-package" : "leave-out");
  }
  EXPECT_STREQ(
      document["sections"][2]["reason"].GetString(),
      "another section of the device is not newer, and the comparison applies to all of them");
}

TEST_F(UpdatePlan, FileSectionThatIsNotNewer_MarksItsDeviceAsCurrent) {
  EXPECT_THAT(
      actionsFor({section("BIOS", "9.0.0f0"), tFirmwareSection::capsule("a.bin").version("3.1.0f2"),
                  tFirmwareSection::capsule("a.inf").version("3.1.0f2")},
                 {"--only-newer"}),
      ElementsAre("3 install-package", "1 leave-out", "2 write-file"));
}

TEST_F(UpdatePlan, EverythingCurrent_LeavesOutFilesToo) {
  EXPECT_THAT(actionsFor({section("BIOS", "3.1.0f2"), section("MARTEN", "1.0.0f0"),
                          tFirmwareSection::capsule("a.inf").version("9.0.0f0")},
                         {"--only-newer"}),
              testing::Each(testing::EndsWith(" leave-out")));
}

TEST_F(UpdatePlan, TextThatIsNoVersion_CountsAsTheOldest) {
  EXPECT_THAT(actionsFor({section("BIOS", "latest")}, {"--only-newer"}),
              ElementsAre("1 leave-out"));
  library_.text(kBiosVersion, "A07");
  EXPECT_THAT(actionsFor({section("BIOS", "0.0.0f1")}, {"--only-newer"}),
              ElementsAre("1 send-to-controller"));
  library_.code(kBiosVersion, QUENRA_STATUS_NOT_SUPPORTED);
  EXPECT_THAT(actionsFor({section("BIOS", "0.0.0f1")}, {"--only-newer"}),
              ElementsAre("1 send-to-controller"));
  EXPECT_THAT(actionsFor({section("BIOS", "latest")}, {"--only-newer"}),
              ElementsAre("1 leave-out"));
}

TEST_F(UpdatePlan, SeveralObstacles_AreReportedAtOnce) {
  facts_.protection = {true, 0, 0};
  facts_.tool.exists = false;
  library_.number(QUENRA_ATTRIBUTE_FIRMWARE_UPDATE_SUPPORT, 0);
  library_.number(QUENRA_ATTRIBUTE_INTERFACES_PRESENT, QUENRA_SELECTOR_CONTROLLER);
  const std::string path =
      fileOf({section("BIOS", "1.0.0f0").with("CRC", "1"), section("MARTEN", "1.0.0f0"),
              section("BIOS", "1.0.0f0").with("HeaderVersion", "2")});
  const tRun result = run({"update", "--plan", path});
  EXPECT_EQ(result.exitCode, 1);
  EXPECT_THAT(result.out, HasSubstr("\n5 obstacles\n"));
  EXPECT_THAT(result.out, HasSubstr("installed: BIOS 3.1.0f2\n"));
  EXPECT_THAT(
      result.error,
      StartsWith(
          "quenra: drive C: is encrypted, and the protection is on\n"
          "  -26942 QUENRA_STATUS_DRIVE_PROTECTED, line 1787\n"
          "  Advice: Suspend the protection, update, and resume it afterwards.\n"
          "quenra: the machine does not support firmware updates: firmware-update-support is 0\n"
          "  -26934 QUENRA_STATUS_NOT_SUPPORTED, line 1810\n"));
  for (const char* const reason :
       {"quenra: section 1: CRC mismatch: header 0x00000001, payload 0x05440F15\n"
        "  -26938 QUENRA_STATUS_INVALID_IMAGE, line 258\n  Advice: Fetch",
        "quenra: section 2: the section is for a Marten, and this machine has none\n"
        "  -26938 QUENRA_STATUS_INVALID_IMAGE, line 1868\n",
        "quenra: section 3: HeaderVersion is not 1\n  -26941 QUENRA_STATUS_IMAGE_VERSION, "
        "line 164\n"}) {
    EXPECT_THAT(result.error, HasSubstr(reason));
  }
  EXPECT_THAT(library_.updates, IsEmpty());
}

TEST_F(UpdatePlan, RefusedSection_KeepsTheOthersBack) {
  EXPECT_THAT(actionsFor({section("BIOS", "1"), section("MARTEN", "1").with("ByteCount", "1")}),
              ElementsAre("1 keep-back", "2 refuse"));
  library_.number(QUENRA_ATTRIBUTE_INTERFACES_PRESENT, QUENRA_SELECTOR_CONTROLLER);
  EXPECT_THAT(actionsFor({section("MARTEN", "1"), section("BIOS", "1")}),
              ElementsAre("2 keep-back", "1 refuse"));
}

TEST_F(UpdatePlan, DriveThatCannotBeQueried_IsReportedWithTheStep) {
  const std::pair<uint32_t, const char*> steps[] = {
      {2831, "COM cannot be started"},
      {2847, "the security of COM cannot be set up"},
      {2863, "the management service is not available"},
      {2879, "the management service has no volume encryption, or denies this user access"},
      {2912, "the management service does not return the state of the protection"}};
  const tSections sections{section("BIOS", "1")};
  for (const auto& [line, step] : steps) {
    facts_.protection = {false, QUENRA_STATUS_UPDATE_ENVIRONMENT, line};
    const auto document = planOf(sections);
    EXPECT_THAT(codesOf(document), ElementsAre(QUENRA_STATUS_UPDATE_ENVIRONMENT));
    EXPECT_EQ(document["obstacles"][0]["fact"].GetString(),
              "the encryption state of drive C: is unknown: " + std::string(step));
    EXPECT_EQ(document["obstacles"][0]["line"].GetUint(), line);
  }
  facts_.protection = {false, QUENRA_STATUS_UPDATE_ENVIRONMENT, 0};
  const auto document = planOf(sections);
  EXPECT_STREQ(document["obstacles"][0]["fact"].GetString(),
               "the encryption state of drive C: is unknown");
  EXPECT_TRUE(document["obstacles"][0]["line"].IsNull());
}

TEST_F(UpdatePlan, MachineThatTakesNoFirmware_IsNotSupported) {
  library_.number(QUENRA_ATTRIBUTE_FIRMWARE_UPDATE_SUPPORT, 0);
  EXPECT_EQ(planOf({section("BIOS", "1")})["exitCode"].GetInt(), 3);
  library_.code(QUENRA_ATTRIBUTE_FIRMWARE_UPDATE_SUPPORT, QUENRA_STATUS_NO_CONTROLLER);
  const auto document = planOf({section("BIOS", "1")});
  EXPECT_THAT(codesOf(document), ElementsAre(QUENRA_STATUS_NO_CONTROLLER));
  EXPECT_EQ(document["obstacles"][0]["line"].GetInt(), 1798);
  EXPECT_EQ(document["exitCode"].GetInt(), 3);
}

TEST_F(UpdatePlan, WithoutAController_OtherObstaclesAreReportedToo) {
  library_.openCode = QUENRA_STATUS_NO_CONTROLLER;
  facts_.protection = {true, 0, 0};
  const tSections sections{section("MARTEN", "1"), section("BIOS", "1").with("CRC", "1")};
  const auto document = planOf(sections);
  EXPECT_EQ(document["exitCode"].GetInt(), 4);
  EXPECT_THAT(codesOf(document),
              ElementsAre(QUENRA_STATUS_NO_CONTROLLER, QUENRA_STATUS_DRIVE_PROTECTED,
                          QUENRA_STATUS_INVALID_IMAGE));
  EXPECT_TRUE(document["installed"]["bios"].IsNull());
  EXPECT_THAT(run({"update", "--plan", fileOf(sections)}).out,
              StartsWith("installed: not available\n"));
}

TEST_F(UpdatePlan, MissingToolForDriverPackages_IsAReason) {
  facts_.tool.exists = false;
  EXPECT_THAT(codesOf(planOf({section("BIOS", "1"), tFirmwareSection::capsule("a.bin")})),
              IsEmpty());
  const auto document = planOf({section("BIOS", "1"), tFirmwareSection::capsule("a.inf")});
  EXPECT_THAT(codesOf(document), ElementsAre(QUENRA_STATUS_UPDATE_ENVIRONMENT));
  EXPECT_EQ(document["obstacles"][0]["line"].GetInt(), 2331);
  EXPECT_EQ(document["obstacles"][0]["section"].GetInt(), 2);
}

TEST_F(UpdatePlan, VersionOfTheMartenThatCannotBeRead_StopsAComparisonOnly) {
  library_.code(kMartenVersion, QUENRA_STATUS_TIME_OUT);
  EXPECT_THAT(codesOf(planOf({section("MARTEN", "1")})), IsEmpty());
  EXPECT_THAT(codesOf(planOf({section("MARTEN", "1")}, {"--only-newer"})),
              ElementsAre(QUENRA_STATUS_TIME_OUT));
  EXPECT_THAT(codesOf(planOf({section("BIOS", "1")}, {"--only-newer"})), IsEmpty());
}

TEST_F(UpdatePlan, Document_HasThePromisedMembers) {
  facts_.protection = {true, 0, 0};
  const auto document = planOf({section("BIOS", "1")});
  EXPECT_STREQ(document["kind"].GetString(), "update-plan");
  EXPECT_THAT(memberNames(document),
              ElementsAre("format", "kind", "exitCode", "warnings", "path", "onlyNewer",
                          "installed", "sections", "obstacles"));
  EXPECT_THAT(memberNames(document["installed"]), ElementsAre("bios", "marten", "awaitsRestart"));
  EXPECT_THAT(memberNames(document["sections"][0]),
              ElementsAre("section", "device", "version", "fileName", "byteCount", "action",
                          "reason", "remedy", "remarks"));
  EXPECT_THAT(memberNames(document["obstacles"][0]),
              ElementsAre("fact", "remedy", "status", "line", "section"));
}

TEST_F(UpdatePlan, ActionNames_AreThoseOfTheSchema) {
  const std::vector<std::string> lines = linesOf("docs/schema/update-section.schema.json");
  using nCommandLine::tSectionAction;
  for (int action = 0; action <= static_cast<int>(tSectionAction::keepBack); ++action) {
    const std::string name(nCommandLine::actionName(static_cast<tSectionAction>(action)));
    EXPECT_THAT(lines, testing::Contains(HasSubstr("\"" + name + "\"")));
  }
}

TEST_F(UpdatePlan, Plan_DoesNotWaitForAnotherUpdate) {
  lock_.states = {tLockState::busy};
  EXPECT_EQ(run({"update", "--plan", fileOf({section("BIOS", "4.0.0f0")})}).exitCode, 0);
  EXPECT_EQ(lock_.states.size(), 1u);
}

}  // namespace
}  // namespace nTests
