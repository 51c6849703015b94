#include <gtest/gtest.h>

#include <vector>

#include "tests/builders/smbiostablebuilder.h"
#include "tests/component/zosmbios/ttestprovider.h"
#include "zosmbios/fieldid.h"

namespace nTests {
namespace {

using namespace nQUENRA1400::nZOSMBIOS_1_1;

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

TYPED_TEST(NumericReader, EveryOffsetInside_GivesTheLittleEndianValue) {
  for (uint8_t offset = 4; offset + sizeof(typename TypeParam::tValue) <= 20; ++offset) {
    this->expectValue(this->field(offset), 0, this->ascending(offset));
    this->expectValue(this->field(offset), 1, this->ascending(offset + 0x80u));
  }
}

TYPED_TEST(NumericReader, FieldUpToTheLastByte_IsTheLastThatIsThere) {
  constexpr auto kLast = static_cast<uint8_t>(20 - sizeof(typename TypeParam::tValue));
  this->expectValue(this->field(kLast), 0, this->ascending(kLast));
  this->expectCode(this->field(kLast + 1), 0, -240052);
}

TYPED_TEST(NumericReader, MissingStructure_IsNotFound) {
  this->expectCode(this->field(4), 2, -240052);
  this->expectCode(this->field(4, 10), 0, -240052);
}

TYPED_TEST(NumericReader, EveryOtherWidthClass_IsNotFound) {
  for (uint32_t width = 0; width <= 15; ++width) {
    if (static_cast<tWidthClass>(width) != TypeParam::kWidth) {
      this->expectCode(width << 16 | 0x0904, 0, -240052);
    }
  }
}

TYPED_TEST(NumericReader, BitsAboveTheWidthClass_AreIgnored) {
  this->expectValue(0xFFF00000 | this->field(4), 0, this->ascending(4));
}

TYPED_TEST(NumericReader, NullOutput_IsAnInvalidParameter) {
  EXPECT_EQ(TypeParam::read(this->provider_, this->field(4), 0, nullptr), -52005);
}

TYPED_TEST(NumericReader, NullOutput_IsTestedBeforeAnythingIsLoaded) {
  tTestProvider empty;
  EXPECT_EQ(TypeParam::read(empty, this->field(4), 0, nullptr), -52005);
  EXPECT_EQ(empty.loads(), 0);
}

TYPED_TEST(NumericReader, StructureOutsideTheTable_IsMalformed) {
  const std::vector<uint8_t> headerAlone{9};
  const std::vector<uint8_t> areaTooLong{9, 20, 0, 0, 4, 5, 6, 7, 8, 9, 10, 11, 12};
  for (const auto& table : {headerAlone, areaTooLong}) {
    tTestProvider provider(table);
    typename TypeParam::tValue value = this->kUntouchedValue;
    EXPECT_EQ(TypeParam::read(provider, this->field(4), 0, &value), -240053);
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

TYPED_TEST(NumericReader, FailedLoad_GivesItsCodeAndIsTriedAgain) {
  tTestProvider provider;
  provider.loadWillFail(-240060);
  typename TypeParam::tValue value = this->kUntouchedValue;
  EXPECT_EQ(TypeParam::read(provider, this->field(4), 0, &value), -240060);
  EXPECT_EQ(TypeParam::read(provider, this->field(4), 0, &value), -240060);
  EXPECT_EQ(value, this->kUntouchedValue);
  EXPECT_EQ(provider.loads(), 2);
}

}  // namespace
}  // namespace nTests
