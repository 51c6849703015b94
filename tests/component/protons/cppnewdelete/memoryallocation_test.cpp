#include <gtest/gtest.h>

#include <algorithm>
#include <cstdint>
#include <cstring>

#include "quenra_status.h"
#include "zoapal/protons/cppnewdelete/memoryallocation.h"

namespace nTests {
namespace {

using nQUENRA1400::nZOAPAL000::allocateBytes;
using nQUENRA1400::nZOAPAL000::allocateOrReport;
using nQUENRA1400::nZOAPAL000::allocateZeroedBytes;
using nQUENRA1400::nZOAPAL000::allocateZeroedText;
using nQUENRA1400::nZOAPAL000::tFree;
using nZOAPALS100::mergeStatus;
using nZOAPALS100::tStatus;

using tMemory = std::unique_ptr<void, tFree>;

TEST(AllocateOrReport, SomeBytes_AreTheCallersToUse) {
  tStatus status;
  const tMemory memory(allocateOrReport(100, status));
  ASSERT_NE(memory, nullptr);
  std::memset(memory.get(), 1, 100);
  EXPECT_EQ(status.code, QUENRA_STATUS_SUCCESS);
}

TEST(AllocateOrReport, NoBytes_IsNotAFailure) {
  tStatus status;
  const tMemory memory(allocateOrReport(0, status));
  EXPECT_NE(memory, nullptr);
  EXPECT_EQ(status.code, QUENRA_STATUS_SUCCESS);
}

TEST(AllocateOrReport, ImpossibleSize_ReportsMemoryFullWithItsLocation) {
  tStatus status;
  EXPECT_EQ(allocateOrReport(SIZE_MAX, status), nullptr);
  EXPECT_EQ(status.code, QUENRA_STATUS_MEMORY_FULL);
  EXPECT_STREQ(status.component, "quenra");
  EXPECT_STREQ(status.file, "memoryallocation");
  EXPECT_EQ(status.line, 327u);
}

TEST(AllocateOrReport, StatusHoldsAnError_AllocatesNothing) {
  tStatus status;
  mergeStatus(status, -3, {"first file", 1, "first"});
  EXPECT_EQ(allocateOrReport(100, status), nullptr);
  EXPECT_EQ(status.code, -3);
  EXPECT_STREQ(status.file, "first file");
}

TEST(AllocateOrReport, StatusHoldsAWarning_Allocates) {
  tStatus status;
  mergeStatus(status, 5, {"first file", 1, "first"});
  const tMemory memory(allocateOrReport(100, status));
  EXPECT_NE(memory, nullptr);
  EXPECT_EQ(status.code, 5);
}

TEST(AllocateOrReport, FailureOnAWarning_ReplacesIt) {
  tStatus status;
  mergeStatus(status, 5, {"first file", 1, "first"});
  EXPECT_EQ(allocateOrReport(SIZE_MAX, status), nullptr);
  EXPECT_EQ(status.code, QUENRA_STATUS_MEMORY_FULL);
}

TEST(AllocateBytes, Buffer_ReportsAndOwns) {
  tStatus status;
  const auto buffer = allocateBytes(3, status);
  ASSERT_NE(buffer, nullptr);
  std::fill_n(buffer.get(), 3, uint8_t{1});
  EXPECT_EQ(allocateBytes(SIZE_MAX, status), nullptr);
  EXPECT_EQ(status.code, QUENRA_STATUS_MEMORY_FULL);
}

TEST(AllocateZeroedBytes, Buffer_IsZeroAndOwned) {
  tStatus status;
  const auto buffer = allocateZeroedBytes(100, status);
  ASSERT_NE(buffer, nullptr);
  EXPECT_TRUE(
      std::all_of(buffer.get(), buffer.get() + 100, [](uint8_t byte) { return byte == 0; }));
  EXPECT_NE(allocateZeroedBytes(0, status), nullptr);
  EXPECT_EQ(status.code, QUENRA_STATUS_SUCCESS);
}

TEST(AllocateZeroedBytes, ImpossibleSize_ReportsMemoryFull) {
  tStatus status;
  EXPECT_EQ(allocateZeroedBytes(SIZE_MAX, status), nullptr);
  EXPECT_EQ(status.code, QUENRA_STATUS_MEMORY_FULL);
  EXPECT_EQ(status.line, 327u);
}

TEST(AllocateZeroedBytes, OnAnError_IsNull) {
  tStatus status;
  mergeStatus(status, -5, {"first file", 1, "first"});
  EXPECT_EQ(allocateZeroedBytes(1, status), nullptr);
  EXPECT_EQ(status.code, -5);
}

TEST(AllocateZeroedText, Characters_AreZero) {
  const auto text = allocateZeroedText(100);
  ASSERT_NE(text, nullptr);
  EXPECT_TRUE(std::all_of(text.get(), text.get() + 100, [](char c) { return c == '\0'; }));
}

TEST(AllocateZeroedText, NoCharacters_StillHoldsANul) {
  const auto text = allocateZeroedText(0);
  ASSERT_NE(text, nullptr);
  EXPECT_EQ(text[0], '\0');
}

TEST(AllocateZeroedText, ImpossibleSize_IsNull) {
  EXPECT_EQ(allocateZeroedText(UINT64_MAX), nullptr);
}

}  // namespace
}  // namespace nTests
