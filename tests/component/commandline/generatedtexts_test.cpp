#include <algorithm>

#include "quenra_version.h"
#include "tests/builders/repositoryfile.h"
#include "tests/component/commandline/commandlinetest.h"
#include "tools/commandline/generatedtexts.h"
#include "tools/quenra/commandline.h"
#include "tools/quenra/output/diagnostics.h"

namespace nTests {
namespace {

using namespace nCommandLine;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using Help = CommandLineTest;
using ManualPage = CommandLineTest;

// ---- Help ----

TEST_F(Help, NamesEveryVerb) {
  const tRun result = run({"--help"});
  EXPECT_EQ(result.exitCode, 0);
  EXPECT_THAT(result.error, IsEmpty());
  for (const tVerbRow& verb : kGrammar.verbs) {
    EXPECT_THAT(result.out, HasSubstr("\n  " + std::string(verb.name) + " "));
    EXPECT_THAT(result.out, HasSubstr(std::string(verb.summary) + "\n"));
  }
}

TEST_F(Help, EndsWithExamplesAndExitCodes) {
  for (const tVerbRow& verb : kGrammar.verbs) {
    std::vector<std::string> words = wordsOf(verb.name);
    words.emplace_back("--help");
    const std::string text = run(words).out;
    EXPECT_THAT(text, HasSubstr("Examples:\n  quenra " + std::string(verb.name)));
    for (const tExitCodeRow& row : kExitCodes) {
      EXPECT_THAT(text, HasSubstr(std::to_string(row.code) + "  " + std::string(row.meaning)));
    }
  }
}

TEST_F(Help, OfAVerb_NamesItsOptions) {
  const std::string text = run({"get", "--help"}).out;
  EXPECT_THAT(text, HasSubstr("\nUsage: quenra get NAME|ID... [--instance N] "
                              "[--controller|--marten]\n"));
  for (const char* option : {"\n  NAME|ID  ", "\n  --instance N  ", "\n  --controller  ",
                             "\n  --marten  ", "\n  --json  "}) {
    EXPECT_THAT(text, HasSubstr(option));
  }
}

TEST_F(Help, VerbAndOption_PrintTheSame) {
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

TEST_F(Help, OfAGroup_ListsItsVerbs) {
  const tRun result = run({"firmware", "--help"});
  EXPECT_EQ(result.exitCode, 0);
  EXPECT_EQ(run({"help", "firmware"}).out, result.out);
  for (const tVerbRow& verb : kGrammar.verbs) {
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

TEST_F(Help, Option_TakesPrecedenceOverOtherWords) {
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

TEST_F(Help, Version_IsThatOfTheProject) {
  EXPECT_EQ(run({"--version"}).out, "quenra " QUENRA_VERSION "\n");
  EXPECT_EQ(run({"--version"}).exitCode, 0);
  EXPECT_STREQ(run({"--version", "--json"}).document()["version"].GetString(), QUENRA_VERSION);
}

// ---- Manual page ----

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

TEST_F(ManualPage, CommittedPage_IsThatOfTheProgram) {
  std::string committed;
  for (const std::string& line : linesOf("docs/quenra.1")) {
    committed += line + "\n";
  }
  EXPECT_EQ(committed, manualPage(kGrammar))
      << "Print it again: ./dev wine -- quenra help --manual > docs/quenra.1";
}

TEST(Roff, SpecialCharacters_AreEscaped) {
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

// ---- Completion scripts ----

class Completion : public CommandLineTest {
 protected:
  std::string scriptFor(const std::string& shell) {
    const tRun result = run({"completion", shell});
    EXPECT_EQ(result.exitCode, 0);
    EXPECT_THAT(result.error, IsEmpty());
    EXPECT_EQ(library_.opens, 0);
    return result.out;
  }
  // No completions, or those that the scripts contain.
  static bool isKnown(const tWordSet* words) {
    return words == nullptr || std::ranges::count(kGrammar.wordSets, words) == 1;
  }
};

TEST_F(Completion, EveryScript_ContainsEveryVerbOptionAndWord) {
  for (const char* const shell : {"bash", "powershell"}) {
    const std::string script = scriptFor(shell);
    for (const tVerbRow& verb : kGrammar.verbs) {
      EXPECT_THAT(script, HasSubstr(verb.name));
      for (const tOptionRow& option : verb.options) {
        EXPECT_THAT(script, HasSubstr(option.name)) << verb.name;
        EXPECT_TRUE(isKnown(option.words)) << option.name << " of " << verb.name;
        EXPECT_TRUE(option.words == nullptr || !option.valueName.empty()) << option.name;
      }
      for (const tPositionalRow& positional : verb.positionals) {
        EXPECT_TRUE(isKnown(positional.words)) << positional.name << " of " << verb.name;
      }
    }
    for (const tWordSet* const set : kGrammar.wordSets) {
      for (const tOfferedWord& offered : set->words()) {
        EXPECT_THAT(script, HasSubstr(offered.word)) << shell;
      }
    }
  }
}

TEST_F(Completion, RouteEnds_OfferTheTerminals) {
  for (const char* const verb : {"route plan", "route connect"}) {
    for (const char* const name : {"--from", "--to"}) {
      const auto& options = kGrammar.findVerb(verb)->options;
      const auto option = std::ranges::find(options, std::string_view(name), &tOptionRow::name);
      ASSERT_NE(option, options.end());
      EXPECT_EQ(option->words, &kTerminalWords) << verb << " " << name;
    }
  }
  EXPECT_THAT(scriptFor("bash"),
              HasSubstr("values=([--from]=\"$_quenra_terminals\" [--to]=\"$_quenra_terminals\")"));
  EXPECT_THAT(scriptFor("powershell"),
              HasSubstr("Name = '--from'; Meaning = 'Source terminal'; TakesValue = $true; "
                        "Words = 'terminals'; Choice = ''"));
}

TEST_F(Completion, Set_OffersTheWritableAttributesOnly) {
  const auto words = kWritableWords.words();
  std::vector<std::string_view> names;
  std::ranges::transform(words, std::back_inserter(names), &tOfferedWord::word);
  EXPECT_THAT(names, ElementsAre("driver-setting-1", "driver-setting-2", "text-setting-of-both"));
  EXPECT_EQ(kGrammar.findVerb("set")->positionals[0].words, &kWritableWords);
}

TEST_F(Completion, DeviceOfASection_OffersTheDevices) {
  const auto& options = kGrammar.findVerb("firmware build")->options;
  const auto device = std::ranges::find(options, std::string_view("--device"), &tOptionRow::name);
  ASSERT_NE(device, options.end());
  ASSERT_NE(device->words, nullptr);
  std::vector<std::string_view> names;
  for (const tOfferedWord& offered : device->words->words()) {
    names.push_back(offered.word);
  }
  EXPECT_THAT(names, ElementsAre("BIOS", "MARTEN", "SAFEMODE"));
}

TEST_F(Completion, Bash_FallsBackToFileNames) {
  EXPECT_THAT(scriptFor("bash"), HasSubstr("\ncomplete -o default -F _quenra quenra quenra.exe\n"));
}

TEST_F(Completion, OfferedWords_NeedNoQuotingInAShell) {
  for (const tWordSet* const set : kGrammar.wordSets) {
    EXPECT_FALSE(set->words().empty()) << set->name;
    for (const tOfferedWord& offered : set->words()) {
      EXPECT_EQ(offered.word.find_first_not_of(
                    "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789_-"),
                std::string_view::npos)
          << offered.word;
      EXPECT_FALSE(offered.meaning.empty()) << offered.word;
    }
  }
}

TEST_F(Completion, QuotesInAMeaning_EndNoTextOfPowerShell) {
  EXPECT_THAT(scriptFor("powershell"), HasSubstr("'Path of the controller''s device interface; "));
}

TEST_F(Completion, UnknownShell_IsWrongUsageWithASuggestion) {
  const tRun result = run({"completion", "powershel"});
  EXPECT_EQ(result.exitCode, 2);
  EXPECT_THAT(result.out, IsEmpty());
  EXPECT_THAT(result.error, HasSubstr("unknown shell 'powershel'"));
  EXPECT_THAT(result.error, HasSubstr("Did you mean powershell?"));
  EXPECT_EQ(run({"completion"}).exitCode, 2);
}

TEST_F(Completion, Document_ContainsTheScript) {
  const auto document = run({"completion", "bash", "--json"}).document();
  EXPECT_THAT(memberNames(document),
              ElementsAre("format", "kind", "exitCode", "warnings", "shell", "script"));
  EXPECT_EQ(document["script"].GetString(), scriptFor("bash"));
}

}  // namespace
}  // namespace nTests
