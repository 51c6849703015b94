#include <gtest/gtest.h>

#include <algorithm>
#include <cstdint>
#include <memory>
#include <string>
#include <string_view>

#include "quenra_attributes.h"
#include "quenra_status.h"
#include "source/user/attributes/normalisedtext.h"
#include "tests/component/user/readingtest.h"

namespace nTests {
namespace {

using nQUENRA1400::tNormalisedText;
using nQUENRA1400::tSegments;
using namespace std::string_literals;
using namespace std::string_view_literals;

constexpr uint32_t kLists[] = {QUENRA_ATTRIBUTE_SLOT_LOCATION, QUENRA_ATTRIBUTE_BRIDGE_LOCATION,
                               QUENRA_ATTRIBUTE_BRIDGE_MEMBERS};

// ---- The SMBIOS table ----

class TextReader : public ReadingTest {
 protected:
  // A table that ends inside the formatted area of its only structure of this type.
  void installCutOff(uint8_t type) {
    std::vector<uint8_t> bytes = tReferenceTable().remove(type).build();
    bytes.insert(bytes.end(), {type, 0x11, 0, 0, 1, 1, 1, 1, 1});
    nZOAPALS100::tStatus installing;
    provider.install(bytes, {}, installing);
    ASSERT_EQ(installing.code, 0);
  }
};

TEST_F(TextReader, OnAStatusInError_DoesNothing) {
  zoerr::tOwnedStatus status;
  status.code = -1;
  uint64_t size = sizeof buffer;
  readTextAttribute(access(), QUENRA_ATTRIBUTE_PRODUCT_NAME, buffer, &size, status);
  EXPECT_EQ(status.code, -1);
  EXPECT_STREQ(buffer, "untouched");
}

TEST_F(TextReader, SelectedOnAClosedMarten_FailsWithNoController) {
  EXPECT_EQ(readText(QUENRA_ATTRIBUTE_PRODUCT_NAME | QUENRA_SELECTOR_MARTEN),
            (tFailure{QUENRA_STATUS_NO_CONTROLLER, 449}));
}

TEST_F(TextReader, UnknownAttribute_FailsWithNotSupported) {
  EXPECT_EQ(readText(0x10000900), (tFailure{QUENRA_STATUS_NOT_SUPPORTED, 893}));
}

TEST_F(TextReader, SerialNumberNotApplicable_FailsWithNotSupported) {
  tReferenceTable table;
  table.structure(0x01).text(0x07, "Not Applicable");
  install(table);
  EXPECT_EQ(readText(QUENRA_ATTRIBUTE_SERIAL_NUMBER), (tFailure{QUENRA_STATUS_NOT_SUPPORTED, 493}));
  EXPECT_STREQ(buffer, "");
}

TEST_F(TextReader, VersionThatRepeatsTheBiosVersion_FailsWithNotSupported) {
  tReferenceTable table;
  table.structure(0x01).text(0x06, "B-1.23");
  install(table);
  EXPECT_EQ(readText(QUENRA_ATTRIBUTE_SYSTEM_VERSION),
            (tFailure{QUENRA_STATUS_NOT_SUPPORTED, 622}));
}

TEST_F(TextReader, IdentifierOnAnEarlyPlatform_FailsWithNotSupported) {
  tReferenceTable table;
  table.structure(0x96).byte(0x04, 6);
  install(table);
  EXPECT_EQ(readText(QUENRA_ATTRIBUTE_PLATFORM_IDENTIFIER),
            (tFailure{QUENRA_STATUS_NOT_SUPPORTED, 545}));
}

TEST_F(TextReader, IdentifierNotApplicable_FailsWithNotSupported) {
  tReferenceTable table;
  table.structure(0x96).text(0x0D, "Not Applicable");
  install(table);
  EXPECT_EQ(readText(QUENRA_ATTRIBUTE_PLATFORM_IDENTIFIER),
            (tFailure{QUENRA_STATUS_NOT_SUPPORTED, 537}));
}

TEST_F(TextReader, IdentifierWithoutPlatformGeneration_DependsOnTheMartens) {
  tReferenceTable table;
  table.remove(0x96);
  install(table);
  EXPECT_EQ(readText(QUENRA_ATTRIBUTE_PLATFORM_IDENTIFIER),
            (tFailure{QUENRA_STATUS_NOT_SUPPORTED, 2569}));
  martenIsOpen = true;
  marten.replyWithNumber(QUENRA_ATTRIBUTE_PLATFORM_GENERATION, 6);
  EXPECT_EQ(readText(QUENRA_ATTRIBUTE_PLATFORM_IDENTIFIER),
            (tFailure{QUENRA_STATUS_NOT_SUPPORTED, 545}));
  marten.replyWithNumber(QUENRA_ATTRIBUTE_PLATFORM_GENERATION, 7);
  EXPECT_EQ(readText(QUENRA_ATTRIBUTE_PLATFORM_IDENTIFIER),
            (tFailure{QUENRA_STATUS_NOT_SUPPORTED, 2569}))
      << "the text itself is absent";
}

TEST_F(TextReader, AbsentString_FailsWithNotSupported) {
  tReferenceTable table;
  table.structure(0x9C).byte(0x04, 0);
  install(table);
  EXPECT_EQ(readText(QUENRA_ATTRIBUTE_PLATFORM_TEXT_3),
            (tFailure{QUENRA_STATUS_NOT_SUPPORTED, 2555}));
}

TEST_F(TextReader, ShortBuffer_FailsWithBufferTooSmall) {
  EXPECT_EQ(readText(QUENRA_ATTRIBUTE_PLATFORM_TEXT_3, 3),
            (tFailure{QUENRA_STATUS_BUFFER_TOO_SMALL, 2562}));
}

TEST_F(TextReader, AbsentStructure_FailsWithNotSupported) {
  install(tReferenceTable().remove(0x9C));
  EXPECT_EQ(readText(QUENRA_ATTRIBUTE_PLATFORM_TEXT_3),
            (tFailure{QUENRA_STATUS_NOT_SUPPORTED, 2569}));
}

TEST_F(TextReader, ShortBufferForALocation_FailsWithBufferTooSmall) {
  EXPECT_EQ(readText(QUENRA_ATTRIBUTE_BUS_LOCATION, 5),
            (tFailure{QUENRA_STATUS_BUFFER_TOO_SMALL, 2770}));
}

TEST_F(TextReader, ModuleBeyondTheCount_FailsWithNotSupported) {
  EXPECT_EQ(readText(QUENRA_ATTRIBUTE_MEMORY_MANUFACTURER | 2),
            (tFailure{QUENRA_STATUS_NOT_SUPPORTED, 2534}));
}

TEST_F(TextReader, PositionBeyondAList_FailsAtTheListsLine) {
  EXPECT_EQ(readText(QUENRA_ATTRIBUTE_SLOT_LOCATION | 4),
            (tFailure{QUENRA_STATUS_NOT_SUPPORTED, 732}));
  EXPECT_EQ(readText(QUENRA_ATTRIBUTE_BRIDGE_LOCATION | 5),
            (tFailure{QUENRA_STATUS_NOT_SUPPORTED, 795}));
  EXPECT_EQ(readText(QUENRA_ATTRIBUTE_BRIDGE_MEMBERS | 5),
            (tFailure{QUENRA_STATUS_NOT_SUPPORTED, 858}));
}

TEST_F(TextReader, PositionBeyondTheCapacityOfAList_FailsAtTheListsLine) {
  tReferenceTable table;
  table.structure(0x98).byte(0x04, 255);
  table.structure(0xA3).byte(0x06, 255);
  install(table);
  EXPECT_EQ(readText(QUENRA_ATTRIBUTE_SLOT_LOCATION | 4),
            (tFailure{QUENRA_STATUS_NOT_SUPPORTED, 732}));
  EXPECT_EQ(readText(QUENRA_ATTRIBUTE_BRIDGE_LOCATION | 5),
            (tFailure{QUENRA_STATUS_NOT_SUPPORTED, 795}));
  EXPECT_EQ(readText(QUENRA_ATTRIBUTE_BRIDGE_MEMBERS | 5),
            (tFailure{QUENRA_STATUS_NOT_SUPPORTED, 858}));
}

// The count of a list that the table cuts off reads as 0, without an error of its own.
TEST_F(TextReader, ListCutOffByTheTable_FailsAtTheListsLine) {
  installCutOff(0x98);
  EXPECT_EQ(readText(QUENRA_ATTRIBUTE_SLOT_LOCATION), (tFailure{QUENRA_STATUS_NOT_SUPPORTED, 732}));
  installCutOff(0xA3);
  EXPECT_EQ(readText(QUENRA_ATTRIBUTE_BRIDGE_LOCATION),
            (tFailure{QUENRA_STATUS_NOT_SUPPORTED, 795}));
  EXPECT_EQ(readText(QUENRA_ATTRIBUTE_BRIDGE_MEMBERS),
            (tFailure{QUENRA_STATUS_NOT_SUPPORTED, 858}));
  EXPECT_STREQ(buffer, "untouched");
}

TEST_F(TextReader, ListEndingBeforeItsCount_FailsWithNotSupported) {
  tReferenceTable table;
  table.structure(0x98).cutTo(0x04);
  table.structure(0xA3).cutTo(0x06);
  install(table);
  for (const uint32_t attribute : kLists) {
    EXPECT_EQ(readText(attribute), (tFailure{QUENRA_STATUS_NOT_SUPPORTED, 2569}));
  }
}

TEST_F(TextReader, ListEndingBeforeItsEntries_FailsWithNotSupported) {
  tReferenceTable table;
  table.structure(0x98).cutTo(0x05);
  table.structure(0xA3).cutTo(0x07);
  install(table);
  for (const uint32_t attribute : kLists) {
    EXPECT_EQ(readText(attribute), (tFailure{QUENRA_STATUS_NOT_SUPPORTED, 2569}));
  }
}

TEST_F(TextReader, ListEntryWithoutItsString_ReadsAsNothing) {
  tReferenceTable table;
  table.structure(0x98).byte(0x05, 99);
  table.structure(0xA3).byte(0x07, 99).byte(0x08, 99);
  install(table);
  for (const uint32_t attribute : kLists) {
    EXPECT_EQ(readText(attribute), (tFailure{QUENRA_STATUS_SUCCESS, 0}));
    EXPECT_STREQ(buffer, "untouched");
  }
}

TEST_F(TextReader, ListWithoutItsStructure_FailsWithNotSupported) {
  install(tReferenceTable().remove(0x98));
  EXPECT_EQ(readText(QUENRA_ATTRIBUTE_SLOT_LOCATION),
            (tFailure{QUENRA_STATUS_NOT_SUPPORTED, 2569}));
}

// ---- The Marten interface ----

constexpr uint32_t kVersion = QUENRA_ATTRIBUTE_FIRMWARE_VERSION;

// The outcome of one read, compared as a unit.
struct tMartenRead {
  int32_t code;
  std::string buffer;  // every byte of it
  uint64_t size;
  bool operator==(const tMartenRead&) const = default;
};
void PrintTo(const tMartenRead& read, std::ostream* out) {
  *out << "code " << read.code << ", buffer " << testing::PrintToString(read.buffer) << ", size "
       << read.size;
}

class TextFromMartenDouble : public ReadingTest {
 protected:
  void SetUp() override {
    ReadingTest::SetUp();
    martenIsOpen = true;
  }

