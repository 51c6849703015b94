// Invalid arguments of the controller exports. docs/robustness.md documents the behaviour.
#include <array>
#include <cstring>
#include <string>
#include <tuple>

#include "tests/contract/contracttest.h"

namespace nTests {
namespace {

// Storage for a number at a misaligned address.
template <class Number>
class tMisaligned {
 public:
  explicit tMisaligned(Number number) { std::memcpy(bytes_.data() + 1, &number, sizeof number); }

  [[nodiscard]] Number* pointer() {
    return reinterpret_cast<Number*>(reinterpret_cast<uintptr_t>(bytes_.data()) + 1);
  }
  [[nodiscard]] Number number() const {
    Number number{};
    std::memcpy(&number, bytes_.data() + 1, sizeof number);
    return number;
  }

 private:
  alignas(Number) std::array<char, sizeof(Number) + 1> bytes_{};
};

// ---- Reads with an invalid handle ----

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
INSTANTIATE_TEST_SUITE_P(
    Reads, BadHandle,
    testing::Combine(testing::Values(&readTextOn, &readUnsignedOn, &readSignedOn, &readFloatingOn),
                     testing::Values(0u, 1u, QUENRA_HANDLE - 1, QUENRA_HANDLE + (uint64_t{1} << 32),
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

// ---- All exports ----

class ControllerArguments : public ContractTest {};

TEST_F(ControllerArguments, WrongHandle_IsRejectedByEveryFunction) {
  open();
  for (const tCallOnHandle& function : kCallsOnHandle) {
    for (const uint64_t handle : kWrongHandles) {
      EXPECT_EQ(function.call(handle), QUENRA_STATUS_INVALID_HANDLE) << function.name << handle;
    }
  }
}

TEST_F(ControllerArguments, StaleHandle_IsRejectedByEveryFunction) {
  open();
  QUENRA_closeController(QUENRA_HANDLE);
  for (const tCallOnHandle& function : kCallsOnHandle) {
    const bool isTextWrite = std::string_view(function.name) == "setAttributeUTF8";
    EXPECT_EQ(function.call(QUENRA_HANDLE),
              isTextWrite ? QUENRA_STATUS_NO_CONTROLLER : QUENRA_STATUS_INVALID_HANDLE)
        << function.name;
  }
}

TEST_F(ControllerArguments, WrongOrStaleHandle_IsIgnoredByClosing) {
  open();
  for (const uint64_t handle : kWrongHandles) {
    QUENRA_closeController(handle);
  }
  EXPECT_EQ(QUENRA_performSelfTest(QUENRA_HANDLE), 0) << "still open";
  QUENRA_closeController(QUENRA_HANDLE);
  QUENRA_closeController(QUENRA_HANDLE);
  EXPECT_EQ(QUENRA_performSelfTest(QUENRA_HANDLE), QUENRA_STATUS_INVALID_HANDLE);
}

TEST_F(ControllerArguments, MisalignedHandlePointer_IsWritten) {
  tMisaligned<uint64_t> handle(17);
  EXPECT_EQ(QUENRA_openController(handle.pointer()), 0);
  EXPECT_EQ(handle.number(), QUENRA_HANDLE);
}

TEST_F(ControllerArguments, MisalignedSize_IsReadAndWritten) {
  open();
  char text[64] = "";
  for (const uint32_t attribute :
       {uint32_t{QUENRA_ATTRIBUTE_PRODUCT_NAME}, uint32_t{QUENRA_ATTRIBUTE_DEVICE_PATH}}) {
    tMisaligned<uint64_t> size(1);
    EXPECT_EQ(QUENRA_getAttributeUTF8(QUENRA_HANDLE, attribute, text, size.pointer()),
              QUENRA_STATUS_BUFFER_TOO_SMALL);
    EXPECT_GT(size.number(), 1u);
  }
}

TEST_F(ControllerArguments, MisalignedValue_IsWritten) {
  open();
  tMisaligned<uint32_t> value(kUntouchedValue);
  EXPECT_EQ(
      QUENRA_getAttributeU32(QUENRA_HANDLE, QUENRA_ATTRIBUTE_MEMORY_MODULE_COUNT, value.pointer()),
      0);
  EXPECT_EQ(value.number(), 2u);
  tMisaligned<int32_t> number(-5);
  EXPECT_EQ(QUENRA_getAttributeI32(QUENRA_HANDLE, 0, number.pointer()),
            QUENRA_STATUS_NOT_SUPPORTED);
  EXPECT_EQ(number.number(), -5);
  tMisaligned<double> floating(-5);
  EXPECT_EQ(QUENRA_getAttributeDBL(QUENRA_HANDLE, 0, floating.pointer()),
            QUENRA_STATUS_NOT_SUPPORTED);
  EXPECT_EQ(floating.number(), -5);
}

TEST_F(ControllerArguments, HugeSize_ReadsTheText) {
  open();
  for (const uint32_t attribute :
       {uint32_t{QUENRA_ATTRIBUTE_PRODUCT_NAME}, uint32_t{QUENRA_ATTRIBUTE_BUS_LOCATION},
        uint32_t{QUENRA_ATTRIBUTE_FIRMWARE_VERSION}, uint32_t{QUENRA_ATTRIBUTE_DEVICE_PATH}}) {
    std::array<char, 256> text{};
    uint64_t size = ~uint64_t{0};
    EXPECT_EQ(QUENRA_getAttributeUTF8(QUENRA_HANDLE, attribute, text.data(), &size), 0);
    EXPECT_NE(text[0], '\0');
  }
}

// Ids that are not attributes, of the wrong type, and with an instance that does not exist.
constexpr uint32_t kForeignIds[] = {0, 1, 0x30000000, 0x10FFFF00, 0x20FFFF00, 0x100001FF, ~0u};

TEST_F(ControllerArguments, ForeignIds_AreNotSupported) {
  tReferenceTable table;
  table.structure(0x9D) = tSmbiosStructure(0x9D, 0x06).byte(0x04, 1);
  useTable(table);
  open();
  for (const uint32_t id : kForeignIds) {
    SCOPED_TRACE(id);
    const uint32_t onController = (id & ~0x00F00000u) | QUENRA_SELECTOR_CONTROLLER;
    EXPECT_EQ(readText(onController), noText(QUENRA_STATUS_NOT_SUPPORTED));
    EXPECT_EQ(readUnsigned(onController), noValue(QUENRA_STATUS_NOT_SUPPORTED));
    int32_t number = 0;
    EXPECT_EQ(QUENRA_getAttributeI32(QUENRA_HANDLE, id, &number), QUENRA_STATUS_NOT_SUPPORTED);
    double floating = 0;
    EXPECT_EQ(QUENRA_getAttributeDBL(QUENRA_HANDLE, id, &floating), QUENRA_STATUS_NOT_SUPPORTED);
    EXPECT_EQ(QUENRA_setAttributeUTF8(QUENRA_HANDLE, onController, "text"),
              QUENRA_STATUS_NOT_SUPPORTED);
    EXPECT_EQ(QUENRA_setAttributeU32(QUENRA_HANDLE, onController, 5), QUENRA_STATUS_NOT_SUPPORTED);
  }
}

TEST_F(ControllerArguments, NullNumber_IsRejected) {
  open();
  EXPECT_EQ(QUENRA_getAttributeU32(QUENRA_HANDLE, QUENRA_ATTRIBUTE_MEMORY_SIZE, nullptr),
            QUENRA_STATUS_INVALID_PARAMETER);
  EXPECT_EQ(QUENRA_getAttributeI32(QUENRA_HANDLE, 0, nullptr), QUENRA_STATUS_NOT_SUPPORTED);
  EXPECT_EQ(QUENRA_getAttributeDBL(QUENRA_HANDLE, 0, nullptr), QUENRA_STATUS_NOT_SUPPORTED);
}

TEST_F(ControllerArguments, NullText_IsRejected) {
  open();
  EXPECT_EQ(QUENRA_setAttributeUTF8(QUENRA_HANDLE, QUENRA_TEXT_SETTING_OF_BOTH, nullptr),
            QUENRA_STATUS_INVALID_PARAMETER);
}

TEST_F(ControllerArguments, UnterminatedText_IsRejectedAfter256Bytes) {
  open();
  machine().clearLog();
  EXPECT_EQ(QUENRA_setAttributeUTF8(QUENRA_HANDLE, QUENRA_TEXT_SETTING_OF_BOTH,
                                    unterminatedText(257).get()),
            QUENRA_STATUS_INVALID_VALUE);
  EXPECT_EQ(QUENRA_setAttributeUTF8(QUENRA_HANDLE, QUENRA_TEXT_SETTING_OF_BOTH,
                                    unterminatedText(256).get()),
            QUENRA_STATUS_INVALID_VALUE);
  EXPECT_TRUE(machine().log().empty());
}

// ---- Firmware ----

TEST_F(ControllerArguments, ImageOnAMachineWithoutUpdates_IsNotRead) {
  tReferenceTable table;
  table.structure(0x9E) = tSmbiosStructure(0x9E, 0x06).byte(4, 0).byte(5, 0);
  useTable(table);
  open();
  const void* const nowhere = reinterpret_cast<const void*>(uintptr_t{1});
  for (const uint32_t options : {0u, 1u, 2u, ~0u}) {
    const int32_t code = QUENRA_updateFirmware2(QUENRA_HANDLE, nowhere, ~uint64_t{0}, options);
    EXPECT_LT(code, 0);
    EXPECT_EQ(QUENRA_updateFirmware(QUENRA_HANDLE, nowhere, ~uint64_t{0}), code);
  }
}

}  // namespace
}  // namespace nTests
