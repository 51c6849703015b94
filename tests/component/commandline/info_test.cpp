#include <algorithm>

#include "quenra_attributes.h"
#include "tests/component/commandline/commandlinetest.h"
#include "tools/quenra/tables/attributetable.h"

namespace nTests {
namespace {

using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::Not;
using SelfTest = CommandLineTest;

// ---- info ----

class Info : public CommandLineTest {
 protected:
  Info() {
    library_.text(QUENRA_ATTRIBUTE_PRODUCT_NAME, "qctl-8840");
    library_.number(QUENRA_ATTRIBUTE_MEMORY_MODULE_COUNT, 2);
    library_.number(QUENRA_ATTRIBUTE_MEMORY_SIZE, 16384);
    library_.number(QUENRA_ATTRIBUTE_MEMORY_SIZE + 1, 8192);
    library_.text(QUENRA_ATTRIBUTE_PROCESSOR_VERSION, "T6");
  }
  // The number of reads of an attribute, over all instances.
  std::ptrdiff_t readsOf(uint32_t id) {
    return std::ranges::count_if(library_.reads,
                                 [id](uint32_t read) { return (read & ~0xFFu) == id; });
  }
};

TEST_F(Info, ShowsSubjectsNamesValuesAndUnits) {
  const tRun result = run({"info"});
  EXPECT_EQ(result.exitCode, 0);
  EXPECT_THAT(result.error, IsEmpty());
  EXPECT_THAT(result.out, testing::StartsWith("Identity\n  system-manufacturer "));
  EXPECT_THAT(result.out, testing::ContainsRegex("\n  product-name +qctl-8840\n"));
  EXPECT_THAT(result.out, HasSubstr("\n\nMemory\n"));
  EXPECT_THAT(result.out, testing::ContainsRegex("\n  memory-size.0. +16384 MiB\n"));
  EXPECT_THAT(result.out, testing::ContainsRegex("\n  memory-size.1. +8192 MiB\n"));
}

TEST_F(Info, NamesEveryAttribute) {
  const tRun result = run({"info"});
  for (const nCommandLine::tAttributeRow& row : nCommandLine::kAttributes) {
    EXPECT_THAT(result.out, HasSubstr("\n  " + std::string(row.name)));
  }
}

TEST_F(Info, AbsentAttribute_IsShownAsNotSupported) {
  const tRun result = run({"info"});
  EXPECT_THAT(result.out, testing::ContainsRegex("\n  serial-number +not supported\n"));
  EXPECT_EQ(result.exitCode, 0);
}

TEST_F(Info, AttributeOfAnAbsentDevice_IsShownAsNotAvailable) {
  library_.code(QUENRA_ATTRIBUTE_DEVICE_PATH, QUENRA_STATUS_NO_CONTROLLER);
  const tRun result = run({"info"});
  EXPECT_THAT(result.out, testing::ContainsRegex("\n  device-path +not available\n"));
  EXPECT_EQ(result.exitCode, 0);
}

TEST_F(Info, CountedInstances_AreReadOnceEach) {
  run({"info"});
  EXPECT_EQ(readsOf(QUENRA_ATTRIBUTE_MEMORY_SIZE), 2);
}

TEST_F(Info, ImplausibleCount_IsLimitedToTheInstancesOfTheLibrary) {
  library_.number(QUENRA_ATTRIBUTE_SLOT_COUNT, 255);
  library_.number(QUENRA_ATTRIBUTE_MEMORY_MODULE_COUNT, 70000);
  run({"info"});
  EXPECT_EQ(readsOf(QUENRA_ATTRIBUTE_SLOT_NUMBER), 4);
  EXPECT_EQ(readsOf(QUENRA_ATTRIBUTE_MEMORY_SIZE), 256);
}

TEST_F(Info, FirmwareVersions_AreARowForTheBiosAndARowForTheMarten) {
  library_.text(QUENRA_ATTRIBUTE_FIRMWARE_VERSION | QUENRA_SELECTOR_CONTROLLER, "2.1.0f3");
  library_.code(QUENRA_ATTRIBUTE_FIRMWARE_VERSION | QUENRA_SELECTOR_MARTEN,
                QUENRA_STATUS_NO_CONTROLLER);
  EXPECT_THAT(run({"info"}).out,
              testing::ContainsRegex("\n  firmware-version.BIOS. +2.1.0f3\n"
                                     "  firmware-version.Marten. +not available\n"));
  library_.text(QUENRA_ATTRIBUTE_FIRMWARE_VERSION | QUENRA_SELECTOR_MARTEN, "1.4.0f7");
  const auto document = run({"info", "--json"}).document();
  std::vector<std::string> versions;
  for (const auto& reading : document["subjects"][0]["attributes"].GetArray()) {
    if (std::string_view(reading["name"].GetString()) == "firmware-version") {
      versions.push_back(std::string(reading["interface"].GetString()) + " " +
                         reading["value"].GetString());
    }
  }
  EXPECT_THAT(versions, ElementsAre("controller 2.1.0f3", "marten 1.4.0f7"));
}

TEST_F(Info, EmptyList_IsShownOnceAsNotSupported) {
  library_.number(QUENRA_ATTRIBUTE_BRIDGE_COUNT, 0);
  EXPECT_THAT(run({"info"}).out, testing::ContainsRegex("\n  bridge-location.0. +not supported\n"));
  EXPECT_EQ(readsOf(QUENRA_ATTRIBUTE_BRIDGE_LOCATION), 1);
}

TEST_F(Info, NamedProcessors_AreShown) {
  library_.text(QUENRA_ATTRIBUTE_PROCESSOR_VERSION + 1, "");
  library_.text(QUENRA_ATTRIBUTE_PROCESSOR_MANUFACTURER + 1, "Maker");
  library_.number(QUENRA_ATTRIBUTE_PROCESSOR_STEPPING + 1, 6);
  const tRun result = run({"info"});
  EXPECT_THAT(result.out, testing::ContainsRegex("\n  processor-stepping.1. +6\n"));
  EXPECT_THAT(result.out, Not(HasSubstr("processor-stepping[2]")));
}

TEST_F(Info, NamelessProcessorsOfAMalformedTable_EndTheCount) {
  for (uint32_t i = 0; i < 256; ++i) {
    library_.code(QUENRA_ATTRIBUTE_PROCESSOR_VERSION + i, QUENRA_STATUS_SUCCESS);
    library_.code(QUENRA_ATTRIBUTE_PROCESSOR_MANUFACTURER + i, QUENRA_STATUS_SUCCESS);
  }
  run({"info"});
  EXPECT_EQ(readsOf(QUENRA_ATTRIBUTE_PROCESSOR_STEPPING), 1);
}

TEST_F(Info, FailedReads_AreReportedTogetherBesideTheOtherReadings) {
  library_.code(QUENRA_ATTRIBUTE_DRIVER_SETTING_1, QUENRA_STATUS_TIME_OUT);
  library_.code(QUENRA_ATTRIBUTE_DRIVER_SETTING_2, QUENRA_STATUS_TIME_OUT);
  const tRun result = run({"info"});
  EXPECT_EQ(result.exitCode, 1);
  EXPECT_THAT(result.out,
              testing::ContainsRegex("driver-setting-1 +failed: -52007 QUENRA_STATUS_TIME_OUT\n"));
  EXPECT_THAT(result.out, HasSubstr("qctl-8840"));
  EXPECT_THAT(result.error, HasSubstr("cannot read driver-setting-1, driver-setting-2\n"
                                      "  -52007 QUENRA_STATUS_TIME_OUT\n"));
}

TEST_F(Info, FailedReadWithJson_IsPartOfTheDocument) {
  library_.code(QUENRA_ATTRIBUTE_DRIVER_SETTING_1, QUENRA_STATUS_TIME_OUT);
  const auto document = run({"info", "--json"}).document();
  EXPECT_STREQ(document["kind"].GetString(), "info");
  EXPECT_EQ(document["exitCode"].GetInt(), 1);
  const rapidjson::Value& attribute =
      itemWith(itemWith(document["subjects"], "subject", "driver")["attributes"], "name",
               "driver-setting-1");
  EXPECT_STREQ(attribute["state"].GetString(), "failed");
  EXPECT_EQ(attribute["status"]["code"].GetInt(), QUENRA_STATUS_TIME_OUT);
}

TEST_F(Info, Subject_LimitsTheReadsAndTheTable) {
  const tRun result = run({"info", "--subject", "Memory"});
  EXPECT_EQ(result.exitCode, 0);
  EXPECT_THAT(result.out, testing::StartsWith("Memory\n  "));
  EXPECT_THAT(result.out, HasSubstr("memory-size[1]"));
  EXPECT_THAT(result.out, Not(HasSubstr("Identity")));
  EXPECT_EQ(readsOf(QUENRA_ATTRIBUTE_PRODUCT_NAME), 0);
}

TEST_F(Info, Subjects_AreInTheOrderOfTheTable) {
  const auto document =
      run({"info", "--json", "--subject", "memory", "--subject=identity", "--subject", "memory"})
          .document();
  ASSERT_EQ(document["subjects"].Size(), 2u);
  EXPECT_STREQ(document["subjects"][0]["subject"].GetString(), "identity");
  EXPECT_STREQ(document["subjects"][1]["subject"].GetString(), "memory");
}

TEST_F(Info, UnknownSubject_GetsASuggestion) {
  const tRun result = run({"info", "--subject", "memry"});
  EXPECT_EQ(result.exitCode, 2);
  EXPECT_THAT(result.error, HasSubstr("quenra: unknown subject 'memry'\n"
                                      "  Did you mean memory?\n"
                                      "  Use identity, platform, "));
  EXPECT_EQ(library_.opens, 0);
}

TEST_F(Info, NoController_IsReported) {
  library_.openCode = QUENRA_STATUS_NO_CONTROLLER;
  const tRun result = run({"info"});
  EXPECT_EQ(result.exitCode, 4);
  EXPECT_THAT(result.out, IsEmpty());
  EXPECT_THAT(result.error, HasSubstr("cannot open the controller"));
}

TEST_F(Info, Document_HoldsEverySubjectAndAttribute) {
  const auto document = run({"info", "--json"}).document();
  EXPECT_THAT(memberNames(document),
              ElementsAre("format", "kind", "exitCode", "warnings", "subjects"));
  EXPECT_THAT(memberNames(document["subjects"][0]), ElementsAre("subject", "title", "attributes"));
  for (const nCommandLine::tAttributeRow& row : nCommandLine::kAttributes) {
    const auto& subject = itemWith(document["subjects"], "subject", std::string(row.subject->key));
    EXPECT_TRUE(itemWith(subject["attributes"], "name", std::string(row.name)).HasMember("state"));
  }
}

TEST_F(Info, EscapeCodes_AppearOnATerminalOnly) {
  EXPECT_THAT(run({"info"}).out, Not(HasSubstr("\x1B")));
  EXPECT_THAT(runOnTerminal({"info"}).out, HasSubstr("\x1B[1mIdentity\x1B[0m"));
}

// ---- self-test ----

TEST_F(SelfTest, Success_IsALineAndADocument) {
  const tRun result = run({"self-test"});
  EXPECT_EQ(result.exitCode, 0);
  EXPECT_EQ(result.out, "self-test: passed\n");
  EXPECT_THAT(result.error, IsEmpty());
  EXPECT_EQ(library_.selfTests, 1);

  const auto document = run({"self-test", "--json"}).document();
  EXPECT_THAT(memberNames(document),
              ElementsAre("format", "kind", "exitCode", "warnings", "selfTest"));
  EXPECT_STREQ(document["kind"].GetString(), "self-test");
  EXPECT_THAT(memberNames(document["selfTest"]), ElementsAre("passed", "status"));
  EXPECT_TRUE(document["selfTest"]["passed"].GetBool());
  EXPECT_EQ(document["selfTest"]["status"]["code"].GetInt(), 0);
}

TEST_F(SelfTest, Failure_IsAnErrorWithItsCode) {
  library_.selfTestCode = QUENRA_STATUS_INVALID_HANDLE;
  const tRun result = run({"self-test", "--json"});
  EXPECT_EQ(result.exitCode, 1);
  EXPECT_THAT(result.error, HasSubstr("the self-test failed\n"));
  EXPECT_THAT(result.error, HasSubstr("QUENRA_STATUS_INVALID_HANDLE"));
  EXPECT_STREQ(result.document()["kind"].GetString(), "error");
  EXPECT_STREQ(result.document()["command"].GetString(), "self-test");
}

TEST_F(SelfTest, NoController_IsNotTested) {
  library_.openCode = QUENRA_STATUS_NO_CONTROLLER;
  EXPECT_EQ(run({"self-test"}).exitCode, 4);
  EXPECT_EQ(library_.selfTests, 0);
}

TEST_F(SelfTest, Warnings_DoNotMakeItFail) {
  library_.openCode = 77;
  library_.selfTestCode = 78;
  const tRun result = run({"self-test", "--json"});
  EXPECT_EQ(result.exitCode, 0);
  EXPECT_THAT(result.error, HasSubstr("warning: opening the controller\n  77\n"));
  EXPECT_THAT(result.error, HasSubstr("warning: the self-test\n  78\n"));
  EXPECT_EQ(result.document()["warnings"].Size(), 2u);
  EXPECT_TRUE(result.document()["selfTest"]["passed"].GetBool());
}

}  // namespace
}  // namespace nTests
