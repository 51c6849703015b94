#include "tests/component/commandline/commandlinetest.h"

namespace nTests {
namespace {

using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;

using Usage = CommandLineTest;
using tWords = std::vector<std::string>;

const tWords kWrong[] = {{},
                         {"inof"},
                         {"get"},
                         {"explain"},
                         {"info", "extra"},
                         {"info", "--unknown"},
                         {"info", "--json=maybe"},
                         {"info", "/json"},
                         {"get", "product-name", "serial-number"},
                         {"get", "product-name", "--instance"},
                         {"info", "get"},
                         {"--unknown"},
                         {"-26934"},
                         {""},
                         {"help", "nothing"},
                         {"firmware"},
                         {"firmware", "nothing"},
                         {"firmware", "inspect"},
                         {"firmware-inspect", "x"},
                         {"firmware inspect"},
                         {"firmware", "build", "x"}};

TEST_F(Usage, WrongUsage_HasItsExitCodeAndNothingOnTheOutput) {
  for (const tWords& words : kWrong) {
    const tRun result = run(words);
    EXPECT_EQ(result.exitCode, 2) << testing::PrintToString(words);
    EXPECT_THAT(result.out, IsEmpty()) << testing::PrintToString(words);
    EXPECT_THAT(result.error, testing::StartsWith("quenra: ")) << testing::PrintToString(words);
    EXPECT_THAT(result.error, HasSubstr("--help' tells how.")) << testing::PrintToString(words);
  }
  EXPECT_TRUE(library_.reads.empty());
}

TEST_F(Usage, WrongUsageWithJson_IsADocument) {
  for (tWords words : kWrong) {
    words.push_back("--json");
    const tRun result = run(words);
    EXPECT_EQ(result.exitCode, 2) << testing::PrintToString(words);
    const auto document = result.document();
    EXPECT_STREQ(document["kind"].GetString(), "error") << testing::PrintToString(words);
    EXPECT_STREQ(document["error"]["cause"].GetString(), "usage");
    EXPECT_GT(document["error"]["message"].GetStringLength(), 0u);
    EXPECT_THAT(result.error, testing::Not(IsEmpty()));
  }
}

TEST_F(Usage, ErrorDocument_HasThePromisedMembers) {
  const auto document = run({"get", "nothing-like-it", "--json"}).document();
  EXPECT_THAT(memberNames(document),
              ElementsAre("format", "kind", "exitCode", "warnings", "command", "error"));
  EXPECT_THAT(memberNames(document["error"]), ElementsAre("cause", "message", "code", "constant",
                                                          "meaning", "advice", "suggestions"));
  EXPECT_STREQ(document["command"].GetString(), "get");
}

TEST_F(Usage, CommandOfTheErrorDocument_IsNullWithoutAVerb) {
  EXPECT_TRUE(run({"--json"}).document()["command"].IsNull());
  EXPECT_TRUE(run({"inof", "--json"}).document()["command"].IsNull());
}

TEST_F(Usage, Json_IsTakenBeforeAndAfterTheVerb) {
  EXPECT_STREQ(run({"--json", "attributes"}).document()["kind"].GetString(), "attributes");
  EXPECT_STREQ(run({"attributes", "--json", "--json"}).document()["kind"].GetString(),
               "attributes");
}

TEST_F(Usage, MisspeltVerb_IsMetWithASuggestion) {
  EXPECT_THAT(run({"inof"}).error, HasSubstr("Did you mean info?"));
  EXPECT_THAT(run({"attribute"}).error, HasSubstr("Did you mean attributes?"));
}

TEST_F(Usage, GroupWithoutAnAction_IsMetWithItsActions) {
  EXPECT_THAT(run({"firmware"}).error,
              HasSubstr("'firmware' needs to be told what to do\n  Did you "
                        "mean firmware inspect, firmware verify or "
                        "firmware build?\n"));
  EXPECT_THAT(run({"firmware", "verfy"}).error, HasSubstr("Did you mean firmware verify?"));
  EXPECT_STREQ(run({"firmware", "inspect", "--json"}).document()["command"].GetString(),
               "firmware inspect");
}

TEST_F(Usage, WordsOfAnyBytes_AreReportedPrintably) {
  EXPECT_THAT(run({"get", "\x1B[31m\xFF"}).error, HasSubstr("'\\x1B[31m\xEF\xBF\xBD'"));
  EXPECT_STREQ(run({"get", "\xFF", "--json"}).document()["error"]["message"].GetString(),
               "there is no attribute '\xEF\xBF\xBD'");
}

}  // namespace
}  // namespace nTests
