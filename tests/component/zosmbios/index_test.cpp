#include <gtest/gtest.h>

#include <map>
#include <optional>
#include <ostream>
#include <random>
#include <vector>

#include "tests/builders/smbiostablebuilder.h"
#include "tests/component/zosmbios/structureswalk.h"
#include "tests/component/zosmbios/ttestprovider.h"
#include "zosmbios/fieldid.h"
#include "zosmbios/tstructuretable.h"

namespace nTests {
namespace {

using namespace nQUENRA1400::nZOSMBIOS_1_1;

std::optional<size_t> widened(std::optional<tStructureOffset> offset) {
  return offset ? std::optional<size_t>(*offset) : std::nullopt;
}

// The cost of every plain walk grows with the table. A table with more structures or types than these
// is compared on samples.
constexpr size_t kComparedStructures = 50;
constexpr size_t kComparedTypes = 10;

bool isSample(size_t position, size_t count, size_t samples) {
  return position % (count / samples + 1) == 0;
}

using tOffsetsOfTypes = std::map<uint8_t, std::vector<size_t>>;

tOffsetsOfTypes offsetsOfTypes(const std::vector<tWalkedStructure>& walked) {
  tOffsetsOfTypes offsets;
  for (const auto& [offset, type] : walked) {
    offsets[type].push_back(offset);
  }
  return offsets;
}

// The index finds every instance of every type, and none after the last.
void expectIndexed(const tStructureTable& table, const tOffsetsOfTypes& offsets) {
  tStructureIndex index;
  index.build(table);
  ASSERT_TRUE(index.isUsable());
  for (unsigned type = 0; type < 256; ++type) {
    const auto id = static_cast<uint8_t>(type);
    uint32_t instance = 0;
    if (offsets.contains(id)) {
      for (const size_t offset : offsets.at(id)) {
        ASSERT_EQ(widened(index.findStructure(id, instance++)), offset) << "type " << type;
      }
    }
    ASSERT_EQ(index.findStructure(id, instance), std::nullopt) << "type " << type;
  }
}

void expectFoundByWalking(const tStructureTable& table,
                          const std::vector<tWalkedStructure>& walked) {
  std::map<uint8_t, uint32_t> counts;
  for (size_t i = 0; i < walked.size(); ++i) {
    const uint32_t instance = counts[walked[i].type]++;
    if (isSample(i, walked.size(), kComparedStructures)) {
      ASSERT_EQ(widened(table.findStructure(walked[i].type, instance)), walked[i].offset);
    }
  }
}

void expectEnumerated(const tStructureTable& table, const tOffsetsOfTypes& offsets) {
  size_t position = 0;
  for (const auto& [type, ofType] : offsets) {
    if (isSample(position++, offsets.size(), kComparedTypes)) {
      tStructuresOfType structures(table, type);
      for (const size_t offset : ofType) {
        ASSERT_EQ(widened(structures.next()), offset) << "type " << +type;
      }
      ASSERT_EQ(structures.next(), std::nullopt) << "type " << +type;
      ASSERT_EQ(structures.next(), std::nullopt) << "type " << +type;
      const auto count = static_cast<uint32_t>(ofType.size());
      ASSERT_EQ(table.findStructure(type, count), std::nullopt) << "type " << +type;
    }
  }
}

// Index, walk and enumeration find what the byte-by-byte walk finds.
void expectSameStructures(const std::vector<uint8_t>& bytes) {
  const std::vector<tWalkedStructure> walked = walkStructures(bytes);
  const tOffsetsOfTypes offsets = offsetsOfTypes(walked);
  const tStructureTable table(bytes);
  ASSERT_NO_FATAL_FAILURE(expectIndexed(table, offsets));
  ASSERT_NO_FATAL_FAILURE(expectFoundByWalking(table, walked));
  ASSERT_NO_FATAL_FAILURE(expectEnumerated(table, offsets));
}

// Arbitrary bytes, with NULs and short lengths frequent enough to form structures.
std::vector<uint8_t> arbitraryBytes(std::mt19937& random) {
  std::vector<uint8_t> bytes(random() % 200);
  const unsigned highest = random() % 2 == 0 ? 4 : 256;
  for (uint8_t& byte : bytes) {
    byte = static_cast<uint8_t>(random() % 3 == 0 ? 0 : random() % highest);
  }
  return bytes;
}

// Small tables one after another, until offsets exceed 16 bits.
template <class Make>
std::vector<uint8_t> largeTableOf(Make makeSmallTable, std::mt19937& random) {
  std::vector<uint8_t> large;
  const size_t size = 65536 + random() % 65536;
  while (large.size() < size) {
    const std::vector<uint8_t> small = makeSmallTable(random);
    large.insert(large.end(), small.begin(), small.end());
  }
  return large;
}

TEST(Index, OnThousandsOfRandomTables_AgreesWithTheWalk) {
  std::mt19937 random(1);
  for (int i = 0; i < 3000; ++i) {
    SCOPED_TRACE(i);
    ASSERT_NO_FATAL_FAILURE(expectSameStructures(randomTable(random)));
  }
}

TEST(Index, OnThousandsOfArbitraryByteSequences_AgreesWithTheWalk) {
  std::mt19937 random(2);
  for (int i = 0; i < 3000; ++i) {
    SCOPED_TRACE(i);
    ASSERT_NO_FATAL_FAILURE(expectSameStructures(arbitraryBytes(random)));
  }
}

TEST(Index, OnLargeRandomTables_AgreesWithTheWalk) {
  std::mt19937 random(4);
  for (int i = 0; i < 8; ++i) {
    SCOPED_TRACE(i);
    ASSERT_NO_FATAL_FAILURE(expectSameStructures(largeTableOf(&randomTable, random)));
    ASSERT_NO_FATAL_FAILURE(expectSameStructures(largeTableOf(&arbitraryBytes, random)));
  }
}

TEST(Index, WithoutATable_FindsNothing) {
  const tStructureIndex index;
  EXPECT_FALSE(index.isUsable());
  EXPECT_EQ(index.findStructure(0, 0), std::nullopt);
}

TEST(Index, Cleared_FindsNothing) {
  const std::vector<uint8_t> bytes{9, 4, 0, 0, 0, 0};
  tStructureIndex index;
  index.build(tStructureTable(bytes));
  ASSERT_EQ(index.findStructure(9, 0), 0u);
  index.clear();
  EXPECT_FALSE(index.isUsable());
  EXPECT_EQ(index.findStructure(9, 0), std::nullopt);
}

TEST(Index, Rebuilt_FindsOnlyTheSecondTable) {
  const std::vector<uint8_t> first{9, 4, 0, 0, 0, 0};
  const std::vector<uint8_t> second{8, 4, 0, 0, 0, 0};
  tStructureIndex index;
  index.build(tStructureTable(first));
  index.build(tStructureTable(second));
  EXPECT_EQ(index.findStructure(9, 0), std::nullopt);
  EXPECT_EQ(index.findStructure(8, 0), 0u);
}

// A table of the given size: one structure of type 1 whose string set fills it, and one of type 9
// on its last nine bytes whose byte at offset 4 is 42.
std::vector<uint8_t> tableOfSize(size_t size) {
  std::vector<uint8_t> table{1, 4, 0, 0};
  table.resize(size - 9, 'x');
  table.end()[-2] = 0;
  table.end()[-1] = 0;
  table.insert(table.end(), {9, 7, 0, 0, 42, 43, 44, 0, 0});
  return table;
}

// The same, filled with structures of six bytes, the smallest well-formed ones.
std::vector<uint8_t> crowdedTableOfSize(size_t size) {
  std::vector<uint8_t> table{2, 4, 0, 0};
  table.resize(table.size() + (size - 9) % 6, 'x');
  table.insert(table.end(), {0, 0});
  while (table.size() < size - 9) {
    table.insert(table.end(), {1, 4, 0, 0, 0, 0});
  }
  table.insert(table.end(), {9, 7, 0, 0, 42, 43, 44, 0, 0});
  return table;
}

class LargeTable : public testing::TestWithParam<size_t> {};

TEST_P(LargeTable, OfAnySize_IsIndexed) {
  for (const auto& bytes : {tableOfSize(GetParam()), crowdedTableOfSize(GetParam())}) {
    tStructureIndex index;
    index.build(tStructureTable(bytes));
    EXPECT_TRUE(index.isUsable());
  }
}

TEST_P(LargeTable, LastStructure_IsRead) {
  for (const auto& bytes : {tableOfSize(GetParam()), crowdedTableOfSize(GetParam())}) {
    tTestProvider provider(bytes);
    uint8_t value = 0;
    EXPECT_EQ(provider.readByte(byteField(9, 4), 0, &value), 0);
    EXPECT_EQ(value, 42);
    EXPECT_EQ(provider.readByte(byteField(9, 4), 1, &value), kFieldNotFound);
  }
}

TEST_P(LargeTable, EveryInstance_HasItsOwnOffset) {
  expectSameStructures(crowdedTableOfSize(GetParam()));
}

// Sizes around the largest 16-bit offset, and that of a table of 20000 memory devices.
INSTANTIATE_TEST_SUITE_P(Bytes, LargeTable,
                         testing::Values(1000, 65534, 65535, 65536, 65537, 70000, 131073, 320000));

TEST(Index, OfAllZeros_FindsAStructureInEveryTwoBytes) {
  const std::vector<uint8_t> bytes(200001);
  tStructureIndex index;
  index.build(tStructureTable(bytes));
  ASSERT_TRUE(index.isUsable());
  EXPECT_EQ(index.findStructure(0, 0), 0u);
  EXPECT_EQ(index.findStructure(0, 32768), 65536u);
  EXPECT_EQ(index.findStructure(0, 100000), 200000u);
  EXPECT_EQ(index.findStructure(0, 100001), std::nullopt);
}

}  // namespace
}  // namespace nTests
