// The work of finding memory modules in a large table, in bytes scanned: time would depend on the
// machine. The session lock is held meanwhile.
#include "tests/builders/smbiostablebuilder.h"
#include "tests/component/interceptedcalls.h"
#include "tests/component/user/readingtest.h"

namespace nTests {
namespace {

constexpr uint16_t kDevices = 20000;

// A memory array and its devices, 320 KB. Every fourth socket is empty.
std::vector<uint8_t> tableOfDevices() {
  tSmbiosTableBuilder builder;
  const tSmbiosStructure array = tSmbiosStructure(0x10, 0x17).word(0x0D, kDevices);
  builder.structure(array.type(), array.body());
  for (unsigned i = 0; i < kDevices; ++i) {
    const tSmbiosStructure device =
        tSmbiosStructure(0x11, 0x0E).word(0x0C, i % 4 == 3 ? 0 : 0x2000);
    builder.structure(device.type(), device.body());
  }
  return builder.build();
}

class MemoryModulesOfALargeTable : public testing::Test {
 protected:
  // Finds the modules, and checks them and the work.
  void expectFoundInTwoPasses() {
    zoerr::tOwnedStatus status;
    nQUENRA1400::tMemoryModules modules;
    const tScannedBytes scanned;
    modules.find(provider, status);
    // One pass for the array, one for the devices.
    EXPECT_LE(scanned.count(), 2 * bytes.size());
    EXPECT_EQ(status.code, 0);
    EXPECT_EQ(modules.count(), kDevices / 4 * 3);
    EXPECT_EQ(modules.instanceOf(3, status), 4u);
    EXPECT_EQ(modules.instanceOf(modules.count() - 1, status), kDevices - 2u);
  }

  const std::vector<uint8_t> bytes = tableOfDevices();
  tInstalledProvider provider;
};

TEST_F(MemoryModulesOfALargeTable, WithTheIndex_AreFoundInTwoPasses) {
  nZOAPALS100::tStatus installing;
  provider.install(bytes, {}, installing);
  ASSERT_EQ(installing.code, 0);
  expectFoundInTwoPasses();
}

TEST_F(MemoryModulesOfALargeTable, WithoutMemoryForTheIndex_AreFoundInTwoPasses) {
  {
    const tShortMemory shortMemory(2);
    nZOAPALS100::tStatus installing;
    provider.install(bytes, {}, installing);
    ASSERT_EQ(installing.code, 0);
    ASSERT_TRUE(shortMemory.wasMet());
  }
  expectFoundInTwoPasses();
}

}  // namespace
}  // namespace nTests
