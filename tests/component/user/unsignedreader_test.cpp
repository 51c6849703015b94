#include "quenra_attributes.h"
#include "quenra_status.h"
#include "tests/component/user/readingtest.h"

namespace nTests {
namespace {

class UnsignedReader : public ReadingTest {};

TEST_F(UnsignedReader, OnAStatusInError_TouchesNothing) {
  zoerr::tOwnedStatus status;
  status.code = -1;
  readUnsignedAttribute(access(), 0x20000600, value, status);
  EXPECT_EQ(status.code, -1);
  EXPECT_EQ(value, 0xCAFEF00D);
}

TEST_F(UnsignedReader, SelectedOnAClosedMarten_FailsAtLine956) {
  EXPECT_EQ(readUnsigned(0x20200600), (tFailure{-26932, 956}));
  EXPECT_EQ(value, 0u);
  martenIsOpen = true;
  EXPECT_EQ(readUnsigned(0x20200601), (tFailure{-26932, 956})) << "only instance 0 exists";
}

TEST_F(UnsignedReader, UnknownPrivateAttribute_FailsAtLine1003) {
  EXPECT_EQ(readUnsigned(0x28000300), (tFailure{-26934, 1003}));
  EXPECT_EQ(readUnsigned(0x08000200), (tFailure{-26934, 1003}));
}

TEST_F(UnsignedReader, PrivateAttributeWithSelectorAndInstance_IsFoundByItsBase) {
  EXPECT_EQ(readUnsigned(0x28100200), (tFailure{0, 0}));
  EXPECT_EQ(value, 7u);
  EXPECT_EQ(readUnsigned(0x28000201), (tFailure{-26934, 2569}));
}

TEST_F(UnsignedReader, UnknownAttribute_FailsAtLine1364) {
  EXPECT_EQ(readUnsigned(0x20000700), (tFailure{-26934, 1364}));
}

TEST_F(UnsignedReader, InstanceOfAnAttributeWithoutInstances_FailsAtTheRowsLine) {
  EXPECT_EQ(readUnsigned(0x20000501), (tFailure{-26934, 1089}));
  EXPECT_EQ(readUnsigned(0x2000CB01), (tFailure{-26934, 1047}));
  EXPECT_EQ(readUnsigned(0x20013101), (tFailure{-26934, 1203}));
  EXPECT_EQ(readUnsigned(0x20044C01), (tFailure{-26934, 1241}));
  EXPECT_EQ(readUnsigned(0x20051401), (tFailure{-26934, 1278}));
  EXPECT_EQ(readUnsigned(0x2001F401), (tFailure{-26934, 1315}));
}

TEST_F(UnsignedReader, PositionBeyondTheList_FailsAtLine1153) {
  EXPECT_EQ(readUnsigned(0x20025A04), (tFailure{-26934, 1153}));
}

TEST_F(UnsignedReader, PositionBeyondTheCapacityOfTheList_FailsAtLine1153) {
  tReferenceTable table;
  table.structure(0x98).byte(0x04, 255);
  install(table);
  EXPECT_EQ(readUnsigned(0x20025A03).code, 0);
  EXPECT_EQ(readUnsigned(0x20025A04), (tFailure{-26934, 1153}));
}

TEST_F(UnsignedReader, UpdateSupportUnknown_FailsAtLine1324) {
  install(tReferenceTable().remove(0x9E));
  EXPECT_EQ(readUnsigned(0x2001F400), (tFailure{-26932, 1324}));
}

TEST_F(UnsignedReader, InterfacesPresentOnAClosedController_FailsAtLine1345) {
  controllerIsOpen = false;
  EXPECT_EQ(readUnsigned(0x2005DC00), (tFailure{-26932, 1345}));
  EXPECT_EQ(value, 0u);
}

TEST_F(UnsignedReader, UnknownRevision_FailsAtLine1560) {
  tReferenceTable table;
  table.structure(0xB4).byte(0x07, 0x11);
  install(table);
  EXPECT_EQ(readUnsigned(0x20019600), (tFailure{-26934, 1560}));
}

TEST_F(UnsignedReader, RevisionBeyondItsStructure_FailsAtLine2569) {
  tReferenceTable table;
  table.structure(0xB4).cutTo(0x07);
  install(table);
  EXPECT_EQ(readUnsigned(0x20019600), (tFailure{-26934, 2569}));
}

TEST_F(UnsignedReader, ModuleBeyondTheCount_FailsAtLine2534) {
  EXPECT_EQ(readUnsigned(0x2000C802), (tFailure{-26934, 2534}));
}

TEST_F(UnsignedReader, MissingModule0_IsReadFromMarten) {
  tReferenceTable table;
  table.structure(0x10).word(0x0D, 0);
  install(table);
  martenIsOpen = true;
  marten.answerNumber(0x2000D000, 99);
  EXPECT_EQ(readUnsigned(0x2000D000), (tFailure{0, 0}));
  EXPECT_EQ(value, 99u);
}

TEST_F(UnsignedReader, FallbackToMarten_StartsWithoutTheError) {
  install(tReferenceTable().remove(0x9F));
  martenIsOpen = true;
  marten.answerNumber(0x2003E800, 99, 4);
  EXPECT_EQ(readUnsigned(0x2003E800), (tFailure{0, 0}));
  EXPECT_EQ(value, 99u);
  EXPECT_THAT(marten.questions, testing::ElementsAre(tQuestion{0x2003E800, 4, 0}));
}

TEST_F(UnsignedReader, FallbackToMarten_RequestsTheCompleteId) {
  install(tReferenceTable().remove(0x9F));
  martenIsOpen = true;
  for (const uint32_t selector : {uint32_t{QUENRA_SELECTOR_CONTROLLER}, 0x00F00000u}) {
    const uint32_t id = QUENRA_ATTRIBUTE_CAPABILITY_1 | selector;
    marten.questions.clear();
    marten.answerNumber(id, 99);
    EXPECT_EQ(readUnsigned(id), (tFailure{QUENRA_STATUS_SUCCESS, 0}));
    EXPECT_EQ(value, 99u);
    EXPECT_THAT(marten.questions, testing::ElementsAre(tQuestion{id, 4, 0}));
  }
}

TEST_F(UnsignedReader, FailedFallbackToMarten_LeavesTheFieldsErrorAndNoValue) {
  install(tReferenceTable().remove(0x9F));
  martenIsOpen = true;
  EXPECT_EQ(readUnsigned(0x2003E800), (tFailure{-26934, 2569}));
  EXPECT_EQ(value, 0u);
}

TEST_F(UnsignedReader, FallbackToAMartenThatWritesNothing_ReadsZero) {
  install(tReferenceTable().remove(0x9F));
  martenIsOpen = true;
  marten.answers[0x2003E800] = {};
  EXPECT_EQ(readUnsigned(0x2003E800), (tFailure{0, 0}));
  EXPECT_EQ(value, 0u);
}

TEST_F(UnsignedReader, ReadFromTheController_CarriesAnEarlierWarning) {
  controller.answerNumber(0x20044C00, 12);
  zoerr::tOwnedStatus status;
  status.code = 5;
  readUnsignedAttribute(access(), 0x20044C00, value, status);
  EXPECT_EQ(status.code, 5);
  EXPECT_EQ(value, 12u);
  EXPECT_THAT(controller.questions, testing::ElementsAre(tQuestion{0x20044C00, 4, 5}));
}

TEST_F(UnsignedReader, WithoutAnyTable_ReadsAsNothingBeforeTheRule) {
  provider.clear();
  EXPECT_EQ(readUnsigned(0x20000600), (tFailure{0, 0}));
  EXPECT_EQ(value, 0u);
  EXPECT_EQ(readUnsigned(0x20019600), (tFailure{-26934, 1560}));
  EXPECT_EQ(readUnsigned(0x2002BC00), (tFailure{0, 0}));
  EXPECT_EQ(value, 0xFFFFFFFF);
}

}  // namespace
}  // namespace nTests
