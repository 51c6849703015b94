#include "tests/contract/contracttest.h"

namespace nTests {
namespace {

class DevicePath : public ContractTest {
 protected:
  static std::string path() { return readText(QUENRA_ATTRIBUTE_DEVICE_PATH, 256).text; }
};

TEST_F(DevicePath, WithoutAnOpenController_IsRead) {
  const tTextRead read = readText(QUENRA_ATTRIBUTE_DEVICE_PATH, 256);
  EXPECT_EQ(read.code, 0);
  EXPECT_EQ(read.size, 256u);
  EXPECT_EQ(read.text.substr(0, 4), "\\\\?\\");
  EXPECT_THAT(read.text, testing::HasSubstr("{23c0848a-7cf1-4be5-8a27-b34818445cc4}"));
}

TEST_F(DevicePath, WithAnyHandle_IsRead) {
  for (const uint64_t handle : {uint64_t{0}, QUENRA_HANDLE, ~uint64_t{0}}) {
    char buffer[256] = "";
    uint64_t size = sizeof buffer;
    EXPECT_EQ(QUENRA_getAttributeUTF8(handle, QUENRA_ATTRIBUTE_DEVICE_PATH, buffer, &size), 0);
    EXPECT_EQ(buffer, path());
  }
}

TEST_F(DevicePath, InABufferThatJustFits_IsRead) {
  const uint64_t needed = path().size() + 1;
  EXPECT_EQ(readText(QUENRA_ATTRIBUTE_DEVICE_PATH, needed), (tTextRead{0, path(), needed}));
}

TEST_F(DevicePath, InABufferOneByteTooSmall_ReportsTheSizeNeeded) {
  const uint64_t needed = path().size() + 1;
  EXPECT_EQ(readText(QUENRA_ATTRIBUTE_DEVICE_PATH, needed - 1),
            (tTextRead{QUENRA_STATUS_BUFFER_TOO_SMALL, kUntouchedText, needed}));
}

TEST_F(DevicePath, WithSizeZeroAndNoBuffer_ReportsTheSizeNeeded) {
  uint64_t size = 0;
  EXPECT_EQ(QUENRA_getAttributeUTF8(0, QUENRA_ATTRIBUTE_DEVICE_PATH, nullptr, &size),
            QUENRA_STATUS_BUFFER_TOO_SMALL);
  EXPECT_EQ(size, path().size() + 1);
}

TEST_F(DevicePath, WithoutSize_FailsWithBufferTooSmall) {
  char buffer[256] = "untouched";
  EXPECT_EQ(QUENRA_getAttributeUTF8(0, QUENRA_ATTRIBUTE_DEVICE_PATH, buffer, nullptr),
            QUENRA_STATUS_BUFFER_TOO_SMALL);
  EXPECT_STREQ(buffer, "untouched");
}

TEST_F(DevicePath, WithoutBuffer_FailsWithInvalidParameter) {
  uint64_t size = 256;
  EXPECT_EQ(QUENRA_getAttributeUTF8(0, QUENRA_ATTRIBUTE_DEVICE_PATH, nullptr, &size),
            QUENRA_STATUS_INVALID_PARAMETER);
  EXPECT_EQ(size, 256u);
}

TEST_F(DevicePath, WithoutADevice_FailsWithNoController) {
  usePresence(1, 1, 0);
  EXPECT_EQ(readText(QUENRA_ATTRIBUTE_DEVICE_PATH), noText(QUENRA_STATUS_NO_CONTROLLER));
}

TEST_F(DevicePath, WithSelectorOrInstance_IsAnOrdinaryUnknownAttribute) {
  EXPECT_EQ(readText(QUENRA_ATTRIBUTE_DEVICE_PATH + 1), noText(QUENRA_STATUS_INVALID_HANDLE));
  open();
  EXPECT_EQ(readText(QUENRA_ATTRIBUTE_DEVICE_PATH + 1), noText(QUENRA_STATUS_NOT_SUPPORTED));
  EXPECT_EQ(readText(QUENRA_ATTRIBUTE_DEVICE_PATH | QUENRA_SELECTOR_CONTROLLER),
            noText(QUENRA_STATUS_NOT_SUPPORTED));
}

TEST_F(DevicePath, IsNotAnUnsignedAttribute) {
  open();
  EXPECT_EQ(readUnsigned(QUENRA_ATTRIBUTE_DEVICE_PATH), noValue(QUENRA_STATUS_NOT_SUPPORTED));
}

}  // namespace
}  // namespace nTests
