#include "tests/component/commandline/commandlinetest.h"
#include "tools/quenra/tables/attributetable.h"
#include "tools/quenra/tables/statustable.h"

namespace nTests {
namespace {

using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using Attributes = CommandLineTest;
using Explain = CommandLineTest;

// ---- attributes ----

TEST_F(Attributes, Table_HasIdTypeAccessUnitAndMeaningWithoutAController) {
  library_.openCode = QUENRA_STATUS_NO_CONTROLLER;
  const tRun result = run({"attributes"});
  EXPECT_EQ(result.exitCode, 0);
  EXPECT_THAT(result.out,
              testing::ContainsRegex(
                  "\n  memory-speed +0x2000C900  unsigned  read         MT/s  Maximum speed"));
  EXPECT_THAT(result.out, testing::StartsWith("Name  "));
  EXPECT_TRUE(library_.reads.empty());
}

TEST_F(Attributes, Document_ListsEveryAttribute) {
  const auto document = run({"attributes", "--json"}).document();
  EXPECT_THAT(memberNames(document),
              ElementsAre("format", "kind", "exitCode", "warnings", "attributes"));
  ASSERT_EQ(document["attributes"].Size(),
            nCommandLine::kAttributes.size() + std::size(nCommandLine::kSettings));
  const auto& attribute = itemWith(document["attributes"], "name", "memory-size");
  EXPECT_THAT(memberNames(attribute),
              ElementsAre("name", "constant", "id", "type", "subject", "instances", "unit",
                          "description", "source", "readable", "writable", "instanceCount"));
  EXPECT_STREQ(attribute["constant"].GetString(), "QUENRA_ATTRIBUTE_MEMORY_SIZE");
  EXPECT_STREQ(attribute["id"].GetString(), "0x2000D000");
  EXPECT_STREQ(attribute["type"].GetString(), "unsigned");
  EXPECT_STREQ(attribute["subject"].GetString(), "memory");
  EXPECT_STREQ(attribute["instances"].GetString(), "populated memory module");
  EXPECT_STREQ(attribute["unit"].GetString(), "MiB");
}

TEST_F(Attributes, WritableAttributes_AreMarked) {
  const tRun result = run({"attributes"});
  EXPECT_THAT(result.out,
              testing::ContainsRegex("\n  driver-setting-1 +0x20044C00  unsigned  read, write "));
  EXPECT_THAT(result.out,
              testing::ContainsRegex("\n  text-setting-of-both +0x18000000  text      write "));
  const auto document = run({"attributes", "--json"}).document();
  std::vector<std::string> writable;
  for (const auto& attribute : document["attributes"].GetArray()) {
    if (attribute["writable"].GetBool()) {
      writable.emplace_back(attribute["name"].GetString());
    }
  }
  EXPECT_THAT(writable,
              ElementsAre("driver-setting-1", "driver-setting-2", "text-setting-of-both"));
  const auto& text = itemWith(document["attributes"], "name", "text-setting-of-both");
  EXPECT_FALSE(text["readable"].GetBool());
  EXPECT_STREQ(text["constant"].GetString(), "QUENRA_TEXT_SETTING_OF_BOTH");
}

TEST_F(Attributes, Instances_HaveTheirLimitAndTheAttributeThatCountsThem) {
  const tRun result = run({"attributes"});
  EXPECT_THAT(result.out, HasSubstr("Size of the module; in KiB when bit 15 of the value is set; "
                                    "1 per populated memory module, counted by "
                                    "memory-module-count\n"));
  EXPECT_THAT(result.out, HasSubstr("Version text of the processor; 1 per processor\n"));
  const auto document = run({"attributes", "--json"}).document();
  const auto& slot = itemWith(document["attributes"], "name", "slot-number")["instanceCount"];
  EXPECT_EQ(slot["maximum"].GetInt(), 4);
  EXPECT_STREQ(slot["attribute"].GetString(), "slot-count");
  const auto& processor =
      itemWith(document["attributes"], "name", "processor-version")["instanceCount"];
  EXPECT_EQ(processor["maximum"].GetInt(), 256);
  EXPECT_TRUE(processor["attribute"].IsNull());
  const auto& one = itemWith(document["attributes"], "name", "product-name")["instanceCount"];
  EXPECT_EQ(one["maximum"].GetInt(), 1);
}

TEST_F(Attributes, MemberThatAnAttributeLacks_IsNull) {
  const auto document = run({"attributes", "--json"}).document();
  const auto& attribute = itemWith(document["attributes"], "name", "product-name");
  EXPECT_TRUE(attribute["unit"].IsNull());
  EXPECT_TRUE(attribute["instances"].IsNull());
}

// ---- explain ----

TEST_F(Explain, NegativeCode_IsParsed) {
  const tRun result = run({"explain", "-26934"});
  EXPECT_EQ(result.exitCode, 0);
  EXPECT_THAT(result.out, testing::StartsWith("-26934 QUENRA_STATUS_NOT_SUPPORTED\n"));
  EXPECT_THAT(result.out,
              testing::ContainsRegex("\n  severity  failure\n  meaning   The attribute"));
  EXPECT_THAT(result.out, testing::ContainsRegex("\n  advice    Run "));
  EXPECT_THAT(result.error, IsEmpty());
}

TEST_F(Explain, EveryFormOfACode_MeansTheSame) {
  const std::string expected = run({"explain", "-26934"}).out;
  for (const char* const form :
       {"0xFFFF96CA", "4294940362", "QUENRA_STATUS_NOT_SUPPORTED", "not-supported"}) {
    EXPECT_EQ(run({"explain", form}).out, expected) << form;
  }
  EXPECT_EQ(run({"explain", "--", "-26934"}).out, expected);
}

TEST_F(Explain, EveryCodeOfTheTable_HasADocument) {
  for (const nCommandLine::tStatusRow& row : nCommandLine::kStatuses) {
    const tRun result = run({"explain", std::to_string(row.code), "--json"});
    const auto document = result.document();
    EXPECT_EQ(result.exitCode, 0) << row.constant;
    EXPECT_EQ(document["status"]["code"].GetInt(), row.code);
    EXPECT_EQ(document["status"]["constant"].GetString(), row.constant);
    EXPECT_EQ(document["status"]["meaning"].GetString(), row.meaning);
    EXPECT_EQ(document["status"]["advice"].GetString(), row.advice);
  }
}

TEST_F(Explain, SeverityFollowsTheSign) {
  const std::pair<std::string, std::string> kExpectations[] = {
      {"0", "success"}, {"240050", "warning"}, {"-26934", "failure"}, {"-1", "failure"}};
  for (const auto& [code, severity] : kExpectations) {
    EXPECT_EQ(run({"explain", code, "--json"}).document()["status"]["severity"].GetString(),
              severity);
  }
}

TEST_F(Explain, UndefinedCode_IsAttributedToTheDriver) {
  const auto document = run({"explain", "-12345", "--json"}).document();
  EXPECT_THAT(memberNames(document),
              ElementsAre("format", "kind", "exitCode", "warnings", "status"));
  EXPECT_THAT(memberNames(document["status"]),
              ElementsAre("code", "constant", "known", "severity", "meaning", "advice"));
  EXPECT_FALSE(document["status"]["known"].GetBool());
  EXPECT_TRUE(document["status"]["constant"].IsNull());
  EXPECT_THAT(document["status"]["meaning"].GetString(), HasSubstr("driver"));
}

TEST_F(Explain, UnknownConstant_GetsASuggestion) {
  const tRun result = run({"explain", "QUENRA_STATUS_NOT_SUPORTED", "--json"});
  EXPECT_EQ(result.exitCode, 2);
  EXPECT_THAT(result.error, HasSubstr("Did you mean QUENRA_STATUS_NOT_SUPPORTED"));
  EXPECT_STREQ(result.document()["error"]["suggestions"][0].GetString(),
               "QUENRA_STATUS_NOT_SUPPORTED");
}

TEST_F(Explain, NoCode_IsWrongUsage) {
  EXPECT_EQ(run({"explain"}).exitCode, 2);
  EXPECT_EQ(run({"explain", "-2693x"}).exitCode, 2);
  EXPECT_EQ(run({"explain", "99999999999"}).exitCode, 2);
}

}  // namespace
}  // namespace nTests
