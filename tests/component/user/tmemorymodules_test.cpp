#include "tests/component/user/readingtest.h"

namespace nTests {
namespace {

class MemoryModules : public ReadingTest {
 protected:
  tFailure find(const tReferenceTable& table) {
    const std::vector<uint8_t> bytes = table.build();
    nZOAPALS100::tStatus installing;
    provider.install(bytes, {}, installing);
    modules = nQUENRA1400::tMemoryModules();
    zoerr::tOwnedStatus status;
    modules.find(provider, status);
    return failureOf(status);
  }
};

TEST_F(MemoryModules, PopulatedDevices_AreListedInTableOrder) {
  EXPECT_EQ(find(tReferenceTable()), (tFailure{0, 0}));
  EXPECT_EQ(modules.count(), 2u);
  zoerr::tOwnedStatus status;
  EXPECT_EQ(modules.instanceOf(0, status), 0u);
  EXPECT_EQ(modules.instanceOf(1, status), 2u);
  EXPECT_EQ(status.code, 0);
}

TEST_F(MemoryModules, IndexBeyondTheCount_FailsWithNotSupported) {
  zoerr::tOwnedStatus status;
  EXPECT_EQ(modules.instanceOf(2, status), 0u);
  EXPECT_EQ(status.code, QUENRA_STATUS_NOT_SUPPORTED);
  EXPECT_EQ(lineOf(status), 2534u);
}

TEST_F(MemoryModules, WithoutAnArray_FailWithNotSupported) {
  EXPECT_EQ(find(tReferenceTable().remove(0x10)), (tFailure{QUENRA_STATUS_NOT_SUPPORTED, 2569}));
}

TEST_F(MemoryModules, FewerDevicesThanTheCount_FailWithNotSupportedAndNoModules) {
  tReferenceTable table;
  table.structure(0x10).word(0x0D, 5);
  EXPECT_EQ(find(table), (tFailure{QUENRA_STATUS_NOT_SUPPORTED, 2569}));
  EXPECT_EQ(modules.count(), 0u);
}

TEST_F(MemoryModules, MalformedSize_IsSkipped) {
  tReferenceTable table;
  table.remove(0x11).structure(0x10).word(0x0D, 1);
  std::vector<uint8_t> bytes = table.build();
  bytes.insert(bytes.end(), {0x11, 0x28, 0x00, 0x00});
  nZOAPALS100::tStatus installing;
  provider.install(bytes, {}, installing);
  nQUENRA1400::tMemoryModules found;
  zoerr::tOwnedStatus status;
  found.find(provider, status);
  EXPECT_EQ(status.code, 0);
  EXPECT_EQ(found.count(), 0u);
}

TEST_F(MemoryModules, StatusWithAnError_DoesNothing) {
  nQUENRA1400::tMemoryModules none;
  zoerr::tOwnedStatus status;
  status.code = -1;
  none.find(provider, status);
  EXPECT_EQ(none.count(), 0u);
}

}  // namespace
}  // namespace nTests