  // Reads into `size` bytes of heap memory, each '#', so that a write past its end is reported.
  tMartenRead read(size_t size, uint32_t attribute = kVersion) {
    const std::unique_ptr<char[]> memory(size == 0 ? nullptr : new char[size]);
    std::fill_n(memory.get(), size, '#');
    uint64_t inOut = size;
    zoerr::tOwnedStatus status;
    readTextAttribute(access(), attribute, memory.get(), &inOut, status);
    failure = failureOf(status);
    return {status.code, std::string(memory.get(), size), inOut};
  }
  static std::string bytes(std::string_view text) { return std::string(text); }

  tFailure failure{};  // of the last read
};

TEST_F(TextFromMartenDouble, Request_CarriesSizeAndEarlierWarning) {
  marten.replyWithText(kVersion, "M-1");
  zoerr::tOwnedStatus status;
  status.code = 5;
  uint64_t size = 100;
  readTextAttribute(access(), kVersion, buffer, &size, status);
  EXPECT_EQ(status.code, 5);
  EXPECT_EQ(size, 4u);
  EXPECT_THAT(marten.requests, testing::ElementsAre(tAttributeRequest{kVersion, 100, 5}));
}

TEST_F(TextFromMartenDouble, WithoutBuffer_FailsWithInvalidParameterAndNoRequest) {
  zoerr::tOwnedStatus status;
  uint64_t size = 100;
  readTextAttribute(access(), kVersion, nullptr, &size, status);
  EXPECT_EQ(status.code, QUENRA_STATUS_INVALID_PARAMETER);
  EXPECT_EQ(lineOf(status), 2771u);
  EXPECT_EQ(size, 100u);
  EXPECT_TRUE(marten.requests.empty());
}

TEST_F(TextFromMartenDouble, AnyTypeWithNumber4_IsReadFromAnOpenMarten) {
  for (const uint32_t attribute :
       {0x10000400u, 0x18000400u, 0x20000400u, 0x10200400u, 0x10F00407u}) {
    marten.replyWithText(attribute, "M-1");
    EXPECT_EQ(read(4, attribute), (tMartenRead{0, bytes("M-1\0"sv), 4})) << std::hex << attribute;
  }
}

// The size is written on success, with a warning, and when it is too small.

TEST_F(TextFromMartenDouble, Success_WritesTheSizeFilled) {
  marten.replyWithText(kVersion, "M-1");
  EXPECT_EQ(read(6), (tMartenRead{0, bytes("M-1\0##"sv), 4}));
  EXPECT_EQ(read(4), (tMartenRead{0, bytes("M-1\0"sv), 4}));
}

TEST_F(TextFromMartenDouble, DriverWarning_WritesTheSizeFilled) {
  marten.replies[kVersion] = {bytes("M-1\0"sv), 9};
  EXPECT_EQ(read(6), (tMartenRead{9, bytes("M-1\0##"sv), 4}));
}

TEST_F(TextFromMartenDouble, BufferTooSmall_WritesTheSizeNeeded) {
  marten.replyWithText(kVersion, "M-1");
  EXPECT_EQ(read(3), (tMartenRead{QUENRA_STATUS_BUFFER_TOO_SMALL, "###", 4}));
  EXPECT_EQ(failure.line, 2u) << "the location is the driver's";
  EXPECT_EQ(read(0), (tMartenRead{QUENRA_STATUS_BUFFER_TOO_SMALL, "", 4}));
}

TEST_F(TextFromMartenDouble, OtherDriverFailures_LeaveTheSize) {
  EXPECT_EQ(read(6), (tMartenRead{QUENRA_STATUS_NOT_SUPPORTED, "######", 6}));
  EXPECT_EQ(failure.line, 1u) << "the location is the driver's";
  for (const int32_t code : {int32_t{QUENRA_STATUS_BUSY}, -1}) {
    marten.replies[kVersion] = {"0123456789", code};
    EXPECT_EQ(read(6), (tMartenRead{code, "######", 6}));
    EXPECT_EQ(read(0), (tMartenRead{code, "", 0}));
  }
}

TEST_F(TextFromMartenDouble, ReportedSizeBeyondTheBuffer_IsCutToTheBuffer) {
  marten.replyWithText(kVersion, "M-1");
  marten.overreportedBytes = 1000;
  EXPECT_EQ(read(6), (tMartenRead{0, bytes("M-1\0##"sv), 6}));
}

TEST_F(TextFromMartenDouble, SizeBeyond32Bits_IsWritten) {
  marten.replyWithText(kVersion, "M-1");
  marten.overreportedBytes = UINT32_MAX - 4;
  zoerr::tOwnedStatus status;
  uint64_t size = (uint64_t{1} << 32) + 10;
  readTextAttribute(access(), kVersion, buffer, &size, status);
  EXPECT_EQ(status.code, 0);
  EXPECT_EQ(size, UINT32_MAX);
  EXPECT_STREQ(buffer, "M-1");
}

// A successful read ends its text with a NUL inside the buffer.

TEST_F(TextFromMartenDouble, TextWithoutNul_IsTerminatedAtTheReportedSize) {
  marten.replies[kVersion] = {"M-1", 0};
  EXPECT_EQ(read(6), (tMartenRead{0, bytes("M-1\0##"sv), 3}));
  EXPECT_EQ(read(4), (tMartenRead{0, bytes("M-1\0"sv), 3}));
  marten.replies[kVersion].code = 9;
  EXPECT_EQ(read(4), (tMartenRead{9, bytes("M-1\0"sv), 3})) << "with a warning";
}

TEST_F(TextFromMartenDouble, TextWithANulInside_IsLeftAsTheDriverFilledIt) {
  marten.replies[kVersion] = {bytes("M\0-1"sv), 0};
  EXPECT_EQ(read(6), (tMartenRead{0, bytes("M\0-1##"sv), 4}));
  EXPECT_EQ(read(4), (tMartenRead{0, bytes("M\0-1"sv), 4}));
}

TEST_F(TextFromMartenDouble, EmptyTextWithoutNul_IsTerminatedAtTheStart) {
  marten.replies[kVersion] = {"", 0};
  EXPECT_EQ(read(3), (tMartenRead{0, bytes("\0##"sv), 0}));
  EXPECT_EQ(read(1), (tMartenRead{0, bytes("\0"sv), 0}));
}

TEST_F(TextFromMartenDouble, TextWithoutNulThatFillsTheBuffer_NeedsOneByteMore) {
  marten.replies[kVersion] = {"M-1", 0};
  EXPECT_EQ(read(3), (tMartenRead{QUENRA_STATUS_BUFFER_TOO_SMALL, bytes("\0-1"sv), 4}));
  EXPECT_EQ(failure.line, 2772u);
  marten.replies[kVersion].code = 9;
  EXPECT_EQ(read(3).code, QUENRA_STATUS_BUFFER_TOO_SMALL) << "with a warning";
  marten.replies[kVersion] = {"M", 0};
  EXPECT_EQ(read(1), (tMartenRead{QUENRA_STATUS_BUFFER_TOO_SMALL, bytes("\0"sv), 2}));
}

TEST_F(TextFromMartenDouble, EmptyTextWithoutNulAndWithoutBuffer_NeedsOneByte) {
  marten.replies[kVersion] = {"", 0};
  EXPECT_EQ(read(0), (tMartenRead{QUENRA_STATUS_BUFFER_TOO_SMALL, "", 1}));
  EXPECT_EQ(failure.line, 2772u);
}

TEST_F(TextFromMartenDouble, ReadRepeatedWithTheSizeNeeded_SucceedsWithoutNul) {
  marten.replies[kVersion] = {"M-1", 0};
  tMartenRead result = read(0);
  for (int attempt = 0; attempt < 2; ++attempt) {
    ASSERT_EQ(result.code, QUENRA_STATUS_BUFFER_TOO_SMALL);
    result = read(result.size);
  }
  EXPECT_EQ(result, (tMartenRead{0, bytes("M-1\0"sv), 3}));
}

// ---- Other texts ----

TEST_F(TextReader, LongestText_IsReadCompletely) {
  const std::string longest = "07:" + std::string(125, 'x');
  tReferenceTable table;
  table.structure(0x97).text(0x04, longest);
  install(table);
  EXPECT_EQ(readText(QUENRA_ATTRIBUTE_BUS_LOCATION), (tFailure{0, 0}));
  EXPECT_EQ(buffer, longest);
}

TEST_F(TextReader, SuccessfulReadOfALocation_DropsAnEarlierWarning) {
  zoerr::tOwnedStatus status;
  status.code = 5;
  uint64_t size = sizeof buffer;
  readTextAttribute(access(), QUENRA_ATTRIBUTE_BUS_LOCATION, buffer, &size, status);
  EXPECT_EQ(status.code, 0);
  EXPECT_STREQ(buffer, "07:12");
}

TEST_F(TextReader, WithoutAnyTable_ReadsAsNothing) {
  provider.clear();
  EXPECT_EQ(readText(QUENRA_ATTRIBUTE_PRODUCT_NAME), (tFailure{0, 0}));
  EXPECT_STREQ(buffer, "untouched");
}

// ---- Normalised texts ----

struct tCase {
  std::string text;
  std::string one;                // as one segment
  std::string separatedByCommas;  // as segments separated by commas
};
class NormalisedText : public testing::TestWithParam<tCase> {};

TEST_P(NormalisedText, HasTwoDigitsInEachLeadingGroup) {
  EXPECT_EQ(tNormalisedText(GetParam().text, tSegments::one).view(), GetParam().one);
  EXPECT_EQ(tNormalisedText(GetParam().text, tSegments::separatedByCommas).view(),
            GetParam().separatedByCommas);
}
INSTANTIATE_TEST_SUITE_P(
    Texts, NormalisedText,
    testing::Values(tCase{"7:12", "07:12", "07:12"}, tCase{"17:2", "17:2", "17:2"},
                    tCase{"1:2,3:4", "01:2,3:4", "01:2,03:4"}, tCase{"7", "7", "7"},
                    tCase{"7:", "07:", "07:"}, tCase{"::", "0::", "0::"}, tCase{":", ":", ":"},
                    tCase{",:5", "0,:5", "0,:5"}, tCase{",", ",", ","},
                    tCase{"12:3,4:5,67:8,9:", "12:3,4:5,67:8,9:", "12:3,04:5,67:8,09:"},
                    tCase{"a:b:c", "0a:b:c", "0a:b:c"}, tCase{"1,2:3", "1,2:3", "1,02:3"}));

TEST(NormalisedTextOfNothing, IsOneNulCharacter) {
  EXPECT_EQ(tNormalisedText("", tSegments::one).view(), "\0"s);
  EXPECT_EQ(tNormalisedText("", tSegments::separatedByCommas).view(), "\0"s);
}

TEST(NormalisedTextOfTheLongestString, FitsTheCapacity) {
  std::string text;
  std::string expected;
  while (text.size() < 126) {
    text += "1:,";
    expected += "01:,";
  }
  EXPECT_EQ(tNormalisedText(text, tSegments::separatedByCommas).view(), expected);
  const std::string longest(128, ':');
  EXPECT_EQ(tNormalisedText(longest, tSegments::one).view(), "0" + longest);
}

TEST(NormalisedTextOfMoreThanTheLongestString, IsCutToIt) {
  const std::string longest(128, ':');
  EXPECT_EQ(tNormalisedText(std::string(1000, ':'), tSegments::one).view(), "0" + longest);
}

}  // namespace
}  // namespace nTests
