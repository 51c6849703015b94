#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <set>
#include <sstream>
#include <string>
#include <string_view>
#include <vector>

#include "quenra_version.h"
#include "simulator/quenra-sim/verbs/verbs.h"
#include "tools/commandline/generatedtexts.h"

namespace nTests {
namespace {

using nCommandLine::tOptionRow;
using nCommandLine::tPositionalRow;
using nCommandLine::tVerbRow;
using nSimulator::kGrammar;
using testing::HasSubstr;
using testing::IsEmpty;
using tWords = std::vector<std::string>;

struct tRun {
  int exitCode;
  std::string out;
  std::string error;
};

tRun run(const tWords& words, bool isWine) {
  std::vector<const char*> arguments{"quenra-sim"};
  for (const std::string& word : words) {
    arguments.push_back(word.c_str());
  }
  testing::internal::CaptureStdout();
  testing::internal::CaptureStderr();
  const int exitCode =
      nSimulator::runProgram(static_cast<int>(arguments.size()), arguments.data(), isWine);
  return {exitCode, testing::internal::GetCapturedStdout(), testing::internal::GetCapturedStderr()};
}

tWords wordsOf(std::string_view line) {
  std::istringstream stream{std::string(line)};
  tWords words;
  for (std::string word; stream >> word;) {
    words.push_back(word);
  }
  return words;
}

// ---- Outside Wine ----

TEST(OutsideWine, EveryVerb_IsRejected) {
  const std::set<std::string_view> texts{"completion", "help"};
  for (const tVerbRow& verb : kGrammar.verbs) {
    if (texts.contains(verb.name)) {
      continue;
    }
    const tRun result = run(wordsOf(verb.examples.front().command), false);
    EXPECT_EQ(result.exitCode, 1) << verb.name;
    EXPECT_THAT(result.out, IsEmpty());
    EXPECT_EQ(result.error,
              "quenra-sim: the simulated machine runs under Wine only: on Windows it would replace "
              "parts of the system\n");
  }
}

TEST(OutsideWine, HelpVersionAndCompletion_ArePrinted) {
  for (const tWords& words : {tWords{"--help"}, tWords{"help", "status"}, tWords{"--version"},
                              tWords{"completion", "bash"}, tWords{"help", "--manual"}}) {
    const tRun result = run(words, false);
    EXPECT_EQ(result.exitCode, 0) << words.front();
    EXPECT_THAT(result.out, HasSubstr("quenra-sim")) << words.front();
    EXPECT_THAT(result.error, IsEmpty());
  }
}

// ---- Wrong usage ----

struct tWrong {
  tWords words;
  const char* message;  // after "quenra-sim: "
};

const tWrong kWrong[] = {
    {{"foo"}, "unknown verb 'foo'\n  Run 'quenra-sim --help' to list the verbs.\n"},
    {{"statsu"},
     "unknown verb 'statsu'\n  Did you mean status?\n"
     "  Run 'quenra-sim --help' to list the verbs.\n"},
    {{"attribute"},
     "incomplete command: use 'attribute set', 'attribute remove', 'attribute allow-writes' or "
     "'attribute refuse-writes'\n  Run 'quenra-sim attribute --help' to list the verbs.\n"},
    {{"pending", "lsit"},
     "unknown verb 'pending lsit'\n  Did you mean pending list?\n"
     "  Run 'quenra-sim --help' to list the verbs.\n"},
    {{"status", "--jsn"},
     "unknown option '--jsn'\n  Did you mean --json?\n"
     "  Run 'quenra-sim status --help' to list the options.\n"},
    {{"reset", "--json"},
     "unknown option '--json'\n  Run 'quenra-sim reset --help' to list the options.\n"},
    {{"status", "--json=1"}, "--json takes no value\n  Usage: quenra-sim status [--json]\n"},
    {{"status", "now"}, "unexpected argument 'now'\n  Usage: quenra-sim status [--json]\n"},
    {{"demote"}, "TICKET is missing\n  Usage: quenra-sim demote TICKET\n"},
    {{"demote", "four"},
     "'four' is not an integer\n  Give TICKET as an integer from 0 to 4294967295, in decimal or in "
     "hexadecimal after 0x.\n"},
    {{"attribute", "remove", "martne", "1"},
     "unknown interface 'martne'\n  Did you mean marten?\n  Use controller or marten.\n"},
    {{"attribute", "remove", "marten"},
     "ID is missing\n  Usage: quenra-sim attribute remove controller|marten ID\n"},
    {{"attribute", "set", "marten", "1"},
     "the value is missing: use --number, --text or --bytes\n  Usage: quenra-sim attribute set "
     "controller|marten ID [--number N|--text TEXT|--bytes BYTES]\n"},
    {{"attribute", "set", "marten", "1", "--number", "1", "--text", "a"},
     "--number and --text cannot be used together\n  Usage: quenra-sim attribute set "
     "controller|marten ID [--number N|--text TEXT|--bytes BYTES]\n"},
    {{"attribute", "set", "marten", "1", "--bytes", "0g"},
     "'0g' is not a list of bytes of two hexadecimal digits\n  Give --bytes such a list, for "
     "example '04 03 02 01'.\n"},
    {{"answer", "add", "marten", "get-atribute", "--code", "1"},
     "unknown request 'get-atribute'\n  Did you mean get-attribute or set-attribute?\n  Use "
     "get-attribute, set-attribute, exchange-values, send-command, pending-request, "
     "pending-request-wide, end-pending or any.\n"},
    {{"answer", "add", "marten", "--code", "x"},
     "'x' is not a status code\n  Codes are 32-bit numbers, decimal or hexadecimal after 0x.\n"},
    {{"answer", "add", "marten", "--windows-error", "0"},
     "0 is out of range (1 to 65535)\n  Give --windows-error as an integer from 1 to 65535, in "
     "decimal or in hexadecimal after 0x.\n"},
    {{"pending", "acceptance", "sometimes"},
     "unknown time of acceptance 'sometimes'\n  Use at-once, later or never.\n"},
    {{"pending", "complete", "1", "--windows-error"},
     "the value of --windows-error is missing\n  Usage: quenra-sim pending complete HANDLE "
     "[--windows-error ERROR]\n"},
    {{"scenario"},
     "the change is missing\n  Run 'quenra-sim scenario --help' to list the options.\n"},
    {{"scenario", "--martens", "3"},
     "3 is out of range (0 to 2)\n  Give --martens as an integer from 0 to 2, in decimal or in "
     "hexadecimal after 0x.\n"},
    {{"scenario", "--topography", std::string(256, 'x')},
     "the text of --topography has 256 bytes\n  Give at most 255 bytes.\n"},
    {{"wait", "--timeout", "601"},
     "'601' is not a number of seconds from 0 to 600\n  Give --timeout such a number, for example "
     "15 or 0.5.\n"},
    {{"encryption", "onn"},
     "unknown state 'onn'\n  Did you mean on?\n  Use off, on, unknown, no-volume or fail.\n"},
    {{"encryption", "fail"},
     "STEP is missing\n  Usage: quenra-sim encryption [STATE] [STEP] [--json]\n"},
    {{"encryption", "fail", "conect"},
     "unknown step 'conect'\n  Did you mean connect?\n  Use locator, connect, query, result or "
     "property.\n"},
    {{"encryption", "on", "query"},
     "unexpected argument 'query'\n  Usage: quenra-sim encryption [STATE] [STEP] [--json]\n"},
    {{"encryption", "on", "--json"}, "--json has no meaning with a state\n  Leave --json out.\n"},
    {{"driver-store", "missing", "--seconds", "1"},
     "--seconds has no meaning without working\n  Leave --seconds out.\n"},
    {{"driver-store", "working", "--clear"},
     "--clear has no meaning with a state\n  Leave --clear out.\n"},
    {{"help", "nothing"}, "unknown verb 'nothing'\n  Run 'quenra-sim --help' to list the verbs.\n"},
    {{"completion", "bsh"},
     "unknown shell 'bsh'\n  Did you mean bash?\n  Use bash or powershell.\n"},
};

TEST(Usage, WrongUsage_NamesTheWordTheReasonAndTheCorrection) {
  for (const auto& [words, message] : kWrong) {
    const tRun result = run(words, true);
    EXPECT_EQ(result.exitCode, 2) << message;
    EXPECT_THAT(result.out, IsEmpty());
    EXPECT_EQ(result.error, "quenra-sim: " + std::string(message));
  }
}

TEST(Usage, NoWord_ListsTheVerbs) {
  const tRun result = run({}, true);
  EXPECT_EQ(result.exitCode, 2);
  EXPECT_THAT(result.error, testing::StartsWith("quenra-sim: VERB is missing: use install, "));
}

TEST(Usage, WordWithControlCharacters_IsReportedPrintably) {
  EXPECT_THAT(run({"\x1B[31m\xE2\x80\xAE"}, true).error, HasSubstr("'\\x1B[31m\\u202E'"));
}

// ---- The grammar and its texts ----

TEST(VerbTable, EveryExample_IsACommandLineOfItsVerb) {
  for (const tVerbRow& verb : kGrammar.verbs) {
    ASSERT_FALSE(verb.examples.empty()) << verb.name;
    for (const nCommandLine::tExampleRow& example : verb.examples) {
      const tWords words = wordsOf(example.command);
      std::vector<const char*> pointers;
      for (const std::string& word : words) {
        pointers.push_back(word.c_str());
      }
      EXPECT_EQ(&nCommandLine::parseArguments(kGrammar, pointers).verb(), &verb) << example.command;
    }
  }
}

TEST(VerbTable, RepeatableOption_KeepsEveryValue) {
  const char* const words[] = {"scenario", "--structure-byte", "1/2=3", "--structure-byte=4/5=6"};
  EXPECT_THAT(nCommandLine::parseArguments(kGrammar, words).all("--structure-byte"),
              testing::ElementsAre("1/2=3", "4/5=6"));
}

TEST(VerbTable, NegativeStatusCode_IsTheValueOfItsOption) {
  const char* const words[] = {"answer", "add", "controller", "--code", "-1"};
  EXPECT_EQ(nCommandLine::parseArguments(kGrammar, words).optional("--code"), "-1");
}

TEST(Help, OfEveryVerb_NamesItsArgumentsAndExitCodes) {
  for (const tVerbRow& verb : kGrammar.verbs) {
    tWords words = wordsOf(verb.name);
    words.emplace_back("--help");
    const tRun result = run(words, true);
    EXPECT_EQ(result.exitCode, 0) << verb.name;
    EXPECT_THAT(result.out, HasSubstr("\nUsage: quenra-sim " + std::string(verb.name)));
    EXPECT_THAT(result.out, HasSubstr("Examples:\n  quenra-sim " + std::string(verb.name)));
    EXPECT_THAT(result.out, HasSubstr("\n  4  no simulated machine is installed\n"));
    for (const tOptionRow& row : verb.options) {
      EXPECT_THAT(result.out, HasSubstr("\n  " + std::string(row.name))) << verb.name;
    }
    for (const tPositionalRow& row : verb.positionals) {
      EXPECT_THAT(result.out, HasSubstr("\n  " + std::string(row.valueName))) << verb.name;
    }
  }
}

TEST(Help, OfTheProgram_ListsEveryVerb) {
  const std::string text = run({"--help"}, true).out;
  EXPECT_EQ(run({"help"}, true).out, text);
  for (const tVerbRow& verb : kGrammar.verbs) {
    EXPECT_THAT(text, HasSubstr("\n  " + std::string(verb.name) + " ")) << verb.name;
  }
}

TEST(Help, OfAGroup_ListsItsVerbs) {
  EXPECT_THAT(run({"attribute", "--help"}, true).out,
              HasSubstr("\n  quenra-sim attribute remove controller|marten ID\n"));
}

TEST(Help, Version_IsThatOfTheProject) {
  EXPECT_EQ(run({"--version"}, true).out, "quenra-sim " QUENRA_VERSION "\n");
}

TEST(Completion, Script_DefinesNamesOfThisProgramOnly) {
  const std::string script = run({"completion", "bash"}, true).out;
  EXPECT_THAT(script,
              HasSubstr("\ncomplete -o default -F _quenra_sim quenra-sim quenra-sim.exe\n"));
  EXPECT_THAT(script,
              HasSubstr("repeatable='--structure-byte --structure-text --without-structure'"));
  EXPECT_THAT(script, testing::Not(HasSubstr("_quenra-sim")));
  EXPECT_THAT(script, testing::Not(HasSubstr("@program@")));
  EXPECT_THAT(script, testing::Not(HasSubstr("@prefix@")));
}

TEST(Completion, EveryWordSet_IsInBothScripts) {
  for (const char* const shell : {"bash", "powershell"}) {
    const std::string script = run({"completion", shell}, true).out;
    for (const nCommandLine::tWordSet* const set : kGrammar.wordSets) {
      ASSERT_FALSE(set->words().empty()) << set->name;
      for (const nCommandLine::tOfferedWord& offered : set->words()) {
        EXPECT_THAT(script, HasSubstr(offered.word)) << set->name;
      }
    }
  }
}

}  // namespace
}  // namespace nTests
