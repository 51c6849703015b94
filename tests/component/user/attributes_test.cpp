// The tables of attributes, and reading and writing beyond texts.
#include <gtest/gtest.h>

#include <algorithm>
#include <iterator>
#include <set>

#include "quenra_attributes.h"
#include "quenra_status.h"
#include "source/user/attributes/attributes.h"
#include "source/user/attributes/attributetables.h"
#include "tests/component/user/readingtest.h"

namespace nTests {
namespace {

using nQUENRA1400::tAttributeId;

// ---- Ids and tables ----

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

// ---- Reading unsigned attributes ----

class UnsignedReader : public ReadingTest {};

TEST_F(UnsignedReader, OnAStatusInError_TouchesNothing) {
  zoerr::tOwnedStatus status;
  status.code = -1;
  readUnsignedAttribute(access(), QUENRA_ATTRIBUTE_PLATFORM_CODE, value, status);
  EXPECT_EQ(status.code, -1);
  EXPECT_EQ(value, 0xCAFEF00D);
}

TEST_F(UnsignedReader, SelectedOnAClosedMarten_FailsWithNoController) {
  EXPECT_EQ(readUnsigned(QUENRA_ATTRIBUTE_PLATFORM_CODE | QUENRA_SELECTOR_MARTEN),
            (tFailure{QUENRA_STATUS_NO_CONTROLLER, 956}));
  EXPECT_EQ(value, 0u);
  martenIsOpen = true;
  EXPECT_EQ(readUnsigned(QUENRA_ATTRIBUTE_PLATFORM_CODE | QUENRA_SELECTOR_MARTEN | 1),
            (tFailure{QUENRA_STATUS_NO_CONTROLLER, 956}))
      << "only instance 0 exists";
}

TEST_F(UnsignedReader, UnknownPrivateAttribute_FailsWithNotSupported) {
  EXPECT_EQ(readUnsigned(0x28000300), (tFailure{QUENRA_STATUS_NOT_SUPPORTED, 1003}));
  EXPECT_EQ(readUnsigned(0x08000200), (tFailure{QUENRA_STATUS_NOT_SUPPORTED, 1003}));
}

TEST_F(UnsignedReader, PrivateAttributeWithSelectorAndInstance_IsFoundByItsBase) {
  EXPECT_EQ(readUnsigned(QUENRA_ATTRIBUTE_PLATFORM_GENERATION | QUENRA_SELECTOR_CONTROLLER),
            (tFailure{0, 0}));
  EXPECT_EQ(value, 7u);
  EXPECT_EQ(readUnsigned(QUENRA_ATTRIBUTE_PLATFORM_GENERATION | 1),
            (tFailure{QUENRA_STATUS_NOT_SUPPORTED, 2569}));
}

TEST_F(UnsignedReader, UnknownAttribute_FailsWithNotSupported) {
  EXPECT_EQ(readUnsigned(0x20000700), (tFailure{QUENRA_STATUS_NOT_SUPPORTED, 1364}));
  EXPECT_EQ(readUnsigned(0x200FFF00), (tFailure{QUENRA_STATUS_NOT_SUPPORTED, 1364}));
}

// The index finds the row that a search of the table finds, for every number.
template <class Row, size_t N>
void expectRowsOfASearch(const Row (&rows)[N], const Row* (*find)(uint32_t)) {
  for (const uint32_t type : {QUENRA_ATTRIBUTE_TYPE_TEXT, QUENRA_ATTRIBUTE_TYPE_UNSIGNED,
                              QUENRA_ATTRIBUTE_TYPE_UNSIGNED | QUENRA_ATTRIBUTE_PRIVATE_MASK}) {
    for (uint32_t number = 0; number <= QUENRA_ATTRIBUTE_NUMBER_MASK; number += 0x100) {
      const uint32_t attribute = type | number;
      const auto* const searched = std::ranges::find(rows, attribute, &Row::attribute);
      ASSERT_EQ(find(attribute), searched == std::end(rows) ? nullptr : searched) << attribute;
    }
  }
}

TEST(AttributeTables, EveryNumber_FindsTheRowOfASearch) {
  expectRowsOfASearch(nQUENRA1400::nUnsignedTable::kRows, &nQUENRA1400::findUnsignedRow);
  expectRowsOfASearch(nQUENRA1400::nTextTable::kRows, &nQUENRA1400::findTextRow);
}

TEST_F(UnsignedReader, InstanceOfAnAttributeWithoutInstances_FailsAtTheRowsLine) {
  EXPECT_EQ(readUnsigned(QUENRA_ATTRIBUTE_CONTROLLER_KIND | 1),
            (tFailure{QUENRA_STATUS_NOT_SUPPORTED, 1089}));
  EXPECT_EQ(readUnsigned(QUENRA_ATTRIBUTE_MEMORY_MODULE_COUNT | 1),
            (tFailure{QUENRA_STATUS_NOT_SUPPORTED, 1047}));
  EXPECT_EQ(readUnsigned(QUENRA_ATTRIBUTE_PROCESSOR_SETTING | 1),
            (tFailure{QUENRA_STATUS_NOT_SUPPORTED, 1203}));
  EXPECT_EQ(readUnsigned(QUENRA_ATTRIBUTE_DRIVER_SETTING_1 | 1),
            (tFailure{QUENRA_STATUS_NOT_SUPPORTED, 1241}));
  EXPECT_EQ(readUnsigned(QUENRA_ATTRIBUTE_DRIVER_SETTING_2 | 1),
            (tFailure{QUENRA_STATUS_NOT_SUPPORTED, 1278}));
  EXPECT_EQ(readUnsigned(QUENRA_ATTRIBUTE_FIRMWARE_UPDATE_SUPPORT | 1),
            (tFailure{QUENRA_STATUS_NOT_SUPPORTED, 1315}));
}

TEST_F(UnsignedReader, PositionBeyondTheList_FailsWithNotSupported) {
  EXPECT_EQ(readUnsigned(QUENRA_ATTRIBUTE_SLOT_NUMBER | 4),
            (tFailure{QUENRA_STATUS_NOT_SUPPORTED, 1153}));
}

TEST_F(UnsignedReader, PositionBeyondTheCapacityOfTheList_FailsWithNotSupported) {
  tReferenceTable table;
  table.structure(0x98).byte(0x04, 255);
  install(table);
  EXPECT_EQ(readUnsigned(QUENRA_ATTRIBUTE_SLOT_NUMBER | 3).code, 0);
  EXPECT_EQ(readUnsigned(QUENRA_ATTRIBUTE_SLOT_NUMBER | 4),
            (tFailure{QUENRA_STATUS_NOT_SUPPORTED, 1153}));
}

TEST_F(UnsignedReader, UpdateSupportUnknown_FailsWithNoController) {
  install(tReferenceTable().remove(0x9E));
  EXPECT_EQ(readUnsigned(QUENRA_ATTRIBUTE_FIRMWARE_UPDATE_SUPPORT),
            (tFailure{QUENRA_STATUS_NO_CONTROLLER, 1324}));
}

TEST_F(UnsignedReader, InterfacesPresentOnAClosedController_FailsWithNoController) {
  controllerIsOpen = false;
  EXPECT_EQ(readUnsigned(QUENRA_ATTRIBUTE_INTERFACES_PRESENT),
            (tFailure{QUENRA_STATUS_NO_CONTROLLER, 1345}));
  EXPECT_EQ(value, 0u);
}

TEST_F(UnsignedReader, UnknownRevision_FailsWithNotSupported) {
  tReferenceTable table;
  table.structure(0xB4).byte(0x07, 0x11);
  install(table);
  EXPECT_EQ(readUnsigned(QUENRA_ATTRIBUTE_PLATFORM_REVISION),
            (tFailure{QUENRA_STATUS_NOT_SUPPORTED, 1560}));
}

TEST_F(UnsignedReader, RevisionBeyondItsStructure_FailsWithNotSupported) {
  tReferenceTable table;
  table.structure(0xB4).cutTo(0x07);
  install(table);
  EXPECT_EQ(readUnsigned(QUENRA_ATTRIBUTE_PLATFORM_REVISION),
            (tFailure{QUENRA_STATUS_NOT_SUPPORTED, 2569}));
}

TEST_F(UnsignedReader, ModuleBeyondTheCount_FailsWithNotSupported) {
  EXPECT_EQ(readUnsigned(QUENRA_ATTRIBUTE_MEMORY_TYPE | 2),
            (tFailure{QUENRA_STATUS_NOT_SUPPORTED, 2534}));
}

TEST_F(UnsignedReader, MissingModule0_IsReadFromMarten) {
  tReferenceTable table;
  table.structure(0x10).word(0x0D, 0);
  install(table);
  martenIsOpen = true;
  marten.replyWithNumber(QUENRA_ATTRIBUTE_MEMORY_SIZE, 99);
  EXPECT_EQ(readUnsigned(QUENRA_ATTRIBUTE_MEMORY_SIZE), (tFailure{0, 0}));
  EXPECT_EQ(value, 99u);
}

TEST_F(UnsignedReader, FallbackToMarten_StartsWithoutTheError) {
  install(tReferenceTable().remove(0x9F));
  martenIsOpen = true;
  marten.replyWithNumber(QUENRA_ATTRIBUTE_CAPABILITY_1, 99, 4);
  EXPECT_EQ(readUnsigned(QUENRA_ATTRIBUTE_CAPABILITY_1), (tFailure{0, 0}));
  EXPECT_EQ(value, 99u);
  EXPECT_THAT(marten.requests,
              testing::ElementsAre(tAttributeRequest{QUENRA_ATTRIBUTE_CAPABILITY_1, 4, 0}));
}

TEST_F(UnsignedReader, FallbackToMarten_RequestsTheCompleteId) {
  install(tReferenceTable().remove(0x9F));
  martenIsOpen = true;
  for (const uint32_t selector : {uint32_t{QUENRA_SELECTOR_CONTROLLER}, 0x00F00000u}) {
    const uint32_t id = QUENRA_ATTRIBUTE_CAPABILITY_1 | selector;
    marten.requests.clear();
    marten.replyWithNumber(id, 99);
    EXPECT_EQ(readUnsigned(id), (tFailure{QUENRA_STATUS_SUCCESS, 0}));
    EXPECT_EQ(value, 99u);
    EXPECT_THAT(marten.requests, testing::ElementsAre(tAttributeRequest{id, 4, 0}));
  }
}

TEST_F(UnsignedReader, FailedFallbackToMarten_LeavesTheFieldsErrorAndNoValue) {
  install(tReferenceTable().remove(0x9F));
  martenIsOpen = true;
  EXPECT_EQ(readUnsigned(QUENRA_ATTRIBUTE_CAPABILITY_1),
            (tFailure{QUENRA_STATUS_NOT_SUPPORTED, 2569}));
  EXPECT_EQ(value, 0u);
}

TEST_F(UnsignedReader, FallbackToAMartenThatWritesNothing_ReadsZero) {
  install(tReferenceTable().remove(0x9F));
  martenIsOpen = true;
  marten.replies[QUENRA_ATTRIBUTE_CAPABILITY_1] = {};
  EXPECT_EQ(readUnsigned(QUENRA_ATTRIBUTE_CAPABILITY_1), (tFailure{0, 0}));
  EXPECT_EQ(value, 0u);
}

TEST_F(UnsignedReader, ReadFromTheController_CarriesAnEarlierWarning) {
  controller.replyWithNumber(QUENRA_ATTRIBUTE_DRIVER_SETTING_1, 12);
  zoerr::tOwnedStatus status;
  status.code = 5;
  readUnsignedAttribute(access(), QUENRA_ATTRIBUTE_DRIVER_SETTING_1, value, status);
  EXPECT_EQ(status.code, 5);
  EXPECT_EQ(value, 12u);
  EXPECT_THAT(controller.requests,
              testing::ElementsAre(tAttributeRequest{QUENRA_ATTRIBUTE_DRIVER_SETTING_1, 4, 5}));
}

TEST_F(UnsignedReader, WithoutAnyTable_ReadsAsNothingBeforeTheRule) {
  provider.clear();
  EXPECT_EQ(readUnsigned(QUENRA_ATTRIBUTE_PLATFORM_CODE), (tFailure{0, 0}));
  EXPECT_EQ(value, 0u);
  EXPECT_EQ(readUnsigned(QUENRA_ATTRIBUTE_PLATFORM_REVISION),
            (tFailure{QUENRA_STATUS_NOT_SUPPORTED, 1560}));
  EXPECT_EQ(readUnsigned(QUENRA_ATTRIBUTE_LINK_KIND), (tFailure{0, 0}));
  EXPECT_EQ(value, QUENRA_KIND_OTHER);
}

// ---- Writing ----

class Writers : public ReadingTest {
 protected:
  void SetUp() override {
    ReadingTest::SetUp();
    install(tableWith(1, 0));
  }
  static tReferenceTable tableWith(uint8_t writable, uint8_t protection) {
    tReferenceTable table;
    table.structure(0x9D) =
        tSmbiosStructure(0x9D, 0x06).byte(0x04, writable).byte(0x05, protection);
    return table;
  }
  tFailure writeText(uint32_t attribute, int32_t codeBefore = 0) {
    zoerr::tOwnedStatus status;
    status.code = codeBefore;
    writeTextAttribute(access(), attribute, "abc", status);
    return failureOf(status);
  }
  tFailure writeUnsigned(uint32_t attribute) {
    zoerr::tOwnedStatus status;
    writeUnsignedAttribute(access(), attribute, 7, status);
    return failureOf(status);
  }
};

TEST_F(Writers, OnAStatusInError_SendNothing) {
  martenIsOpen = true;
  EXPECT_EQ(writeText(QUENRA_ATTRIBUTE_PRODUCT_NAME, -1), (tFailure{-1, 0}));
  zoerr::tOwnedStatus status;
  status.code = -1;
  writeUnsignedAttribute(access(), QUENRA_ATTRIBUTE_PLATFORM_CODE, 7, status);
  EXPECT_TRUE(controller.writes.empty());
  EXPECT_TRUE(marten.writes.empty());
}

TEST_F(Writers, UnknownWritability_FailsWithNoController) {
  install(tReferenceTable().remove(0x9D));
  martenIsOpen = true;
  EXPECT_EQ(writeText(QUENRA_ATTRIBUTE_PRODUCT_NAME),
            (tFailure{QUENRA_STATUS_NO_CONTROLLER, 2607}));
  EXPECT_TRUE(marten.writes.empty());
}

TEST_F(Writers, ForbiddenText_FailsWithNotSupported) {
  install(tableWith(1, 2));
  EXPECT_EQ(writeText(QUENRA_TEXT_SETTING_OF_BOTH), (tFailure{QUENRA_STATUS_NOT_SUPPORTED, 2622}));
}

TEST_F(Writers, ForbiddenOrdinaryTextWithoutMarten_FailsWithNotSupported) {
  install(tableWith(1, 2));
  EXPECT_EQ(writeText(QUENRA_ATTRIBUTE_PRODUCT_NAME),
            (tFailure{QUENRA_STATUS_NOT_SUPPORTED, 2656}));
}

TEST_F(Writers, NoText_FailsWithInvalidParameter) {
  zoerr::tOwnedStatus status;
  writeTextAttribute(access(), QUENRA_ATTRIBUTE_PRODUCT_NAME, nullptr, status);
  EXPECT_EQ(failureOf(status), (tFailure{QUENRA_STATUS_INVALID_PARAMETER, 2657}));
  EXPECT_TRUE(controller.writes.empty());
}

TEST_F(Writers, TextOf256Bytes_FailsWithInvalidValue) {
  zoerr::tOwnedStatus status;
  writeTextAttribute(access(), QUENRA_ATTRIBUTE_PRODUCT_NAME, std::string(256, 'x').c_str(),
                     status);
  EXPECT_EQ(failureOf(status), (tFailure{QUENRA_STATUS_INVALID_VALUE, 2658}));
  EXPECT_TRUE(controller.writes.empty());
}

TEST_F(Writers, NumberOnAClosedInterface_FailsAtItsLine) {
  EXPECT_EQ(writeUnsigned(QUENRA_ATTRIBUTE_PLATFORM_CODE | QUENRA_SELECTOR_MARTEN),
            (tFailure{QUENRA_STATUS_NO_CONTROLLER, 1718}));
  controllerIsOpen = false;
  EXPECT_EQ(writeUnsigned(QUENRA_ATTRIBUTE_PLATFORM_CODE),
            (tFailure{QUENRA_STATUS_NO_CONTROLLER, 1736}));
}

TEST_F(Writers, EarlierWarning_IsSentWithTheRequest) {
  EXPECT_EQ(writeText(QUENRA_ATTRIBUTE_PRODUCT_NAME, 5).code, 5);
  EXPECT_THAT(controller.writes,
              testing::ElementsAre(tAttributeRequest{QUENRA_ATTRIBUTE_PRODUCT_NAME, 4, 5}));
}

TEST_F(Writers, ControllerWarning_IsLostWhenMartenDoesNotSupportTheText) {
  controller.writeCode = 1;
  EXPECT_EQ(writeText(QUENRA_TEXT_SETTING_OF_BOTH), (tFailure{0, 0}));
  martenIsOpen = true;
  EXPECT_EQ(writeText(QUENRA_TEXT_SETTING_OF_BOTH).code, 1);
  EXPECT_THAT(marten.writes, testing::ElementsAre(tAttributeRequest{
                                 QUENRA_TEXT_SETTING_OF_BOTH | QUENRA_SELECTOR_MARTEN, 4, 1}));
}

TEST_F(Writers, DriverFailure_HasTheDriversLocation) {
  controller.writeCode = -77;
  EXPECT_EQ(writeText(QUENRA_ATTRIBUTE_PRODUCT_NAME), (tFailure{-77, 4}));
  EXPECT_EQ(writeUnsigned(QUENRA_ATTRIBUTE_PLATFORM_CODE), (tFailure{-77, 4}));
}

}  // namespace
}  // namespace nTests
