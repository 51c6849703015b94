#include "source/user/update/updateplan.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "quenra_status.h"

namespace nTests {
namespace {

using nQUENRA1400::packedVersion;
using nQUENRA1400::planUpdate;
using nQUENRA1400::tSectionAction;
using nQUENRA1400::tSectionFacts;
using testing::ElementsAre;
using enum nQUENRA1400::tSectionAction;

constexpr uint32_t kOld = 0x01400000;
constexpr uint32_t kNew = 0x02000000;

tSectionFacts bios() {
  return {"BIOS", "", kNew};
}
tSectionFacts capsule(std::string_view fileName) {
  return {"BIOS", fileName, kNew};
}
tSectionFacts marten() {
  return {"MARTEN", "", kNew};
}
tSectionFacts safeMode() {
  return {"SAFEMODE", "", kNew};
}
// The section, compared with an installed version.
tSectionFacts compared(tSectionFacts section, uint32_t installed) {
  section.installedVersion = installed;
  return section;
}
tSectionFacts faulty(tSectionFacts section) {
  section.isFaulty = true;
  return section;
}

std::vector<tSectionAction> actions(const std::vector<tSectionFacts>& sections,
                                    bool hasMarten = true) {
  std::vector<tSectionAction> actions;
  for (const auto& decision : planUpdate(sections, hasMarten).sections) {
    actions.push_back(decision.action);
  }
  return actions;
}

TEST(PlanUpdate, WithoutComparison_AppliesEverySectionByDeviceAndFile) {
  EXPECT_THAT(actions({bios(), marten(), capsule("driver.inf"), capsule("driver.inf.bin"),
                       capsule("setup.bin"), safeMode()}),
              ElementsAre(sendToController, sendToMarten, installPackage, installPackage, writeFile,
                          nothing));
}

TEST(PlanUpdate, InstalledVersionIsOlder_AppliesTheSection) {
  EXPECT_THAT(actions({compared(bios(), kOld), compared(marten(), kOld)}),
              ElementsAre(sendToController, sendToMarten));
}

TEST(PlanUpdate, InstalledVersionIsEqualOrLater_LeavesOutItsDevice) {
  EXPECT_THAT(actions({compared(bios(), kNew), compared(marten(), kOld)}),
              ElementsAre(leaveOut, sendToMarten));
  EXPECT_THAT(actions({compared(bios(), kOld), compared(marten(), kNew + 1)}),
              ElementsAre(sendToController, leaveOut));
}

TEST(PlanUpdate, OneCurrentSection_MarksItsDeviceForTheCompleteImage) {
  EXPECT_THAT(actions({bios(), compared(bios(), kNew)}), ElementsAre(leaveOut, leaveOut));
  EXPECT_THAT(actions({compared(marten(), kNew), marten()}), ElementsAre(leaveOut, leaveOut));
}

TEST(PlanUpdate, BiosIsCurrent_WritesAndInstallsFilesAllTheSame) {
  EXPECT_THAT(actions({compared(capsule("driver.inf"), kNew), compared(capsule("a.bin"), kNew),
                       compared(bios(), kNew), safeMode()}),
              ElementsAre(installPackage, writeFile, leaveOut, nothing));
}

TEST(PlanUpdate, BothDevicesAreCurrent_LeavesOutEverything) {
  const tSectionFacts sections[] = {compared(bios(), kNew), compared(marten(), kNew),
                                    capsule("driver.inf"), safeMode()};
  const auto plan = planUpdate(sections, true);
  EXPECT_TRUE(plan.isEverythingCurrent);
  for (const auto& decision : plan.sections) {
    EXPECT_EQ(decision.action, leaveOut);
  }
}

TEST(PlanUpdate, OneDeviceIsCurrentOrNoSection_IsNotEverythingCurrent) {
  const tSectionFacts sections[] = {compared(bios(), kNew)};
  EXPECT_FALSE(planUpdate(sections, true).isEverythingCurrent);
  EXPECT_FALSE(planUpdate({}, true).isEverythingCurrent);
  EXPECT_TRUE(planUpdate({}, true).sections.empty());
}

// A current Marten is no reason for a machine without one to leave the section out.
TEST(PlanUpdate, MartenSectionWithoutMarten_IsRefusedAndKeepsOthersBack) {
  const tSectionFacts sections[] = {bios(), compared(marten(), kNew), capsule("driver.inf")};
  const auto plan = planUpdate(sections, false);
  ASSERT_EQ(plan.sections.size(), 3u);
  EXPECT_EQ(plan.sections[0].action, keepBack);
  EXPECT_EQ(plan.sections[0].intended, sendToController);
  EXPECT_EQ(plan.sections[0].refusal, nullptr);
  EXPECT_EQ(plan.sections[1].action, refuse);
  EXPECT_EQ(plan.sections[1].intended, refuse);
  EXPECT_EQ(plan.sections[2].action, keepBack);
  EXPECT_EQ(plan.sections[2].intended, installPackage);
  ASSERT_NE(plan.refusal(), nullptr);
  EXPECT_EQ(plan.refusal(), plan.sections[1].refusal);
  EXPECT_EQ(plan.refusal()->code, QUENRA_STATUS_INVALID_IMAGE);
  EXPECT_EQ(plan.refusal()->location.line, 1868u);
}

// The parser has reported the fault: the plan names no site of its own.
TEST(PlanUpdate, FaultySection_IsRefusedWithoutASite) {
  const tSectionFacts sections[] = {bios(), faulty(marten())};
  const auto plan = planUpdate(sections, false);
  EXPECT_EQ(plan.sections[0].action, keepBack);
  EXPECT_EQ(plan.sections[1].action, refuse);
  EXPECT_EQ(plan.refusal(), nullptr);
}

TEST(PlanUpdate, ActionsThatSendInstallOrWrite_ChangeTheMachine) {
  for (const auto action : {sendToController, sendToMarten, installPackage, writeFile}) {
    EXPECT_TRUE(changesMachine(action));
  }
  for (const auto action : {nothing, leaveOut, refuse, keepBack}) {
    EXPECT_FALSE(changesMachine(action));
  }
}

// ---- Versions ----

TEST(FirmwareVersion, EveryPart_HasItsBits) {
  EXPECT_EQ(packedVersion("0.0.0f0"), 0x0000C000u);
  EXPECT_EQ(packedVersion("0.0.0d0"), 0u);
  EXPECT_EQ(packedVersion("0.0.0a1"), 0x4001u);
  EXPECT_EQ(packedVersion("0.0.0b2"), 0x8002u);
  EXPECT_EQ(packedVersion("1.2.3f4"), 0x0123C004u);
  EXPECT_EQ(packedVersion("255.15.15f16383"), 0xFFFFFFFFu);
}

TEST(FirmwareVersion, CharactersAfterTheBuild_AreIgnored) {
  EXPECT_EQ(packedVersion("1.4.0f7 beta"), packedVersion("1.4.0f7"));
  EXPECT_EQ(packedVersion("1.4.0f7.9"), packedVersion("1.4.0f7"));
}

TEST(FirmwareVersion, TextOfAnotherForm_Is0) {
  for (const char* text : {"",
                           "1",
                           "1.",
                           "1.2",
                           "1.2.3",
                           "1.2.3f",
                           "1.2.f4",
                           "1..3f4",
                           ".2.3f4",
                           "1.2.3e4",
                           "1.2.3F4",
                           "256.0.0f0",
                           "0.16.0f0",
                           "0.0.16f0",
                           "0.0.0f16384",
                           "01.0.0f0",
                           "1.00.0f0",
                           "1.0.03f0",
                           "1.0.0f00",
                           " 1.0.0f0",
                           "+1.0.0f0",
                           "-1.0.0f0",
                           "1 .0.0f0",
                           "1,0.0f0",
                           "1.0.0 f0",
                           "99999999999999999999999999999999.0.0f0",
                           "1.0.0f99999999999999999999999999999999"}) {
    EXPECT_EQ(packedVersion(text), 0u) << text;
  }
}

TEST(FirmwareVersion, EndOfTheText_EndsTheBuild) {
  const std::string text = "1.2.3f45";
  EXPECT_EQ(packedVersion(std::string_view(text).substr(0, 7)), packedVersion("1.2.3f4"));
}

// A version can be as long as an image: reading all of it for each section that shares it would cost the
// product of both. The address sanitizer reports any read past the memory.
TEST(FirmwareVersion, LongRunOfDigits_IsReadNoFurtherThanANumberCanBe) {
  for (const char digit : {'0', '1'}) {
    const std::vector<char> digits(32, digit);
    EXPECT_EQ(packedVersion(std::string_view(digits.data(), size_t{1} << 30)), 0u);
  }
}

}  // namespace
}  // namespace nTests
