#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "tests/component/commandline/repositoryfile.h"
#include "tools/quenra/grammar/grammar.h"
#include "tools/quenra/output/diagnostics.h"
#include "tools/quenra/tables/attributetable.h"
#include "tools/quenra/text/numbertext.h"
#include "tools/quenra/verbtable.h"

namespace nTests {
namespace {

using namespace nCommandLine;
using tRows = std::vector<std::vector<std::string>>;

std::string cell(std::string_view text) {
  return std::string(text.empty() ? "-" : text);
}

TEST(Documentation, AttributeTable_IsTheCatalogue) {
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

TEST(Documentation, SynopsisOfEveryVerb_IsTheGuides) {
  const std::vector<std::string> lines = linesOf("docs/command-line.md");
  for (const tVerbRow& verb : kGrammar.verbs) {
    const std::string documented = "    " + synopsis(verb);
    EXPECT_THAT(lines, testing::Contains(
                           testing::AnyOf(documented, testing::StartsWith(documented + "  "))));
  }
}

TEST(Documentation, ExitCodeTable_IsTheProgramsOwn) {
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
