#include "tests/component/simulator/modeltest.h"

namespace nTests {
namespace {

constexpr auto kController = kSimulatorInterfaceController;
constexpr auto kMarten = kSimulatorInterfaceMarten;
constexpr auto kDevicePath = kSimulatorInterfaceDevicePath;

class ModelRequests : public ModelTest {
 protected:
  tExchangeValuesReply exchange(const tExchangeValuesRequest& asked) {
    return recordOf<tExchangeValuesReply>(request(kController, REQUEST_EXCHANGE_VALUES, asked, 12));
  }
  tGetAttributeReply get(tSimulatorInterface kind, uint32_t attribute, uint64_t buffer,
                         uint32_t size) {
    tGetAttributeRequest asked{};
    asked.attribute = attribute;
    asked.buffer = buffer;
    asked.size = size;
    return recordOf<tGetAttributeReply>(request(kind, REQUEST_GET_ATTRIBUTE, asked, 8));
  }
  int32_t set(tSimulatorInterface kind, uint32_t attribute, uint64_t buffer, int32_t size) {
    tSetAttributeRequest asked{};
    asked.attribute = attribute;
    asked.buffer = buffer;
    asked.size = size;
    return recordOf<tStatusReply>(request(kind, REQUEST_SET_ATTRIBUTE, asked, 4)).driverStatus;
  }
  void give(tSimulatorInterface kind, uint32_t attribute, std::string_view value) {
    tSimulatorAttribute record{};
    record.interfaceKind = kind;
    record.attribute = attribute;
    record.size = static_cast<uint32_t>(value.size());
    std::memcpy(record.value, value.data(), value.size());
    ASSERT_EQ(control(SIMULATOR_SET_ATTRIBUTE, record).windowsError, 0u);
  }
};

TEST_F(ModelRequests, ExchangeWithoutBuffers_TellsTheSizes) {
  const tExchangeValuesReply sizes = exchange({});
  EXPECT_EQ(sizes.driverStatus, DRIVER_STATUS_BUFFER_TOO_SMALL);
  EXPECT_EQ(sizes.textSize, 4u);
  EXPECT_GT(sizes.tableSize, 500u);
}

TEST_F(ModelRequests, ExchangeWithBuffersOfThoseSizes_HandsBothOver) {
  const tExchangeValuesReply sizes = exchange({});
  tExchangeValuesRequest asked{};
  asked.textBuffer = 0x100;
  asked.textSize = sizes.textSize;
  asked.tableBuffer = 0x200;
  asked.tableSize = static_cast<int32_t>(sizes.tableSize);
  const tExchangeValuesReply reply = exchange(asked);
  EXPECT_EQ(reply.driverStatus, 0);
  EXPECT_EQ(reply.textSize, sizes.textSize);
  EXPECT_EQ(reply.tableSize, sizes.tableSize);
  EXPECT_EQ(std::memcmp(memory.data() + 0x100, "3.2", 4), 0);
  const tAnswer table = control(SIMULATOR_GET_TABLE, {}, SIMULATOR_TABLE_CAPACITY);
  EXPECT_EQ(std::memcmp(memory.data() + 0x200, table.bytes.data(), table.bytes.size()), 0);
  EXPECT_EQ(memory[0x200 + table.bytes.size()], 0xEE) << "not one byte more";
}

TEST_F(ModelRequests, ExchangeWithABufferOneByteTooSmall_CopiesNothing) {
  const tExchangeValuesReply sizes = exchange({});
  tExchangeValuesRequest asked{};
  asked.textBuffer = 0x100;
  asked.textSize = sizes.textSize;
  asked.tableBuffer = 0x200;
  asked.tableSize = static_cast<int32_t>(sizes.tableSize) - 1;
  EXPECT_EQ(exchange(asked).driverStatus, DRIVER_STATUS_BUFFER_TOO_SMALL);
  EXPECT_EQ(memory[0x100], 0xEE);
  EXPECT_EQ(memory[0x200], 0xEE);
  asked.tableSize = -1;
  EXPECT_EQ(exchange(asked).driverStatus, DRIVER_STATUS_BUFFER_TOO_SMALL);
}

TEST_F(ModelRequests, ExchangeWithAnUnreachableBuffer_IsRefused) {
  tExchangeValuesRequest asked{};
  asked.textBuffer = 0x100;
  asked.textSize = 1000;
  asked.tableBuffer = memory.size() - 10;
  asked.tableSize = 60000;
  EXPECT_EQ(exchange(asked).driverStatus, SIMULATOR_STATUS_BAD_ADDRESS);
}

TEST_F(ModelRequests, Attribute_IsWrittenIntoTheCallersMemory) {
  give(kMarten, 0x10000400, std::string_view("abc", 4));
  const tGetAttributeReply reply = get(kMarten, 0x10000400, 0x300, 4);
  EXPECT_EQ(reply.driverStatus, 0);
  EXPECT_EQ(reply.size, 4u);
  EXPECT_EQ(std::memcmp(memory.data() + 0x300, "abc", 4), 0);
  EXPECT_EQ(memory[0x304], 0xEE);
}

TEST_F(ModelRequests, AttributeInATooSmallBuffer_TellsTheSizeNeeded) {
  give(kMarten, 0x10000400, std::string_view("abc", 4));
  const tGetAttributeReply reply = get(kMarten, 0x10000400, 0x300, 3);
  EXPECT_EQ(reply.driverStatus, -26930);
  EXPECT_EQ(reply.size, 4u);
  EXPECT_EQ(memory[0x300], 0xEE);
}

TEST_F(ModelRequests, AttributeThatIsNotThere_IsNotSupported) {
  give(kMarten, 0x10000400, "abc");
  EXPECT_EQ(get(kMarten, 0x10000401, 0x300, 4).driverStatus, SIMULATOR_STATUS_NOT_SUPPORTED);
  EXPECT_EQ(get(kController, 0x10000400, 0x300, 4).driverStatus, SIMULATOR_STATUS_NOT_SUPPORTED)
      << "each interface has its own";
}

TEST_F(ModelRequests, AttributeIntoUnreachableMemory_IsRefused) {
  give(kMarten, 5, "abcd");
  EXPECT_EQ(get(kMarten, 5, 0, 4).driverStatus, SIMULATOR_STATUS_BAD_ADDRESS);
  EXPECT_EQ(get(kMarten, 5, memory.size() - 3, 4).driverStatus, SIMULATOR_STATUS_BAD_ADDRESS);
}

TEST_F(ModelRequests, WriteOfAWritableAttribute_IsKept) {
  std::memcpy(memory.data() + 0x300, "new", 4);
  EXPECT_EQ(set(kMarten, 0x18200000, 0x300, 4), 0);
  EXPECT_EQ(get(kMarten, 0x18000000, 0x400, 8).size, 4u) << "the selector does not count";
  EXPECT_EQ(std::memcmp(memory.data() + 0x400, "new", 4), 0);
  EXPECT_EQ(get(kController, 0x18000000, 0x400, 8).size, 1u) << "each interface has its own";
}

TEST_F(ModelRequests, WriteOfWhatIsNotWritable_IsNotSupported) {
  EXPECT_EQ(set(kController, 0x20013100, 0x300, 4), SIMULATOR_STATUS_NOT_SUPPORTED);
  EXPECT_EQ(set(kMarten, 0x10000500, 0x300, 4), SIMULATOR_STATUS_NOT_SUPPORTED);
  give(kMarten, 0x10000500, "abc");
  EXPECT_EQ(set(kMarten, 0x10000500, 0x300, 4), SIMULATOR_STATUS_NOT_SUPPORTED);
}

TEST_F(ModelRequests, Writability_CanBeChanged) {
  tSimulatorAttribute record{};
  record.interfaceKind = kMarten;
  record.attribute = 0x10000500;
  give(kMarten, 0x10000500, "abc");
  EXPECT_EQ(control(SIMULATOR_ALLOW_WRITES, record).windowsError, 0u);
  EXPECT_EQ(set(kMarten, 0x10000500, 0x300, 4), 0);
  EXPECT_EQ(control(SIMULATOR_REFUSE_WRITES, record).windowsError, 0u);
  EXPECT_EQ(set(kMarten, 0x10000500, 0x300, 4), SIMULATOR_STATUS_NOT_SUPPORTED);
  record.attribute = 0x70000000;
  EXPECT_EQ(control(SIMULATOR_ALLOW_WRITES, record).windowsError, 87u) << "it has no value";
}

TEST_F(ModelRequests, WriteOfAWrongSizeOrFromUnreachableMemory_IsRefused) {
  EXPECT_EQ(set(kController, 0x20044C00, 0x300, 3), SIMULATOR_STATUS_BAD_VALUE);
  EXPECT_EQ(set(kController, 0x18000000, 0x300, -1), SIMULATOR_STATUS_BAD_VALUE);
  EXPECT_EQ(set(kController, 0x18000000, 0x300, 257), SIMULATOR_STATUS_BAD_VALUE);
  EXPECT_EQ(set(kController, 0x18000000, 0x300, 256), 0);
  EXPECT_EQ(set(kController, 0x20044C00, 0, 4), SIMULATOR_STATUS_BAD_ADDRESS);
}

TEST_F(ModelRequests, TextWrittenEmpty_IsEmptyAndNeedsNoMemory) {
  EXPECT_EQ(set(kController, 0x18000000, ~std::uint64_t{0}, 0), 0);
  const auto reply = get(kController, 0x18000000, 0x400, 64);
  EXPECT_EQ(reply.driverStatus, 0);
  EXPECT_EQ(reply.size, 0u);
}

TEST_F(ModelRequests, MartenVersion_CanBeOverwrittenAndHasNoSelector) {
  std::memcpy(memory.data() + 0x300, "0.0.0f0", 7);
  EXPECT_EQ(set(kMarten, 0x10000400, 0x300, 7), 0);
  EXPECT_EQ(get(kMarten, 0x10200400, 0x400, 64).size, 7u) << "as it was written, without a NUL";
  EXPECT_EQ(std::memcmp(memory.data() + 0x400, "0.0.0f0", 7), 0);
  give(kMarten, 0x10200400, std::string_view("2.0.0f1", 8));
  EXPECT_EQ(get(kMarten, 0x10000400, 0x400, 64).size, 8u);
}

TEST_F(ModelRequests, RequestOnAnInterfaceThatDoesNotKnowIt_IsAnInvalidFunction) {
  EXPECT_EQ(request(kMarten, REQUEST_EXCHANGE_VALUES, tExchangeValuesRequest{}, 12).windowsError,
            1u);
  EXPECT_EQ(
      request(kController, REQUEST_MARTEN_SEND_COMMAND, tSendCommandRequest{}, 4).windowsError, 1u);
  EXPECT_EQ(request(kDevicePath, REQUEST_GET_ATTRIBUTE, tGetAttributeRequest{}, 8).windowsError,
            1u);
  EXPECT_EQ(request(kController, 0x12345678, {}, 0).windowsError, 1u);
}

TEST_F(ModelRequests, RequestOfAWrongSize_IsRefusedBeforeItIsReadOrAnswered) {
  const std::vector<uint8_t> shortInput(31);
  EXPECT_EQ(request(kController, REQUEST_EXCHANGE_VALUES, std::span<const uint8_t>(shortInput), 12)
                .windowsError,
            87u);
  EXPECT_EQ(
      request(kController, REQUEST_EXCHANGE_VALUES, tExchangeValuesRequest{}, 11).windowsError,
      122u);
}

// ---- Scripted answers ----

class ModelScripts : public ModelRequests {
 protected:
  static tSimulatorScript script(uint32_t action) {
    tSimulatorScript made{};
    made.interfaceKind = kController;
    made.requestCode = REQUEST_EXCHANGE_VALUES;
    made.action = action;
    return made;
  }
  void add(const tSimulatorScript& made) {
    ASSERT_EQ(control(SIMULATOR_ADD_SCRIPT, made).windowsError, 0u);
  }
};

TEST_F(ModelScripts, SkipAndTimes_ChooseTheRequests) {
  tSimulatorScript made = script(kSimulatorActionAnswerCode);
  made.skip = 1;
  made.times = 2;
  made.driverStatus = -5;
  add(made);
  std::vector<int32_t> codes;
  for (int i = 0; i < 4; ++i) {
    codes.push_back(exchange({}).driverStatus);
  }
  const int32_t usual = DRIVER_STATUS_BUFFER_TOO_SMALL;
  EXPECT_EQ(codes, (std::vector<int32_t>{usual, -5, -5, usual}));
}

TEST_F(ModelScripts, TimesZero_AnswersAllThatFollow) {
  tSimulatorScript made = script(kSimulatorActionAnswerCode);
  made.driverStatus = -5;
  add(made);
  for (int i = 0; i < 100; ++i) {
    EXPECT_EQ(exchange({}).driverStatus, -5);
  }
}

TEST_F(ModelScripts, AreTriedInOrder_AndAnAnsweredRequestIsNotSeenByTheNext) {
  for (const int32_t code : {-1, -2}) {
    tSimulatorScript made = script(kSimulatorActionAnswerCode);
    made.requestCode = 0;
    made.times = 1;
    made.driverStatus = code;
    add(made);
  }
  EXPECT_EQ(exchange({}).driverStatus, -1);
  EXPECT_EQ(exchange({}).driverStatus, -2);
  EXPECT_EQ(exchange({}).driverStatus, DRIVER_STATUS_BUFFER_TOO_SMALL);
}

TEST_F(ModelScripts, ForAnotherInterfaceOrRequest_LeaveARequestAlone) {
  tSimulatorScript made = script(kSimulatorActionAnswerCode);
  made.interfaceKind = kMarten;
  made.requestCode = 0;
  add(made);
  made.interfaceKind = kController;
  made.requestCode = REQUEST_GET_ATTRIBUTE;
  add(made);
  EXPECT_EQ(exchange({}).driverStatus, DRIVER_STATUS_BUFFER_TOO_SMALL);
}

TEST_F(ModelScripts, FailAndReplyAndTruncateAndAddCode_DoWhatTheySay) {
  tSimulatorScript made = script(kSimulatorActionFail);
  made.times = 1;
  made.windowsError = 121;
  add(made);
  made = script(kSimulatorActionReply);
  made.times = 1;
  made.replySize = 3;
  std::memcpy(made.reply, "xyz", 3);
  add(made);
  made = script(kSimulatorActionTruncate);
  made.times = 1;
  made.replySize = 5;
  add(made);
  made = script(kSimulatorActionAddCode);
  made.times = 1;
  made.driverStatus = 9;
  add(made);
  const tExchangeValuesRequest asked{};
  EXPECT_EQ(request(kController, REQUEST_EXCHANGE_VALUES, asked, 12).windowsError, 121u);
  EXPECT_EQ(request(kController, REQUEST_EXCHANGE_VALUES, asked, 12).bytes,
            (std::vector<uint8_t>{'x', 'y', 'z'}));
  EXPECT_EQ(request(kController, REQUEST_EXCHANGE_VALUES, asked, 12).bytes.size(), 5u);
  const tExchangeValuesReply last = exchange({});
  EXPECT_EQ(last.driverStatus, 9);
  EXPECT_GT(last.tableSize, 0u) << "the request is carried out all the same";
}

TEST_F(ModelScripts, Cleared_AnswerNothing) {
  add(script(kSimulatorActionAnswerCode));
  ASSERT_EQ(control(SIMULATOR_CLEAR_SCRIPTS).windowsError, 0u);
  EXPECT_EQ(exchange({}).driverStatus, DRIVER_STATUS_BUFFER_TOO_SMALL);
}

TEST_F(ModelScripts, ThatMakeNoSense_AreRefused) {
  const auto refused = [this](const tSimulatorScript& made) {
    return control(SIMULATOR_ADD_SCRIPT, made).windowsError == 87;
  };
  EXPECT_TRUE(refused(script(0)));
  EXPECT_TRUE(refused(script(6)));
  tSimulatorScript made = script(kSimulatorActionFail);
  EXPECT_TRUE(refused(made)) << "a failure without an error";
  made.windowsError = 65536;
  EXPECT_TRUE(refused(made));
  made = script(kSimulatorActionReply);
  made.replySize = SIMULATOR_OUTPUT_CAPACITY + 1;
  EXPECT_TRUE(refused(made));
  made = script(kSimulatorActionAnswerCode);
  made.interfaceKind = kSimulatorInterfaceControl;
  EXPECT_TRUE(refused(made));
  made.interfaceKind = 0;
  EXPECT_TRUE(refused(made));
}

TEST_F(ModelScripts, BeyondTheCapacity_AreRefused) {
  for (int i = 0; i < SIMULATOR_SCRIPT_CAPACITY; ++i) {
    add(script(kSimulatorActionAnswerCode));
  }
  EXPECT_EQ(control(SIMULATOR_ADD_SCRIPT, script(kSimulatorActionAnswerCode)).windowsError, 1450u);
}

}  // namespace
}  // namespace nTests
