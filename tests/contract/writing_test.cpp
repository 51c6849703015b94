#include <bit>
#include <cstring>

#include "protocol/controllerrequests.h"
#include "tests/contract/contracttest.h"

namespace nTests {
namespace {

constexpr auto kController = kSimulatorInterfaceController;
constexpr auto kMarten = kSimulatorInterfaceMarten;
constexpr uint32_t kBoth = QUENRA_TEXT_SETTING_OF_BOTH;
// An ordinary text attribute; the tests allow writes to it on both interfaces.
constexpr uint32_t kText = 0x10090000;

class Writing : public ContractTest {
 protected:
  void SetUp() override {
    ContractTest::SetUp();
    give(kController, kText);
    give(kMarten, kText);
  }
  // Adds a writable text attribute to an interface.
  void give(tSimulatorInterface kind, uint32_t attribute) {
    machine().setAttributeText(kind, attribute, "before");
    machine().allowWrites(kind, attribute);
  }
  // Uses a machine on which texts cannot be written to the controller.
  void forbid() {
    tReferenceTable table;
    table.structure(0x9D) = tSmbiosStructure(0x9D, 0x06).byte(0x04, 0);
    useTable(table);
  }
  // The table of a machine on which texts can be written to the controller.
  static tReferenceTable writableTable() {
    tReferenceTable table;
    table.structure(0x9D) = tSmbiosStructure(0x9D, 0x06).byte(0x04, 1);
    return table;
  }
  static int32_t write(uint32_t attribute, const std::string& text) {
    return QUENRA_setAttributeUTF8(QUENRA_HANDLE, attribute, text.c_str());
  }
  // The interface and the attribute id of each write, in order.
  std::vector<std::pair<uint32_t, uint32_t>> writes() {
    std::vector<std::pair<uint32_t, uint32_t>> sent;
    for (const tSimulatorLogEntry& entry : requests(REQUEST_SET_ATTRIBUTE)) {
      uint32_t attribute = 0;
      std::memcpy(&attribute, entry.input, sizeof attribute);
      sent.emplace_back(entry.interfaceKind, attribute);
    }
    return sent;
  }
  using tWrites = std::vector<std::pair<uint32_t, uint32_t>>;
  void refuse(tSimulatorInterface kind, int32_t code) {
    tSimulatorScript script{};
    script.interfaceKind = kind;
    script.requestCode = REQUEST_SET_ATTRIBUTE;
    script.action = kSimulatorActionAnswerCode;
    script.driverStatus = code;
    machine().addScript(script);
  }
};

// ---- Texts ----

TEST_F(Writing, AText_SendsItWithItsNul) {
  useTable(writableTable());
  open();
  machine().clearLog();
  const char text[] = "abc";
  EXPECT_EQ(QUENRA_setAttributeUTF8(QUENRA_HANDLE, kText, text), 0);
  const auto sent = requests(REQUEST_SET_ATTRIBUTE);
  ASSERT_EQ(sent.size(), 1u);
  const auto numberAt = [&sent](size_t offset, size_t width) {
    uint64_t number = 0;
    std::memcpy(&number, sent[0].input + offset, width);
    return number;
  };
  EXPECT_EQ(sent[0].interfaceKind, uint32_t{kController});
  EXPECT_EQ(sent[0].inputSize, 24u);
  EXPECT_EQ(numberAt(0, 4), kText);
  EXPECT_EQ(numberAt(4, 4), 0u);
  EXPECT_EQ(numberAt(8, 8), std::bit_cast<uintptr_t>(&text[0]));
  EXPECT_EQ(numberAt(16, 4), 4u);
  EXPECT_EQ(numberAt(20, 4), 0u);
  EXPECT_EQ(sent[0].outputSize, 4u);
}

TEST_F(Writing, TheLongestText_IsSentAndOneCharacterMoreIsNot) {
  useTable(writableTable());
  open();
  machine().clearLog();
  EXPECT_EQ(write(kText, std::string(255, 'x')), 0);
  EXPECT_EQ(write(kText, ""), 0);
  machine().clearLog();
  EXPECT_EQ(write(kText, std::string(256, 'x')), QUENRA_STATUS_INVALID_VALUE);
  EXPECT_EQ(write(kText, std::string(100000, 'x')), QUENRA_STATUS_INVALID_VALUE);
  EXPECT_EQ(QUENRA_setAttributeUTF8(QUENRA_HANDLE, kText, nullptr),
            QUENRA_STATUS_INVALID_PARAMETER);
  EXPECT_TRUE(writes().empty());
}

TEST_F(Writing, ATextWithoutOpenController_FailsWithNoController) {
  EXPECT_EQ(write(kText, "abc"), QUENRA_STATUS_NO_CONTROLLER);
  EXPECT_EQ(write(kText, std::string(300, 'x')), QUENRA_STATUS_NO_CONTROLLER);
  EXPECT_EQ(QUENRA_setAttributeUTF8(1, kText, "abc"), QUENRA_STATUS_INVALID_HANDLE);
}

struct tPrecondition {
  uint8_t writable;
  uint8_t protection;
  bool allowed;
};
class WritingOn : public Writing, public testing::WithParamInterface<tPrecondition> {};

TEST_P(WritingOn, AMachineThatAllowsIt_GoesToTheController) {
  tReferenceTable table;
  table.structure(0x9D) = tSmbiosStructure(0x9D, 0x06)
                              .byte(0x04, GetParam().writable)
                              .byte(0x05, GetParam().protection);
  useTable(table);
  usePresence(1, 0);
  open();
  machine().clearLog();
  EXPECT_EQ(write(kText, "abc"), GetParam().allowed ? 0 : QUENRA_STATUS_NOT_SUPPORTED);
  EXPECT_EQ(writes().size(), GetParam().allowed ? 1u : 0u);
}
INSTANTIATE_TEST_SUITE_P(Bytes, WritingOn,
                         testing::Values(tPrecondition{1, 0, true}, tPrecondition{1, 1, true},
                                         tPrecondition{255, 1, true}, tPrecondition{1, 2, false},
                                         tPrecondition{0, 0, false}, tPrecondition{0, 255, false}));

TEST_F(Writing, ATextThatTheMachineForbids_GoesToAnOpenMarten) {
  forbid();
  open();
  machine().clearLog();
  EXPECT_EQ(write(kText, "abc"), 0);
  EXPECT_EQ(writes(), (tWrites{{kMarten, kText}}));
}

TEST_F(Writing, ATextThatTheControllerRejects_GoesToMarten) {
  useTable(writableTable());
  machine().refuseWrites(kController, kText);
  open();
  machine().clearLog();
  EXPECT_EQ(write(kText, "abc"), 0);
  EXPECT_EQ(writes(), (tWrites{{kController, kText}, {kMarten, kText}}));
}

TEST_F(Writing, ATextThatBothReject_IsNotSupported) {
  useTable(writableTable());
  machine().refuseWrites(kController, kText);
  machine().refuseWrites(kMarten, kText);
  open();
  EXPECT_EQ(write(kText, "abc"), QUENRA_STATUS_NOT_SUPPORTED);
}

TEST_F(Writing, ATextOnAMachineWithoutThatField_FailsWithNoControllerAndIsNotSentToMarten) {
  useTable(tReferenceTable().remove(0x9D));
  open();
  machine().clearLog();
  EXPECT_EQ(write(kText, "abc"), QUENRA_STATUS_NO_CONTROLLER);
  EXPECT_TRUE(writes().empty());
}

TEST_F(Writing, ATextSelectedOnMarten_IsSentToTheControllerFirst) {
  useTable(writableTable());
  open();
  machine().clearLog();
  EXPECT_EQ(write(kText | QUENRA_SELECTOR_MARTEN, "abc"), 0);
  EXPECT_EQ(writes(), (tWrites{{kController, kText | QUENRA_SELECTOR_MARTEN}}));
}

TEST_F(Writing, AnotherFailureOfTheController_IsNotSentToMarten) {
  useTable(writableTable());
  refuse(kController, -77);
  open();
  machine().clearLog();
  EXPECT_EQ(write(kText, "abc"), -77);
  EXPECT_EQ(writes().size(), 1u);
}

// ---- The setting of both ----

TEST_F(Writing, TheSettingOfBoth_GoesToBoth) {
  useTable(writableTable());
  open();
  machine().clearLog();
  EXPECT_EQ(write(kBoth, "abc"), 0);
  EXPECT_EQ(writes(), (tWrites{{kController, kBoth}, {kMarten, kBoth | QUENRA_SELECTOR_MARTEN}}));
  machine().clearLog();
  EXPECT_EQ(write(kBoth | QUENRA_SELECTOR_CONTROLLER, "abc"), 0);
  EXPECT_EQ(writes(), (tWrites{{kController, kBoth | QUENRA_SELECTOR_CONTROLLER},
                               {kMarten, kBoth | QUENRA_SELECTOR_MARTEN}}));
}

TEST_F(Writing, TheSettingOfBoth_SelectedOnMarten_SkipsTheController) {
  forbid();
  open();
  machine().clearLog();
  EXPECT_EQ(write(kBoth | QUENRA_SELECTOR_MARTEN, "abc"), 0);
  EXPECT_EQ(writes(), (tWrites{{kMarten, kBoth | QUENRA_SELECTOR_MARTEN}}));
}

TEST_F(Writing, TheSettingOfBoth_WithoutMarten_NeedsTheControllerOnly) {
  useTable(writableTable());
  usePresence(1, 0);
  open();
  EXPECT_EQ(write(kBoth, "abc"), 0);
  EXPECT_EQ(write(kBoth | QUENRA_SELECTOR_MARTEN, "abc"), 0) << "nothing is written, nothing fails";
}

TEST_F(Writing, TheSettingOfBoth_ThatTheControllerRejects_IsNotSupported) {
  useTable(writableTable());
  refuse(kController, QUENRA_STATUS_NOT_SUPPORTED);
  open();
  machine().clearLog();
  EXPECT_EQ(write(kBoth, "abc"), QUENRA_STATUS_NOT_SUPPORTED);
  EXPECT_EQ(writes().size(), 1u) << "Marten is not asked";
}

TEST_F(Writing, TheSettingOfBoth_ThatMartenRejects_IsNoFailure) {
  useTable(writableTable());
  refuse(kMarten, QUENRA_STATUS_NOT_SUPPORTED);
  open();
  EXPECT_EQ(write(kBoth, "abc"), 0);
}

TEST_F(Writing, TheSettingOfBoth_ThatMartenFailsOn_IsAFailure) {
  useTable(writableTable());
  refuse(kMarten, -77);
  open();
  EXPECT_EQ(write(kBoth, "abc"), -77);
}

TEST_F(Writing, TheSettingOfBoth_WithAnInstance_IsAnOrdinaryText) {
  useTable(writableTable());
  give(kController, kBoth + 1);
  open();
  machine().clearLog();
  EXPECT_EQ(write(kBoth + 1, "abc"), 0);
  EXPECT_EQ(writes(), (tWrites{{kController, kBoth + 1}}));
}

// ---- Numbers ----

TEST_F(Writing, ANumber_IsReadBack) {
  open();
  EXPECT_EQ(QUENRA_setAttributeU32(QUENRA_HANDLE, QUENRA_ATTRIBUTE_DRIVER_SETTING_1, 0x01020304),
            0);
  EXPECT_EQ(readUnsigned(QUENRA_ATTRIBUTE_DRIVER_SETTING_1), value(0x01020304));
}

TEST_F(Writing, ANumber_SendsFourBytes) {
  open();
  machine().clearLog();
  EXPECT_EQ(QUENRA_setAttributeU32(QUENRA_HANDLE, QUENRA_ATTRIBUTE_DRIVER_SETTING_1, 7), 0);
  const auto sent = requests(REQUEST_SET_ATTRIBUTE);
  ASSERT_EQ(sent.size(), 1u);
  uint32_t size = 0;
  std::memcpy(&size, sent[0].input + 16, sizeof size);
  EXPECT_EQ(size, 4u);
}

TEST_F(Writing, ANumberSelectedOnMarten_GoesThereAndAnyOtherToTheController) {
  open();
  machine().clearLog();
  const uint32_t setting = QUENRA_ATTRIBUTE_DRIVER_SETTING_2;
  EXPECT_EQ(QUENRA_setAttributeU32(QUENRA_HANDLE, setting | QUENRA_SELECTOR_MARTEN, 3), 0);
  EXPECT_EQ(QUENRA_setAttributeU32(QUENRA_HANDLE, setting | 0x00300000, 4), 0);
  EXPECT_EQ(writes(), (tWrites{{kMarten, setting | QUENRA_SELECTOR_MARTEN},
                               {kController, setting | 0x00300000}}));
  EXPECT_EQ(readUnsigned(setting | QUENRA_SELECTOR_MARTEN), value(3));
  EXPECT_EQ(readUnsigned(setting), value(4)) << "each interface has its own";
}

TEST_F(Writing, ANumberOnAClosedMarten_FailsWithNoController) {
  usePresence(1, 0);
  open();
  EXPECT_EQ(QUENRA_setAttributeU32(QUENRA_HANDLE,
                                   QUENRA_ATTRIBUTE_DRIVER_SETTING_2 + QUENRA_SELECTOR_MARTEN, 3),
            QUENRA_STATUS_NO_CONTROLLER);
}

TEST_F(Writing, ANumberThatTheDriverRejects_IsNotSentToMarten) {
  open();
  machine().clearLog();
  EXPECT_EQ(QUENRA_setAttributeU32(QUENRA_HANDLE, QUENRA_ATTRIBUTE_PROCESSOR_SETTING, 3),
            QUENRA_STATUS_NOT_SUPPORTED);
  EXPECT_EQ(writes().size(), 1u);
}

TEST_F(Writing, ANumberOnABadHandle_FailsWithInvalidHandle) {
  EXPECT_EQ(QUENRA_setAttributeU32(QUENRA_HANDLE, QUENRA_ATTRIBUTE_DRIVER_SETTING_1, 3),
            QUENRA_STATUS_INVALID_HANDLE);
  open();
  EXPECT_EQ(QUENRA_setAttributeU32(1, QUENRA_ATTRIBUTE_DRIVER_SETTING_1, 3),
            QUENRA_STATUS_INVALID_HANDLE);
}

// ---- The self-test ----

TEST_F(Writing, TheSelfTest_SucceedsWhenAControllerIsOpen) {
  EXPECT_EQ(QUENRA_performSelfTest(QUENRA_HANDLE), QUENRA_STATUS_INVALID_HANDLE);
  open();
  EXPECT_EQ(QUENRA_performSelfTest(QUENRA_HANDLE), 0);
  EXPECT_EQ(QUENRA_performSelfTest(0), QUENRA_STATUS_INVALID_HANDLE);
}

}  // namespace
}  // namespace nTests
