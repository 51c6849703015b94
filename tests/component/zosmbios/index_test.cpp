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
#include "zosmbios/tstructureindex.h"
#include "zosmbios/tstructuretable.h"

namespace nTests {
namespace {

using namespace nQUENRA1400::nZOSMBIOS_1_1;

std::optional<size_t> widened(std::optional<tStructureOffset> offset) {
  return offset ? std::optional<size_t>(*offset) : std::nullopt;
}

// Index and plain walk both give the answers of the slow walk, for every type and instance and one
// instance more.
void expectSameStructures(const std::vector<uint8_t>& bytes) {
  const std::vector<tWalkedStructure> walked = walkStructures(bytes);
  const tStructureTable table(bytes);
  tStructureIndex index;
  index.build(table);
  ASSERT_TRUE(index.isUsable());
  std::map<uint8_t, uint32_t> counts;
  for (const tWalkedStructure& structure : walked) {
    const uint32_t instance = counts[structure.type]++;
    ASSERT_EQ(widened(index.findStructure(structure.type, instance)), structure.offset);
    ASSERT_EQ(widened(table.findStructure(structure.type, instance)), structure.offset);
  }
  for (unsigned type = 0; type < 256; ++type) {
    const auto id = static_cast<uint8_t>(type);
    const uint32_t count = counts.contains(id) ? counts[id] : 0;
    ASSERT_EQ(index.findStructure(id, count), std::nullopt) << "type " << type;
    ASSERT_EQ(table.findStructure(id, count), std::nullopt) << "type " << type;
  }
}

// Bytes without any order, NULs and short lengths frequent enough to make structures of them.
std::vector<uint8_t> arbitraryBytes(std::mt19937& random) {
  std::vector<uint8_t> bytes(random() % 200);
  const unsigned highest = random() % 2 == 0 ? 4 : 256;
  for (uint8_t& byte : bytes) {
    byte = static_cast<uint8_t>(random() % 3 == 0 ? 0 : random() % highest);
  }
  return bytes;
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

TEST(Index, BuiltAnew_ForgetsTheFirstTable) {
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

// The same full of structures of six bytes, so that counts and offsets become as large as they can.
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

struct tLargeTable {
  size_t size;
  bool indexed;
};

std::ostream& operator<<(std::ostream& out, const tLargeTable& table) {
  return out << table.size << " bytes";
}

class LargeTable : public testing::TestWithParam<tLargeTable> {};

TEST_P(LargeTable, IsIndexedAsFarAsOffsetsReach) {
  const std::vector<uint8_t> bytes = tableOfSize(GetParam().size);
  tStructureIndex index;
  index.build(tStructureTable(bytes));
  EXPECT_EQ(index.isUsable(), GetParam().indexed);
}

TEST_P(LargeTable, IsReadToItsEnd) {
  for (const auto& bytes : {tableOfSize(GetParam().size), crowdedTableOfSize(GetParam().size)}) {
    tTestProvider provider(bytes);
    uint8_t value = 0;
    EXPECT_EQ(provider.readByte(byteField(9, 4), 0, &value), 0);
    EXPECT_EQ(value, 42);
    EXPECT_EQ(provider.readByte(byteField(9, 4), 1, &value), -240052);
  }
}

TEST_P(LargeTable, KeepsEveryInstanceApart) {
  const std::vector<uint8_t> bytes = crowdedTableOfSize(GetParam().size);
  const tTestProvider provider(bytes);
  const std::vector<tWalkedStructure> walked = walkStructures(bytes);
  for (const uint32_t instance : {0u, 1u, 5000u, 10918u, 10919u, 10920u, 10921u, 65536u}) {
    nZOAPALS100::tStatus status;
    tStructureOffset found = 0;
    provider.findStructure(1, instance, &found, status);
    const auto expected = walkedStructure(walked, 1, instance);
    EXPECT_EQ(status.code, expected ? 0 : -240052) << instance;
    EXPECT_EQ(found, expected.value_or(0)) << instance;
  }
}

INSTANTIATE_TEST_SUITE_P(Bytes, LargeTable,
                         testing::Values(tLargeTable{1000, true}, tLargeTable{65534, true},
                                         tLargeTable{65535, true}, tLargeTable{65536, false},
                                         tLargeTable{70000, false}));

TEST(Index, AllZeros_IsAStructureInEveryTwoBytes) {
  const std::vector<uint8_t> bytes(65535);
  tStructureIndex index;
  index.build(tStructureTable(bytes));
  ASSERT_TRUE(index.isUsable());
  EXPECT_EQ(index.findStructure(0, 0), 0u);
  EXPECT_EQ(index.findStructure(0, 32767), 65534u);
  EXPECT_EQ(index.findStructure(0, 32768), std::nullopt);
}

}  // namespace
}  // namespace nTests
