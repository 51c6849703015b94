#include <gtest/gtest.h>

#include <ostream>
#include <vector>

#include "tests/component/zosmbios/ttestprovider.h"
#include "zosmbios/fieldid.h"

namespace nTests {
namespace {

using namespace nQUENRA1400::nZOSMBIOS_1_1;
using nZOAPALS100::tStatus;

struct tVerdict {
  int32_t code;
  uint32_t line;
  bool operator==(const tVerdict&) const = default;
};
std::ostream& operator<<(std::ostream& out, const tVerdict& verdict) {
  return out << "code " << verdict.code << " of line " << verdict.line;
}
constexpr tVerdict kInside{0, 0};
constexpr tVerdict kHeaderOutside{-240053, 174};
constexpr tVerdict kAreaOutside{-240053, 189};
constexpr tVerdict kNoSuchWidth{-240053, 226};
constexpr tVerdict kFieldOutside{-240052, 235};

tVerdict check(const std::vector<uint8_t>& table, tStructureOffset structure, tFieldId field) {
  const tTestProvider provider(table);
  tStatus status;
  provider.checkField(structure, field, status);
  if (status.code != 0) {
    EXPECT_STREQ(status.component, "quenra");
    EXPECT_STREQ(status.file, kProviderFile);
  }
  return {status.code, status.line};
}

// One structure of type 9 with a formatted area of 12 bytes that ends with the table.
std::vector<uint8_t> twelveBytes() {
  return {9, 12, 0, 0, 4, 5, 6, 7, 8, 9, 10, 11};
}

struct tField {
  tWidthClass width;
  uint8_t lastOffset;  // the last at which a field of this class lies inside twelveBytes
};

std::ostream& operator<<(std::ostream& out, const tField& field) {
  return out << "class " << static_cast<unsigned>(field.width);
}

class WidthClass : public testing::TestWithParam<tField> {
 protected:
  static tVerdict checkAt(unsigned offset) {
    return check(twelveBytes(), 0, makeFieldId(GetParam().width, 9, static_cast<uint8_t>(offset)));
  }
};

TEST_P(WidthClass, FieldUpToTheEnd_IsInside) {
  for (unsigned offset = 0; offset <= GetParam().lastOffset; ++offset) {
    EXPECT_EQ(checkAt(offset), kInside) << offset;
  }
}

TEST_P(WidthClass, FieldAcrossTheEnd_IsOutside) {
  for (unsigned offset = GetParam().lastOffset + 1u; offset <= 255; ++offset) {
    EXPECT_EQ(checkAt(offset), kFieldOutside) << offset;
  }
}

INSTANTIATE_TEST_SUITE_P(All, WidthClass,
                         testing::Values(tField{tWidthClass::text, 11},
                                         tField{tWidthClass::byte, 11},
                                         tField{tWidthClass::word, 10},
                                         tField{tWidthClass::doubleWord, 8},
                                         tField{tWidthClass::quadWord, 4}));

TEST(CheckField, UnknownWidthClass_IsMalformed) {
  for (uint32_t width = 5; width <= 15; ++width) {
    EXPECT_EQ(check(twelveBytes(), 0, width << 16 | 0x0904), kNoSuchWidth) << width;
  }
}

TEST(CheckField, BitsAboveTheWidthClass_AreIgnored) {
  EXPECT_EQ(check(twelveBytes(), 0, 0xFFF00000 | byteField(9, 11)), kInside);
  EXPECT_EQ(check(twelveBytes(), 0, 0xFFF00000 | byteField(9, 12)), kFieldOutside);
}

TEST(CheckField, HeaderNotInTheTable_IsMalformed) {
  EXPECT_EQ(check({}, 0, byteField(9, 0)), kHeaderOutside);
  EXPECT_EQ(check({9}, 0, byteField(9, 0)), kHeaderOutside);
  EXPECT_EQ(check(twelveBytes(), 11, byteField(9, 0)), kHeaderOutside);
  EXPECT_EQ(check(twelveBytes(), 12, byteField(9, 0)), kHeaderOutside);
  EXPECT_EQ(check(twelveBytes(), 0xFFFFFFFF, byteField(9, 0)), kHeaderOutside);
}

TEST(CheckField, HeaderOnTheTablesLastBytes_IsEnough) {
  EXPECT_EQ(check({9, 2}, 0, byteField(9, 1)), kInside);
  EXPECT_EQ(check({9, 2}, 0, byteField(9, 2)), kFieldOutside);
}

TEST(CheckField, FormattedAreaAcrossTheTablesEnd_IsMalformed) {
  EXPECT_EQ(check({9, 3}, 0, byteField(9, 0)), kAreaOutside);
  EXPECT_EQ(check({9, 5, 0, 0}, 0, byteField(9, 0)), kAreaOutside);
  EXPECT_EQ(check({9, 255, 0, 0}, 0, byteField(9, 0)), kAreaOutside);
}

TEST(CheckField, AreaOutsideCountsBeforeTheWidth) {
  EXPECT_EQ(check({9, 5, 0, 0}, 0, 0xF0904), kAreaOutside);
}

TEST(CheckField, AreaSmallerThanItsHeader_HoldsWhatFits) {
  EXPECT_EQ(check({9, 0, 0, 0}, 0, byteField(9, 0)), kFieldOutside);
  EXPECT_EQ(check({9, 1, 0, 0}, 0, byteField(9, 0)), kInside);
  EXPECT_EQ(check({9, 1, 0, 0}, 0, byteField(9, 1)), kFieldOutside);
  EXPECT_EQ(check({9, 3, 0, 0}, 0, wordField(9, 1)), kInside);
  EXPECT_EQ(check({9, 3, 0, 0}, 0, wordField(9, 2)), kFieldOutside);
}

TEST(CheckField, AreaOf255Bytes_IsCheckedToItsEnd) {
  std::vector<uint8_t> table(255);
  table[1] = 255;
  EXPECT_EQ(check(table, 0, byteField(0, 254)), kInside);
  EXPECT_EQ(check(table, 0, byteField(0, 255)), kFieldOutside);
  EXPECT_EQ(check(table, 0, quadWordField(0, 247)), kInside);
  EXPECT_EQ(check(table, 0, quadWordField(0, 248)), kFieldOutside);
}

TEST(CheckField, StatusWithAnError_DoesNothing) {
  const tTestProvider provider(twelveBytes());
  tStatus status;
  mergeStatus(status, -3, {"first", 1});
  provider.checkField(12, byteField(9, 0), status);
  EXPECT_EQ(status.code, -3);
  EXPECT_EQ(status.line, 1u);
}

}  // namespace
}  // namespace nTests
