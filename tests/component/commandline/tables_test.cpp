#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <set>

#include "tests/builders/repositoryfile.h"
#include "tools/quenra/tables/attributetable.h"
#include "tools/quenra/tables/statustable.h"
#include "tools/quenra/text/numbertext.h"

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

}  // namespace
}  // namespace nTests
