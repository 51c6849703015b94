#include "tests/component/interceptedcalls.h"

#include <gtest/gtest.h>

#include <string>

#include "quenra_status.h"
#include "tests/component/protons/status/descriptiontext.h"
#include "zoapal/protons/cppnewdelete/memoryallocation.h"
#include "zoapal/protons/status/zoerrstatus.h"

namespace nTests {
namespace {

using nQUENRA1400::nZOAPAL000::allocateOrReport;
using nQUENRA1400::nZOAPAL000::allocateZeroedText;
using nZOAPALS100::tStatus;
using zoerr::tOwnedStatus;

TEST(ShortMemory, DefaultReallocate_FailsAndKeepsTheOldBuffer) {
  tOwnedStatus status;
  ASSERT_TRUE(status.set(-3, {"file", 1}));
  const char* const buffer = status.description;
  const std::string text = descriptionOf(status);
  {
    const tShortMemory shortMemory(1);
    EXPECT_FALSE(zoerr::defaultReallocate(status, 513));
  }
  EXPECT_EQ(status.description, buffer);
  EXPECT_EQ(status.capacity, 512u);
  EXPECT_EQ(descriptionOf(status), text);
}

TEST(ShortMemory, Set_StoresTheCodeAlone) {
  tOwnedStatus status;
  {
    const tShortMemory shortMemory(1);
    EXPECT_TRUE(status.set(-3, {"file", 1}));
  }
  EXPECT_EQ(status.code, -3);
  EXPECT_EQ(status.description, nullptr);
}

TEST(ShortMemory, SetWhileGrowing_LeavesWhatFits) {
  const std::string constant(600, 'c');
  tOwnedStatus status;
  {
    const tShortMemory shortMemory(2);
    EXPECT_TRUE(status.setWithConstant(-3, {"file", 1, "quenra", constant.c_str()}));
  }
  EXPECT_EQ(status.code, -3);
  EXPECT_EQ(descriptionOf(status), "{}");
}

TEST(ShortMemory, CopiedException_KeepsItsCodeAlone) {
  tOwnedStatus status;
  ASSERT_TRUE(status.set(-3, {"file", 1}));
  const zoerr::Exception exception(status);
  const tShortMemory shortMemory(1);
  const zoerr::Exception copy(exception);
  EXPECT_EQ(copy.status().code, -3);
  EXPECT_EQ(copy.status().description, nullptr);
}

TEST(ShortMemory, MergeFrom_FailsAndKeepsTheCode) {
  tStatus failure;
  mergeStatus(failure, -3, {"file", 1});
  tOwnedStatus status;
  {
    const tShortMemory shortMemory(1);
    EXPECT_FALSE(status.mergeFrom(failure));
  }
  EXPECT_EQ(status.code, -3);
  EXPECT_EQ(status.description, nullptr);
}

TEST(ShortMemory, AllocateOrReport_ReportsMemoryFullWithItsLocation) {
  tStatus status;
  {
    const tShortMemory shortMemory(1);
    EXPECT_EQ(allocateOrReport(100, status), nullptr);
  }
  EXPECT_EQ(status.code, QUENRA_STATUS_MEMORY_FULL);
  EXPECT_STREQ(status.component, "quenra");
  EXPECT_STREQ(status.file, "memoryallocation");
  EXPECT_EQ(status.line, 327u);
}

TEST(ShortMemory, AllocateZeroedText_IsNull) {
  const tShortMemory shortMemory(1);
  EXPECT_EQ(allocateZeroedText(100), nullptr);
}

}  // namespace
}  // namespace nTests
