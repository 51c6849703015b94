#include "tests/component/commandline/commandlinetest.h"
#include "tools/quenra/tables/statustable.h"

namespace nTests {
namespace {

using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;

using Explain = CommandLineTest;

TEST_F(Explain, NegativeCode_IsTakenFromTheCommandLine) {
  const tRun result = run({"explain", "-26934"});
  EXPECT_EQ(result.exitCode, 0);
  EXPECT_THAT(result.out, testing::StartsWith("-26934 QUENRA_STATUS_NOT_SUPPORTED\n"));
  EXPECT_THAT(result.out,
              testing::ContainsRegex("\n  severity  failure\n  meaning   The attribute"));
  EXPECT_THAT(result.out, testing::ContainsRegex("\n  advice    Look at"));
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

TEST_F(Explain, EveryCodeOfTheCatalogue_HasADocument) {
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

TEST_F(Explain, CodeThatTheLibraryDoesNotDefine_IsSaidToBeTheDriversOwn) {
  const auto document = run({"explain", "-12345", "--json"}).document();
  EXPECT_THAT(memberNames(document),
              ElementsAre("format", "kind", "exitCode", "warnings", "status"));
  EXPECT_THAT(memberNames(document["status"]),
              ElementsAre("code", "constant", "known", "severity", "meaning", "advice"));
  EXPECT_FALSE(document["status"]["known"].GetBool());
  EXPECT_TRUE(document["status"]["constant"].IsNull());
  EXPECT_THAT(document["status"]["meaning"].GetString(), HasSubstr("driver"));
}

TEST_F(Explain, UnknownConstant_IsMetWithASuggestion) {
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
