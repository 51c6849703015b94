#include <gtest/gtest.h>

#include <set>

#include "source/user/attributes/attributeid.h"
#include "source/user/attributes/attributetables.h"

namespace nTests {
namespace {

using nQUENRA1400::tAttributeId;

TEST(AttributeId, IsTakenApartByItsBits) {
  constexpr tAttributeId id(0x1020590A);
  EXPECT_EQ(id.base(), 0x10005900u);
  EXPECT_EQ(id.number(), 0x59u);
  EXPECT_EQ(id.instance(), 0x0Au);
  EXPECT_TRUE(id.selectsMarten());
  EXPECT_FALSE(id.selectsController());
  EXPECT_FALSE(id.isPrivate());
  EXPECT_TRUE(tAttributeId(0x10105900).selectsController());
  EXPECT_FALSE(tAttributeId(0x10105900).selectsMarten());
  EXPECT_TRUE(tAttributeId(0x28000200).isPrivate());
  EXPECT_EQ(tAttributeId(0x17FFFFFF).base(), 0x170FFF00u) << "bits 24 to 26 belong to the base";
}

TEST(AttributeTables, HoldEveryAttributeOnceUnderItsOwnType) {
  std::set<uint32_t> seen;
  for (const auto& row : nQUENRA1400::nTextTable::kRows) {
    EXPECT_TRUE(seen.insert(row.attribute).second);
    EXPECT_EQ(row.attribute >> 28, 1u);
    EXPECT_EQ(tAttributeId(row.attribute).base(), row.attribute);
    EXPECT_EQ(nQUENRA1400::findTextRow(row.attribute), &row);
  }
  EXPECT_EQ(seen.size(), 22u);
  for (const auto& row : nQUENRA1400::nUnsignedTable::kRows) {
    EXPECT_TRUE(seen.insert(row.attribute).second);
    EXPECT_EQ(row.attribute >> 28, 2u);
    EXPECT_EQ(tAttributeId(row.attribute).base(), row.attribute);
    EXPECT_EQ(nQUENRA1400::findUnsignedRow(row.attribute), &row);
  }
  EXPECT_EQ(seen.size(), 22u + 27u);
}

// True for a row whose value is computed or read from the driver.
bool isWithoutAField(const nQUENRA1400::tUnsignedRow& row) {
  using enum nQUENRA1400::tUnsignedRule;
  return row.rule == controllerKind || row.rule == memoryModuleCount ||
         row.rule == firmwareUpdateSupport || row.rule == interfacesPresent || row.rule == driver;
}

TEST(AttributeTables, RowsOfRulesThatReadNoField_NameNone) {
  for (const auto& row : nQUENRA1400::nUnsignedTable::kRows) {
    EXPECT_EQ(row.field == 0, isWithoutAField(row)) << std::hex << row.attribute;
  }
}

TEST(AttributeTables, RowsWithoutAField_SayWhereOtherInstancesAreRefused) {
  for (const auto& row : nQUENRA1400::nUnsignedTable::kRows) {
    const bool refusesInstances =
        isWithoutAField(row) && row.attribute != QUENRA_ATTRIBUTE_INTERFACES_PRESENT;
    EXPECT_EQ(row.instanceLine != 0, refusesInstances) << std::hex << row.attribute;
  }
}

}  // namespace
}  // namespace nTests
