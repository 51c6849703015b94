#include <bit>
#include <cstring>

#include "tests/contract/contracttest.h"

namespace nTests {
namespace {

// What the driver has received, offset by offset.
class RequestBytes : public ContractTest {
 protected:
  static uint64_t numberAt(const tSimulatorLogEntry& entry, size_t offset, size_t width) {
    uint64_t number = 0;
    std::memcpy(&number, entry.input + offset, width);
    return number;
  }
  static uint64_t addressOf(const void* memory) { return std::bit_cast<uintptr_t>(memory); }

  void expectGetAttribute(tSimulatorInterface interfaceKind, uint32_t attribute, const void* buffer,
                          uint32_t size) {
    const auto entries = requests(0x807BE004);
    ASSERT_EQ(entries.size(), 1u);
    const tSimulatorLogEntry& entry = entries[0];
    EXPECT_EQ(entry.interfaceKind, static_cast<uint32_t>(interfaceKind));
    EXPECT_EQ(entry.inputSize, 24u);
    EXPECT_EQ(numberAt(entry, 0, 4), attribute);
    EXPECT_EQ(numberAt(entry, 4, 4), 0u) << "padding";
    EXPECT_EQ(numberAt(entry, 8, 8), addressOf(buffer));
    EXPECT_EQ(numberAt(entry, 16, 4), size);
    EXPECT_EQ(numberAt(entry, 20, 4), 0u) << "the caller's status";
    EXPECT_EQ(entry.outputSize, 8u);
  }
};

TEST_F(RequestBytes, OfAnUnsignedReadFromTheController) {
  machine().setAttributeU32(kSimulatorInterfaceController, 0x20144C00, 6);
  open();
  machine().clearLog();
  uint32_t value = 0;
  ASSERT_EQ(QUENRA_getAttributeU32(QUENRA_HANDLE, 0x20144C00, &value), 0);
  EXPECT_EQ(value, 6u);
  expectGetAttribute(kSimulatorInterfaceController, 0x20144C00, &value, 4);
}

TEST_F(RequestBytes, OfAnUnsignedReadFromMarten) {
  machine().setAttributeU32(kSimulatorInterfaceMarten, 0x20213100, 6);
  open();
  machine().clearLog();
  uint32_t value = 0;
  ASSERT_EQ(QUENRA_getAttributeU32(QUENRA_HANDLE, 0x20213100, &value), 0);
  expectGetAttribute(kSimulatorInterfaceMarten, 0x20213100, &value, 4);
}

TEST_F(RequestBytes, OfATextReadFromMarten) {
  machine().setAttributeText(kSimulatorInterfaceMarten, 0x10000400, "M-9.8");
  open();
  machine().clearLog();
  char buffer[40] = "";
  uint64_t size = sizeof buffer;
  ASSERT_EQ(QUENRA_getAttributeUTF8(QUENRA_HANDLE, 0x10000400, buffer, &size), 0);
  expectGetAttribute(kSimulatorInterfaceMarten, 0x10000400, buffer, 40);
}

TEST_F(RequestBytes, AReplyThatIsCutShort_CountsAsZeros) {
  open();
  tSimulatorScript script{};
  script.interfaceKind = kSimulatorInterfaceMarten;
  script.requestCode = 0x807BE004;
  script.action = kSimulatorActionTruncate;
  script.replySize = 0;
  machine().addScript(script);
  machine().setAttributeText(kSimulatorInterfaceMarten, 0x10000400, "M-9.8");
  EXPECT_EQ(readText(0x10000400), (tTextRead{0, "", 0})) << "a text of the 0 bytes reported";
}

}  // namespace
}  // namespace nTests
