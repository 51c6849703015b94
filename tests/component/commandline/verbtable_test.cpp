#include "tools/quenra/verbtable.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <set>
#include <sstream>

#include "tests/builders/repositoryfile.h"
#include "tools/quenra/grammar/parser.h"

namespace nTests {
namespace {

using namespace nCommandLine;
using tRows = std::vector<std::vector<std::string>>;

tArguments parsed(std::string_view command) {
  std::istringstream stream{std::string(command)};
  std::vector<std::string> words;
  for (std::string word; stream >> word;) {
    words.push_back(word);
  }
  std::vector<const char*> pointers;
  for (const std::string& word : words) {
    pointers.push_back(word.c_str());
  }
  return parseArguments(kGrammar, pointers);
}

TEST(VerbTable, EveryExample_IsACommandLineOfItsVerb) {
  for (const tVerbRow& verb : kGrammar.verbs) {
    ASSERT_FALSE(verb.examples.empty()) << verb.name;
    for (const tExampleRow& example : verb.examples) {
      EXPECT_EQ(&parsed(example.command).verb(), &verb) << example.command;
      EXPECT_FALSE(example.effect.empty()) << example.command;
    }
  }
}

TEST(VerbTable, NamesAreUsedOnce) {
  std::set<std::string_view> verbs;
  for (const tVerbRow& verb : kGrammar.verbs) {
    EXPECT_TRUE(verbs.insert(verb.name).second) << verb.name;
    EXPECT_EQ(kGrammar.findVerb(verb.name), &verb);
    std::set<std::string_view> words;
    for (const tOptionRow& row : kOptionsOfTheProgram) {
      words.insert(row.name);
    }
    for (const tOptionRow& row : verb.options) {
      EXPECT_TRUE(words.insert(row.name).second) << verb.name << " " << row.name;
    }
    for (const tPositionalRow& row : verb.positionals) {
      EXPECT_TRUE(words.insert(row.name).second) << verb.name << " " << row.name;
    }
  }
}

TEST(VerbTable, RowsAreWrittenAlike) {
  for (const tVerbRow& verb : kGrammar.verbs) {
    EXPECT_FALSE(verb.summary.ends_with('.')) << verb.name;
    EXPECT_TRUE(verb.details.empty() || verb.details.ends_with('.')) << verb.name;
    for (const tOptionRow& row : verb.options) {
      EXPECT_TRUE(row.name.starts_with("--")) << row.name;
      EXPECT_FALSE(row.description.empty() || row.description.ends_with('.')) << row.name;
    }
    for (const tPositionalRow& row : verb.positionals) {
      EXPECT_FALSE(row.description.empty() || row.description.ends_with('.')) << row.name;
    }
  }
}

TEST(VerbTable, OptionsOfOneChoice_AreAdjacent) {
  for (const tVerbRow& verb : kGrammar.verbs) {
    std::set<std::string_view> closed;
    std::string_view open;
    for (const tOptionRow& row : verb.options) {
      if (row.choice != open) {
        closed.insert(open);
        open = row.choice;
      }
      EXPECT_TRUE(open.empty() || !closed.contains(open)) << verb.name << " " << row.name;
    }
  }
}

TEST(VerbTable, ErrorSchema_ListsEveryVerb) {
  const std::vector<std::string> lines = linesOf("docs/schema/error.schema.json");
  for (const tVerbRow& verb : kGrammar.verbs) {
    EXPECT_THAT(lines, testing::Contains("        \"" + std::string(verb.name) + "\","));
  }
}

TEST(Documentation, SynopsisOfEveryVerb_IsInTheGuide) {
  const std::vector<std::string> lines = linesOf("docs/command-line.md");
  for (const tVerbRow& verb : kGrammar.verbs) {
    const std::string documented = "    " + synopsis(verb);
    EXPECT_THAT(lines, testing::Contains(
                           testing::AnyOf(documented, testing::StartsWith(documented + "  "))));
  }
}

TEST(Documentation, ExitCodeTable_IsThatOfTheProgram) {
  tRows expected;
  for (const tExitCodeRow& row : kExitCodes) {
    expected.push_back({std::to_string(exitNumber(row.code)), std::string(row.meaning)});
  }
  const tRows documented = tableUnder("docs/command-line.md", "## Exit codes");
  ASSERT_EQ(documented.size(), expected.size());
  for (size_t i = 0; i < expected.size(); ++i) {
    ASSERT_GE(documented[i].size(), 2u);
    EXPECT_EQ(documented[i][0], expected[i][0]);
    EXPECT_EQ(documented[i][1], expected[i][1]);
  }
}

}  // namespace
}  // namespace nTests
