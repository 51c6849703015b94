#include "quenra_attributes.h"
#include "tests/component/commandline/commandlinetest.h"

namespace nTests {
namespace {

using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;

class Get : public CommandLineTest {
 protected:
  // The id that the command line reads from the library.
  uint32_t idReadBy(const std::vector<std::string>& words) {
    library_.reads.clear();
    const tRun result = run(words);
    EXPECT_FALSE(library_.reads.empty()) << result.error;
    return library_.reads.empty() ? 0 : library_.reads.front();
  }
};

TEST_F(Get, Text_IsPrintedAlone) {
  library_.text(QUENRA_ATTRIBUTE_PRODUCT_NAME, "qctl-8840");
  const tRun result = run({"get", "product-name"});
  EXPECT_EQ(result.exitCode, 0);
  EXPECT_EQ(result.out, "qctl-8840\n");
  EXPECT_THAT(result.error, IsEmpty());
}

TEST_F(Get, Number_HasItsUnitOnATerminalOnly) {
  library_.number(QUENRA_ATTRIBUTE_MEMORY_SIZE, 16384);
  EXPECT_EQ(run({"get", "memory-size"}).out, "16384\n");
  EXPECT_EQ(runOnTerminal({"get", "memory-size"}).out, "16384 MiB\n");
}

TEST_F(Get, AttributeIsFoundByNameConstantAndId) {
  const std::string names[] = {"product-name", "PRODUCT_NAME", "QUENRA_ATTRIBUTE_PRODUCT_NAME",
                               "0x10000100", "268435712"};
  for (const std::string& name : names) {
    EXPECT_EQ(idReadBy({"get", name}), QUENRA_ATTRIBUTE_PRODUCT_NAME) << name;
  }
}

TEST_F(Get, InstanceAndInterface_GoIntoTheId) {
  EXPECT_EQ(idReadBy({"get", "memory-size", "--instance", "1"}), QUENRA_ATTRIBUTE_MEMORY_SIZE + 1);
  EXPECT_EQ(idReadBy({"get", "memory-size", "--instance=0x10"}), QUENRA_ATTRIBUTE_MEMORY_SIZE + 16);
  EXPECT_EQ(idReadBy({"get", "firmware-version", "--controller"}),
            QUENRA_ATTRIBUTE_FIRMWARE_VERSION | QUENRA_SELECTOR_CONTROLLER);
  EXPECT_EQ(idReadBy({"get", "--marten", "firmware-version"}),
            QUENRA_ATTRIBUTE_FIRMWARE_VERSION | QUENRA_SELECTOR_MARTEN);
}

TEST_F(Get, IdMayContainInstanceAndInterface) {
  EXPECT_EQ(idReadBy({"get", "0x2000D002"}), QUENRA_ATTRIBUTE_MEMORY_SIZE + 2);
  EXPECT_EQ(idReadBy({"get", "0x10200400"}),
            QUENRA_ATTRIBUTE_FIRMWARE_VERSION | QUENRA_SELECTOR_MARTEN);
  EXPECT_EQ(idReadBy({"get", "0x10200400", "--marten"}),
            QUENRA_ATTRIBUTE_FIRMWARE_VERSION | QUENRA_SELECTOR_MARTEN);
  EXPECT_EQ(idReadBy({"get", "0x2000D002", "--instance", "2"}), QUENRA_ATTRIBUTE_MEMORY_SIZE + 2);
}

TEST_F(Get, IdThatContradictsTheOptions_IsWrongUsage) {
  EXPECT_EQ(run({"get", "0x2000D002", "--instance", "1"}).exitCode, 2);
  EXPECT_EQ(run({"get", "0x10200400", "--controller"}).exitCode, 2);
  EXPECT_THAT(library_.reads, IsEmpty());
}

TEST_F(Get, IdOutsideTheTable_IsReadFromTheLibrary) {
  library_.number(0x20212300, 5);
  const tRun result = run({"get", "0x20212300", "--json"});
  EXPECT_EQ(result.exitCode, 0);
  const auto document = result.document();
  EXPECT_TRUE(document["attribute"]["name"].IsNull());
  EXPECT_STREQ(document["attribute"]["id"].GetString(), "0x20012300");
  EXPECT_STREQ(document["attribute"]["interface"].GetString(), "marten");
  EXPECT_EQ(document["attribute"]["value"].GetUint(), 5u);
}

TEST_F(Get, ImpossibleIds_AreWrongUsage) {
  const std::string ids[] = {"0", "0x30000000", "0x10300400", "0x1FFFFFFFF", "12x", "-5", "+1"};
  for (const std::string& id : ids) {
    EXPECT_EQ(run({"get", id}).exitCode, 2) << id;
  }
  EXPECT_THAT(library_.reads, IsEmpty());
}

TEST_F(Get, ImpossibleInstances_AreWrongUsage) {
  const std::string instances[] = {"-1", "256", "one", "", "0x100"};
  for (const std::string& instance : instances) {
    EXPECT_EQ(run({"get", "memory-size", "--instance", instance}).exitCode, 2) << instance;
  }
}

TEST_F(Get, BothInterfaces_AreWrongUsage) {
  EXPECT_EQ(run({"get", "firmware-version", "--controller", "--marten"}).exitCode, 2);
}

TEST_F(Get, UnknownName_GetsASuggestion) {
  const tRun result = run({"get", "product-nam"});
  EXPECT_EQ(result.exitCode, 2);
  EXPECT_THAT(result.out, IsEmpty());
  EXPECT_THAT(result.error, HasSubstr("Did you mean product-name?"));
}

TEST_F(Get, NotSupported_IsReportedOnTheErrorStreamOnly) {
  const tRun result = run({"get", "serial-number"});
  EXPECT_EQ(result.exitCode, 3);
  EXPECT_THAT(result.out, IsEmpty());
  EXPECT_THAT(result.error, HasSubstr("serial-number is not supported on this machine"));
  EXPECT_THAT(result.error, HasSubstr("-26934 QUENRA_STATUS_NOT_SUPPORTED"));
  EXPECT_THAT(result.error, HasSubstr("Advice: "));
}

TEST_F(Get, NotSupportedWithJson_IsAnAnswer) {
  const tRun result = run({"get", "serial-number", "--json"});
  EXPECT_EQ(result.exitCode, 3);
  const auto document = result.document();
  EXPECT_STREQ(document["kind"].GetString(), "get");
  EXPECT_EQ(document["exitCode"].GetInt(), 3);
  EXPECT_STREQ(document["attribute"]["state"].GetString(), "notSupported");
  EXPECT_TRUE(document["attribute"]["value"].IsNull());
  EXPECT_EQ(document["attribute"]["status"]["code"].GetInt(), QUENRA_STATUS_NOT_SUPPORTED);
}

TEST_F(Get, InterfaceThatThisMachineLacks_IsNotAvailable) {
  library_.code(QUENRA_ATTRIBUTE_FIRMWARE_VERSION | QUENRA_SELECTOR_MARTEN,
                QUENRA_STATUS_NO_CONTROLLER);
  const tRun text = run({"get", "firmware-version", "--marten"});
  EXPECT_EQ(text.exitCode, 3);
  EXPECT_THAT(text.error, HasSubstr(" is not available: the machine has no Marten interface\n"
                                    "  -26932 QUENRA_STATUS_NO_CONTROLLER\n"
                                    "  The interface is not present, or "));
  EXPECT_THAT(text.error, testing::Not(HasSubstr("No controller could be reached")));
  const tRun result = run({"get", "firmware-version", "--marten", "--json"});
  EXPECT_EQ(result.exitCode, 3);
  EXPECT_STREQ(result.document()["attribute"]["state"].GetString(), "notAvailable");
  EXPECT_THAT(result.error, HasSubstr("firmware-version, interface marten is not available: "
                                      "the machine has no Marten interface\n"));
}

TEST_F(Get, FailedRead_GivesCodeConstantAndAdvice) {
  library_.code(QUENRA_ATTRIBUTE_DRIVER_SETTING_1, QUENRA_STATUS_TIME_OUT);
  const tRun result = run({"get", "driver-setting-1"});
  EXPECT_EQ(result.exitCode, 1);
  EXPECT_THAT(result.out, IsEmpty());
  EXPECT_THAT(result.error, HasSubstr("cannot read driver-setting-1\n"));
  EXPECT_THAT(result.error, HasSubstr("-52007 QUENRA_STATUS_TIME_OUT"));
  EXPECT_THAT(result.error, HasSubstr("Advice: Try again"));
}

TEST_F(Get, CodeOfTheDriver_IsPassedOnWithoutAConstant) {
  library_.code(QUENRA_ATTRIBUTE_DRIVER_SETTING_1, -333);
  const auto document = run({"get", "driver-setting-1", "--json"}).document();
  EXPECT_EQ(document["error"]["code"].GetInt(), -333);
  EXPECT_TRUE(document["error"]["constant"].IsNull());
  EXPECT_EQ(document["exitCode"].GetInt(), 1);
}

TEST_F(Get, NoController_HasItsExitCode) {
  library_.openCode = QUENRA_STATUS_NO_CONTROLLER;
  const tRun result = run({"get", "product-name", "--json"});
  EXPECT_EQ(result.exitCode, 4);
  EXPECT_THAT(result.error, HasSubstr("-26932 QUENRA_STATUS_NO_CONTROLLER"));
  const auto document = result.document();
  EXPECT_STREQ(document["kind"].GetString(), "error");
  EXPECT_STREQ(document["command"].GetString(), "get");
  EXPECT_EQ(document["error"]["code"].GetInt(), QUENRA_STATUS_NO_CONTROLLER);
}

TEST_F(Get, InstanceThatTheMachineLacks_IsReportedWithTheirNumber) {
  library_.number(QUENRA_ATTRIBUTE_MEMORY_MODULE_COUNT, 3);
  const tRun result = run({"get", "memory-size", "--instance", "3"});
  EXPECT_EQ(result.exitCode, 3);
  EXPECT_THAT(result.error, HasSubstr("quenra: memory-size has 3 instances (0 to 2)\n"
                                      "  -26934 QUENRA_STATUS_NOT_SUPPORTED\n"));
  EXPECT_THAT(result.error, HasSubstr("  Advice: Run 'quenra info' to list"));
  library_.number(QUENRA_ATTRIBUTE_MEMORY_MODULE_COUNT, 1);
  EXPECT_THAT(run({"get", "memory-size", "--instance", "1"}).error,
              HasSubstr("quenra: memory-size has 1 instance (0)\n"));
  library_.number(QUENRA_ATTRIBUTE_SLOT_COUNT, 0);
  EXPECT_THAT(run({"get", "slot-number"}).error,
              HasSubstr("quenra: slot-number has no instances on this machine\n"));
  EXPECT_THAT(run({"get", "product-name", "--instance", "1"}).error,
              HasSubstr("quenra: product-name has no instances\n"));
}

TEST_F(Get, PresentInstance_IsNotReportedAsTheCause) {
  library_.number(QUENRA_ATTRIBUTE_MEMORY_MODULE_COUNT, 3);
  EXPECT_THAT(run({"get", "memory-part-number", "--instance", "2"}).error,
              HasSubstr("memory-part-number, instance 2 is not supported on this machine\n"));
}

TEST_F(Get, InstanceOnTheMarten_IsNotAvailable) {
  library_.code(QUENRA_ATTRIBUTE_MEMORY_SIZE | QUENRA_SELECTOR_MARTEN | 1,
                QUENRA_STATUS_NO_CONTROLLER);
  EXPECT_THAT(run({"get", "memory-size", "--instance", "1", "--marten"}).error,
              HasSubstr("is not available: the Marten interface has instance 0 only\n"));
}

TEST_F(Get, NumberOutOfRange_IsNamedWithTheRange) {
  EXPECT_THAT(run({"get", "4294967296"}).error,
              HasSubstr("quenra: 4294967296 is out of range (0 to 4294967295)\n"));
  EXPECT_THAT(run({"get", "memory-size", "--instance", "256"}).error,
              HasSubstr("quenra: 256 is out of range (0 to 255)\n"));
  EXPECT_THAT(run({"get", "memory-size", "--instance", "one"}).error,
              HasSubstr("quenra: 'one' is not an instance\n"));
  EXPECT_THAT(run({"get", "12x"}).error, HasSubstr("quenra: '12x' is not a name or an id\n"));
}

// ---- Several attributes ----

TEST_F(Get, SeveralAttributes_AreALineEach) {
  library_.text(QUENRA_ATTRIBUTE_PRODUCT_NAME, "qctl-8840");
  library_.number(QUENRA_ATTRIBUTE_MEMORY_SIZE, 16384);
  const tRun result = run({"get", "memory-size", "product-name", "0x2000D000"});
  EXPECT_EQ(result.exitCode, 0);
  EXPECT_EQ(result.out, "16384\nqctl-8840\n16384\n");
  EXPECT_THAT(result.error, IsEmpty());
  EXPECT_EQ(library_.opens, 1);
}

TEST_F(Get, SeveralAttributesOnATerminal_AreATable) {
  library_.text(QUENRA_ATTRIBUTE_PRODUCT_NAME, "qctl-8840");
  library_.number(QUENRA_ATTRIBUTE_MEMORY_SIZE + 1, 8192);
  const tRun result =
      runOnTerminal({"get", "product-name", "memory-size", "serial-number", "--instance", "1"});
  EXPECT_THAT(result.out, testing::StartsWith("product-name             qctl-8840\n"
                                              "memory-size, instance 1  8192 MiB\n"
                                              "serial-number            "));
  EXPECT_THAT(result.out, HasSubstr("not supported"));
}

TEST_F(Get, InstanceWithSeveralAttributes_AppliesToThoseThatHaveInstances) {
  library_.number(QUENRA_ATTRIBUTE_MEMORY_SIZE + 1, 8192);
  static_cast<void>(run({"get", "product-name", "memory-size", "--instance", "1"}));
  EXPECT_THAT(library_.reads, testing::IsSupersetOf({uint32_t{QUENRA_ATTRIBUTE_PRODUCT_NAME},
                                                     uint32_t{QUENRA_ATTRIBUTE_MEMORY_SIZE + 1}}));
  EXPECT_THAT(run({"get", "product-name", "serial-number", "--instance", "1"}).error,
              HasSubstr("product-name has no instances\n"))
      << "an instance that no attribute has is not ignored";
}

TEST_F(Get, FailureAmongSeveralAttributes_LeavesItsLineEmpty) {
  library_.text(QUENRA_ATTRIBUTE_PRODUCT_NAME, "qctl-8840");
  library_.code(QUENRA_ATTRIBUTE_DRIVER_SETTING_1, QUENRA_STATUS_TIME_OUT);
  const tRun result = run({"get", "driver-setting-1", "product-name", "serial-number"});
  EXPECT_EQ(result.exitCode, 1) << "the code of the first failure";
  EXPECT_EQ(result.out, "\nqctl-8840\n\n");
  EXPECT_THAT(result.error, HasSubstr("cannot read driver-setting-1\n"));
  EXPECT_THAT(result.error, HasSubstr("serial-number is not supported on this machine\n"));
  EXPECT_EQ(run({"get", "serial-number", "driver-setting-1"}).exitCode, 3);
}

TEST_F(Get, DocumentOfSeveralAttributes_HasTheReadingsInOrder) {
  library_.text(QUENRA_ATTRIBUTE_PRODUCT_NAME, "qctl-8840");
  library_.code(QUENRA_ATTRIBUTE_DRIVER_SETTING_1, QUENRA_STATUS_TIME_OUT);
  const tRun result = run({"get", "product-name", "driver-setting-1", "--json"});
  EXPECT_EQ(result.exitCode, 1);
  const auto document = result.document();
  EXPECT_THAT(memberNames(document),
              ElementsAre("format", "kind", "exitCode", "warnings", "readings"));
  EXPECT_STREQ(document["kind"].GetString(), "get");
  EXPECT_EQ(document["exitCode"].GetInt(), 1);
  ASSERT_EQ(document["readings"].Size(), 2u);
  EXPECT_STREQ(document["readings"][0]["value"].GetString(), "qctl-8840");
  EXPECT_STREQ(document["readings"][1]["state"].GetString(), "failed");
  EXPECT_EQ(document["readings"][1]["status"]["code"].GetInt(), QUENRA_STATUS_TIME_OUT);
}

TEST_F(Get, UnknownNameAmongSeveral_ReadsNothing) {
  const tRun result = run({"get", "product-name", "serial-numbr"});
  EXPECT_EQ(result.exitCode, 2);
  EXPECT_THAT(result.error, HasSubstr("Did you mean serial-number?"));
  EXPECT_THAT(library_.reads, IsEmpty());
}

TEST_F(Get, DevicePathAmongSeveral_OpensTheControllerForTheOthers) {
  library_.openCode = QUENRA_STATUS_NO_CONTROLLER;
  library_.text(QUENRA_ATTRIBUTE_DEVICE_PATH, "path");
  EXPECT_EQ(run({"get", "device-path", "device-path"}).out, "path\npath\n");
  EXPECT_EQ(run({"get", "device-path", "product-name"}).exitCode, 4);
}

// ---- Opening ----

TEST_F(Get, TwoInterfacesOfAKind_AreAFailureWithTheirNumber) {
  library_.openCode = QUENRA_STATUS_GENERIC_FAILURE;
  library_.controllers = 1;
  library_.martens = 2;
  const tRun result = run({"get", "product-name"});
  EXPECT_EQ(result.exitCode, 1);
  EXPECT_THAT(result.error, HasSubstr("quenra: cannot open the controller: 2 Marten interfaces are "
                                      "present; at most 1 is supported\n"));
  library_.controllers = 2;
  EXPECT_THAT(run({"info"}).error,
              HasSubstr("2 controller interfaces are present; exactly 1 is supported\n"));
}

TEST_F(Get, UnusableTable_IsDistinguishedFromAMissingController) {
  library_.openCode = QUENRA_STATUS_NO_CONTROLLER;
  EXPECT_THAT(run({"self-test"}).error, HasSubstr("quenra: cannot open the controller\n"));
  library_.controllers = 1;
  const tRun result = run({"self-test"});
  EXPECT_EQ(result.exitCode, 4);
  EXPECT_THAT(result.error,
              HasSubstr("quenra: cannot open the controller: the driver replied, but its SMBIOS "
                        "table is unusable or is not that of a supported machine\n"));
  EXPECT_THAT(result.error, testing::Not(HasSubstr("device manager")));
}

TEST_F(Get, FailureOfADevice_HasNoOtherCause) {
  library_.openCode = QUENRA_STATUS_GENERIC_FAILURE;
  library_.controllers = 1;
  library_.martens = 1;
  EXPECT_THAT(run({"get", "product-name"}).error,
              HasSubstr("quenra: cannot open the controller\n  -52003 "));
}

TEST_F(Get, DevicePath_NeedsNoController) {
  library_.openCode = QUENRA_STATUS_NO_CONTROLLER;
  library_.text(QUENRA_ATTRIBUTE_DEVICE_PATH, R"(\\?\root#x#0)");
  const tRun result = run({"get", "device-path"});
  EXPECT_EQ(result.exitCode, 0);
  EXPECT_EQ(result.out, "\\\\?\\root#x#0\n");
}

TEST_F(Get, DevicePathWithoutADevice_IsNoController) {
  library_.code(QUENRA_ATTRIBUTE_DEVICE_PATH, QUENRA_STATUS_NO_CONTROLLER);
  const tRun result = run({"get", "device-path"});
  EXPECT_EQ(result.exitCode, 4);
  EXPECT_THAT(result.error,
              HasSubstr("device-path is not available: no controller interface is present\n"));
}

TEST_F(Get, Warnings_GoToTheErrorStreamAndTheDocument) {
  library_.openCode = 77;
  library_.number(QUENRA_ATTRIBUTE_DRIVER_SETTING_1, 5, QUENRA_STATUS_IO_PENDING);
  const tRun result = run({"get", "driver-setting-1", "--json"});
  EXPECT_EQ(result.exitCode, 0);
  EXPECT_THAT(result.error, HasSubstr("warning: opening the controller\n  77\n"));
  EXPECT_THAT(result.error,
              HasSubstr("warning: reading driver-setting-1\n  52011 QUENRA_STATUS_IO_"));
  const auto document = result.document();
  ASSERT_EQ(document["warnings"].Size(), 2u);
  EXPECT_TRUE(document["warnings"][0]["constant"].IsNull());
  EXPECT_STREQ(document["warnings"][1]["constant"].GetString(), "QUENRA_STATUS_IO_PENDING");
  EXPECT_EQ(document["attribute"]["value"].GetUint(), 5u);
}

TEST_F(Get, Document_HasThePromisedMembers) {
  library_.number(QUENRA_ATTRIBUTE_MEMORY_SIZE + 1, 8192);
  const auto document = run({"get", "memory-size", "--instance", "1", "--json"}).document();
  EXPECT_THAT(memberNames(document),
              ElementsAre("format", "kind", "exitCode", "warnings", "attribute", "readings"));
  ASSERT_EQ(document["readings"].Size(), 1u);
  EXPECT_EQ(document["readings"][0], document["attribute"]);
  const rapidjson::Value& attribute = document["attribute"];
  EXPECT_THAT(memberNames(attribute), ElementsAre("name", "id", "instance", "interface", "type",
                                                  "state", "value", "shown", "unit", "status"));
  EXPECT_STREQ(attribute["name"].GetString(), "memory-size");
  EXPECT_STREQ(attribute["id"].GetString(), "0x2000D000");
  EXPECT_EQ(attribute["instance"].GetInt(), 1);
  EXPECT_STREQ(attribute["interface"].GetString(), "default");
  EXPECT_STREQ(attribute["type"].GetString(), "unsigned");
  EXPECT_STREQ(attribute["state"].GetString(), "value");
  EXPECT_EQ(attribute["value"].GetInt(), 8192);
  EXPECT_STREQ(attribute["shown"].GetString(), "8192 MiB");
  EXPECT_STREQ(attribute["unit"].GetString(), "MiB");
  EXPECT_EQ(attribute["status"]["code"].GetInt(), 0);
}

TEST_F(Get, TextOfAnyBytes_LeavesAValidDocument) {
  library_.text(QUENRA_ATTRIBUTE_PRODUCT_NAME, "a\xFF\"\\\x1B[0m");
  const auto document = run({"get", "product-name", "--json"}).document();
  EXPECT_STREQ(document["attribute"]["value"].GetString(), "a\xEF\xBF\xBD\"\\\x1B[0m");
  EXPECT_STREQ(document["attribute"]["shown"].GetString(), "a\xEF\xBF\xBD\"\\\\x1B[0m");
}

TEST_F(Get, TextThatRearrangesALine_IsEscapedInTextAndDocument) {
  const std::string text =
      "qctl\xE2\x80\xAE"
      "0488\xC2\x9B";
  library_.text(QUENRA_ATTRIBUTE_PRODUCT_NAME, text);
  EXPECT_EQ(run({"get", "product-name"}).out, "qctl\\u202E0488\\x9B\n");
  const tRun result = run({"get", "product-name", "--json"});
  EXPECT_EQ(result.document()["attribute"]["value"].GetString(), text);
  EXPECT_THAT(result.out, HasSubstr("\"value\": \"qctl\\u202E0488\\u009B\""));
}

TEST_F(Get, TextWithEscapeCodes_NeverReachesTheOutputAsSuch) {
  library_.text(QUENRA_ATTRIBUTE_PRODUCT_NAME, "a\x1B[31m\r\n");
  EXPECT_EQ(runOnTerminal({"get", "product-name"}).out, "a\\x1B[31m\\x0D\\x0A\n");
}

}  // namespace
}  // namespace nTests
