#include <gtest/gtest.h>

#include <optional>
#include <ostream>
#include <vector>

#include "tests/builders/smbiostablebuilder.h"
#include "tests/component/zosmbios/ttestprovider.h"

namespace nTests {
namespace {

using nQUENRA1400::nZOSMBIOS_1_1::tStructureOffset;
using nZOAPALS100::tStatus;

// The structure's offset; the test fails unless a missing one is reported as documented.
std::optional<uint32_t> find(const std::vector<uint8_t>& table, uint8_t type, uint32_t instance) {
  const tTestProvider provider(table);
  tStatus status;
  tStructureOffset structure = 0xFFFFFFFF;
  provider.findStructure(type, instance, &structure, status);
  if (status.code == 0) {
    return structure;
  }
  EXPECT_EQ(status.code, -240052);
  EXPECT_EQ(status.line, 860u);
  EXPECT_STREQ(status.component, "quenra");
  EXPECT_STREQ(status.file, kProviderFile);
  EXPECT_EQ(structure, 0xFFFFFFFF) << "a structure that is not there has no place";
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

TEST(FindStructure, InstanceOneOfATypeThatOccursOnce_IsNotThere) {
  EXPECT_EQ(find(threeStructures(), 2, 1), std::nullopt);
  EXPECT_EQ(find(threeStructures(), 1, 2), std::nullopt);
  EXPECT_EQ(find(threeStructures(), 1, 0xFFFFFFFF), std::nullopt);
}

TEST(FindStructure, TypeThatDoesNotOccur_IsNotThere) {
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
  std::optional<uint32_t> place;
};

std::ostream& operator<<(std::ostream& out, const tSearch& search) {
  return out << "type " << +search.type << ", instance " << search.instance;
}

class OddTable : public testing::TestWithParam<tSearch> {};

TEST_P(OddTable, IsWalkedToItsEndAndNoFurther) {
  EXPECT_EQ(find(GetParam().table, GetParam().type, GetParam().instance), GetParam().place);
}

const auto kNameOfSearch = [](const testing::TestParamInfo<tSearch>& search) {
  return search.param.name;
};
const auto kNowhere = std::nullopt;

INSTANTIATE_TEST_SUITE_P(Tiny, OddTable,
                         testing::Values(tSearch{"NoBytes", {}, 0, 0, kNowhere},
                                         tSearch{"OneByte", {5}, 5, 0, 0},
                                         tSearch{"OneByteOnce", {5}, 5, 1, kNowhere},
                                         tSearch{"OneZeroByte", {0}, 0, 0, 0},
                                         tSearch{"TwoBytes", {5, 4}, 5, 0, 0},
                                         tSearch{"TwoBytesOnce", {5, 4}, 5, 1, kNowhere},
                                         tSearch{"TwoZeros", {0, 0}, 0, 0, 0},
                                         tSearch{"TwoZerosOnce", {0, 0}, 0, 1, kNowhere},
                                         tSearch{"ThreeBytes", {5, 2, 5}, 5, 1, kNowhere},
                                         tSearch{"ThreeZeros", {0, 0, 0}, 0, 1, 2},
                                         tSearch{"ThreeZerosTwice", {0, 0, 0}, 0, 2, kNowhere}),
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
        tSearch{"ToTheTablesEnd", {9, 4, 0, 0}, 7, 0, kNowhere},
        tSearch{"BeyondTheTable", {9, 255, 0, 0, 0, 0, 7, 4, 0, 0}, 7, 0, kNowhere},
        tSearch{"BeyondTheTableIsStillFound", {9, 255, 0, 0, 0, 0}, 9, 0, 0}),
    kNameOfSearch);

INSTANTIATE_TEST_SUITE_P(
    Ends, OddTable,
    testing::Values(tSearch{"WithoutNuls", {9, 4, 0, 0, 'a', 'b'}, 7, 0, kNowhere},
                    tSearch{"WithOneNul", {9, 4, 1, 1, 'a', 0}, 7, 0, kNowhere},
                    tSearch{"WithTwoNuls", {9, 4, 1, 1, 'a', 0, 0}, 9, 1, kNowhere},
                    tSearch{"StructureOnTheLastByte", {9, 4, 1, 1, 'a', 0, 0, 7}, 7, 0, 7},
                    tSearch{"ThirdNulIsAStructureOfTypeZero", {9, 4, 1, 1, 0, 0, 0}, 0, 0, 6}),
    kNameOfSearch);

}  // namespace
}  // namespace nTests
