#include "tests/component/commandline/commandlinetest.h"

namespace nTests {
namespace {

using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;

using SelfTest = CommandLineTest;

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
