// Structures by type and instance, the bounds of fields, and the numeric readers.
#include <gtest/gtest.h>

#include <optional>
#include <ostream>
#include <vector>

#include "tests/builders/smbiostablebuilder.h"
#include "tests/component/zosmbios/ttestprovider.h"
#include "zosmbios/fieldid.h"

namespace nTests {
namespace {

using nZOAPALS100::tStatus;
using namespace nQUENRA1400::nZOSMBIOS_1_1;

// ---- Structures ----

// The structure's offset; the test fails unless a missing one is reported as documented.
std::optional<uint32_t> find(const std::vector<uint8_t>& table, uint8_t type, uint32_t instance) {
  const tTestProvider provider(table);
  tStatus status;
  tStructureOffset structure = 0xFFFFFFFF;
  provider.findStructure(type, instance, &structure, status);
  if (status.code == 0) {
    return structure;
  }
  EXPECT_EQ(status.code, QUENRA_STATUS_SMBIOS_NOT_FOUND);
  EXPECT_EQ(status.line, 860u);
  EXPECT_STREQ(status.component, "quenra");
  EXPECT_STREQ(status.file, kProviderFile);
  EXPECT_EQ(structure, 0xFFFFFFFF) << "the offset of a missing structure is not written";
  return std::nullopt;
}

// Type 1 at 0 and 16, type 2 at 8.
std::vector<uint8_t> threeStructures() {
  return tSmbiosTableBuilder()
      .structure(1, {0xAA, 0xBB})
      .structure(2, {0xCC, 0xDD})
      .structure(1, {0xEE}, {"text"})
      .build();
}

TEST(FindStructure, Instances_AreCountedFromZeroPerType) {
  EXPECT_EQ(find(threeStructures(), 1, 0), 0u);
  EXPECT_EQ(find(threeStructures(), 2, 0), 8u);
  EXPECT_EQ(find(threeStructures(), 1, 1), 16u);
}

TEST(FindStructure, InstanceOneOfATypeThatOccursOnce_IsNotFound) {
  EXPECT_EQ(find(threeStructures(), 2, 1), std::nullopt);
  EXPECT_EQ(find(threeStructures(), 1, 2), std::nullopt);
  EXPECT_EQ(find(threeStructures(), 1, 0xFFFFFFFF), std::nullopt);
}

TEST(FindStructure, TypeThatDoesNotOccur_IsNotFound) {
  EXPECT_EQ(find(threeStructures(), 3, 0), std::nullopt);
  EXPECT_EQ(find(threeStructures(), 0, 0), std::nullopt);
  EXPECT_EQ(find(threeStructures(), 255, 0), std::nullopt);
}

TEST(FindStructure, StatusWithAnError_DoesNothing) {
  const tTestProvider provider(threeStructures());
  tStatus status;
  mergeStatus(status, -3, {"first", 1});
  tStructureOffset structure = 77;
  provider.findStructure(1, 0, &structure, status);
  EXPECT_EQ(structure, 77u);
  EXPECT_EQ(status.code, -3);
}

struct tSearch {
  const char* name;
  std::vector<uint8_t> table;
  uint8_t type;
  uint32_t instance;
  std::optional<uint32_t> offset;
};

std::ostream& operator<<(std::ostream& out, const tSearch& search) {
  return out << "type " << +search.type << ", instance " << search.instance;
}

class OddTable : public testing::TestWithParam<tSearch> {};

TEST_P(OddTable, IsWalkedToItsEndAndNoFurther) {
  EXPECT_EQ(find(GetParam().table, GetParam().type, GetParam().instance), GetParam().offset);
}

const auto kNameOfSearch = [](const testing::TestParamInfo<tSearch>& search) {
  return search.param.name;
};
const auto kNotFound = std::nullopt;

INSTANTIATE_TEST_SUITE_P(Tiny, OddTable,
                         testing::Values(tSearch{"NoBytes", {}, 0, 0, kNotFound},
                                         tSearch{"OneByte", {5}, 5, 0, 0},
                                         tSearch{"OneByteOnce", {5}, 5, 1, kNotFound},
                                         tSearch{"OneZeroByte", {0}, 0, 0, 0},
                                         tSearch{"TwoBytes", {5, 4}, 5, 0, 0},
                                         tSearch{"TwoBytesOnce", {5, 4}, 5, 1, kNotFound},
                                         tSearch{"TwoZeros", {0, 0}, 0, 0, 0},
                                         tSearch{"TwoZerosOnce", {0, 0}, 0, 1, kNotFound},
                                         tSearch{"ThreeBytes", {5, 2, 5}, 5, 1, kNotFound},
                                         tSearch{"ThreeZeros", {0, 0, 0}, 0, 1, 2},
                                         tSearch{"ThreeZerosTwice", {0, 0, 0}, 0, 2, kNotFound}),
                         kNameOfSearch);

INSTANTIATE_TEST_SUITE_P(
    Lengths, OddTable,
    testing::Values(
        // With a length of 0 the search for the NULs begins at the type byte, with 1 at the length.
        tSearch{"ZeroInsideOnlyTheHeader", {9, 0, 0, 7, 4, 0, 0, 0, 0}, 7, 0, 3},
        tSearch{"ZeroOfTypeZero", {0, 0, 7, 4, 0, 0, 0, 0}, 7, 0, 2},
        tSearch{"OneFromTheLengthByte", {9, 1, 0, 0, 7, 4, 0, 0}, 7, 0, 4},
        tSearch{"Two", {9, 2, 0, 0, 7, 4, 0, 0}, 7, 0, 4},
        tSearch{"Three", {9, 3, 0, 0, 0, 7, 4, 0, 0}, 7, 0, 5},
        tSearch{"NulsInTheFormattedAreaDoNotCount", {9, 6, 0, 0, 0, 0, 0, 0, 7, 4, 0, 0}, 7, 0, 8},
        tSearch{"ToTheTablesEnd", {9, 4, 0, 0}, 7, 0, kNotFound},
        tSearch{"BeyondTheTable", {9, 255, 0, 0, 0, 0, 7, 4, 0, 0}, 7, 0, kNotFound},
        tSearch{"BeyondTheTableIsStillFound", {9, 255, 0, 0, 0, 0}, 9, 0, 0}),
    kNameOfSearch);

INSTANTIATE_TEST_SUITE_P(
    Ends, OddTable,
    testing::Values(tSearch{"WithoutNuls", {9, 4, 0, 0, 'a', 'b'}, 7, 0, kNotFound},
                    tSearch{"WithOneNul", {9, 4, 1, 1, 'a', 0}, 7, 0, kNotFound},
                    tSearch{"WithTwoNuls", {9, 4, 1, 1, 'a', 0, 0}, 9, 1, kNotFound},
                    tSearch{"StructureOnTheLastByte", {9, 4, 1, 1, 'a', 0, 0, 7}, 7, 0, 7},
                    tSearch{"ThirdNulIsAStructureOfTypeZero", {9, 4, 1, 1, 0, 0, 0}, 0, 0, 6}),
    kNameOfSearch);

// ---- The bounds of fields ----

struct tVerdict {
  int32_t code;
  uint32_t line;
  bool operator==(const tVerdict&) const = default;
};
std::ostream& operator<<(std::ostream& out, const tVerdict& verdict) {
  return out << "code " << verdict.code << " of line " << verdict.line;
}
constexpr tVerdict kInside{0, 0};
constexpr tVerdict kHeaderOutside{QUENRA_STATUS_SMBIOS_MALFORMED, 174};
constexpr tVerdict kAreaOutside{QUENRA_STATUS_SMBIOS_MALFORMED, 189};
constexpr tVerdict kNoSuchWidth{QUENRA_STATUS_SMBIOS_MALFORMED, 226};
constexpr tVerdict kFieldOutside{QUENRA_STATUS_SMBIOS_NOT_FOUND, 235};

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

// ---- Numeric readers ----

struct tByteReader {
  using tValue = uint8_t;
  static constexpr tWidthClass kWidth = tWidthClass::byte;
  static int32_t read(cZoSmBiosProvider& provider, tFieldId field, uint32_t instance, tValue* out) {
    return provider.readByte(field, instance, out);
  }
};
struct tWordReader {
  using tValue = uint16_t;
  static constexpr tWidthClass kWidth = tWidthClass::word;
  static int32_t read(cZoSmBiosProvider& provider, tFieldId field, uint32_t instance, tValue* out) {
    return provider.readWord(field, instance, out);
  }
};
struct tQwordReader {
  using tValue = uint64_t;
  static constexpr tWidthClass kWidth = tWidthClass::quadWord;
  static int32_t read(cZoSmBiosProvider& provider, tFieldId field, uint32_t instance, tValue* out) {
    return provider.readQword(field, instance, out);
  }
};

// Two structures of type 9, 20 bytes each; each byte of the first holds its offset, each of the
// second its offset plus 0x80.
std::vector<uint8_t> twoStructures() {
  std::vector<uint8_t> first;
  std::vector<uint8_t> second;
  for (uint8_t offset = 4; offset < 20; ++offset) {
    first.push_back(offset);
    second.push_back(static_cast<uint8_t>(offset + 0x80));
  }
  return tSmbiosTableBuilder().structure(9, first).structure(9, second).build();
}

template <class Reader>
class NumericReader : public testing::Test {
 protected:
  using tValue = typename Reader::tValue;
  static constexpr auto kUntouchedValue = static_cast<tValue>(0x5E5E5E5E5E5E5E5E);

