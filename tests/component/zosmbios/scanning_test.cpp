// The work that readers of a large table cost, in bytes scanned: time would depend on the machine.
#include <gtest/gtest.h>

#include <string_view>
#include <vector>

#include "tests/builders/smbiostablebuilder.h"
#include "tests/component/interceptedcalls.h"
#include "tests/component/zosmbios/ttestprovider.h"
#include "zosmbios/fieldid.h"
#include "zosmbios/tstructuretable.h"

namespace nTests {
namespace {

using namespace nQUENRA1400::nZOSMBIOS_1_1;
using nZOAPALS100::tStatus;

constexpr uint32_t kDevices = 20000;
constexpr uint8_t kDevice = 17;

// Twenty thousand structures of 16 bytes: no 16-bit offset reaches most of them.
std::vector<uint8_t> makeTableOfDevices() {
  tSmbiosTableBuilder builder;
  for (uint32_t i = 0; i < kDevices; ++i) {
    builder.structure(kDevice, {static_cast<uint8_t>(i), static_cast<uint8_t>(i >> 8), 0, 0, 0, 0},
                      {"abc"});
  }
  return builder.build();
}

const std::vector<uint8_t>& tableOfDevices() {
  static const std::vector<uint8_t> table = makeTableOfDevices();
  return table;
}

TEST(Scanning, BuildOfTheIndex_PassesThroughTheTableTwice) {
  const std::vector<uint8_t>& bytes = tableOfDevices();
  tStructureIndex index;
  const tScannedBytes scanned;
  index.build(tStructureTable(bytes));
  EXPECT_LE(scanned.count(), 2 * bytes.size());
  EXPECT_GE(scanned.count(), kDevices) << "the count misses the walk";
}

TEST(Scanning, ReadsOfEveryInstance_ScanNothing) {
  tTestProvider provider(tableOfDevices());
  const tScannedBytes scanned;
  for (uint32_t i = 0; i < kDevices; ++i) {
    uint16_t value = 0;
    ASSERT_EQ(provider.readWord(wordField(kDevice, 4), i, &value), 0);
    ASSERT_EQ(value, i);
  }
  uint16_t value = 0;
  EXPECT_EQ(provider.readWord(wordField(kDevice, 4), kDevices, &value), kFieldNotFound);
  EXPECT_EQ(provider.readWord(wordField(kDevice + 1, 4), 0, &value), kFieldNotFound);
  EXPECT_EQ(scanned.count(), 0u);
}

TEST(Scanning, Enumeration_PassesThroughTheTableOnce) {
  const std::vector<uint8_t>& bytes = tableOfDevices();
  const tScannedBytes scanned;
  tStructuresOfType devices(tStructureTable(bytes), kDevice);
  uint32_t count = 0;
  while (devices.next()) {
    ++count;
  }
  EXPECT_EQ(count, kDevices);
  EXPECT_LE(scanned.count(), bytes.size());
}

// Without memory for the index.
TEST(Scanning, EnumerationWithoutTheIndex_ReadsEveryInstanceInOnePass) {
  const std::vector<uint8_t>& bytes = tableOfDevices();
  tTestProvider provider;
  {
    const tShortMemory shortMemory(2);
    tStatus status;
    provider.install(bytes, std::string_view("3.4"), status);
    ASSERT_EQ(status.code, 0);
    ASSERT_TRUE(shortMemory.wasMet());
  }
  const tScannedBytes scanned;
  tStructuresOfType devices(provider.table(), kDevice);
  uint16_t value = 0;
  for (uint32_t i = 0; i < kDevices; ++i) {
    ASSERT_EQ(provider.readNextWord(devices, wordField(kDevice, 4), value), 0);
    ASSERT_EQ(value, i);
  }
  EXPECT_EQ(provider.readNextWord(devices, wordField(kDevice, 4), value), kFieldNotFound);
  EXPECT_LE(scanned.count(), bytes.size());
  EXPECT_GE(scanned.count(), kDevices) << "the index was used";
}

}  // namespace
}  // namespace nTests
