#include "tests/component/user/readingtest.h"

namespace nTests {
namespace {

class TextReader : public ReadingTest {};

TEST_F(TextReader, OnAStatusInError_DoesNothing) {
  zoerr::tOwnedStatus status;
  status.code = -1;
  uint64_t size = sizeof buffer;
  readTextAttribute(access(), 0x10000100, buffer, &size, status);
  EXPECT_EQ(status.code, -1);
  EXPECT_STREQ(buffer, "untouched");
}

TEST_F(TextReader, SelectedOnAClosedMarten_FailsAtLine449) {
  EXPECT_EQ(readText(0x10200100), (tFailure{-26932, 449}));
}

TEST_F(TextReader, UnknownAttribute_FailsAtLine893) {
  EXPECT_EQ(readText(0x10000900), (tFailure{-26934, 893}));
}

TEST_F(TextReader, SerialNumberNotApplicable_FailsAtLine493) {
  tReferenceTable table;
  table.structure(0x01).text(0x07, "Not Applicable");
  install(table);
  EXPECT_EQ(readText(0x10000200), (tFailure{-26934, 493}));
  EXPECT_STREQ(buffer, "");
}

TEST_F(TextReader, VersionThatRepeatsTheBiosVersion_FailsAtLine622) {
  tReferenceTable table;
  table.structure(0x01).text(0x06, "B-1.23");
  install(table);
  EXPECT_EQ(readText(0x10000300), (tFailure{-26934, 622}));
}

TEST_F(TextReader, IdentifierOnAnEarlyPlatform_FailsAtLine545) {
  tReferenceTable table;
  table.structure(0x96).byte(0x04, 6);
  install(table);
  EXPECT_EQ(readText(0x10000700), (tFailure{-26934, 545}));
}

TEST_F(TextReader, IdentifierNotApplicable_FailsAtLine537) {
  tReferenceTable table;
  table.structure(0x96).text(0x0D, "Not Applicable");
  install(table);
  EXPECT_EQ(readText(0x10000700), (tFailure{-26934, 537}));
}

TEST_F(TextReader, IdentifierWithoutPlatformGeneration_IsDecidedByMarten) {
  tReferenceTable table;
  table.remove(0x96);
  install(table);
  EXPECT_EQ(readText(0x10000700), (tFailure{-26934, 2569}));
  martenIsOpen = true;
  marten.answerNumber(0x28000200, 6);
  EXPECT_EQ(readText(0x10000700), (tFailure{-26934, 545}));
  marten.answerNumber(0x28000200, 7);
  EXPECT_EQ(readText(0x10000700), (tFailure{-26934, 2569})) << "the text itself is not there";
}

TEST_F(TextReader, AbsentString_FailsAtLine2555) {
  tReferenceTable table;
  table.structure(0x9C).byte(0x04, 0);
  install(table);
  EXPECT_EQ(readText(0x10038400), (tFailure{-26934, 2555}));
}

TEST_F(TextReader, ShortBuffer_FailsAtLine2562) {
  EXPECT_EQ(readText(0x10038400, 3), (tFailure{-26930, 2562}));
}

TEST_F(TextReader, AbsentStructure_FailsAtLine2569) {
  install(tReferenceTable().remove(0x9C));
  EXPECT_EQ(readText(0x10038400), (tFailure{-26934, 2569}));
}

TEST_F(TextReader, ShortBufferForALocation_FailsAtLine2770) {
  EXPECT_EQ(readText(0x1001F400, 5), (tFailure{-26930, 2770}));
}

TEST_F(TextReader, ModuleBeyondTheCount_FailsAtLine2534) {
  EXPECT_EQ(readText(0x1000CC02), (tFailure{-26934, 2534}));
}

TEST_F(TextReader, PositionBeyondAList_FailsAtTheListsLine) {
  EXPECT_EQ(readText(0x10025904), (tFailure{-26934, 732}));
  EXPECT_EQ(readText(0x1006A505), (tFailure{-26934, 795}));
  EXPECT_EQ(readText(0x1006A605), (tFailure{-26934, 858}));
}

TEST_F(TextReader, PositionBeyondTheRoomOfAList_FailsAtTheListsLine) {
  tReferenceTable table;
  table.structure(0x98).byte(0x04, 255);
  table.structure(0xA3).byte(0x06, 255);
  install(table);
  EXPECT_EQ(readText(0x10025904), (tFailure{-26934, 732}));
  EXPECT_EQ(readText(0x1006A505), (tFailure{-26934, 795}));
  EXPECT_EQ(readText(0x1006A605), (tFailure{-26934, 858}));
}

TEST_F(TextReader, ListWithoutItsStructure_FailsAtLine2569) {
  install(tReferenceTable().remove(0x98));
  EXPECT_EQ(readText(0x10025900), (tFailure{-26934, 2569}));
}

TEST_F(TextReader, FirmwareVersionFromMarten_SeesSizeAndEarlierWarning) {
  martenIsOpen = true;
  marten.answerText(0x10000400, "M-1");
  zoerr::tOwnedStatus status;
  status.code = 5;
  uint64_t size = 100;
  readTextAttribute(access(), 0x10000400, buffer, &size, status);
  EXPECT_EQ(status.code, 5);
  EXPECT_EQ(size, 4u);
  EXPECT_THAT(marten.questions, testing::ElementsAre(tQuestion{0x10000400, 100, 5}));
}

TEST_F(TextReader, FirmwareVersionFromMartenWithoutABuffer_FailsAtLine2771) {
  martenIsOpen = true;
  zoerr::tOwnedStatus status;
  uint64_t size = 100;
  readTextAttribute(access(), 0x10000400, nullptr, &size, status);
  EXPECT_EQ(status.code, -52005);
  EXPECT_EQ(lineOf(status), 2771u);
  EXPECT_EQ(size, 100u);
  EXPECT_TRUE(marten.questions.empty());
}

TEST_F(TextReader, MartenThatSaysItFilledMoreThanThereIs_IsNotBelieved) {
  martenIsOpen = true;
  marten.answerText(0x10000400, "M-1");
  marten.exaggeration = 1000;
  zoerr::tOwnedStatus status;
  uint64_t size = 100;
  readTextAttribute(access(), 0x10000400, buffer, &size, status);
  EXPECT_EQ(status.code, 0);
  EXPECT_EQ(size, 100u);
  EXPECT_STREQ(buffer, "M-1");
}

TEST_F(TextReader, AnyTypeWithNumber4_IsAskedOfAnOpenMarten) {
  martenIsOpen = true;
  for (const uint32_t attribute :
       {0x10000400u, 0x18000400u, 0x20000400u, 0x10200400u, 0x10F00407u}) {
    marten.answerText(attribute, "M-1");
    EXPECT_EQ(readText(attribute).code, 0) << std::hex << attribute;
    EXPECT_STREQ(buffer, "M-1");
  }
}

TEST_F(TextReader, DriversFailure_TellsTheDriversPlace) {
  martenIsOpen = true;
  EXPECT_EQ(readText(0x10000400), (tFailure{-26934, 1}));
}

TEST_F(TextReader, LongestTextThatThereIs_IsReadWhole) {
  const std::string longest = "07:" + std::string(125, 'x');
  tReferenceTable table;
  table.structure(0x97).text(0x04, longest);
  install(table);
  EXPECT_EQ(readText(0x1001F400), (tFailure{0, 0}));
  EXPECT_EQ(buffer, longest);
}

TEST_F(TextReader, ALocationThatIsRead_DropsAnEarlierWarning) {
  zoerr::tOwnedStatus status;
  status.code = 5;
  uint64_t size = sizeof buffer;
  readTextAttribute(access(), 0x1001F400, buffer, &size, status);
  EXPECT_EQ(status.code, 0);
  EXPECT_STREQ(buffer, "07:12");
}

TEST_F(TextReader, WithoutAnyTable_ReadsAsNothing) {
  provider.clear();
  EXPECT_EQ(readText(0x10000100), (tFailure{0, 0}));
  EXPECT_STREQ(buffer, "untouched");
}

}  // namespace
}  // namespace nTests
