#include <bit>
#include <cstring>

#include "protocol/controllerrequests.h"
#include "tests/contract/contracttest.h"

namespace nTests {
namespace {

class Opening : public ContractTest {
 protected:
  // Opens with the current table and closes again.
  int32_t openOnce(uint64_t* handle = nullptr) {
    uint64_t own = 0;
    const int32_t code = QUENRA_openController(handle == nullptr ? &own : handle);
    if (code >= 0) {
      QUENRA_closeController(QUENRA_HANDLE);
    }
    return code;
  }
  int32_t openOn(const tReferenceTable& table) {
    useTable(table);
    return openOnce();
  }
  void answer(uint32_t requestCode, tSimulatorAction action, int32_t code, uint32_t skip = 0) {
    tSimulatorScript script{};
    script.interfaceKind = kSimulatorInterfaceController;
    script.requestCode = requestCode;
    script.skip = skip;
    script.times = 1;
    script.action = action;
    if (action == kSimulatorActionFail) {
      script.windowsError = static_cast<uint32_t>(code);
    } else {
      script.driverStatus = code;
    }
    machine().addScript(script);
  }
  // Replaces the driver's n-th answer to REQUEST_EXCHANGE_VALUES.
  void answerExchange(uint32_t skip, tExchangeValuesReply reply) {
    tSimulatorScript script{};
    script.interfaceKind = kSimulatorInterfaceController;
    script.requestCode = REQUEST_EXCHANGE_VALUES;
    script.skip = skip;
    script.times = 1;
    script.action = kSimulatorActionReply;
    script.replySize = sizeof reply;
    std::memcpy(script.reply, &reply, sizeof reply);
    machine().addScript(script);
  }
};

TEST_F(Opening, ReturnsTheHandle) {
  uint64_t handle = 0;
  EXPECT_EQ(QUENRA_openController(&handle), QUENRA_STATUS_SUCCESS);
  EXPECT_EQ(handle, 0x514E5241u);
}

TEST_F(Opening, WithoutHandlePointer_FailsBeforeAnyEffect) {
  machine().clearLog();
  EXPECT_EQ(QUENRA_openController(nullptr), QUENRA_STATUS_INVALID_PARAMETER);
  EXPECT_EQ(count(kSimulatorEventOpen, kSimulatorInterfaceController), 0u);
  EXPECT_EQ(readUnsigned(QUENRA_ATTRIBUTE_MEMORY_MODULE_COUNT).code, QUENRA_STATUS_INVALID_HANDLE);
}

TEST_F(Opening, TwiceAndClosedOnce_StaysOpen) {
  open();
  open();
  QUENRA_closeController(QUENRA_HANDLE);
  EXPECT_EQ(readUnsigned(QUENRA_ATTRIBUTE_MEMORY_MODULE_COUNT), value(2));
  QUENRA_closeController(QUENRA_HANDLE);
  EXPECT_EQ(readUnsigned(QUENRA_ATTRIBUTE_MEMORY_MODULE_COUNT),
            (tUnsignedRead{QUENRA_STATUS_INVALID_HANDLE, kUntouchedValue}));
  QUENRA_closeController(QUENRA_HANDLE);
  EXPECT_EQ(readUnsigned(QUENRA_ATTRIBUTE_MEMORY_MODULE_COUNT).code, QUENRA_STATUS_INVALID_HANDLE);
}

TEST_F(Opening, Twice_QueriesTheDriverOnce) {
  machine().clearLog();
  open();
  const size_t afterTheFirst = machine().log().size();
  open();
  EXPECT_EQ(machine().log().size(), afterTheFirst);
}

TEST_F(Opening, ASecondTimeWhileOpen_CannotFail) {
  open();
  usePresence(0, 0);
  open();
}

TEST_F(Opening, ClosingAnotherHandle_IsIgnored) {
  open();
  QUENRA_closeController(0);
  QUENRA_closeController(0x1514E5241);
  EXPECT_EQ(readUnsigned(QUENRA_ATTRIBUTE_MEMORY_MODULE_COUNT), value(2));
}

TEST_F(Opening, OpensControllerThenMarten_AndClosesInTheSameOrder) {
  machine().clearLog();
  ASSERT_EQ(openOnce(), 0);
  std::vector<std::pair<uint32_t, uint32_t>> events;
  for (const tSimulatorLogEntry& entry : machine().log()) {
    events.emplace_back(entry.event, entry.interfaceKind);
  }
  const std::vector<std::pair<uint32_t, uint32_t>> expected = {
      {kSimulatorEventOpen, kSimulatorInterfaceController},
      {kSimulatorEventOpen, kSimulatorInterfaceMarten},
      {kSimulatorEventRequest, kSimulatorInterfaceController},
      {kSimulatorEventRequest, kSimulatorInterfaceController},
      {kSimulatorEventClose, kSimulatorInterfaceController},
      {kSimulatorEventClose, kSimulatorInterfaceMarten},
  };
  EXPECT_EQ(events, expected);
}

TEST_F(Opening, NoControllerInterface_FailsWithNoController) {
  usePresence(0, 1);
  uint64_t handle = 17;
  EXPECT_EQ(openOnce(&handle), QUENRA_STATUS_NO_CONTROLLER);
  EXPECT_EQ(handle, 17u);
}

TEST_F(Opening, NoMartenInterface_Succeeds) {
  usePresence(1, 0);
  EXPECT_EQ(openOnce(), 0);
}

TEST_F(Opening, SecondControllerInterface_FailsWithGenericFailure) {
  usePresence(2, 1);
  EXPECT_EQ(openOnce(), QUENRA_STATUS_GENERIC_FAILURE);
  EXPECT_EQ(count(kSimulatorEventOpen, kSimulatorInterfaceController),
            count(kSimulatorEventClose, kSimulatorInterfaceController));
}

TEST_F(Opening, SecondMartenInterface_FailsWithGenericFailureAndClosesBoth) {
  usePresence(1, 2);
  machine().clearLog();
  EXPECT_EQ(openOnce(), QUENRA_STATUS_GENERIC_FAILURE);
  EXPECT_EQ(count(kSimulatorEventClose, kSimulatorInterfaceController), 1u);
  EXPECT_EQ(count(kSimulatorEventClose, kSimulatorInterfaceMarten), 1u);
}

TEST_F(Opening, AfterAFailure_RepeatsEveryStep) {
  usePresence(0, 0);
  ASSERT_EQ(openOnce(), QUENRA_STATUS_NO_CONTROLLER);
  usePresence(1, 1);
  EXPECT_EQ(openOnce(), 0);
}

TEST_F(Opening, AfterAClose_InstallsTheTableAgain) {
  ASSERT_EQ(openOnce(), 0);
  tReferenceTable other;
  other.structure(0x01) = tSmbiosStructure(0x01, 0x1B).text(0x05, "BW-9999");
  useTable(other);
  open();
  EXPECT_EQ(readText(QUENRA_ATTRIBUTE_PRODUCT_NAME), text("BW-9999"));
}

// ---- Fetching the table ----

TEST_F(Opening, QueriesTheSizes_ThenPassesBuffersOfThatSize) {
  machine().clearLog();
  ASSERT_EQ(openOnce(), 0);
  const auto exchanges = requests(REQUEST_EXCHANGE_VALUES);
  ASSERT_EQ(exchanges.size(), 2u);
  const uint8_t nothing[32] = {};
  EXPECT_EQ(exchanges[0].inputSize, 32u);
  EXPECT_EQ(std::memcmp(exchanges[0].input, nothing, sizeof nothing), 0);

  tExchangeValuesReply sizes{};
  std::memcpy(&sizes, exchanges[0].output, sizeof sizes);
  EXPECT_EQ(exchanges[0].outputSize, 12u);
  EXPECT_EQ(sizes.tableSize, tReferenceTable().build().size());
  EXPECT_EQ(sizes.driverStatus, QUENRA_STATUS_DRIVER_BUFFER_TOO_SMALL);

  const auto numberAt = [&exchanges](size_t offset, size_t width) {
    uint64_t number = 0;
    std::memcpy(&number, exchanges[1].input + offset, width);
    return number;
  };
  EXPECT_EQ(exchanges[1].inputSize, 32u);
  EXPECT_NE(numberAt(0, 8), 0u);
  EXPECT_EQ(numberAt(8, 4), sizes.textSize);
  EXPECT_EQ(numberAt(12, 4), 0u);
  EXPECT_NE(numberAt(16, 8), 0u);
  EXPECT_EQ(numberAt(24, 4), sizes.tableSize);
  EXPECT_EQ(numberAt(28, 4), 0u);
}

TEST_F(Opening, FirstExchangeFailing_ReturnsTheDriversCodeAndClosesAll) {
  machine().clearLog();
  answer(REQUEST_EXCHANGE_VALUES, kSimulatorActionAnswerCode, -1);
  EXPECT_EQ(openOnce(), -1);
  EXPECT_EQ(requests(REQUEST_EXCHANGE_VALUES).size(), 1u);
  EXPECT_EQ(count(kSimulatorEventClose, kSimulatorInterfaceController), 1u);
  EXPECT_EQ(count(kSimulatorEventClose, kSimulatorInterfaceMarten), 1u);
}

TEST_F(Opening, FirstExchangeWithAWarning_SucceedsWithTheWarning) {
  answerExchange(0, {16, static_cast<uint32_t>(tReferenceTable().build().size()), 1});
  uint64_t handle = 0;
  EXPECT_EQ(QUENRA_openController(&handle), 1);
  EXPECT_EQ(handle, QUENRA_HANDLE);
  const auto exchanges = requests(REQUEST_EXCHANGE_VALUES);
  EXPECT_EQ(exchanges.at(1).input[28], 1) << "the driver receives the warning";
}

TEST_F(Opening, FirstExchangeThatSucceeds_ContinuesWithItsSizes) {
  answerExchange(0, {16, static_cast<uint32_t>(tReferenceTable().build().size()), 0});
  EXPECT_EQ(openOnce(), 0);
}

TEST_F(Opening, ANegativeTableSize_FailsWithMemoryFull) {
  answerExchange(0, {16, 0x80000000, QUENRA_STATUS_DRIVER_BUFFER_TOO_SMALL});
  EXPECT_EQ(openOnce(), QUENRA_STATUS_MEMORY_FULL);
  EXPECT_EQ(requests(REQUEST_EXCHANGE_VALUES).size(), 1u);
}

TEST_F(Opening, SecondExchangeFailing_ReturnsTheDriversCode) {
  answer(REQUEST_EXCHANGE_VALUES, kSimulatorActionAnswerCode, -77, 1);
  EXPECT_EQ(openOnce(), -77);
}

TEST_F(Opening, TableGrownBetweenTheExchanges_FailsWithTheDriversCode) {
  answerExchange(0, {16, 40, QUENRA_STATUS_DRIVER_BUFFER_TOO_SMALL});
  EXPECT_EQ(openOnce(), QUENRA_STATUS_DRIVER_BUFFER_TOO_SMALL);
  EXPECT_EQ(requests(REQUEST_EXCHANGE_VALUES).size(), 2u);
}

TEST_F(Opening, TableShrunkBetweenTheExchanges_UsesTheSmallerSize) {
  const auto size = static_cast<uint32_t>(tReferenceTable().build().size());
  answerExchange(0, {64, size + 100, QUENRA_STATUS_DRIVER_BUFFER_TOO_SMALL});
  open();
  EXPECT_EQ(readText(QUENRA_ATTRIBUTE_PRODUCT_NAME), text("BW-8135"));
}

TEST_F(Opening, SecondExchangeReportingMoreThanItsBuffer_IsLimited) {
  // The driver filled nothing, so the machine is not supported; no byte past the buffer is read.
  answerExchange(1, {0xFFFFFFFF, 0xFFFFFFFF, 0});
  EXPECT_EQ(openOnce(), QUENRA_STATUS_NO_CONTROLLER);
}

TEST_F(Opening, AnEmptyTable_IsTheMachinesTable) {
  machine().setTable({});
  EXPECT_EQ(openOnce(), QUENRA_STATUS_NO_CONTROLLER);
}

TEST_F(Opening, VersionTextWithoutNulOrTooLong_DoesNoHarm) {
  machine().setVersionText(std::string(1000, 'v'));
  EXPECT_EQ(openOnce(), 0);
  machine().setVersionText("");
  EXPECT_EQ(openOnce(), 0);
}

TEST_F(Opening, RequestRejectedByTheSystem_ReturnsTheMappedCode) {
  answer(REQUEST_EXCHANGE_VALUES, kSimulatorActionFail, 5);
  EXPECT_EQ(openOnce(), QUENRA_STATUS_ACCESS_DENIED);
}

// ---- Supported machines ----

struct tPlatform {
  uint8_t generation;
  uint8_t variant;
  int32_t code;
};
class OpeningOnPlatform : public Opening, public testing::WithParamInterface<tPlatform> {};

TEST_P(OpeningOnPlatform, IsServedFromGeneration2AndBelowVariant3) {
  tReferenceTable table;
  table.structure(0x96).byte(0x04, GetParam().generation).byte(0x05, GetParam().variant);
  EXPECT_EQ(openOn(table), GetParam().code);
}
INSTANTIATE_TEST_SUITE_P(Platforms, OpeningOnPlatform,
                         testing::Values(tPlatform{2, 2, 0}, tPlatform{2, 0, 0},
                                         tPlatform{255, 0, 0},
                                         tPlatform{2, 3, QUENRA_STATUS_NO_CONTROLLER},
                                         tPlatform{1, 0, QUENRA_STATUS_NO_CONTROLLER},
                                         tPlatform{0, 255, QUENRA_STATUS_NO_CONTROLLER}));

TEST_F(Opening, WithoutPlatformStructure_FailsWithNoController) {
  EXPECT_EQ(openOn(tReferenceTable().remove(0x96)), QUENRA_STATUS_NO_CONTROLLER);
}

TEST_F(Opening, WithPlatformStructureTooShort_FailsWithNoController) {
  tReferenceTable table;
  table.structure(0x96).cutTo(0x05);
  EXPECT_EQ(openOn(table), QUENRA_STATUS_NO_CONTROLLER);
}

struct tModel {
  const char* name;
  int32_t code;
};
class OpeningOnModel : public Opening, public testing::WithParamInterface<tModel> {};

TEST_P(OpeningOnModel, IsServedOutsideTheTwoFamilies) {
  tReferenceTable table;
  table.structure(0x01) = tSmbiosStructure(0x01, 0x1B).text(0x05, GetParam().name);
  EXPECT_EQ(openOn(table), GetParam().code);
}
INSTANTIATE_TEST_SUITE_P(Models, OpeningOnModel,
                         testing::Values(tModel{"qmod-7105", QUENRA_STATUS_NO_CONTROLLER},
                                         tModel{"qmod-7100", QUENRA_STATUS_NO_CONTROLLER},
                                         tModel{"qbrd-4312", QUENRA_STATUS_NO_CONTROLLER},
                                         tModel{"qbrd-4392", QUENRA_STATUS_NO_CONTROLLER},
                                         tModel{"qmod-71050", 0}, tModel{"QMOD-7105", 0},
                                         tModel{"qbrd-4313", 0}, tModel{"xqmod-7105", 0},
                                         tModel{"qmod-710x", 0},
                                         tModel{"qmod-7105\nqmod-7105", 0}));

TEST_F(Opening, WithoutProductName_FailsWithNoController) {
  tReferenceTable table;
  table.structure(0x01) = tSmbiosStructure(0x01, 0x1B).text(0x04, "Bench Works");
  EXPECT_EQ(openOn(table), QUENRA_STATUS_NO_CONTROLLER);
}

TEST_F(Opening, WithAProductNameTooLong_FailsWithNoController) {
  tReferenceTable table;
  table.structure(0x01) = tSmbiosStructure(0x01, 0x1B).text(0x05, std::string(129, 'x'));
  EXPECT_EQ(openOn(table), QUENRA_STATUS_NO_CONTROLLER);
}

// ---- Memory modules ----

TEST_F(Opening, EmptySockets_AreNotCountedAsModules) {
  open();
  EXPECT_EQ(readUnsigned(QUENRA_ATTRIBUTE_MEMORY_MODULE_COUNT), value(2));
  EXPECT_EQ(readText(QUENRA_ATTRIBUTE_MEMORY_LOCATOR + 1), text("DIMM 2"));
}

TEST_F(Opening, WithoutMemoryArray_FailsWithNotSupported) {
  EXPECT_EQ(openOn(tReferenceTable().remove(0x10)), QUENRA_STATUS_NOT_SUPPORTED);
}

TEST_F(Opening, WithFewerDevicesThanTheArrayReports_FailsWithNotSupported) {
  tReferenceTable table;
  table.structure(0x10).word(0x0D, 5);
  EXPECT_EQ(openOn(table), QUENRA_STATUS_NOT_SUPPORTED);
}

TEST_F(Opening, WithAnArrayOfNoDevices_HasNoModules) {
  tReferenceTable table;
  table.structure(0x10).word(0x0D, 0);
  useTable(table);
  open();
  EXPECT_EQ(readUnsigned(QUENRA_ATTRIBUTE_MEMORY_MODULE_COUNT), value(0));
}

TEST_F(Opening, AModuleOfUnknownSize_CountsAsPopulated) {
  tReferenceTable table;
  table.structure(0x11, 1).word(0x0C, 0xFFFF);
  useTable(table);
  open();
  EXPECT_EQ(readUnsigned(QUENRA_ATTRIBUTE_MEMORY_SIZE + 1), value(0xFFFF));
}

TEST_F(Opening, AMalformedMemoryArray_HasNoModules) {
  // Type 0x10 is the last structure, its formatted area cut off by the table's end.
  std::vector<uint8_t> bytes = tReferenceTable().remove(0x10).build();
  bytes.insert(bytes.end(), {0x10, 0x17, 0x00, 0x00, 0x01});
  machine().setTable(bytes);
  open();
  EXPECT_EQ(readUnsigned(QUENRA_ATTRIBUTE_MEMORY_MODULE_COUNT), value(0));
}

}  // namespace
}  // namespace nTests
