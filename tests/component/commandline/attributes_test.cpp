#include "tests/component/commandline/commandlinetest.h"
#include "tools/quenra/tables/attributetable.h"

namespace nTests {
namespace {

using testing::ElementsAre;
using testing::HasSubstr;

using Attributes = CommandLineTest;

TEST_F(Attributes, Table_HasIdTypeAccessUnitAndMeaningWithoutAController) {
  library_.openCode = QUENRA_STATUS_NO_CONTROLLER;
  const tRun result = run({"attributes"});
  EXPECT_EQ(result.exitCode, 0);
  EXPECT_THAT(result.out,
              testing::ContainsRegex(
                  "\n  memory-speed +0x2000C900  unsigned  read         MT/s  Highest speed"));
  EXPECT_THAT(result.out, testing::StartsWith("Name  "));
  EXPECT_TRUE(library_.reads.empty());
}

TEST_F(Attributes, Document_ListsTheWholeCatalogue) {
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
  EXPECT_THAT(result.out, HasSubstr("What the processor is called; 1 per processor\n"));
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

}  // namespace
}  // namespace nTests
