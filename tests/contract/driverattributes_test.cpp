// Attributes that the driver provides: the device path, and texts and numbers of its interfaces.
#include "protocol/controllerrequests.h"
#include "tests/contract/contracttest.h"

namespace nTests {
namespace {

// ---- The device path ----

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

class DriverAttribute : public ContractTest {
 protected:
  static constexpr int32_t kNotSupported = QUENRA_STATUS_NOT_SUPPORTED;
};

// ---- Texts of the Marten interface ----

class TextFromMarten : public DriverAttribute {
 protected:
  void SetUp() override {
    DriverAttribute::SetUp();
    for (const uint32_t attribute :
         {uint32_t{QUENRA_ATTRIBUTE_FIRMWARE_VERSION},
          QUENRA_ATTRIBUTE_FIRMWARE_VERSION | uint32_t{QUENRA_SELECTOR_MARTEN}}) {
      machine().setAttributeText(kSimulatorInterfaceMarten, attribute, "M-9.8");
    }
  }

  void setTextWithoutNul(std::string_view text) {
    machine().setAttribute(kSimulatorInterfaceMarten, QUENRA_ATTRIBUTE_FIRMWARE_VERSION,
                           std::vector<uint8_t>(text.begin(), text.end()));
  }
};

TEST_F(TextFromMarten, FirmwareVersion_IsReadFromAnOpenMarten) {
  open();
  EXPECT_EQ(readText(QUENRA_ATTRIBUTE_FIRMWARE_VERSION), (tTextRead{0, "M-9.8", 6}));
  EXPECT_EQ(readText(QUENRA_ATTRIBUTE_FIRMWARE_VERSION | QUENRA_SELECTOR_MARTEN),
            (tTextRead{0, "M-9.8", 6}));
  EXPECT_EQ(readText(QUENRA_ATTRIBUTE_FIRMWARE_VERSION | QUENRA_SELECTOR_CONTROLLER),
            text("B-1.23"));
}

TEST_F(TextFromMarten, FirmwareVersion_WithoutMarten_IsTheBiosVersion) {
  usePresence(1, 0);
  open();
  EXPECT_EQ(readText(QUENRA_ATTRIBUTE_FIRMWARE_VERSION), text("B-1.23"));
}

TEST_F(TextFromMarten, AnyTextSelectedOnAClosedMarten_FailsWithNoController) {
  usePresence(1, 0);
  open();
  for (const uint32_t attribute : {QUENRA_ATTRIBUTE_FIRMWARE_VERSION, QUENRA_ATTRIBUTE_PRODUCT_NAME,
                                   QUENRA_ATTRIBUTE_BUS_LOCATION}) {
    EXPECT_EQ(readText(attribute | QUENRA_SELECTOR_MARTEN), noText(QUENRA_STATUS_NO_CONTROLLER));
  }
  EXPECT_EQ(readText(0x1FF00000 | QUENRA_SELECTOR_MARTEN), noText(kNotSupported));
  EXPECT_EQ(readText(0x10205000), noText(QUENRA_STATUS_NO_CONTROLLER)) << "an unknown attribute";
}

TEST_F(TextFromMarten, OtherTextsSelectedOnAnOpenMarten_ComeFromTheTable) {
  open();
  EXPECT_EQ(readText(QUENRA_ATTRIBUTE_PRODUCT_NAME | QUENRA_SELECTOR_MARTEN), text("BW-8135"));
}

TEST_F(TextFromMarten, InABufferThatIsTooSmall_ReportsTheSizeNeeded) {
  open();
  EXPECT_EQ(readText(QUENRA_ATTRIBUTE_FIRMWARE_VERSION, 5),
            (tTextRead{QUENRA_STATUS_BUFFER_TOO_SMALL, "untou", 6}));
  EXPECT_EQ(readText(QUENRA_ATTRIBUTE_FIRMWARE_VERSION, 6), (tTextRead{0, "M-9.8", 6}));
}

TEST_F(TextFromMarten, WithSizeZeroAndNoBuffer_ReportsTheSizeNeeded) {
  open();
  uint64_t size = 0;
  EXPECT_EQ(
      QUENRA_getAttributeUTF8(QUENRA_HANDLE, QUENRA_ATTRIBUTE_FIRMWARE_VERSION, nullptr, &size),
      QUENRA_STATUS_BUFFER_TOO_SMALL);
  EXPECT_EQ(size, 6u);
}

TEST_F(TextFromMarten, WithASizeButNoBuffer_FailsWithInvalidParameter) {
  open();
  uint64_t size = 100;
  EXPECT_EQ(
      QUENRA_getAttributeUTF8(QUENRA_HANDLE, QUENRA_ATTRIBUTE_FIRMWARE_VERSION, nullptr, &size),
      QUENRA_STATUS_INVALID_PARAMETER);
  EXPECT_EQ(size, 100u);
}

TEST_F(TextFromMarten, DriverWarning_IsReturnedWithTheText) {
  open();
  tSimulatorScript script{};
  script.interfaceKind = kSimulatorInterfaceMarten;
  script.action = kSimulatorActionAddCode;
  script.driverStatus = 9;
  machine().addScript(script);
  EXPECT_EQ(readText(QUENRA_ATTRIBUTE_FIRMWARE_VERSION), (tTextRead{9, "M-9.8", 6}));
}

// The driver keeps a text as its writer sent it, and an update writes the version without a NUL.
TEST_F(TextFromMarten, WithoutNul_IsTerminated) {
  setTextWithoutNul("M-10");
  open();
  EXPECT_EQ(readText(QUENRA_ATTRIBUTE_FIRMWARE_VERSION), (tTextRead{0, "M-10", 4}));
  EXPECT_EQ(readText(QUENRA_ATTRIBUTE_FIRMWARE_VERSION, 5), (tTextRead{0, "M-10", 4}));
}

TEST_F(TextFromMarten, WithoutNulFillingTheBuffer_NeedsOneByteMore) {
  setTextWithoutNul("M-10");
  open();
  EXPECT_EQ(readText(QUENRA_ATTRIBUTE_FIRMWARE_VERSION, 4),
            (tTextRead{QUENRA_STATUS_BUFFER_TOO_SMALL, "", 5}));
}

TEST_F(TextFromMarten, EmptyWithoutNulAndSizeZero_NeedsOneByte) {
  setTextWithoutNul("");
  open();
  EXPECT_EQ(readText(QUENRA_ATTRIBUTE_FIRMWARE_VERSION, 0),
            (tTextRead{QUENRA_STATUS_BUFFER_TOO_SMALL, "", 1}));
  EXPECT_EQ(readText(QUENRA_ATTRIBUTE_FIRMWARE_VERSION, 1), (tTextRead{0, "", 0}));
}

TEST_F(TextFromMarten, RejectedByTheDriver_LeavesTheSize) {
  open();
  machine().removeAttribute(kSimulatorInterfaceMarten, QUENRA_ATTRIBUTE_FIRMWARE_VERSION);
  EXPECT_EQ(readText(QUENRA_ATTRIBUTE_FIRMWARE_VERSION), noText(kNotSupported));
}

TEST_F(TextFromMarten, FailedRequest_ReturnsTheMappedCodeAndLeavesTheSize) {
  open();
  tSimulatorScript script{};
  script.interfaceKind = kSimulatorInterfaceMarten;
  script.action = kSimulatorActionFail;
  script.windowsError = 121;
  machine().addScript(script);
  EXPECT_EQ(readText(QUENRA_ATTRIBUTE_FIRMWARE_VERSION), noText(QUENRA_STATUS_TIME_OUT));
}

TEST_F(TextFromMarten, WithASizeBeyond32Bits_OffersTheDriverTheLargestSize) {
  open();
  machine().clearLog();
  char buffer[200] = "";
  uint64_t size = (uint64_t{1} << 32) + 10;
  EXPECT_EQ(
      QUENRA_getAttributeUTF8(QUENRA_HANDLE, QUENRA_ATTRIBUTE_FIRMWARE_VERSION, buffer, &size), 0);
  EXPECT_STREQ(buffer, "M-9.8");
  EXPECT_EQ(size, 6u);
  const auto entries = requests(REQUEST_GET_ATTRIBUTE);
  ASSERT_EQ(entries.size(), 1u);
  for (size_t i = 16; i < 20; ++i) {
    EXPECT_EQ(entries[0].input[i], 0xFF);
  }
}

// ---- Numbers of the controller interface ----

class FromController : public DriverAttribute, public testing::WithParamInterface<uint32_t> {
 protected:
  void SetUp() override {
    DriverAttribute::SetUp();
    machine().setAttributeU32(kSimulatorInterfaceController, GetParam(), 0x01020304);
  }
};

TEST_P(FromController, IsTheDriversValue) {
  open();
  EXPECT_EQ(readUnsigned(GetParam()), value(0x01020304));
}

TEST_P(FromController, WithAnInstance_IsNotSupportedAndSendsNoRequest) {
  open();
  machine().clearLog();
  EXPECT_EQ(readUnsigned(GetParam() + 1), noValue(kNotSupported));
  EXPECT_TRUE(requests(REQUEST_GET_ATTRIBUTE).empty());
}

TEST_P(FromController, RejectedByTheDriver_IsNotReadFromMarten) {
  machine().removeAttribute(kSimulatorInterfaceController, GetParam());
  machine().setAttributeU32(kSimulatorInterfaceMarten, GetParam(), 5);
  open();
  EXPECT_EQ(readUnsigned(GetParam()), noValue(kNotSupported));
}

TEST_P(FromController, WithADriverWarning_ReturnsItWithTheValue) {
  open();
  tSimulatorScript script{};
  script.interfaceKind = kSimulatorInterfaceController;
  script.action = kSimulatorActionAddCode;
  script.driverStatus = 3;
  machine().addScript(script);
  EXPECT_EQ(readUnsigned(GetParam()), (tUnsignedRead{3, 0x01020304}));
}

INSTANTIATE_TEST_SUITE_P(Rows, FromController,
                         testing::Values(QUENRA_ATTRIBUTE_PROCESSOR_SETTING,
                                         QUENRA_ATTRIBUTE_DRIVER_SETTING_1,
                                         QUENRA_ATTRIBUTE_DRIVER_SETTING_2));

// ---- Numbers selected on the Marten interface ----

class UnsignedFromMarten : public DriverAttribute {};

TEST_F(UnsignedFromMarten, EveryId_IsRead) {
  for (const uint32_t attribute :
       {QUENRA_ATTRIBUTE_MEMORY_TYPE + QUENRA_SELECTOR_MARTEN,
        QUENRA_ATTRIBUTE_CONTROLLER_KIND + QUENRA_SELECTOR_MARTEN,
        QUENRA_ATTRIBUTE_PROCESSOR_SETTING + QUENRA_SELECTOR_MARTEN, 0x2020AA00u, 0x28200300u}) {
    machine().setAttributeU32(kSimulatorInterfaceMarten, attribute, attribute ^ 0xFF);
  }
  open();
  for (const uint32_t attribute :
       {QUENRA_ATTRIBUTE_MEMORY_TYPE + QUENRA_SELECTOR_MARTEN,
        QUENRA_ATTRIBUTE_CONTROLLER_KIND + QUENRA_SELECTOR_MARTEN,
        QUENRA_ATTRIBUTE_PROCESSOR_SETTING + QUENRA_SELECTOR_MARTEN, 0x2020AA00u, 0x28200300u}) {
    EXPECT_EQ(readUnsigned(attribute), value(attribute ^ 0xFF)) << std::hex << attribute;
  }
}

TEST_F(UnsignedFromMarten, WithAnInstance_FailsWithNoController) {
  open();
  EXPECT_EQ(readUnsigned(QUENRA_ATTRIBUTE_MEMORY_TYPE + 1 + QUENRA_SELECTOR_MARTEN),
            noValue(QUENRA_STATUS_NO_CONTROLLER));
}

TEST_F(UnsignedFromMarten, OnAClosedMarten_FailsWithNoController) {
  usePresence(1, 0);
  open();
  EXPECT_EQ(readUnsigned(QUENRA_ATTRIBUTE_MEMORY_TYPE + QUENRA_SELECTOR_MARTEN),
            noValue(QUENRA_STATUS_NO_CONTROLLER));
  EXPECT_EQ(readUnsigned(0x20210000), noValue(QUENRA_STATUS_NO_CONTROLLER));
}

TEST_F(UnsignedFromMarten, Rejected_ReturnsTheDriversCode) {
  open();
  machine().removeAttribute(kSimulatorInterfaceMarten,
                            QUENRA_ATTRIBUTE_MEMORY_TYPE + QUENRA_SELECTOR_MARTEN);
  EXPECT_EQ(readUnsigned(QUENRA_ATTRIBUTE_MEMORY_TYPE + QUENRA_SELECTOR_MARTEN),
            noValue(kNotSupported));
}

}  // namespace
}  // namespace nTests
