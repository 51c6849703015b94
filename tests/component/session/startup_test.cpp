// The library when its lock could not be made while it was loaded. A program of its own, because
// that happens once in a process.
#include <gtest/gtest.h>

#include "quenra.h"
#include "tests/fakewindows/fakewindowstest.h"

namespace nTests {
namespace {

using nFakeWindows::faultPlan;
using nFakeWindows::tCall;

// Runs before the library's own initialisation, whose priority is the default one.
[[gnu::constructor(101)]] void refuseTheFirstLock() {
  faultPlan().failCall(tCall::initializeCriticalSectionEx, 1, 8 /* ERROR_NOT_ENOUGH_MEMORY */);
}

TEST(FailedStart, IsWhatOpeningReports) {
  uint64_t handle = 17;
  EXPECT_EQ(QUENRA_openController(&handle), QUENRA_STATUS_MEMORY_FULL);
  EXPECT_EQ(handle, 17u);
  EXPECT_EQ(QUENRA_openController(nullptr), QUENRA_STATUS_INVALID_PARAMETER);
}

TEST(FailedStart, IsWhatReadsReportForTheRightHandle) {
  uint32_t value = 17;
  EXPECT_EQ(QUENRA_getAttributeU32(QUENRA_HANDLE, 0x20000600, &value), QUENRA_STATUS_MEMORY_FULL);
  EXPECT_EQ(value, 17u);
  EXPECT_EQ(QUENRA_getAttributeU32(1, 0x20000600, &value), QUENRA_STATUS_INVALID_HANDLE);
  int32_t number = 0;
  EXPECT_EQ(QUENRA_getAttributeI32(QUENRA_HANDLE, 0, &number), QUENRA_STATUS_MEMORY_FULL);
  double floating = 0;
  EXPECT_EQ(QUENRA_getAttributeDBL(QUENRA_HANDLE, 0, &floating), QUENRA_STATUS_MEMORY_FULL);
  uint64_t size = 0;
  EXPECT_EQ(QUENRA_getAttributeUTF8(QUENRA_HANDLE, 0x10000100, nullptr, &size),
            QUENRA_STATUS_MEMORY_FULL);
  EXPECT_EQ(QUENRA_performSelfTest(QUENRA_HANDLE), QUENRA_STATUS_MEMORY_FULL);
  EXPECT_EQ(QUENRA_setAttributeU32(QUENRA_HANDLE, 0x20000600, 1), QUENRA_STATUS_MEMORY_FULL);
}

TEST(FailedStart, IsNoControllerForWritingAText) {
  EXPECT_EQ(QUENRA_setAttributeUTF8(QUENRA_HANDLE, 0x10000100, "abc"), QUENRA_STATUS_NO_CONTROLLER);
  EXPECT_EQ(QUENRA_setAttributeUTF8(1, 0x10000100, "abc"), QUENRA_STATUS_INVALID_HANDLE);
}

TEST(FailedStart, LeavesTheDevicePathReadable) {
  char path[256];
  uint64_t size = sizeof path;
  EXPECT_EQ(QUENRA_getAttributeUTF8(0, QUENRA_ATTRIBUTE_DEVICE_PATH, path, &size), 0);
}

TEST(FailedStart, LetsClosingDoNothing) {
  // The fake Windows would stop at a lock that was never made.
  QUENRA_closeController(QUENRA_HANDLE);
  EXPECT_EQ(nFakeWindows::criticalSections(), 0);
}

}  // namespace
}  // namespace nTests
