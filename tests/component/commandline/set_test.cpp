#include "quenra_attributes.h"
#include "tests/component/commandline/commandlinetest.h"

namespace nTests {
namespace {

using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using tWords = std::vector<std::string>;
using tWrite = tScriptedLibrary::tWrite;

class Set : public CommandLineTest {
 protected:
  // The one write that the command line sends to the library.
  tWrite writtenBy(const tWords& words) {
    library_.writes.clear();
    const tRun result = run(words);
    EXPECT_EQ(result.exitCode, 0) << result.error;
    EXPECT_EQ(library_.writes.size(), 1u) << result.error;
    return library_.writes.empty() ? tWrite{} : library_.writes.front();
  }

  std::string refusalOf(const tWords& words) {
    library_.writes.clear();
    const int opensBefore = library_.opens;
    const tRun result = run(words);
    EXPECT_EQ(result.exitCode, 2) << testing::PrintToString(words);
    EXPECT_THAT(result.out, IsEmpty());
    EXPECT_THAT(library_.writes, IsEmpty()) << testing::PrintToString(words);
    EXPECT_EQ(library_.opens, opensBefore) << testing::PrintToString(words);
    return result.error;
  }
};

TEST_F(Set, Success_IsSilentForScripts) {
  const tRun result = run({"set", "driver-setting-1", "7"});
  EXPECT_EQ(result.exitCode, 0);
  EXPECT_THAT(result.out, IsEmpty());
  EXPECT_THAT(result.error, IsEmpty());
  EXPECT_THAT(library_.writes, ElementsAre(tWrite{QUENRA_ATTRIBUTE_DRIVER_SETTING_1, 7u}));
  EXPECT_THAT(library_.reads, IsEmpty());
}

TEST_F(Set, Success_IsConfirmedOnATerminal) {
  EXPECT_EQ(runOnTerminal({"set", "driver-setting-1", "0x10"}).out,
            "driver-setting-1: set to 16\n");
  EXPECT_EQ(runOnTerminal({"set", "memory-speed", "3200", "--instance", "1", "--marten"}).out,
            "memory-speed, instance 1, interface marten: set to 3200 MT/s\n");
  EXPECT_EQ(runOnTerminal({"set", "text-setting-of-both", "a\x1B[31m"}).out,
            "text-setting-of-both: set to a\\x1B[31m\n");
}

TEST_F(Set, DecimalAndHexadecimalNumbers_AreAccepted) {
  EXPECT_EQ(writtenBy({"set", "driver-setting-2", "4294967295"}),
            (tWrite{QUENRA_ATTRIBUTE_DRIVER_SETTING_2, 0xFFFFFFFFu}));
  EXPECT_EQ(writtenBy({"set", "driver-setting-2", "0xfF"}),
            (tWrite{QUENRA_ATTRIBUTE_DRIVER_SETTING_2, 255u}));
  EXPECT_EQ(writtenBy({"set", "0x20051400", "0"}), (tWrite{QUENRA_ATTRIBUTE_DRIVER_SETTING_2, 0u}));
}

TEST_F(Set, TextOfAnyCharacters_IsWrittenUnchanged) {
  const std::string texts[] = {"rack 7",
                               "",
                               "12",
                               "0x12",
                               "info",
                               "[a,b]",
                               "{}",
                               "*",
                               "a=b",
                               "'\"\\",
                               "K\xC3\xB6ln \xE6\xBC\xA2 \xF0\x9F\x94\xA7",
                               "a\nb"};
  for (const std::string& text : texts) {
    EXPECT_EQ(writtenBy({"set", "product-name", text}),
              (tWrite{QUENRA_ATTRIBUTE_PRODUCT_NAME, text}));
  }
}

TEST_F(Set, ValueThatBeginsWithADash_FollowsTwoDashes) {
  EXPECT_EQ(writtenBy({"set", "product-name", "--", "--json"}),
            (tWrite{QUENRA_ATTRIBUTE_PRODUCT_NAME, "--json"}));
  EXPECT_EQ(writtenBy({"set", "--", "product-name", "-x"}),
            (tWrite{QUENRA_ATTRIBUTE_PRODUCT_NAME, "-x"}));
  EXPECT_EQ(writtenBy({"set", "product-name", "--", "--"}),
            (tWrite{QUENRA_ATTRIBUTE_PRODUCT_NAME, "--"}));
  EXPECT_EQ(writtenBy({"set", "product-name", "--", "++"}),
            (tWrite{QUENRA_ATTRIBUTE_PRODUCT_NAME, "++"}));
  EXPECT_EQ(writtenBy({"set", "product-name", "-5"}),
            (tWrite{QUENRA_ATTRIBUTE_PRODUCT_NAME, "-5"}));
  EXPECT_EQ(writtenBy({"set", "product-name", "++"}),
            (tWrite{QUENRA_ATTRIBUTE_PRODUCT_NAME, "++"}));
  EXPECT_EQ(writtenBy({"set", "product-name", "-"}), (tWrite{QUENRA_ATTRIBUTE_PRODUCT_NAME, "-"}));
  for (const char* const value : {"-x", "--martn"}) {
    EXPECT_THAT(refusalOf({"set", "product-name", value}), HasSubstr("quenra set --help"));
  }
}

TEST_F(Set, NumberGoesToTheControllerUnlessTheMartenIsSelected) {
  EXPECT_EQ(writtenBy({"set", "driver-setting-2", "1"}).id, QUENRA_ATTRIBUTE_DRIVER_SETTING_2);
  EXPECT_EQ(writtenBy({"set", "driver-setting-2", "1", "--controller"}).id,
            QUENRA_ATTRIBUTE_DRIVER_SETTING_2 | QUENRA_SELECTOR_CONTROLLER);
  EXPECT_EQ(writtenBy({"set", "--marten", "driver-setting-2", "1"}).id,
            QUENRA_ATTRIBUTE_DRIVER_SETTING_2 | QUENRA_SELECTOR_MARTEN);
  EXPECT_EQ(writtenBy({"set", "0x20251400", "1"}).id,
            QUENRA_ATTRIBUTE_DRIVER_SETTING_2 | QUENRA_SELECTOR_MARTEN);
  EXPECT_EQ(writtenBy({"set", "memory-size", "1", "--instance", "2"}).id,
            QUENRA_ATTRIBUTE_MEMORY_SIZE + 2);
}

TEST_F(Set, TextSettingOfBoth_GoesToBothOrToTheMarten) {
  for (const char* const name : {"text-setting-of-both", "QUENRA_TEXT_SETTING_OF_BOTH",
                                 "Text_Setting_of_both", "0x18000000"}) {
    EXPECT_EQ(writtenBy({"set", name, "a"}), (tWrite{QUENRA_TEXT_SETTING_OF_BOTH, "a"})) << name;
    EXPECT_EQ(writtenBy({"set", name, "a", "--both"}), (tWrite{QUENRA_TEXT_SETTING_OF_BOTH, "a"}))
        << name;
    EXPECT_EQ(writtenBy({"set", name, "a", "--marten"}),
              (tWrite{QUENRA_TEXT_SETTING_OF_BOTH | QUENRA_SELECTOR_MARTEN, "a"}))
        << name;
  }
}

TEST_F(Set, IdThatTheLibraryCannotWrite_IsRejected) {
  EXPECT_THAT(
      refusalOf({"set", "text-setting-of-both", "a", "--controller"}),
      HasSubstr("text-setting-of-both cannot be written to the controller interface alone\n"));
  EXPECT_THAT(refusalOf({"set", "0x18100000", "a"}), HasSubstr("controller interface alone"));
  EXPECT_THAT(refusalOf({"set", "text-setting-of-both", "a", "--instance", "1"}),
              HasSubstr("text-setting-of-both has no instances"));
  EXPECT_THAT(refusalOf({"set", "driver-setting-1", "1", "--both"}),
              HasSubstr("driver-setting-1 cannot be written to both interfaces at once\n"
                        "  Only text-setting-of-both can."));
  EXPECT_THAT(refusalOf({"set", "product-name", "a", "--both"}), HasSubstr("both interfaces"));
  for (const char* const option : {"--controller", "--marten"}) {
    EXPECT_THAT(refusalOf({"set", "product-name", "a", option}),
                HasSubstr("the interface of product-name cannot be chosen"));
  }
  EXPECT_THAT(refusalOf({"set", "0x10200100", "a"}), HasSubstr("cannot be chosen"));
  EXPECT_THAT(refusalOf({"set", "0x18200000", "a", "--both"}),
              HasSubstr("the id selects another interface than --both"));
}

TEST_F(Set, AtMostOneInterface_CanBeChosen) {
  static_cast<void>(refusalOf({"set", "text-setting-of-both", "a", "--both", "--marten"}));
  static_cast<void>(refusalOf({"set", "driver-setting-1", "1", "--controller", "--marten"}));
  static_cast<void>(refusalOf({"set", "driver-setting-1", "1", "--controller", "--both"}));
}

TEST_F(Set, InvalidNumber_IsRejected) {
  for (const char* const value : {"", "-1", "+1", " 1", "1 ", "4294967296", "0x", "0x1FFFFFFFF",
                                  "1.5", "3200 MT/s", "yes", "1e3"}) {
    EXPECT_THAT(refusalOf({"set", "memory-speed", value}),
                testing::AnyOf(HasSubstr("'" + std::string(value) +
                                         "' is not an unsigned 32-bit number\n  Give it in"),
                               HasSubstr(std::string(value) +
                                         " is out of range (0 to 4294967295)\n  Give it in")));
  }
}

TEST_F(Set, InvalidUnicode_IsRejected) {
  for (const char* const value : {"a\xFF", "\xC0\x80", "\xED\xA0\x80", "\xE6\xBC"}) {
    EXPECT_THAT(refusalOf({"set", "product-name", value}),
                HasSubstr("the value is not a Unicode text\n  Texts are written as UTF-8."));
  }
}

TEST_F(Set, MissingAndFurtherWords_AreWrongUsage) {
  static_cast<void>(refusalOf({"set"}));
  static_cast<void>(refusalOf({"set", "driver-setting-1"}));
  static_cast<void>(refusalOf({"set", "product-name", "rack", "7"}));
  EXPECT_THAT(refusalOf({"set", "driver-seting-1", "1"}),
              HasSubstr("Did you mean driver-setting-1"));
  EXPECT_THAT(refusalOf({"set", "text-setting-of-bot", "1"}),
              HasSubstr("Did you mean text-setting-of-both"));
}

TEST_F(Set, WriteOnlySetting_IsNotRead) {
  const tRun result = run({"get", "text-setting-of-both"});
  EXPECT_EQ(result.exitCode, 2);
  EXPECT_THAT(result.error, HasSubstr("text-setting-of-both can only be written"));
  EXPECT_THAT(result.error, HasSubstr("Run 'quenra set text-setting-of-both VALUE' to write it."));
}

TEST_F(Set, RefusedAttribute_IsReadOnly) {
  library_.writeCode = QUENRA_STATUS_NOT_SUPPORTED;
  const tRun result = runOnTerminal({"set", "product-name", "a"});
  EXPECT_EQ(result.exitCode, 3);
  EXPECT_THAT(result.out, IsEmpty());
  EXPECT_THAT(result.error, HasSubstr("quenra: product-name is read-only on this machine\n"
                                      "  -26934 QUENRA_STATUS_NOT_SUPPORTED\n"));
  EXPECT_THAT(result.error, HasSubstr("  Advice: Run 'quenra attributes' to list the attributes "
                                      "that can be written.\n"));
  EXPECT_THAT(run({"set", "driver-setting-1", "1", "--marten"}).error,
              HasSubstr("driver-setting-1 is read-only on the Marten interface\n"));
  EXPECT_THAT(run({"set", "text-setting-of-both", "a"}).error,
              HasSubstr("this machine does not accept text-setting-of-both\n"));
  EXPECT_THAT(run({"set", "0x20099900", "1"}).error,
              HasSubstr("this machine does not accept 0x20099900\n"));
}

TEST_F(Set, AbsentInterfaceOrField_IsNotAvailable) {
  library_.writeCode = QUENRA_STATUS_NO_CONTROLLER;
  const tRun result = run({"set", "driver-setting-2", "1", "--marten"});
  EXPECT_EQ(result.exitCode, 3);
  EXPECT_THAT(result.error, HasSubstr("driver-setting-2, interface marten is not available: the "
                                      "machine has no Marten interface\n  -26932 "));
  EXPECT_THAT(run({"set", "text-setting-of-both", "a"}).error,
              HasSubstr("text-setting-of-both is not available: the SMBIOS table lacks"));
}

TEST_F(Set, TextThatIsTooLong_IsWrongUsageAndReachesNoDriver) {
  EXPECT_THAT(refusalOf({"set", "product-name", std::string(3000, 'x')}),
              HasSubstr("quenra: the text has 3000 bytes; at most 255 are accepted\n"));
  EXPECT_THAT(refusalOf({"set", "text-setting-of-both", std::string(254, 'x') + "\xC3\xA9"}),
              HasSubstr("the text has 256 bytes"));
  EXPECT_EQ(writtenBy({"set", "product-name", std::string(255, 'x')}).id,
            QUENRA_ATTRIBUTE_PRODUCT_NAME);
}

TEST_F(Set, FailureOfTheLibrary_IsAnErrorDocument) {
  library_.writeCode = QUENRA_STATUS_INVALID_VALUE;
  const tRun result = run({"set", "driver-setting-1", "1", "--json"});
  EXPECT_EQ(result.exitCode, 1);
  const auto document = result.document();
  EXPECT_STREQ(document["kind"].GetString(), "error");
  EXPECT_STREQ(document["command"].GetString(), "set");
  EXPECT_STREQ(document["error"]["message"].GetString(), "cannot write driver-setting-1");
  EXPECT_EQ(document["error"]["code"].GetInt(), QUENRA_STATUS_INVALID_VALUE);
}

TEST_F(Set, NoController_HasItsExitCode) {
  library_.openCode = QUENRA_STATUS_NO_CONTROLLER;
  EXPECT_EQ(run({"set", "driver-setting-1", "1"}).exitCode, 4);
  EXPECT_THAT(library_.writes, IsEmpty());
}

TEST_F(Set, Warnings_GoToTheErrorStreamAndTheDocument) {
  library_.openCode = 77;
  library_.writeCode = QUENRA_STATUS_IO_PENDING;
  const tRun result = run({"set", "driver-setting-1", "5", "--json"});
  EXPECT_EQ(result.exitCode, 0);
  EXPECT_THAT(result.error, HasSubstr("warning: opening the controller\n  77\n"));
  EXPECT_THAT(result.error, HasSubstr("warning: writing driver-setting-1\n  52011 "));
  const auto document = result.document();
  ASSERT_EQ(document["warnings"].Size(), 2u);
  EXPECT_EQ(document["attribute"]["status"]["code"].GetInt(), QUENRA_STATUS_IO_PENDING);
}

TEST_F(Set, Document_HasThePromisedMembers) {
  const auto document = run({"set", "memory-speed", "0xC80", "--marten", "--json"}).document();
  EXPECT_THAT(memberNames(document),
              ElementsAre("format", "kind", "exitCode", "warnings", "attribute"));
  EXPECT_STREQ(document["kind"].GetString(), "set");
  const rapidjson::Value& attribute = document["attribute"];
  EXPECT_THAT(memberNames(attribute), ElementsAre("name", "id", "instance", "interface", "type",
                                                  "value", "shown", "unit", "status"));
  EXPECT_STREQ(attribute["name"].GetString(), "memory-speed");
  EXPECT_STREQ(attribute["id"].GetString(), "0x2000C900");
  EXPECT_STREQ(attribute["interface"].GetString(), "marten");
  EXPECT_EQ(attribute["value"].GetInt(), 3200);
  EXPECT_STREQ(attribute["shown"].GetString(), "3200 MT/s");
  EXPECT_EQ(attribute["status"]["code"].GetInt(), 0);
}

TEST_F(Set, DocumentOfTheSettingOfBoth_NamesItsInterface) {
  const tWords words{"set", "text-setting-of-both",
                     "Gr\xC3\xBC\xC3\x9F"
                     "e",
                     "--json"};
  EXPECT_STREQ(run(words).document()["attribute"]["interface"].GetString(), "both");
  EXPECT_STREQ(run(words).document()["attribute"]["value"].GetString(), words[2].c_str());
}

}  // namespace
}  // namespace nTests
