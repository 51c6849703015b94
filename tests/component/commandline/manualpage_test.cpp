#include "tools/quenra/grammar/generatedtexts.h"

#include "tests/component/commandline/commandlinetest.h"
#include "tests/component/commandline/repositoryfile.h"
#include "tools/quenra/verbtable.h"

namespace nTests {
namespace {

using namespace nCommandLine;
using testing::HasSubstr;

using ManualPage = CommandLineTest;

TEST_F(ManualPage, NamesEveryVerbOptionExampleAndExitCode) {
  const std::string page = manualPage(kGrammar);
  for (const tVerbRow& verb : kGrammar.verbs) {
    EXPECT_THAT(page, HasSubstr("\n.SS " + roffText(verb.name) + "\n"));
    EXPECT_THAT(page, HasSubstr("\n\\fBquenra " + roffText(verb.name) + "\\fR"));
    EXPECT_THAT(page, HasSubstr("\n" + roffText(verb.summary) + ".\n"));
    for (const tPositionalRow& row : verb.positionals) {
      EXPECT_THAT(page, HasSubstr("\n.TP\n" + roffItalic(row.valueName) + "\n"));
    }
    for (const tOptionRow& row : verb.options) {
      EXPECT_THAT(page, HasSubstr("\n.TP\n" + roffBold(row.name)));
      EXPECT_THAT(page, HasSubstr("\n" + roffText(row.description) + ".\n"));
    }
    for (const tExampleRow& example : verb.examples) {
      EXPECT_THAT(page, HasSubstr(roffBold("quenra " + std::string(example.command))));
    }
  }
  for (const tExitCodeRow& row : kExitCodes) {
    EXPECT_THAT(page, HasSubstr("\n" + roffText(row.meaning) + "\n"));
  }
}

TEST_F(ManualPage, IsPrintedByHelp) {
  EXPECT_EQ(run({"help", "--manual"}).out, manualPage(kGrammar));
  EXPECT_EQ(run({"help", "--manual", "--json"}).document()["text"].GetString(),
            manualPage(kGrammar));
  EXPECT_EQ(run({"help", "--manual", "get"}).exitCode, 2);
}

TEST_F(ManualPage, CommittedPage_IsTheProgramsOwn) {
  std::string committed;
  for (const std::string& line : linesOf("docs/quenra.1")) {
    committed += line + "\n";
  }
  EXPECT_EQ(committed, manualPage(kGrammar))
      << "Print it anew: ./dev wine -- quenra help --manual > docs/quenra.1";
}

TEST(Roff, CharactersWithAMeaning_StandForThemselves) {
  EXPECT_EQ(roffText("--json"), "\\-\\-json");
  EXPECT_EQ(roffText("C:\\x 'y' `z` ^~"), "C:\\ex \\(aqy\\(aq \\(gaz\\(ga \\(ha\\(ti");
  EXPECT_EQ(roffText("'x"), "\\(aqx");
  EXPECT_EQ(roffText(".x"), "\\&.x");
  EXPECT_EQ(roffText(""), "");
  EXPECT_EQ(roffBold("a-b"), "\\fBa\\-b\\fR");
}

TEST(Roff, EverySentence_HasALineOfItsOwn) {
  EXPECT_EQ(roffSentences("One. Two, v1.2. .NET."), "One.\nTwo, v1.2.\n\\&.NET.\n");
  EXPECT_EQ(roffSentences("One"), "One\n");
}

}  // namespace
}  // namespace nTests
