#include <tuple>

#include "tests/contract/contracttest.h"

namespace nTests {
namespace {

using tRead = int32_t (*)(uint64_t handle);

int32_t readTextOn(uint64_t handle) {
  char buffer[16] = "untouched";
  uint64_t size = sizeof buffer;
  const int32_t code =
      QUENRA_getAttributeUTF8(handle, QUENRA_ATTRIBUTE_PRODUCT_NAME, buffer, &size);
  EXPECT_STREQ(buffer, "untouched");
  EXPECT_EQ(size, sizeof buffer);
  return code;
}
int32_t readUnsignedOn(uint64_t handle) {
  uint32_t value = kUntouchedValue;
  const int32_t code = QUENRA_getAttributeU32(handle, QUENRA_ATTRIBUTE_MEMORY_MODULE_COUNT, &value);
  EXPECT_EQ(value, kUntouchedValue);
  return code;
}
int32_t readSignedOn(uint64_t handle) {
  int32_t value = -5;
  const int32_t code = QUENRA_getAttributeI32(handle, QUENRA_ATTRIBUTE_MEMORY_MODULE_COUNT, &value);
  EXPECT_EQ(value, -5);
  return code;
}
int32_t readFloatingOn(uint64_t handle) {
  double value = -5.5;
  const int32_t code = QUENRA_getAttributeDBL(handle, QUENRA_ATTRIBUTE_MEMORY_MODULE_COUNT, &value);
  EXPECT_EQ(value, -5.5);
  return code;
}

class BadHandle : public ContractTest,
                  public testing::WithParamInterface<std::tuple<tRead, uint64_t>> {};

TEST_P(BadHandle, FailsWithInvalidHandleAndTouchesNothing) {
  const auto [read, handle] = GetParam();
  EXPECT_EQ(read(handle), QUENRA_STATUS_INVALID_HANDLE) << "with no controller open";
  if (handle != QUENRA_HANDLE) {
    open();
    EXPECT_EQ(read(handle), QUENRA_STATUS_INVALID_HANDLE) << "with the controller open";
  }
}
INSTANTIATE_TEST_SUITE_P(Reads, BadHandle,
                         testing::Combine(testing::Values(&readTextOn, &readUnsignedOn,
                                                          &readSignedOn, &readFloatingOn),
                                          testing::Values(0u, 1u, 0x514E5240u, 0x1514E5241u,
                                                          ~uint64_t{0}, QUENRA_HANDLE)));

class WithoutSuchAttributes : public ContractTest, public testing::WithParamInterface<uint32_t> {};

TEST_P(WithoutSuchAttributes, SignedAndFloatingReadsAreNotSupported) {
  open();
  int32_t number = -5;
  EXPECT_EQ(QUENRA_getAttributeI32(QUENRA_HANDLE, GetParam(), &number),
            QUENRA_STATUS_NOT_SUPPORTED);
  EXPECT_EQ(number, -5);
  EXPECT_EQ(QUENRA_getAttributeI32(QUENRA_HANDLE, GetParam(), nullptr),
            QUENRA_STATUS_NOT_SUPPORTED);
  double floating = -5.5;
  EXPECT_EQ(QUENRA_getAttributeDBL(QUENRA_HANDLE, GetParam(), &floating),
            QUENRA_STATUS_NOT_SUPPORTED);
  EXPECT_EQ(floating, -5.5);
}
INSTANTIATE_TEST_SUITE_P(Ids, WithoutSuchAttributes,
                         testing::Values(0u, QUENRA_ATTRIBUTE_MEMORY_TYPE,
                                         QUENRA_ATTRIBUTE_PRODUCT_NAME, 0x30000000u, ~0u));

}  // namespace
}  // namespace nTests
