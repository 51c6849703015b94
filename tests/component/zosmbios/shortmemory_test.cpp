#include <gtest/gtest.h>

#include <string_view>
#include <vector>

#include "tests/builders/smbiostablebuilder.h"
#include "tests/component/protons/status/shortmemory.h"
#include "tests/component/zosmbios/ttestprovider.h"
#include "zosmbios/fieldid.h"
#include "zosmbios/tstructuretable.h"

namespace nTests {
namespace {

using namespace nQUENRA1400::nZOSMBIOS_1_1;
using nZOAPALS100::tStatus;

std::vector<uint8_t> tableWith(uint8_t value) {
  return tSmbiosTableBuilder().structure(8, {1}).structure(9, {value}).build();
}

void expectByte(tTestProvider& provider, uint8_t expected) {
  uint8_t value = 0;
  EXPECT_EQ(provider.readByte(byteField(9, 4), 0, &value), 0);
  EXPECT_EQ(value, expected);
}

// Installs while the nth allocation fails, and checks that there was one.
void installShortOfMemory(tTestProvider& provider, uint8_t value, unsigned nth, tStatus& status) {
  const std::vector<uint8_t> table = tableWith(value);
  const tShortMemory shortMemory(nth);
  provider.install(table, std::string_view("2.0"), status);
  EXPECT_TRUE(shortMemory.wasMet());
}

TEST(ShortMemory, NoneForTheTable_KeepsTheOldOne) {
  tTestProvider provider(tableWith(42), "3.4");
  tStatus status;
  installShortOfMemory(provider, 43, 1, status);
  EXPECT_EQ(status.code, -52000);
  EXPECT_STREQ(status.file, "memoryallocation");
  EXPECT_EQ(status.line, 327u);
  expectByte(provider, 42);
  EXPECT_STREQ(provider.versionText(), "3.4");
}

TEST(ShortMemory, NoneForTheFirstTable_LeavesNone) {
  tTestProvider provider;
  tStatus status;
  installShortOfMemory(provider, 43, 1, status);
  EXPECT_EQ(status.code, -52000);
  EXPECT_FALSE(provider.hasTable());
}

TEST(ShortMemory, IndexWithoutMemory_FindsNothing) {
  const std::vector<uint8_t> table = tableWith(42);
  tStructureIndex index;
  {
    const tShortMemory shortMemory(1);
    index.build(tStructureTable(table));
    EXPECT_TRUE(shortMemory.wasMet());
  }
  EXPECT_FALSE(index.isUsable());
  EXPECT_EQ(index.findStructure(9, 0), std::nullopt);
}

TEST(ShortMemory, NoneForTheIndex_LetsTheWalkAnswer) {
  tTestProvider provider(tableWith(42), "3.4");
  tStatus status;
  installShortOfMemory(provider, 43, 2, status);
  EXPECT_EQ(status.code, 0);
  expectByte(provider, 43);
  EXPECT_STREQ(provider.versionText(), "2.0");
}

}  // namespace
}  // namespace nTests
