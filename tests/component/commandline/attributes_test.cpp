#include "tests/component/commandline/commandlinetest.h"
#include "tools/quenra/catalogue/attributecatalogue.h"

namespace nTests {
namespace {

using testing::ElementsAre;

using Attributes = CommandLineTest;

TEST_F(Attributes, ListsIdTypeUnitAndMeaningWithoutAController) {
  library_.openCode = QUENRA_STATUS_NO_CONTROLLER;
  const tRun result = run({"attributes"});
  EXPECT_EQ(result.exitCode, 0);
  EXPECT_THAT(result.out, testing::ContainsRegex(
                              "\n  memory-speed +0x2000C900  unsigned  MT/s  Highest speed"));
  EXPECT_TRUE(library_.reads.empty());
}

TEST_F(Attributes, Document_ListsTheWholeCatalogue) {
  const auto document = run({"attributes", "--json"}).document();
  EXPECT_THAT(memberNames(document),
              ElementsAre("format", "kind", "exitCode", "warnings", "attributes"));
  ASSERT_EQ(document["attributes"].Size(), nCommandLine::kAttributes.size());
  const auto& attribute = itemWith(document["attributes"], "name", "memory-size");
  EXPECT_THAT(memberNames(attribute), ElementsAre("name", "constant", "id", "type", "subject",
                                                  "instances", "unit", "description", "source"));
  EXPECT_STREQ(attribute["constant"].GetString(), "QUENRA_ATTRIBUTE_MEMORY_SIZE");
  EXPECT_STREQ(attribute["id"].GetString(), "0x2000D000");
  EXPECT_STREQ(attribute["type"].GetString(), "unsigned");
  EXPECT_STREQ(attribute["subject"].GetString(), "memory");
  EXPECT_STREQ(attribute["instances"].GetString(), "populated memory module");
  EXPECT_STREQ(attribute["unit"].GetString(), "MiB");
}

TEST_F(Attributes, WhatAnAttributeLacks_IsNull) {
  const auto document = run({"attributes", "--json"}).document();
  const auto& attribute = itemWith(document["attributes"], "name", "product-name");
  EXPECT_TRUE(attribute["unit"].IsNull());
  EXPECT_TRUE(attribute["instances"].IsNull());
}

}  // namespace
}  // namespace nTests
