// capture, diff, and the verbs that show a captured machine.
#include "quenra_attributes.h"
#include "tests/component/commandline/commandlinetest.h"
#include "tools/capture/capturefile.h"

namespace nTests {
namespace {

using testing::HasSubstr;
using testing::IsEmpty;
using testing::Not;

class Captures : public CommandLineTest {
 protected:
  // A capture of the reference machine after a change to its record.
  std::string capture(std::string_view name,
                      const std::function<void(nCapture::tMachineRecord&)>& change = {}) {
    nCapture::tMachineRecord record = captured(machine_);
    if (change) {
      change(record);
    }
    return files_.file(name, nCapture::captureText(record));
  }

  tTestFiles files_;
};

// ---- capture ----

TEST_F(Captures, Capture_WritesAFileThatCanBeRead) {
  library_.text(QUENRA_ATTRIBUTE_PRODUCT_NAME, "qctl-8840");
  library_.controllers = 1;
  library_.martens = 1;
  const tRun result = run({"capture", files_.path("rack.json")});
  EXPECT_EQ(result.exitCode, 0) << result.error;
  EXPECT_THAT(result.out, HasSubstr("Open the controller"));
  EXPECT_THAT(result.out, HasSubstr("wrote '" + files_.path("rack.json") + "'"));
  const auto record = nCapture::parseCapture(files_.content("rack.json"));
  EXPECT_EQ(record.handover.table, machine_.handover.table);
  EXPECT_EQ(record.controller.attributes.size(), machine_.controller.attributes.size());
}

TEST_F(Captures, Capture_WritesNothingToTheController) {
  run({"capture", files_.path("rack.json")});
  EXPECT_THAT(library_.writes, IsEmpty());
  EXPECT_THAT(library_.updates, IsEmpty());
}

TEST_F(Captures, CaptureOfALibraryThatDiffersFromItsDriver_Warns) {
  library_.controllers = 1;
  library_.martens = 1;
  library_.text(QUENRA_ATTRIBUTE_PRODUCT_NAME, "another product");
  const tRun result = run({"capture", files_.path("rack.json")});
  EXPECT_EQ(result.exitCode, 0);
  EXPECT_THAT(result.error, HasSubstr("warning: replaying the capture gives another result for"));
  EXPECT_THAT(result.error, HasSubstr("product-name"));
}

TEST_F(Captures, CaptureWithoutController_SucceedsAndSaysSo) {
  library_.openCode = QUENRA_STATUS_NO_CONTROLLER;
  const tRun result = run({"capture", files_.path("rack.json")});
  EXPECT_EQ(result.exitCode, 0);
  EXPECT_THAT(result.error,
              HasSubstr("the controller cannot be opened, which the capture shows: -26932"));
  EXPECT_EQ(nCapture::parseCapture(files_.content("rack.json")).opening.code,
            QUENRA_STATUS_NO_CONTROLLER);
}

TEST_F(Captures, CaptureToAnExistingFile_IsRefusedWithoutForce) {
  files_.file("rack.json", "precious");
  const tRun refused = run({"capture", files_.path("rack.json")});
  EXPECT_EQ(refused.exitCode, 1);
  EXPECT_THAT(refused.error, HasSubstr("already exists"));
  EXPECT_THAT(refused.error, HasSubstr("--force"));
  EXPECT_EQ(files_.content("rack.json"), "precious");
  EXPECT_EQ(run({"capture", files_.path("rack.json"), "--force"}).exitCode, 0);
  EXPECT_NE(files_.content("rack.json"), "precious");
}

TEST_F(Captures, CaptureIntoAMissingFolder_FailsWithTheReason) {
  const tRun result = run({"capture", files_.path("missing/rack.json")});
  EXPECT_EQ(result.exitCode, 1);
  EXPECT_THAT(result.error, HasSubstr("cannot write"));
}

TEST_F(Captures, PseudonymKeyWithoutAnonymous_IsWrongUsage) {
  const tRun result = run({"capture", files_.path("rack.json"), "--pseudonym-key", "secret"});
  EXPECT_EQ(result.exitCode, 2);
  EXPECT_THAT(result.error, HasSubstr("Add --anonymous."));
  EXPECT_EQ(files_.files(), 0u);
}

TEST_F(Captures, AnonymousCapture_SaysSo) {
  const tRun result = run({"capture", files_.path("rack.json"), "--anonymous", "--json"});
  EXPECT_EQ(result.exitCode, 0);
  const auto document = result.document();
  EXPECT_STREQ(document["kind"].GetString(), "capture");
  EXPECT_TRUE(document["anonymous"].GetBool());
  EXPECT_TRUE(nCapture::parseCapture(files_.content("rack.json")).isAnonymous);
}

// ---- info --from, update --plan --from ----

TEST_F(Captures, InfoFromACapture_ShowsThatMachine) {
  library_.text(QUENRA_ATTRIBUTE_PRODUCT_NAME, "the machine here");
  const tRun result = run({"info", "--from", capture("rack.json")});
  EXPECT_EQ(result.exitCode, 0) << result.error;
  EXPECT_THAT(result.out, testing::ContainsRegex("driver-setting-2 +250"));
  EXPECT_THAT(result.out, Not(HasSubstr("the machine here")));
  EXPECT_EQ(library_.opens, 0);
}

TEST_F(Captures, InfoFromACaptureThatCouldNotBeOpened_FailsAsThere) {
  const tRun result = run({"info", "--from", capture("rack.json", [](auto& record) {
                             record.controller.opening->code = QUENRA_STATUS_ACCESS_DENIED;
                             record.opening.code = QUENRA_STATUS_ACCESS_DENIED;
                           })});
  EXPECT_EQ(result.exitCode, 1);
  EXPECT_THAT(result.error, HasSubstr("-52009 QUENRA_STATUS_ACCESS_DENIED"));
}

TEST_F(Captures, InfoFromAnotherFile_NamesTheMemberAtFault) {
  const tRun result = run({"info", "--from", files_.file("rack.json", "{}")});
  EXPECT_EQ(result.exitCode, 1);
  EXPECT_THAT(result.error, HasSubstr("is not a capture: kind is missing"));
  EXPECT_THAT(result.error, HasSubstr("quenra capture FILE"));
}

TEST_F(Captures, UpdateFromACaptureWithoutPlan_IsWrongUsage) {
  const std::string image = files_.file("update.fwi", "x");
  const tRun result = run({"update", image, "--from", capture("rack.json")});
  EXPECT_EQ(result.exitCode, 2);
  EXPECT_THAT(result.error, HasSubstr("Add --plan"));
}

TEST_F(Captures, PlanFromACapture_ComparesWithThatMachine) {
  const std::string payload = files_.file("a.bin", "payload");
  const std::string image = files_.path("update.fwi");
  ASSERT_EQ(run({"firmware", "build", payload, "--output", image, "--device", "MARTEN",
                 "--firmware-version", "1.4.0f7"})
                .exitCode,
            0);
  const tRun result =
      run({"update", "--plan", "--only-newer", image, "--from", capture("rack.json"), "--json"});
  EXPECT_EQ(result.exitCode, 0) << result.error;
  const auto document = result.document();
  EXPECT_STREQ(document["sections"][0]["action"].GetString(), "leave-out");
  EXPECT_EQ(library_.opens, 0);
}

TEST_F(Captures, PlanFromACaptureWithAnEncryptedDrive_HasThatObstacle) {
  const std::string payload = files_.file("a.bin", "payload");
  const std::string image = files_.path("update.fwi");
  ASSERT_EQ(run({"firmware", "build", payload, "--output", image, "--device", "BIOS",
                 "--firmware-version", "9.9.9f9"})
                .exitCode,
            0);
  const tRun result =
      run({"update", "--plan", image, "--from", capture("rack.json", [](auto& record) {
             record.updateEnvironment.driveIsEncrypted = true;
           })});
  EXPECT_NE(result.exitCode, 0);
  EXPECT_THAT(result.error, HasSubstr("encrypt"));
}

// ---- diff ----

TEST_F(Captures, DiffOfEqualCaptures_FindsNothing) {
  const tRun result = run({"diff", capture("a.json"), capture("b.json", [](auto& record) {
                             record.opening.duration = nCapture::tDuration(99'999);
                           })});
  EXPECT_EQ(result.exitCode, 0);
  EXPECT_EQ(result.out, "no differences\n");
}

TEST_F(Captures, Diff_ShowsChangedReadingsAndTables) {
  const tRun result = run({"diff", capture("a.json"), capture("b.json", [](auto& record) {
                             record.readings.front().value = std::string("another maker");
                             record.handover.table.at(3) ^= 1;
                             record.marten.attributes.front().result.code = -1;
                           })});
  EXPECT_EQ(result.exitCode, 9);
  EXPECT_THAT(result.out, testing::ContainsRegex("system-manufacturer .* another maker\n"));
  EXPECT_THAT(result.out, HasSubstr("SMBIOS table, first difference"));
  EXPECT_THAT(result.out, HasSubstr(", at 0x3: "));
  EXPECT_THAT(result.out, testing::ContainsRegex("driver attribute of the Marten 0x.* -1"));
}

TEST_F(Captures, Diff_ShowsPropertiesThatOneMachineLacks) {
  const tRun result =
      run({"diff", capture("a.json", [](auto& record) { record.readings.pop_back(); }),
           capture("b.json"), "--json"});
  EXPECT_EQ(result.exitCode, 9);
  const auto document = result.document();
  ASSERT_EQ(document["differences"].Size(), 1u);
  EXPECT_STREQ(document["differences"][0]["before"].GetString(), "-");
}

TEST_F(Captures, DiffWithAMissingFile_FailsWithTheReason) {
  const tRun result = run({"diff", capture("a.json"), files_.path("none.json")});
  EXPECT_EQ(result.exitCode, 1);
  EXPECT_THAT(result.error, HasSubstr("none.json"));
}

TEST_F(Captures, DiffOfTwoMissingFiles_NamesTheFirst) {
  const tRun result = run({"diff", files_.path("one.json"), files_.path("two.json")});
  EXPECT_EQ(result.exitCode, 1);
  EXPECT_THAT(result.error, HasSubstr("one.json"));
}

}  // namespace
}  // namespace nTests
