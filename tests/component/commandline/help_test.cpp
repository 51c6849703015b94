#include "quenra_version.h"
#include "tests/component/commandline/commandlinetest.h"
#include "tools/quenra/output/diagnostics.h"
#include "tools/quenra/verbtable.h"

namespace nTests {
namespace {

using testing::HasSubstr;
using testing::IsEmpty;

using Help = CommandLineTest;

TEST_F(Help, NamesEveryVerb) {
  const tRun result = run({"--help"});
  EXPECT_EQ(result.exitCode, 0);
  EXPECT_THAT(result.error, IsEmpty());
  for (const nCommandLine::tVerbRow& verb : nCommandLine::kGrammar.verbs) {
    EXPECT_THAT(result.out, HasSubstr("\n  " + std::string(verb.name) + " "));
    EXPECT_THAT(result.out, HasSubstr(std::string(verb.summary) + "\n"));
  }
}

TEST_F(Help, EndsWithExamplesAndExitCodes) {
  for (const nCommandLine::tVerbRow& verb : nCommandLine::kGrammar.verbs) {
    std::vector<std::string> words = wordsOf(verb.name);
    words.emplace_back("--help");
    const std::string text = run(words).out;
    EXPECT_THAT(text, HasSubstr("Examples:\n  quenra " + std::string(verb.name)));
    for (const nCommandLine::tExitCodeRow& row : nCommandLine::kExitCodes) {
      EXPECT_THAT(text, HasSubstr(std::to_string(nCommandLine::exitNumber(row.code)) + "  " +
                                  std::string(row.meaning)));
    }
  }
}

TEST_F(Help, OfAVerb_NamesItsOptions) {
  const std::string text = run({"get", "--help"}).out;
  EXPECT_THAT(text, HasSubstr("\nUsage: quenra get NAME|ID [--instance N] "
                              "[--controller|--marten]\n"));
  for (const char* option : {"\n  NAME|ID  ", "\n  --instance N  ", "\n  --controller  ",
                             "\n  --marten  ", "\n  --json  "}) {
    EXPECT_THAT(text, HasSubstr(option));
  }
}

TEST_F(Help, VerbAndOption_SayTheSame) {
  EXPECT_EQ(run({"help"}).out, run({"--help"}).out);
  EXPECT_EQ(run({"help", "get"}).out, run({"get", "--help"}).out);
  EXPECT_EQ(run({"get", "-h"}).out, run({"get", "--help"}).out);
}

TEST_F(Help, OfAVerbOfTwoWords_IsPrintedForEverySpelling) {
  const std::string text = run({"firmware", "inspect", "--help"}).out;
  EXPECT_THAT(text, HasSubstr("\nUsage: quenra firmware inspect IMAGE\n"));
  EXPECT_EQ(run({"help", "firmware", "inspect"}).out, text);
  EXPECT_EQ(run({"firmware", "--help", "inspect"}).out, text);
}

TEST_F(Help, OfAGroup_TellsEachOfItsVerbs) {
  const tRun result = run({"firmware", "--help"});
  EXPECT_EQ(result.exitCode, 0);
  EXPECT_EQ(run({"help", "firmware"}).out, result.out);
  for (const nCommandLine::tVerbRow& verb : nCommandLine::kGrammar.verbs) {
    EXPECT_EQ(result.out.find("quenra " + std::string(verb.name)) != std::string::npos,
              verb.name.starts_with("firmware "))
        << verb.name;
  }
}

TEST_F(Help, ExampleLongerThanItsColumn_HasItsDescriptionBelow) {
  const std::string text = run({"help", "route", "connect"}).out;
  EXPECT_THAT(text, HasSubstr("\n  quenra route connect --from TRIG_SMB --to PXI_Trig0\n" +
                              std::string(44, ' ') + "until Ctrl-C\n"));
  EXPECT_THAT(run({"help", "get"}).out,
              HasSubstr("\n  quenra get 0x10000100                     ... and by its id\n"));
}

TEST_F(Help, Option_WinsOverOtherWords) {
  const std::string text = run({"get", "--help"}).out;
  EXPECT_EQ(run({"get", "--unknown", "--help"}).out, text);
  EXPECT_EQ(run({"--help", "get"}).out, text);
  EXPECT_EQ(run({"set", "product-name", "--", "--help"}).exitCode, 0);
}

TEST_F(Help, WithJson_IsADocument) {
  const auto document = run({"help", "get", "--json"}).document();
  EXPECT_STREQ(document["kind"].GetString(), "help");
  EXPECT_EQ(document["text"].GetString(), run({"get", "--help"}).out);
}

TEST_F(Help, Version_IsTheProjects) {
  EXPECT_EQ(run({"--version"}).out, "quenra " QUENRA_VERSION "\n");
  EXPECT_EQ(run({"--version"}).exitCode, 0);
  EXPECT_STREQ(run({"--version", "--json"}).document()["version"].GetString(), QUENRA_VERSION);
}

}  // namespace
}  // namespace nTests
