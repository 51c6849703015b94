#include "protocol/controllerrequests.h"
#include "quenra_attributes.h"
#include "quenra_status.h"
#include "tests/component/simulator/modeltest.h"

namespace nTests {
namespace {

constexpr auto kController = kSimulatorInterfaceController;
constexpr auto kMarten = kSimulatorInterfaceMarten;
constexpr auto kDevicePath = kSimulatorInterfaceDevicePath;
constexpr uint32_t kOtherAttribute = 0x10000500;

class ModelRequests : public ModelTest {
 protected:
  tExchangeValuesReply exchange(const tExchangeValuesRequest& sent) {
    return recordOf<tExchangeValuesReply>(request(kController, REQUEST_EXCHANGE_VALUES, sent, 12));
  }
  tGetAttributeReply get(tSimulatorInterface kind, uint32_t attribute, uint64_t buffer,
                         uint32_t size) {
    tGetAttributeRequest sent{};
    sent.attribute = attribute;
    sent.buffer = buffer;
    sent.size = size;
    return recordOf<tGetAttributeReply>(request(kind, REQUEST_GET_ATTRIBUTE, sent, 8));
  }
  int32_t set(tSimulatorInterface kind, uint32_t attribute, uint64_t buffer, int32_t size) {
    tSetAttributeRequest sent{};
    sent.attribute = attribute;
    sent.buffer = buffer;
    sent.size = size;
    return recordOf<tStatusReply>(request(kind, REQUEST_SET_ATTRIBUTE, sent, 4)).driverStatus;
  }
  void setValue(tSimulatorInterface kind, uint32_t attribute, std::string_view value) {
    tSimulatorAttribute record{};
    record.interfaceKind = kind;
    record.attribute = attribute;
    record.size = static_cast<uint32_t>(value.size());
    std::memcpy(record.value, value.data(), value.size());
    ASSERT_EQ(control(SIMULATOR_SET_ATTRIBUTE, record).windowsError, kWindowsErrorNone);
  }
};

TEST_F(ModelRequests, ExchangeWithoutBuffers_ReturnsTheSizes) {
  const tExchangeValuesReply sizes = exchange({});
  EXPECT_EQ(sizes.driverStatus, DRIVER_STATUS_BUFFER_TOO_SMALL);
  EXPECT_EQ(sizes.textSize, 4u);
  EXPECT_GT(sizes.tableSize, 500u);
}

TEST_F(ModelRequests, ExchangeWithBuffersOfThoseSizes_ReturnsTextAndTable) {
  const tExchangeValuesReply sizes = exchange({});
  tExchangeValuesRequest sent{};
  sent.textBuffer = 0x100;
  sent.textSize = sizes.textSize;
  sent.tableBuffer = 0x200;
  sent.tableSize = static_cast<int32_t>(sizes.tableSize);
  const tExchangeValuesReply reply = exchange(sent);
  EXPECT_EQ(reply.driverStatus, 0);
  EXPECT_EQ(reply.textSize, sizes.textSize);
  EXPECT_EQ(reply.tableSize, sizes.tableSize);
  EXPECT_EQ(std::memcmp(memory.data() + 0x100, "3.2", 4), 0);
  const tAnswer table = control(SIMULATOR_GET_TABLE, {}, SIMULATOR_TABLE_CAPACITY);
  EXPECT_EQ(std::memcmp(memory.data() + 0x200, table.bytes.data(), table.bytes.size()), 0);
  EXPECT_EQ(memory[0x200 + table.bytes.size()], 0xEE) << "no further byte is written";
}

TEST_F(ModelRequests, ExchangeWithABufferOneByteTooSmall_CopiesNothing) {
  const tExchangeValuesReply sizes = exchange({});
  tExchangeValuesRequest sent{};
  sent.textBuffer = 0x100;
  sent.textSize = sizes.textSize;
  sent.tableBuffer = 0x200;
  sent.tableSize = static_cast<int32_t>(sizes.tableSize) - 1;
  EXPECT_EQ(exchange(sent).driverStatus, DRIVER_STATUS_BUFFER_TOO_SMALL);
  EXPECT_EQ(memory[0x100], 0xEE);
  EXPECT_EQ(memory[0x200], 0xEE);
  sent.tableSize = -1;
  EXPECT_EQ(exchange(sent).driverStatus, DRIVER_STATUS_BUFFER_TOO_SMALL);
}

TEST_F(ModelRequests, ExchangeWithAnInaccessibleBuffer_IsRejected) {
  tExchangeValuesRequest sent{};
  sent.textBuffer = 0x100;
  sent.textSize = 1000;
  sent.tableBuffer = memory.size() - 10;
  sent.tableSize = 60000;
  EXPECT_EQ(exchange(sent).driverStatus, SIMULATOR_STATUS_BAD_ADDRESS);
}

TEST_F(ModelRequests, Attribute_IsWrittenIntoTheCallersMemory) {
  setValue(kMarten, QUENRA_ATTRIBUTE_FIRMWARE_VERSION, std::string_view("abc", 4));
  const tGetAttributeReply reply = get(kMarten, QUENRA_ATTRIBUTE_FIRMWARE_VERSION, 0x300, 4);
  EXPECT_EQ(reply.driverStatus, 0);
  EXPECT_EQ(reply.size, 4u);
  EXPECT_EQ(std::memcmp(memory.data() + 0x300, "abc", 4), 0);
  EXPECT_EQ(memory[0x304], 0xEE);
}

TEST_F(ModelRequests, AttributeInATooSmallBuffer_ReturnsTheRequiredSize) {
  setValue(kMarten, QUENRA_ATTRIBUTE_FIRMWARE_VERSION, std::string_view("abc", 4));
  const tGetAttributeReply reply = get(kMarten, QUENRA_ATTRIBUTE_FIRMWARE_VERSION, 0x300, 3);
  EXPECT_EQ(reply.driverStatus, QUENRA_STATUS_BUFFER_TOO_SMALL);
  EXPECT_EQ(reply.size, 4u);
  EXPECT_EQ(memory[0x300], 0xEE);
}

TEST_F(ModelRequests, AbsentAttribute_IsNotSupported) {
  setValue(kMarten, QUENRA_ATTRIBUTE_FIRMWARE_VERSION, "abc");
  EXPECT_EQ(get(kMarten, QUENRA_ATTRIBUTE_FIRMWARE_VERSION + 1, 0x300, 4).driverStatus,
            SIMULATOR_STATUS_NOT_SUPPORTED);
  EXPECT_EQ(get(kController, QUENRA_ATTRIBUTE_FIRMWARE_VERSION, 0x300, 4).driverStatus,
            SIMULATOR_STATUS_NOT_SUPPORTED)
      << "each interface has its own";
}

TEST_F(ModelRequests, AttributeIntoInaccessibleMemory_IsRejected) {
  setValue(kMarten, 5, "abcd");
  EXPECT_EQ(get(kMarten, 5, 0, 4).driverStatus, SIMULATOR_STATUS_BAD_ADDRESS);
  EXPECT_EQ(get(kMarten, 5, memory.size() - 3, 4).driverStatus, SIMULATOR_STATUS_BAD_ADDRESS);
}

TEST_F(ModelRequests, WriteOfAWritableAttribute_IsStored) {
  std::memcpy(memory.data() + 0x300, "new", 4);
  EXPECT_EQ(set(kMarten, QUENRA_TEXT_SETTING_OF_BOTH | QUENRA_SELECTOR_MARTEN, 0x300, 4), 0);
  EXPECT_EQ(get(kMarten, QUENRA_TEXT_SETTING_OF_BOTH, 0x400, 8).size, 4u)
      << "the selector is ignored";
  EXPECT_EQ(std::memcmp(memory.data() + 0x400, "new", 4), 0);
  EXPECT_EQ(get(kController, QUENRA_TEXT_SETTING_OF_BOTH, 0x400, 8).size, 1u)
      << "each interface has its own";
}

TEST_F(ModelRequests, WriteOfAReadOnlyAttribute_IsNotSupported) {
  EXPECT_EQ(set(kController, QUENRA_ATTRIBUTE_PROCESSOR_SETTING, 0x300, 4),
            SIMULATOR_STATUS_NOT_SUPPORTED);
  EXPECT_EQ(set(kMarten, kOtherAttribute, 0x300, 4), SIMULATOR_STATUS_NOT_SUPPORTED);
  setValue(kMarten, kOtherAttribute, "abc");
  EXPECT_EQ(set(kMarten, kOtherAttribute, 0x300, 4), SIMULATOR_STATUS_NOT_SUPPORTED);
}

TEST_F(ModelRequests, Writability_CanBeChanged) {
  tSimulatorAttribute record{};
  record.interfaceKind = kMarten;
  record.attribute = kOtherAttribute;
  setValue(kMarten, kOtherAttribute, "abc");
  EXPECT_EQ(control(SIMULATOR_ALLOW_WRITES, record).windowsError, kWindowsErrorNone);
  EXPECT_EQ(set(kMarten, kOtherAttribute, 0x300, 4), 0);
  EXPECT_EQ(control(SIMULATOR_REFUSE_WRITES, record).windowsError, kWindowsErrorNone);
  EXPECT_EQ(set(kMarten, kOtherAttribute, 0x300, 4), SIMULATOR_STATUS_NOT_SUPPORTED);
  record.attribute = 0x70000000;
  EXPECT_EQ(control(SIMULATOR_ALLOW_WRITES, record).windowsError, kWindowsErrorInvalidParameter)
      << "it has no value";
}

TEST_F(ModelRequests, WriteOfAWrongSizeOrFromInaccessibleMemory_IsRejected) {
  EXPECT_EQ(set(kController, QUENRA_ATTRIBUTE_DRIVER_SETTING_1, 0x300, 3),
            SIMULATOR_STATUS_BAD_VALUE);
  EXPECT_EQ(set(kController, QUENRA_TEXT_SETTING_OF_BOTH, 0x300, -1), SIMULATOR_STATUS_BAD_VALUE);
  EXPECT_EQ(set(kController, QUENRA_TEXT_SETTING_OF_BOTH, 0x300, 257), SIMULATOR_STATUS_BAD_VALUE);
  EXPECT_EQ(set(kController, QUENRA_TEXT_SETTING_OF_BOTH, 0x300, 256), 0);
  EXPECT_EQ(set(kController, QUENRA_ATTRIBUTE_DRIVER_SETTING_1, 0, 4),
            SIMULATOR_STATUS_BAD_ADDRESS);
}

TEST_F(ModelRequests, TextWrittenEmpty_IsEmptyAndNeedsNoMemory) {
  EXPECT_EQ(set(kController, QUENRA_TEXT_SETTING_OF_BOTH, ~std::uint64_t{0}, 0), 0);
  const auto reply = get(kController, QUENRA_TEXT_SETTING_OF_BOTH, 0x400, 64);
  EXPECT_EQ(reply.driverStatus, 0);
  EXPECT_EQ(reply.size, 0u);
}

TEST_F(ModelRequests, MartenVersion_CanBeOverwrittenAndHasNoSelector) {
  std::memcpy(memory.data() + 0x300, "0.0.0f0", 7);
  EXPECT_EQ(set(kMarten, QUENRA_ATTRIBUTE_FIRMWARE_VERSION, 0x300, 7), 0);
  EXPECT_EQ(
      get(kMarten, QUENRA_ATTRIBUTE_FIRMWARE_VERSION | QUENRA_SELECTOR_MARTEN, 0x400, 64).size, 7u)
      << "as it was written, without a NUL";
  EXPECT_EQ(std::memcmp(memory.data() + 0x400, "0.0.0f0", 7), 0);
  setValue(kMarten, QUENRA_ATTRIBUTE_FIRMWARE_VERSION | QUENRA_SELECTOR_MARTEN,
           std::string_view("2.0.0f1", 8));
  EXPECT_EQ(get(kMarten, QUENRA_ATTRIBUTE_FIRMWARE_VERSION, 0x400, 64).size, 8u);
}

TEST_F(ModelRequests, RequestOnAnInterfaceThatDoesNotSupportIt_IsAnInvalidFunction) {
  EXPECT_EQ(request(kMarten, REQUEST_EXCHANGE_VALUES, tExchangeValuesRequest{}, 12).windowsError,
            kWindowsErrorInvalidFunction);
  EXPECT_EQ(
      request(kController, REQUEST_MARTEN_SEND_COMMAND, tSendCommandRequest{}, 4).windowsError,
      kWindowsErrorInvalidFunction);
  EXPECT_EQ(request(kDevicePath, REQUEST_GET_ATTRIBUTE, tGetAttributeRequest{}, 8).windowsError,
            kWindowsErrorInvalidFunction);
  EXPECT_EQ(request(kController, 0x12345678, {}, 0).windowsError, kWindowsErrorInvalidFunction);
}

TEST_F(ModelRequests, RequestOfAWrongSize_IsRejected) {
  const std::vector<uint8_t> shortInput(31);
  EXPECT_EQ(request(kController, REQUEST_EXCHANGE_VALUES, std::span<const uint8_t>(shortInput), 12)
                .windowsError,
            kWindowsErrorInvalidParameter);
  EXPECT_EQ(
      request(kController, REQUEST_EXCHANGE_VALUES, tExchangeValuesRequest{}, 11).windowsError,
      kWindowsErrorInsufficientBuffer);
}

// ---- Scripted answers ----

// ---- Answers set for reads ----

class ModelAnswers : public ModelRequests {
 protected:
  // Sets the answer to reads of an attribute, which has a value of two bytes.
  uint32_t answer(int32_t code, uint32_t size, uint32_t delayed = 0) {
    setValue(kMarten, kOtherAttribute, "ab");
    return control(SIMULATOR_SET_ATTRIBUTE_ANSWER,
                   tSimulatorAttributeAnswer{kMarten, kOtherAttribute, code, size, delayed})
        .windowsError;
  }
  uint32_t answerExchange(const tSimulatorSizesAnswer& query, const tSimulatorSizesAnswer& values) {
    return control(SIMULATOR_SET_HANDOVER_ANSWER, tSimulatorHandoverAnswer{query, values})
        .windowsError;
  }
  static tExchangeValuesRequest withBuffers() {
    tExchangeValuesRequest sent{};
    sent.textBuffer = 0x100;
    sent.textSize = 0x80;
    sent.tableBuffer = 0x200;
    sent.tableSize = 0x8000;
    return sent;
  }
};

TEST_F(ModelAnswers, Error_IsReturnedWithItsSizeAndWithoutTheValue) {
  ASSERT_EQ(answer(-7, 300), kWindowsErrorNone);
  const tGetAttributeReply reply = get(kMarten, kOtherAttribute, 0x100, 256);
  EXPECT_EQ(reply.driverStatus, -7);
  EXPECT_EQ(reply.size, 300u);
  EXPECT_EQ(memory[0x100], 0xEE);
}

TEST_F(ModelAnswers, Warning_IsReturnedWithTheValue) {
  ASSERT_EQ(answer(7, 300), kWindowsErrorNone);
  const tGetAttributeReply reply = get(kMarten, kOtherAttribute, 0x100, 256);
  EXPECT_EQ(reply.driverStatus, 7);
  EXPECT_EQ(reply.size, 2u);
  EXPECT_EQ(memory[0x100], 'a');
}

TEST_F(ModelAnswers, Delay_IsThatOfTheRequestOnly) {
  ASSERT_EQ(answer(0, 0, 5000), kWindowsErrorNone);
  get(kMarten, kOtherAttribute, 0x100, 256);
  EXPECT_EQ(delay(), 5000u);
  get(kMarten, QUENRA_ATTRIBUTE_FIRMWARE_VERSION, 0x100, 256);
  EXPECT_EQ(delay(), 0u);
}

TEST_F(ModelAnswers, ValueSetAgain_IsReturnedWithoutThem) {
  ASSERT_EQ(answer(-7, 300, 5000), kWindowsErrorNone);
  setValue(kMarten, kOtherAttribute, "abc");
  EXPECT_EQ(get(kMarten, kOtherAttribute, 0x100, 256).driverStatus, 0);
  EXPECT_EQ(delay(), 0u);
}

TEST_F(ModelAnswers, WriteOfTheLibrary_KeepsThem) {
  ASSERT_EQ(answer(7, 0), kWindowsErrorNone);
  tSimulatorAttribute writable{};
  writable.interfaceKind = kMarten;
  writable.attribute = kOtherAttribute;
  ASSERT_EQ(control(SIMULATOR_ALLOW_WRITES, writable).windowsError, kWindowsErrorNone);
  ASSERT_EQ(set(kMarten, kOtherAttribute, 0x100, 3), 0);
  EXPECT_EQ(get(kMarten, kOtherAttribute, 0x100, 256).driverStatus, 7);
}

TEST_F(ModelAnswers, OfAnUnknownAttributeOrWithALongDelay_AreRejected) {
  EXPECT_EQ(answer(0, 0, SIMULATOR_MAX_DELAY + 1), kWindowsErrorInvalidParameter);
  EXPECT_EQ(control(SIMULATOR_SET_ATTRIBUTE_ANSWER,
                    tSimulatorAttributeAnswer{kMarten, 0x10FFFF00, 0, 0, 0})
                .windowsError,
            kWindowsErrorInvalidParameter);
  EXPECT_EQ(answerExchange({0, 0, 0, SIMULATOR_MAX_DELAY + 1}, {}), kWindowsErrorInvalidParameter);
  EXPECT_EQ(answerExchange({}, {0, 0, 0, SIMULATOR_MAX_DELAY + 1}), kWindowsErrorInvalidParameter);
}

TEST_F(ModelAnswers, ExchangeAnswers_DifferForSizesAndValues) {
  ASSERT_EQ(answerExchange({-1, 5, 6, 1000}, {9, 7, 8, 2000}), kWindowsErrorNone);
  const tExchangeValuesReply sizes = exchange({});
  EXPECT_EQ(sizes.driverStatus, -1);
  EXPECT_EQ(sizes.textSize, 5u);
  EXPECT_EQ(sizes.tableSize, 6u);
  EXPECT_EQ(delay(), 1000u);
  const tExchangeValuesReply values = exchange(withBuffers());
  EXPECT_EQ(values.driverStatus, 9);
  EXPECT_EQ(values.textSize, 7u);
  EXPECT_EQ(values.tableSize, 8u);
  EXPECT_EQ(delay(), 2000u);
  EXPECT_NE(memory[0x201], 0xEE) << "a warning comes with the bytes";
}

TEST_F(ModelAnswers, FailedExchange_ReturnsNoBytes) {
  ASSERT_EQ(answerExchange({}, {-1, 7, 8, 0}), kWindowsErrorNone);
  EXPECT_EQ(exchange(withBuffers()).driverStatus, -1);
  EXPECT_EQ(memory[0x201], 0xEE);
}

TEST_F(ModelAnswers, TableSetAgain_RestoresThePlainExchange) {
  ASSERT_EQ(answerExchange({-1, 5, 6, 0}, {}), kWindowsErrorNone);
  ASSERT_EQ(control(SIMULATOR_SET_TABLE, std::vector<uint8_t>(9)).windowsError, kWindowsErrorNone);
  EXPECT_EQ(exchange({}).driverStatus, DRIVER_STATUS_BUFFER_TOO_SMALL);
  EXPECT_EQ(exchange({}).tableSize, 9u);
}

TEST_F(ModelAnswers, ClearedAttributes_AreNotSupported) {
  ASSERT_EQ(control(SIMULATOR_CLEAR_ATTRIBUTES).windowsError, kWindowsErrorNone);
  EXPECT_EQ(get(kMarten, QUENRA_ATTRIBUTE_FIRMWARE_VERSION, 0x100, 256).driverStatus,
            SIMULATOR_STATUS_NOT_SUPPORTED);
}

// ---- Scripts ----

class ModelScripts : public ModelRequests {
 protected:
  static tSimulatorScript scriptWith(uint32_t action) {
    tSimulatorScript script{};
    script.interfaceKind = kController;
    script.requestCode = REQUEST_EXCHANGE_VALUES;
    script.action = action;
    return script;
  }
  void add(const tSimulatorScript& script) {
    ASSERT_EQ(control(SIMULATOR_ADD_SCRIPT, script).windowsError, kWindowsErrorNone);
  }
};

TEST_F(ModelScripts, SkipAndTimes_ChooseTheRequests) {
  tSimulatorScript script = scriptWith(kSimulatorActionAnswerCode);
  script.skip = 1;
  script.times = 2;
  script.driverStatus = -5;
  add(script);
  std::vector<int32_t> codes;
  for (int i = 0; i < 4; ++i) {
    codes.push_back(exchange({}).driverStatus);
  }
  const int32_t usual = DRIVER_STATUS_BUFFER_TOO_SMALL;
  EXPECT_EQ(codes, (std::vector<int32_t>{usual, -5, -5, usual}));
}

TEST_F(ModelScripts, TimesZero_AnswersAllThatFollow) {
  tSimulatorScript script = scriptWith(kSimulatorActionAnswerCode);
  script.driverStatus = -5;
  add(script);
  for (int i = 0; i < 100; ++i) {
    EXPECT_EQ(exchange({}).driverStatus, -5);
  }
}

TEST_F(ModelScripts, AnsweredRequest_IsNotCountedByLaterScripts) {
  for (const int32_t code : {-1, -2}) {
    tSimulatorScript script = scriptWith(kSimulatorActionAnswerCode);
    script.requestCode = 0;
    script.times = 1;
    script.driverStatus = code;
    add(script);
  }
  EXPECT_EQ(exchange({}).driverStatus, -1);
  EXPECT_EQ(exchange({}).driverStatus, -2);
  EXPECT_EQ(exchange({}).driverStatus, DRIVER_STATUS_BUFFER_TOO_SMALL);
}

TEST_F(ModelScripts, ForAnotherInterfaceOrRequest_DoNotMatch) {
  tSimulatorScript script = scriptWith(kSimulatorActionAnswerCode);
  script.interfaceKind = kMarten;
  script.requestCode = 0;
  add(script);
  script.interfaceKind = kController;
  script.requestCode = REQUEST_GET_ATTRIBUTE;
  add(script);
  EXPECT_EQ(exchange({}).driverStatus, DRIVER_STATUS_BUFFER_TOO_SMALL);
}

TEST_F(ModelScripts, FailReplyTruncateAndAddCode_ChangeTheReply) {
  tSimulatorScript script = scriptWith(kSimulatorActionFail);
  script.times = 1;
  script.windowsError = 121;
  add(script);
  script = scriptWith(kSimulatorActionReply);
  script.times = 1;
  script.replySize = 3;
  std::memcpy(script.reply, "xyz", 3);
  add(script);
  script = scriptWith(kSimulatorActionTruncate);
  script.times = 1;
  script.replySize = 5;
  add(script);
  script = scriptWith(kSimulatorActionAddCode);
  script.times = 1;
  script.driverStatus = 9;
  add(script);
  const tExchangeValuesRequest sent{};
  EXPECT_EQ(request(kController, REQUEST_EXCHANGE_VALUES, sent, 12).windowsError, 121u);
  EXPECT_EQ(request(kController, REQUEST_EXCHANGE_VALUES, sent, 12).bytes,
            (std::vector<uint8_t>{'x', 'y', 'z'}));
  EXPECT_EQ(request(kController, REQUEST_EXCHANGE_VALUES, sent, 12).bytes.size(), 5u);
  const tExchangeValuesReply last = exchange({});
  EXPECT_EQ(last.driverStatus, 9);
  EXPECT_GT(last.tableSize, 0u) << "the request is carried out";
}

TEST_F(ModelScripts, Cleared_AnswerNothing) {
  add(scriptWith(kSimulatorActionAnswerCode));
  ASSERT_EQ(control(SIMULATOR_CLEAR_SCRIPTS).windowsError, kWindowsErrorNone);
  EXPECT_EQ(exchange({}).driverStatus, DRIVER_STATUS_BUFFER_TOO_SMALL);
}

TEST_F(ModelScripts, ThatAreInvalid_AreRejected) {
  const auto rejected = [this](const tSimulatorScript& script) {
    return control(SIMULATOR_ADD_SCRIPT, script).windowsError == kWindowsErrorInvalidParameter;
  };
  EXPECT_TRUE(rejected(scriptWith(0)));
  EXPECT_TRUE(rejected(scriptWith(6)));
  tSimulatorScript script = scriptWith(kSimulatorActionFail);
  EXPECT_TRUE(rejected(script)) << "a failure without an error";
  script.windowsError = 65536;
  EXPECT_TRUE(rejected(script));
  script = scriptWith(kSimulatorActionReply);
  script.replySize = SIMULATOR_OUTPUT_CAPACITY + 1;
  EXPECT_TRUE(rejected(script));
  script = scriptWith(kSimulatorActionAnswerCode);
  script.interfaceKind = kSimulatorInterfaceControl;
  EXPECT_TRUE(rejected(script));
  script.interfaceKind = 0;
  EXPECT_TRUE(rejected(script));
}

TEST_F(ModelScripts, BeyondTheCapacity_AreRejected) {
  for (int i = 0; i < SIMULATOR_SCRIPT_CAPACITY; ++i) {
    add(scriptWith(kSimulatorActionAnswerCode));
  }
  EXPECT_EQ(control(SIMULATOR_ADD_SCRIPT, scriptWith(kSimulatorActionAnswerCode)).windowsError,
            kWindowsErrorNoSystemResources);
}

}  // namespace
}  // namespace nTests
