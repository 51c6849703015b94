#include "simulator/control/tableedit.h"

#include <gtest/gtest.h>

namespace nTests {
namespace {

using nSimulator::changeStructureByte;
using nSimulator::removeStructures;
using tBytes = std::vector<uint8_t>;

// Two structures of six bytes, the first with a string, and the end mark.
const tBytes kTable{0x9D, 6, 1, 0, 10, 11, 'a', 0, 0,  //
                    0x9E, 6, 2, 0, 20, 21, 0,   0,     //
                    0x9D, 6, 3, 0, 30, 31, 0,   0,     //
                    0x7F, 4, 4, 0, 0,  0};

TEST(TableEdit, ChangesAByteOfTheFirstStructureOfAType) {
  tBytes table = kTable;
  EXPECT_TRUE(changeStructureByte(table, 0x9D, 5, 99));
  tBytes expected = kTable;
  expected[5] = 99;
  EXPECT_EQ(table, expected);
  EXPECT_TRUE(changeStructureByte(table, 0x9E, 4, 98));
  expected[13] = 98;
  EXPECT_EQ(table, expected);
}

TEST(TableEdit, ChangesNothingOutsideTheFormattedArea) {
  for (const uint8_t offset : {uint8_t{0}, uint8_t{3}, uint8_t{6}, uint8_t{255}}) {
    tBytes table = kTable;
    EXPECT_FALSE(changeStructureByte(table, 0x9D, offset, 99));
    EXPECT_EQ(table, kTable);
  }
}

TEST(TableEdit, MissesAStructureThatIsNotThere) {
  tBytes table = kTable;
  EXPECT_FALSE(changeStructureByte(table, 0x9F, 4, 99));
  EXPECT_FALSE(removeStructures(table, 0x9F));
  EXPECT_EQ(table, kTable);
}

TEST(TableEdit, RemovesAllStructuresOfAType) {
  tBytes table = kTable;
  EXPECT_TRUE(removeStructures(table, 0x9D));
  EXPECT_EQ(table, (tBytes{0x9E, 6, 2, 0, 20, 21, 0, 0, 0x7F, 4, 4, 0, 0, 0}));
}

TEST(TableEdit, StopsWhereATableIsMalformed) {
  for (size_t size = 0; size < 9; ++size) {
    tBytes cut(kTable.begin(), kTable.begin() + static_cast<ptrdiff_t>(size));
    EXPECT_FALSE(changeStructureByte(cut, 0x9D, 4, 99)) << size;
    EXPECT_FALSE(removeStructures(cut, 0x9D)) << size;
  }
  tBytes shortHeader{0x9D, 3, 0, 0, 0, 0};
  EXPECT_FALSE(changeStructureByte(shortHeader, 0x9D, 4, 99));
}

}  // namespace
}  // namespace nTests
