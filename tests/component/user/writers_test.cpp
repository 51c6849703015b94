#include "source/user/attributes/attributes.h"
#include "tests/component/user/readingtest.h"

namespace nTests {
namespace {

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
  EXPECT_EQ(writeText(0x10000100, -1), (tFailure{-1, 0}));
  zoerr::tOwnedStatus status;
  status.code = -1;
  writeUnsignedAttribute(access(), 0x20000600, 7, status);
  EXPECT_TRUE(controller.writes.empty());
  EXPECT_TRUE(marten.writes.empty());
}

TEST_F(Writers, UnknownWritability_FailsAtLine2607) {
  install(tReferenceTable().remove(0x9D));
  martenIsOpen = true;
  EXPECT_EQ(writeText(0x10000100), (tFailure{-26932, 2607}));
  EXPECT_TRUE(marten.writes.empty());
}

TEST_F(Writers, ForbiddenText_FailsAtLine2622) {
  install(tableWith(1, 2));
  EXPECT_EQ(writeText(0x18000000), (tFailure{-26934, 2622}));
}

TEST_F(Writers, ForbiddenOrdinaryTextWithoutMarten_FailsAtLine2656) {
  install(tableWith(1, 2));
  EXPECT_EQ(writeText(0x10000100), (tFailure{-26934, 2656}));
}

TEST_F(Writers, NoText_FailsAtLine2657) {
  zoerr::tOwnedStatus status;
  writeTextAttribute(access(), 0x10000100, nullptr, status);
  EXPECT_EQ(failureOf(status), (tFailure{-52005, 2657}));
  EXPECT_TRUE(controller.writes.empty());
}

TEST_F(Writers, TextOf256Bytes_FailsAtLine2658) {
  zoerr::tOwnedStatus status;
  writeTextAttribute(access(), 0x10000100, std::string(256, 'x').c_str(), status);
  EXPECT_EQ(failureOf(status), (tFailure{-26935, 2658}));
  EXPECT_TRUE(controller.writes.empty());
}

TEST_F(Writers, NumberOnAClosedInterface_FailsAtItsLine) {
  EXPECT_EQ(writeUnsigned(0x20200600), (tFailure{-26932, 1718}));
  controllerIsOpen = false;
  EXPECT_EQ(writeUnsigned(0x20000600), (tFailure{-26932, 1736}));
}

TEST_F(Writers, EarlierWarning_IsSentWithTheRequest) {
  EXPECT_EQ(writeText(0x10000100, 5).code, 5);
  EXPECT_THAT(controller.writes, testing::ElementsAre(tQuestion{0x10000100, 4, 5}));
}

TEST_F(Writers, ControllerWarning_IsLostWhenMartenDoesNotSupportTheText) {
  controller.writeCode = 1;
  EXPECT_EQ(writeText(0x18000000), (tFailure{0, 0}));
  martenIsOpen = true;
  EXPECT_EQ(writeText(0x18000000).code, 1);
  EXPECT_THAT(marten.writes, testing::ElementsAre(tQuestion{0x18200000, 4, 1}));
}

TEST_F(Writers, DriverFailure_HasTheDriversLocation) {
  controller.writeCode = -77;
  EXPECT_EQ(writeText(0x10000100), (tFailure{-77, 4}));
  EXPECT_EQ(writeUnsigned(0x20000600), (tFailure{-77, 4}));
}

}  // namespace
}  // namespace nTests
