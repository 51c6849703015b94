#include "quenra_attributes.h"
#include "tests/component/commandline/commandlinetest.h"

namespace nTests {
namespace {

using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;

constexpr uint32_t kMartenVersion = QUENRA_ATTRIBUTE_FIRMWARE_VERSION | QUENRA_SELECTOR_MARTEN;

class Doctor : public CommandLineTest {
 protected:
  Doctor() {
    library_.controllers = 1;
    library_.martens = 1;
    library_.text(QUENRA_ATTRIBUTE_PRODUCT_NAME, "qctl-8840");
    library_.number(QUENRA_ATTRIBUTE_DRIVER_SETTING_1, 5);
    library_.number(QUENRA_ATTRIBUTE_INTERFACES_PRESENT,
                    QUENRA_SELECTOR_CONTROLLER | QUENRA_SELECTOR_MARTEN);
    library_.text(kMartenVersion, "1.4.0f7");
  }

  // "driver failed" for each check that is not ok.
  std::vector<std::string> deviations(int exitCode) {
    const tRun result = run({"doctor", "--json"});
    EXPECT_EQ(result.exitCode, exitCode) << result.out;
    const auto document = result.document();
    EXPECT_EQ(document["exitCode"].GetInt(), exitCode);
    std::vector<std::string> found;
    for (const auto& check : document["checks"].GetArray()) {
      const std::string verdict = check["result"].GetString();
      if (verdict != "ok") {
        found.push_back(check["check"].GetString() + (" " + verdict));
      }
      EXPECT_EQ(check["remedy"].IsString(), verdict == "warning" || verdict == "failed")
          << check["check"].GetString();
    }
    return found;
  }
};

TEST_F(Doctor, WorkingMachine_PassesEveryCheck) {
  const tRun result = run({"doctor"});
  EXPECT_EQ(result.exitCode, 0);
  EXPECT_THAT(result.error, IsEmpty());
  EXPECT_EQ(result.out,
            "ok  library            quenra.dll " QUENRA_VERSION
            "\n"
            "ok  interfaces         1 controller interface, 1 Marten interface\n"
            "ok  driver             the controller was opened, and the driver replied to a read\n"
            "ok  table              the SMBIOS table is that of a qctl-8840\n"
            "ok  rights             the account is an administrator\n"
            "ok  encryption         drive C: is not protected by encryption\n"
            "ok  driver-store-tool  the system's tool for driver packages can be started\n"
            "ok  pending-update     no update awaits a restart\n");
  EXPECT_THAT(library_.writes, IsEmpty());
  EXPECT_THAT(library_.updates, IsEmpty());
}

TEST_F(Doctor, Document_HasThePromisedMembers) {
  const auto document = run({"doctor", "--json"}).document();
  EXPECT_THAT(memberNames(document),
              ElementsAre("format", "kind", "exitCode", "warnings", "checks"));
  EXPECT_STREQ(document["kind"].GetString(), "doctor");
  EXPECT_EQ(document["checks"].Size(), 8u);
  EXPECT_THAT(memberNames(document["checks"][0]),
              ElementsAre("check", "result", "fact", "remedy", "status"));
}

TEST_F(Doctor, MissingController_FailsAndSkipsTheChecksThatNeedIt) {
  library_.openCode = QUENRA_STATUS_NO_CONTROLLER;
  library_.controllers = 0;
  EXPECT_THAT(deviations(4), ElementsAre("interfaces failed", "driver skipped", "table skipped",
                                         "pending-update skipped"));
  const tRun result = run({"doctor"});
  EXPECT_THAT(result.out, HasSubstr("failed   interfaces         no controller interface is "
                                    "present\n                            Advice: Install"));
  EXPECT_EQ(result.error, "quenra: failed: interfaces\n");
}

TEST_F(Doctor, TwoControllers_AreTheFailureThatOpeningReports) {
  library_.openCode = QUENRA_STATUS_GENERIC_FAILURE;
  library_.controllers = 2;
  EXPECT_THAT(deviations(1), ElementsAre("interfaces failed", "driver skipped", "table skipped",
                                         "pending-update skipped"));
  EXPECT_THAT(run({"doctor"}).out, HasSubstr("2 controller interfaces are present; exactly 1 is "
                                             "supported"));
}

TEST_F(Doctor, DriverThatDoesNotOpen_IsTheFailure) {
  library_.openCode = QUENRA_STATUS_TIME_OUT;
  EXPECT_THAT(deviations(1),
              ElementsAre("driver failed", "table skipped", "pending-update skipped"));
  EXPECT_THAT(run({"doctor"}).out, HasSubstr("-52007 QUENRA_STATUS_TIME_OUT\n"));
}

TEST_F(Doctor, UnusableTable_IsNotTheDriversFault) {
  library_.openCode = QUENRA_STATUS_NO_CONTROLLER;
  EXPECT_THAT(deviations(4), ElementsAre("table failed", "pending-update skipped"));
  library_.openCode = QUENRA_STATUS_NOT_SUPPORTED;
  EXPECT_THAT(deviations(3), ElementsAre("table failed", "pending-update skipped"));
}

TEST_F(Doctor, ReadThatFails_IsAFailureOfTheDriver) {
  library_.code(QUENRA_ATTRIBUTE_DRIVER_SETTING_1, QUENRA_STATUS_TIME_OUT);
  EXPECT_THAT(deviations(1), ElementsAre("driver failed"));
  library_.code(QUENRA_ATTRIBUTE_DRIVER_SETTING_1, QUENRA_STATUS_NOT_SUPPORTED);
  EXPECT_THAT(deviations(0), IsEmpty()) << "a driver that rejects an attribute has replied";
  library_.openCode = 77;
  EXPECT_THAT(deviations(0), ElementsAre("driver warning"));
}

TEST_F(Doctor, TableWithoutAProductName_IsAWarning) {
  library_.text(QUENRA_ATTRIBUTE_PRODUCT_NAME, "");
  EXPECT_THAT(deviations(0), ElementsAre("table warning"));
  library_.code(QUENRA_ATTRIBUTE_PRODUCT_NAME, QUENRA_STATUS_NOT_SUPPORTED);
  EXPECT_THAT(deviations(0), ElementsAre("table warning"));
}

TEST_F(Doctor, RequirementsOfAnUpdate_AreWarnings) {
  installation_.isElevated = false;
  facts_.protection = {true, 0, 0};
  facts_.tool.exists = false;
  library_.text(kMartenVersion, "0.0.0f0");
  EXPECT_THAT(deviations(0), ElementsAre("rights warning", "encryption warning",
                                         "driver-store-tool warning", "pending-update warning"));
  const tRun result = run({"doctor"});
  EXPECT_THAT(result.out, HasSubstr("drive C: is encrypted, and the protection is on\n"));
  EXPECT_THAT(result.out, HasSubstr("-26942 QUENRA_STATUS_DRIVE_PROTECTED\n"));
  EXPECT_THAT(result.out, HasSubstr("Advice: Restart the machine.\n"));
  EXPECT_THAT(result.error, IsEmpty());
}

TEST_F(Doctor, MachineWithoutMarten_HasNoPendingUpdate) {
  library_.martens = 0;
  library_.number(QUENRA_ATTRIBUTE_INTERFACES_PRESENT, QUENRA_SELECTOR_CONTROLLER);
  EXPECT_THAT(deviations(0), ElementsAre("pending-update skipped"));
  EXPECT_THAT(run({"doctor"}).out, HasSubstr("1 controller interface, no Marten interface\n"));
}

TEST_F(Doctor, MartenVersionThatCannotBeRead_IsAWarning) {
  library_.code(kMartenVersion, QUENRA_STATUS_TIME_OUT);
  EXPECT_THAT(deviations(0), ElementsAre("pending-update warning"));
}

TEST_F(Doctor, LibraryOfAnotherVersion_IsAWarning) {
  installation_.version = "0.1.9";
  EXPECT_THAT(deviations(0), ElementsAre("library warning"));
  EXPECT_THAT(
      run({"doctor"}).out,
      HasSubstr("quenra.dll has version 0.1.9, quenra.exe has version " QUENRA_VERSION "\n"));
  installation_.version = "";
  EXPECT_THAT(run({"doctor"}).out, HasSubstr("quenra.dll has no version, "));
}

}  // namespace
}  // namespace nTests
