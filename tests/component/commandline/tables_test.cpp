#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <set>
#include <sstream>

#include "tests/builders/repositoryfile.h"
#include "tools/commandline/argumenttext.h"
#include "tools/commandline/grammar.h"
#include "tools/quenra/commandline.h"
#include "tools/quenra/tables/attributetable.h"
#include "tools/quenra/tables/statustable.h"

namespace nTests {
namespace {

using namespace nCommandLine;
using tRows = std::vector<std::vector<std::string>>;

TEST(AttributeTable, HoldsExactlyTheAttributesOfTheHeader) {
  std::map<std::string, int64_t> table;
  for (const tAttributeRow& row : kAttributes) {
    EXPECT_TRUE(table.emplace(constantOf(row), row.id).second) << row.name << " appears twice";
  }
  EXPECT_EQ(table, enumeratorsOf("include/quenra_attributes.h", "QUENRA_ATTRIBUTE_"));
}

TEST(AttributeTable, NamesAreThoseOfTheHeadersInventory) {
#define EXPECT_SAME_NAME(id, itsName) EXPECT_EQ(attributeNamed(id), itsName);
  const auto attributeNamed = [](uint32_t id) {
    const tAttributeRow* const row = findAttribute(id);
    return row == nullptr ? "(none)" : row->name;
  };
  QUENRA_FOR_EACH_TEXT_ATTRIBUTE(EXPECT_SAME_NAME)
  QUENRA_FOR_EACH_UNSIGNED_ATTRIBUTE(EXPECT_SAME_NAME)
#undef EXPECT_SAME_NAME
}

TEST(AttributeTable, KeepsSubjectsTogetherInTheirOrder) {
  std::vector<const tSubjectRow*> order;
  for (const tAttributeRow& row : kAttributes) {
    if (order.empty() || order.back() != row.subject) {
      order.push_back(row.subject);
    }
  }
  EXPECT_THAT(order, testing::ElementsAreArray(kSubjects));
}

TEST(AttributeTable, DescribesEveryAttribute) {
  std::set<std::string_view> descriptions;
  for (const tAttributeRow& row : kAttributes) {
    EXPECT_FALSE(row.description.empty()) << row.name;
    EXPECT_FALSE(row.source.empty()) << row.name;
    EXPECT_TRUE(descriptions.insert(row.description).second) << row.name << " repeats another";
  }
}

TEST(AttributeTable, EveryRowIsFoundByIdAndByAnyOfItsNames) {
  for (const tAttributeRow& row : kAttributes) {
    EXPECT_EQ(findAttribute(row.id), &row);
    EXPECT_EQ(findAttribute(row.name), &row);
    EXPECT_EQ(findAttribute(std::string_view(constantOf(row))), &row);
  }
  EXPECT_EQ(findAttribute("Product_Name"), findAttribute(uint32_t{QUENRA_ATTRIBUTE_PRODUCT_NAME}));
}

TEST(AttributeTable, UnknownNamesAndIds_AreNotFound) {
  EXPECT_EQ(findAttribute("product"), nullptr);
  EXPECT_EQ(findAttribute(""), nullptr);
  EXPECT_EQ(findAttribute(uint32_t{QUENRA_ATTRIBUTE_PRODUCT_NAME + 1}), nullptr);
}

TEST(StatusTable, HoldsExactlyTheCodesOfTheHeader) {
  std::map<std::string, int64_t> table;
  for (const tStatusRow& row : kStatuses) {
    EXPECT_TRUE(table.emplace(row.constant, row.code).second) << row.constant;
  }
  EXPECT_EQ(table, enumeratorsOf("include/quenra_status.h", "QUENRA_STATUS_"));
}

TEST(StatusTable, GivesMeaningAndAdviceAsSentences) {
  for (const tStatusRow& row : kStatuses) {
    EXPECT_TRUE(row.meaning.ends_with('.')) << row.constant;
    EXPECT_TRUE(row.advice.ends_with('.')) << row.constant;
    EXPECT_EQ(findStatus(row.constant), &row);
  }
}

TEST(StatusTable, CodeOfTheDriver_IsExplainedBySign) {
  const tStatusExplanation failure = explainStatus(-7);
  const tStatusExplanation warning = explainStatus(7);
  EXPECT_FALSE(failure.known());
  EXPECT_THAT(std::string(failure.meaning), testing::StartsWith("A failure"));
  EXPECT_THAT(std::string(warning.meaning), testing::StartsWith("A warning"));
}

// ---- Documentation ----

std::string cell(std::string_view text) {
  return std::string(text.empty() ? "-" : text);
}

TEST(Documentation, Attributes_AreThoseOfTheTable) {
  tRows expected;
  std::vector<tAttributeRow> rows(kAttributes.begin(), kAttributes.end());
  rows.insert(rows.end(), std::begin(kSettings), std::end(kSettings));
  for (const tAttributeRow& row : rows) {
    expected.push_back({hexadecimalText(row.id, 8), cell(row.name), cell(typeName(row.type())),
                        cell(accessName(row.access)), cell(instancesText(row)), cell(row.unit),
                        cell(row.description), cell(row.source)});
  }
  EXPECT_THAT(tableUnder("docs/attributes.md", "## All attributes"),
              testing::ElementsAreArray(expected));
}

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

TEST(VerbTable, EveryVerb_HasAFunction) {
  for (const tVerbRow& verb : kGrammar.verbs) {
    EXPECT_NE(functionOf(verb), nullptr) << verb.name;
  }
  EXPECT_NE(functionOf(kVersionVerb), nullptr);
  EXPECT_EQ(functionOf({"nothing"}), nullptr);
}

TEST(VerbTable, NamesAreUsedOnce) {
  std::set<std::string_view> verbs;
  for (const tVerbRow& verb : kGrammar.verbs) {
    EXPECT_TRUE(verbs.insert(verb.name).second) << verb.name;
    EXPECT_EQ(kGrammar.findVerb(verb.name), &verb);
    std::set<std::string_view> words;
    for (const tOptionRow& row : kGrammar.optionsOfEveryVerb) {
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
    const std::string documented = synopsis(kGrammar, verb);
    EXPECT_THAT(lines, testing::Contains(
                           testing::AnyOf(documented, testing::StartsWith(documented + "  "))));
  }
}

TEST(Documentation, ExitCodeTable_IsThatOfTheProgram) {
  tRows expected;
  for (const tExitCodeRow& row : kExitCodes) {
    expected.push_back({std::to_string(row.code), std::string(row.meaning)});
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