  // The value that the bytes offset, offset + 1, ... make, the first byte lowest.
  static tValue ascending(unsigned offset) {
    uint64_t value = 0;
    for (unsigned i = 0; i < sizeof(tValue); ++i) {
      value |= uint64_t{offset + i} << (8 * i);
    }
    return static_cast<tValue>(value);
  }
  static tFieldId field(uint8_t offset, uint8_t type = 9) {
    return makeFieldId(Reader::kWidth, type, offset);
  }
  void expectValue(tFieldId id, uint32_t instance, tValue expected) {
    tValue value = kUntouchedValue;
    EXPECT_EQ(Reader::read(provider_, id, instance, &value), 0);
    EXPECT_EQ(value, expected);
  }
  void expectCode(tFieldId id, uint32_t instance, int32_t code) {
    tValue value = kUntouchedValue;
    EXPECT_EQ(Reader::read(provider_, id, instance, &value), code);
    EXPECT_EQ(value, kUntouchedValue);
  }

  tTestProvider provider_{twoStructures()};
};

using tReaders = testing::Types<tByteReader, tWordReader, tQwordReader>;
TYPED_TEST_SUITE(NumericReader, tReaders);

TYPED_TEST(NumericReader, EveryOffsetInside_ReturnsTheLittleEndianValue) {
  for (uint8_t offset = 4; offset + sizeof(typename TypeParam::tValue) <= 20; ++offset) {
    this->expectValue(this->field(offset), 0, this->ascending(offset));
    this->expectValue(this->field(offset), 1, this->ascending(offset + 0x80u));
  }
}

TYPED_TEST(NumericReader, FieldUpToTheLastByte_IsTheLastInside) {
  constexpr auto kLast = static_cast<uint8_t>(20 - sizeof(typename TypeParam::tValue));
  this->expectValue(this->field(kLast), 0, this->ascending(kLast));
  this->expectCode(this->field(kLast + 1), 0, QUENRA_STATUS_SMBIOS_NOT_FOUND);
}

TYPED_TEST(NumericReader, MissingStructure_IsNotFound) {
  this->expectCode(this->field(4), 2, QUENRA_STATUS_SMBIOS_NOT_FOUND);
  this->expectCode(this->field(4, 10), 0, QUENRA_STATUS_SMBIOS_NOT_FOUND);
}

TYPED_TEST(NumericReader, EveryOtherWidthClass_IsNotFound) {
  for (uint32_t width = 0; width <= 15; ++width) {
    if (static_cast<tWidthClass>(width) != TypeParam::kWidth) {
      this->expectCode(width << 16 | 0x0904, 0, QUENRA_STATUS_SMBIOS_NOT_FOUND);
    }
  }
}

TYPED_TEST(NumericReader, BitsAboveTheWidthClass_AreIgnored) {
  this->expectValue(0xFFF00000 | this->field(4), 0, this->ascending(4));
}

TYPED_TEST(NumericReader, NullOutput_IsAnInvalidParameter) {
  EXPECT_EQ(TypeParam::read(this->provider_, this->field(4), 0, nullptr),
            QUENRA_STATUS_INVALID_PARAMETER);
}

TYPED_TEST(NumericReader, NullOutput_IsTestedBeforeAnythingIsLoaded) {
  tTestProvider empty;
  EXPECT_EQ(TypeParam::read(empty, this->field(4), 0, nullptr), QUENRA_STATUS_INVALID_PARAMETER);
  EXPECT_EQ(empty.loads(), 0);
}

TYPED_TEST(NumericReader, StructureOutsideTheTable_IsMalformed) {
  const std::vector<uint8_t> headerAlone{9};
  const std::vector<uint8_t> areaTooLong{9, 20, 0, 0, 4, 5, 6, 7, 8, 9, 10, 11, 12};
  for (const auto& table : {headerAlone, areaTooLong}) {
    tTestProvider provider(table);
    typename TypeParam::tValue value = this->kUntouchedValue;
    EXPECT_EQ(TypeParam::read(provider, this->field(4), 0, &value), QUENRA_STATUS_SMBIOS_MALFORMED);
    EXPECT_EQ(value, this->kUntouchedValue);
  }
}

TYPED_TEST(NumericReader, WithoutATable_LoadsItOnce) {
  tTestProvider provider;
  provider.loadWill(twoStructures());
  for (int repeat = 0; repeat < 2; ++repeat) {
    typename TypeParam::tValue value = 0;
    EXPECT_EQ(TypeParam::read(provider, this->field(4), 0, &value), 0);
    EXPECT_EQ(value, this->ascending(4));
  }
  EXPECT_EQ(provider.loads(), 1);
}

TYPED_TEST(NumericReader, FailedLoad_ReturnsItsCodeAndIsTriedAgain) {
  tTestProvider provider;
  provider.loadWillFail(QUENRA_STATUS_SMBIOS_NO_TABLE);
  typename TypeParam::tValue value = this->kUntouchedValue;
  EXPECT_EQ(TypeParam::read(provider, this->field(4), 0, &value), QUENRA_STATUS_SMBIOS_NO_TABLE);
  EXPECT_EQ(TypeParam::read(provider, this->field(4), 0, &value), QUENRA_STATUS_SMBIOS_NO_TABLE);
  EXPECT_EQ(value, this->kUntouchedValue);
  EXPECT_EQ(provider.loads(), 2);
}

}  // namespace
}  // namespace nTests
