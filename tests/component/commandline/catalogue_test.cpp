#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <set>

#include "tests/component/commandline/repositoryfile.h"
#include "tools/quenra/tables/attributetable.h"
#include "tools/quenra/tables/statustable.h"

namespace nTests {
namespace {

using namespace nCommandLine;

TEST(AttributeCatalogue, HoldsExactlyTheAttributesOfTheHeader) {
  std::map<std::string, int64_t> catalogue;
  for (const tAttributeRow& row : kAttributes) {
    EXPECT_TRUE(catalogue.emplace(constantOf(row), row.id).second) << row.name << " appears twice";
  }
  EXPECT_EQ(catalogue, enumeratorsOf("include/quenra_attributes.h", "QUENRA_ATTRIBUTE_"));
}

TEST(AttributeCatalogue, NamesAreThoseOfTheHeadersInventory) {
#define EXPECT_SAME_NAME(id, itsName) EXPECT_EQ(attributeNamed(id), itsName);
  const auto attributeNamed = [](uint32_t id) {
    const tAttributeRow* const row = findAttribute(id);
    return row == nullptr ? "(none)" : row->name;
  };
  QUENRA_FOR_EACH_TEXT_ATTRIBUTE(EXPECT_SAME_NAME)
  QUENRA_FOR_EACH_UNSIGNED_ATTRIBUTE(EXPECT_SAME_NAME)
#undef EXPECT_SAME_NAME
}

TEST(AttributeCatalogue, KeepsSubjectsTogetherInTheirOrder) {
  std::vector<const tSubjectRow*> order;
  for (const tAttributeRow& row : kAttributes) {
    if (order.empty() || order.back() != row.subject) {
      order.push_back(row.subject);
    }
  }
  EXPECT_THAT(order, testing::ElementsAreArray(kSubjects));
}

TEST(AttributeCatalogue, SaysSomethingAboutEveryAttribute) {
  std::set<std::string_view> descriptions;
  for (const tAttributeRow& row : kAttributes) {
    EXPECT_FALSE(row.description.empty()) << row.name;
    EXPECT_FALSE(row.source.empty()) << row.name;
    EXPECT_TRUE(descriptions.insert(row.description).second) << row.name << " repeats another";
  }
}

TEST(AttributeCatalogue, EveryRowIsFoundByIdAndByAnyOfItsNames) {
  for (const tAttributeRow& row : kAttributes) {
    EXPECT_EQ(findAttribute(row.id), &row);
    EXPECT_EQ(findAttribute(row.name), &row);
    EXPECT_EQ(findAttribute(std::string_view(constantOf(row))), &row);
  }
  EXPECT_EQ(findAttribute("Product_Name"), findAttribute(uint32_t{0x10000100}));
}

TEST(AttributeCatalogue, UnknownNamesAndIds_AreNotFound) {
  EXPECT_EQ(findAttribute("product"), nullptr);
  EXPECT_EQ(findAttribute(""), nullptr);
  EXPECT_EQ(findAttribute(uint32_t{0x10000101}), nullptr);
}

TEST(StatusCatalogue, HoldsExactlyTheCodesOfTheHeader) {
  std::map<std::string, int64_t> catalogue;
  for (const tStatusRow& row : kStatuses) {
    EXPECT_TRUE(catalogue.emplace(row.constant, row.code).second) << row.constant;
  }
  EXPECT_EQ(catalogue, enumeratorsOf("include/quenra_status.h", "QUENRA_STATUS_"));
}

TEST(StatusCatalogue, GivesMeaningAndAdviceAsSentences) {
  for (const tStatusRow& row : kStatuses) {
    EXPECT_TRUE(row.meaning.ends_with('.')) << row.constant;
    EXPECT_TRUE(row.advice.ends_with('.')) << row.constant;
    EXPECT_EQ(findStatus(row.constant), &row);
  }
}

TEST(StatusCatalogue, CodeOfTheDriver_IsExplainedBySign) {
  const tStatusExplanation failure = explainStatus(-7);
  const tStatusExplanation warning = explainStatus(7);
  EXPECT_FALSE(failure.known());
  EXPECT_THAT(std::string(failure.meaning), testing::StartsWith("A failure"));
  EXPECT_THAT(std::string(warning.meaning), testing::StartsWith("A warning"));
}

}  // namespace
}  // namespace nTests
