#include "tests/component/interceptedcalls.h"

#include <gtest/gtest.h>
#include <sys/mman.h>
#include <unistd.h>

#include <cstring>
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

// ---- A client's buffer of more than a gibibyte ----

// The client supplies a buffer of a gibibyte and a page, full of text after an empty object, and refuses
// further requests. The gibibyte consists of views of one block, so it takes the memory of the block only.
class HugeDescription : public testing::Test {
 protected:
  static constexpr uint32_t kGibibyte = 1u << 30;
  static constexpr uint32_t kPage = 1u << 12;
  static constexpr uint32_t kCapacity = kGibibyte + kPage;

  void SetUp() override {
    requests = 0;
    void* const memory = mmap(nullptr, kCapacity, PROT_READ | PROT_WRITE,
                              MAP_PRIVATE | MAP_ANONYMOUS | MAP_NORESERVE, -1, 0);
    ASSERT_NE(memory, MAP_FAILED);
    buffer = static_cast<char*>(memory);
    ASSERT_NO_FATAL_FAILURE(mapBlocks());
    std::memset(buffer, 'x', kBlock);
    std::memcpy(buffer, "{}", 2);
    std::memset(buffer + kGibibyte, 'x', kPage);
    std::memcpy(buffer + kCapacity - 2, "\0J", 2);
  }
  void TearDown() override { munmap(buffer, kCapacity); }

  static bool supplyOnce(zoerr::Status& status, uint32_t) {
    if (++requests > 1) {
      return false;
    }
    status.description = buffer;
    status.capacity = kCapacity;
    return true;
  }

  static inline int requests = 0;

 private:
  static constexpr uint32_t kBlock = 1u << 24;

  static void mapBlocks() {
    const int block = memfd_create("text", 0);
    ASSERT_EQ(ftruncate(block, kBlock), 0);
    for (uint32_t at = 0; at < kGibibyte; at += kBlock) {
      ASSERT_NE(mmap(buffer + at, kBlock, PROT_READ | PROT_WRITE, MAP_SHARED | MAP_FIXED, block, 0),
                MAP_FAILED);
    }
    close(block);
  }

  static inline char* buffer = nullptr;
};

TEST_F(HugeDescription, WithoutFreeSpace_IsNotDoubled) {
  zoerr::Status status;
  status.reallocate = &HugeDescription::supplyOnce;
  EXPECT_TRUE(status.set(-3, {"file", 1}));
  EXPECT_EQ(status.code, -3);
  EXPECT_EQ(status.capacity, kCapacity);
  EXPECT_EQ(requests, 1);
}

}  // namespace
}  // namespace nTests
