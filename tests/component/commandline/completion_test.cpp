#include <algorithm>

#include "tests/component/commandline/commandlinetest.h"
#include "tools/quenra/verbtable.h"

namespace nTests {
namespace {

using namespace nCommandLine;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;

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
