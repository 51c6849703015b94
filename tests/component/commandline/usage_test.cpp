#include "quenra_attributes.h"
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
                         {"info", "--json=true"},
                         {"--version=1"},
                         {"get", "product-name", "--instance", "1", "--instance", "2"},
                         {"get", "product-name", "--controller", "--marten"},
                         {"route", "plan", "--from", "TRIG_SMB"},
                         {"info", "/json"},
                         {"set", "driver-setting-1", "7", "8"},
                         {"info", "--subject"},
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

TEST_F(Usage, WrongUsage_HasItsExitCodeAndARemedyAndNoOutput) {
  for (const tWords& words : kWrong) {
    const tRun result = run(words);
    EXPECT_EQ(result.exitCode, 2) << testing::PrintToString(words);
    EXPECT_THAT(result.out, IsEmpty()) << testing::PrintToString(words);
    EXPECT_THAT(result.error, testing::StartsWith("quenra: ")) << testing::PrintToString(words);
    EXPECT_THAT(result.error,
                testing::AnyOf(HasSubstr("\n  Usage: quenra "), HasSubstr("\n  Run ")))
        << testing::PrintToString(words);
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
  EXPECT_THAT(memberNames(document["error"]),
              ElementsAre("cause", "message", "code", "constant", "meaning", "advice",
                          "suggestions", "holders"));
  EXPECT_STREQ(document["command"].GetString(), "get");
}

TEST_F(Usage, CommandOfTheErrorDocument_IsNullWithoutAVerb) {
  EXPECT_TRUE(run({"--json"}).document()["command"].IsNull());
  EXPECT_TRUE(run({"inof", "--json"}).document()["command"].IsNull());
}

TEST_F(Usage, JsonBeforeOrAfterTheVerb_IsAccepted) {
  EXPECT_STREQ(run({"--json", "attributes"}).document()["kind"].GetString(), "attributes");
  EXPECT_STREQ(run({"attributes", "--json", "--json"}).document()["kind"].GetString(),
               "attributes");
}

TEST_F(Usage, MisspeltVerb_GetsASuggestion) {
  EXPECT_THAT(run({"inof"}).error, HasSubstr("unknown verb 'inof'\n  Did you mean info?\n"));
  EXPECT_THAT(run({"attribute"}).error, HasSubstr("Did you mean attributes?"));
  EXPECT_THAT(run({"firmware", "verfy"}).error, HasSubstr("Did you mean firmware verify?"));
}

TEST_F(Usage, MisspeltOption_GetsASuggestion) {
  EXPECT_EQ(run({"info", "--jsn"}).error,
            "quenra: unknown option '--jsn'\n"
            "  Did you mean --json?\n"
            "  Run 'quenra info --help' to list the options.\n");
  EXPECT_THAT(run({"get", "product-name", "--martn=1"}).error,
              HasSubstr("unknown option '--martn'\n  Did you mean --marten?\n"));
  EXPECT_THAT(run({"--versoin"}).error, HasSubstr("Did you mean --version?"));
  const auto document = run({"get", "x", "--contoller", "--json"}).document();
  EXPECT_STREQ(document["error"]["suggestions"][0].GetString(), "--controller");
}

TEST_F(Usage, MissingWord_IsNamedWithTheUsage) {
  const std::string usage =
      "\n  Usage: quenra get NAME|ID... [--instance N] [--controller|--marten]\n";
  EXPECT_EQ(run({"get"}).error, "quenra: NAME or ID is missing" + usage);
  EXPECT_EQ(run({"get", "product-name", "--instance"}).error,
            "quenra: the value of --instance is missing" + usage);
  EXPECT_EQ(run({"get", "product-name", "--instance", "--marten"}).error,
            "quenra: the value of --instance is missing" + usage);
  EXPECT_THAT(run({"completion"}).error, HasSubstr("quenra: bash or powershell is missing\n"));
  EXPECT_THAT(run({"set", "driver-setting-1"}).error, HasSubstr("quenra: VALUE is missing\n"));
  EXPECT_THAT(run({"route", "plan", "--from", "TRIG_SMB"}).error,
              HasSubstr("quenra: --to is missing\n"));
  EXPECT_THAT(run({}).error, HasSubstr("quenra: VERB is missing: use info, get, "));
}

TEST_F(Usage, UnexpectedWord_IsNamed) {
  EXPECT_THAT(run({"get", "product-name", "--instance", "1", "--instance", "2"}).error,
              HasSubstr("quenra: --instance is given twice\n"));
  EXPECT_THAT(run({"get", "firmware-version", "--controller", "--marten"}).error,
              HasSubstr("quenra: --controller and --marten cannot be used together\n"));
  EXPECT_THAT(run({"info", "extra"}).error, HasSubstr("quenra: unexpected argument 'extra'\n"));
  EXPECT_THAT(run({"--version=x"}).error, HasSubstr("quenra: --version takes no value\n"));
}

TEST_F(Usage, JsonWithAValue_IsWrongUsage) {
  for (const tWords& words : {tWords{"info", "--json=true"}, tWords{"--json=", "info"}}) {
    const tRun result = run(words);
    EXPECT_EQ(result.exitCode, 2);
    EXPECT_THAT(result.out, IsEmpty());
    EXPECT_THAT(result.error, HasSubstr("quenra: --json takes no value\n"));
  }
  EXPECT_EQ(library_.opens, 0);
}

TEST_F(Usage, ValueOfAnOption_FollowsItOrItsEqualsSign) {
  for (const tWords& words : {tWords{"get", "memory-size", "--instance", "1"},
                              tWords{"get", "--instance=1", "memory-size"}}) {
    library_.reads.clear();
    EXPECT_EQ(run(words).exitCode, 3);
    ASSERT_FALSE(library_.reads.empty());
    EXPECT_EQ(library_.reads.front(), QUENRA_ATTRIBUTE_MEMORY_SIZE + 1);
  }
}

TEST_F(Usage, GroupWithoutAnAction_ListsItsActions) {
  EXPECT_THAT(run({"route"}).error,
              HasSubstr("incomplete command: use 'route plan' or 'route connect'\n"
                        "  Run 'quenra route --help' to list the verbs.\n"));
  EXPECT_STREQ(run({"firmware", "inspect", "--json"}).document()["command"].GetString(),
               "firmware inspect");
}

TEST_F(Usage, WordsOfAnyBytes_AreReportedPrintably) {
  EXPECT_THAT(run({"get", "\x1B[31m\xFF"}).error, HasSubstr("'\\x1B[31m\xEF\xBF\xBD'"));
  EXPECT_STREQ(run({"get", "\xFF", "--json"}).document()["error"]["message"].GetString(),
               "unknown attribute '\xEF\xBF\xBD'");
}

}  // namespace
}  // namespace nTests
