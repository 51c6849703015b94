#include "tests/component/simulator/modeltest.h"

namespace nTests {
namespace {

class ModelControl : public ModelTest {};

TEST_F(ModelControl, Start_TellsTheHostThePresence) {
  ASSERT_EQ(presences.size(), 1u);
  EXPECT_EQ(presences[0].controllers, 1u);
  EXPECT_EQ(presences[0].martens, 1u);
  EXPECT_EQ(presences[0].devicePaths, 1u);
}

TEST_F(ModelControl, PresenceThatChanges_IsReportedToTheHostOnce) {
  const tSimulatorPresence wanted = {2, 0, 1};
  ASSERT_EQ(control(SIMULATOR_SET_PRESENCE, wanted).windowsError, 0u);
  ASSERT_EQ(control(SIMULATOR_SET_PRESENCE, wanted).windowsError, 0u);
  EXPECT_EQ(presences.size(), 2u);
  const auto told = recordOf<tSimulatorPresence>(control(SIMULATOR_GET_PRESENCE, {}, 12));
  EXPECT_EQ(told.controllers, 2u);
  EXPECT_EQ(told.martens, 0u);
}

TEST_F(ModelControl, PresenceThatIsImpossible_IsRefused) {
  for (const tSimulatorPresence& wanted :
       {tSimulatorPresence{3, 0, 0}, tSimulatorPresence{0, 3, 0}, tSimulatorPresence{0, 0, 2}}) {
    EXPECT_EQ(control(SIMULATOR_SET_PRESENCE, wanted).windowsError, 87u);
  }
  EXPECT_EQ(presences.size(), 1u);
}

TEST_F(ModelControl, TableAndText_AreTakenUpToTheirCapacity) {
  const std::vector<uint8_t> largest(SIMULATOR_TABLE_CAPACITY, 7);
  EXPECT_EQ(control(SIMULATOR_SET_TABLE, largest).windowsError, 0u);
  EXPECT_EQ(control(SIMULATOR_GET_TABLE, {}, SIMULATOR_TABLE_CAPACITY).bytes, largest);
  EXPECT_EQ(control(SIMULATOR_GET_TABLE, {}, SIMULATOR_TABLE_CAPACITY - 1).windowsError, 122u);
  const std::vector<uint8_t> tooLarge(SIMULATOR_TABLE_CAPACITY + 1, 7);
  EXPECT_EQ(control(SIMULATOR_SET_TABLE, tooLarge).windowsError, 87u);
  EXPECT_EQ(control(SIMULATOR_SET_VERSION_TEXT, std::vector<uint8_t>(SIMULATOR_TEXT_CAPACITY))
                .windowsError,
            0u);
  EXPECT_EQ(control(SIMULATOR_SET_VERSION_TEXT, std::vector<uint8_t>(SIMULATOR_TEXT_CAPACITY + 1))
                .windowsError,
            87u);
  EXPECT_EQ(control(SIMULATOR_SET_TABLE).windowsError, 0u) << "a table of no bytes is a table";
}

TEST_F(ModelControl, AttributesThatMakeNoSense_AreRefused) {
  tSimulatorAttribute attribute{};
  attribute.interfaceKind = kSimulatorInterfaceDevicePath;
  EXPECT_EQ(control(SIMULATOR_SET_ATTRIBUTE, attribute).windowsError, 87u);
  EXPECT_EQ(control(SIMULATOR_REMOVE_ATTRIBUTE, attribute).windowsError, 87u);
  attribute.interfaceKind = kSimulatorInterfaceMarten;
  attribute.size = SIMULATOR_VALUE_CAPACITY + 1;
  EXPECT_EQ(control(SIMULATOR_SET_ATTRIBUTE, attribute).windowsError, 87u);
}

TEST_F(ModelControl, AttributesBeyondTheCapacity_AreRefused) {
  tSimulatorAttribute attribute{};
  attribute.interfaceKind = kSimulatorInterfaceMarten;
  uint32_t error = 0;
  for (uint32_t i = 0; i <= SIMULATOR_ATTRIBUTE_CAPACITY && error == 0; ++i) {
    attribute.attribute = 0x70000000 + i;
    error = control(SIMULATOR_SET_ATTRIBUTE, attribute).windowsError;
  }
  EXPECT_EQ(error, 1450u);
  attribute.attribute = 0x70000000;
  EXPECT_EQ(control(SIMULATOR_SET_ATTRIBUTE, attribute).windowsError, 0u)
      << "one that is there can still be changed";
}

TEST_F(ModelControl, InputOfAWrongSize_IsRefused) {
  const std::vector<uint8_t> oneByte(1);
  for (const uint32_t code :
       {SIMULATOR_RESET, SIMULATOR_SET_PRESENCE, SIMULATOR_GET_PRESENCE, SIMULATOR_GET_TABLE,
        SIMULATOR_SET_ATTRIBUTE, SIMULATOR_REMOVE_ATTRIBUTE, SIMULATOR_ADD_SCRIPT,
        SIMULATOR_CLEAR_SCRIPTS, SIMULATOR_READ_LOG, SIMULATOR_CLEAR_LOG}) {
    EXPECT_EQ(control(code, oneByte, 1).windowsError, 87u) << std::hex << code;
  }
  EXPECT_EQ(control(SIMULATOR_CONTROL_CODE(0x9FF)).windowsError, 1u);
}

TEST_F(ModelControl, Reset_BringsTheDefaultMachineBack) {
  const tAnswer before = control(SIMULATOR_GET_TABLE, {}, SIMULATOR_TABLE_CAPACITY);
  control(SIMULATOR_SET_TABLE);
  control(SIMULATOR_SET_PRESENCE, tSimulatorPresence{0, 0, 0});
  tSimulatorScript script{};
  script.interfaceKind = kSimulatorInterfaceController;
  script.action = kSimulatorActionAnswerCode;
  control(SIMULATOR_ADD_SCRIPT, script);
  request(kSimulatorInterfaceController, 1, {}, 0);
  ASSERT_EQ(control(SIMULATOR_RESET).windowsError, 0u);
  EXPECT_EQ(control(SIMULATOR_GET_TABLE, {}, SIMULATOR_TABLE_CAPACITY).bytes, before.bytes);
  EXPECT_EQ(recordOf<tSimulatorPresence>(control(SIMULATOR_GET_PRESENCE, {}, 12)).controllers, 1u);
  EXPECT_TRUE(log().empty());
  EXPECT_EQ(request(kSimulatorInterfaceController, 1, {}, 0).windowsError, 1u) << "not scripted";
  EXPECT_EQ(presences.size(), 3u);
}

// ---- The log ----

TEST_F(ModelControl, Log_KeepsWhatWasSentAndAnswered) {
  tGetAttributeRequest asked{};
  asked.attribute = 0x12345678;
  request(kSimulatorInterfaceMarten, REQUEST_GET_ATTRIBUTE, asked, 8);
  const auto entries = log();
  ASSERT_EQ(entries.size(), 1u);
  EXPECT_EQ(entries[0].sequence, 1u);
  EXPECT_EQ(entries[0].process, kProcess);
  EXPECT_EQ(entries[0].event, uint32_t{kSimulatorEventRequest});
  EXPECT_EQ(entries[0].interfaceKind, uint32_t{kSimulatorInterfaceMarten});
  EXPECT_EQ(entries[0].requestCode, REQUEST_GET_ATTRIBUTE);
  EXPECT_EQ(entries[0].inputSize, 24u);
  EXPECT_EQ(std::memcmp(entries[0].input, &asked, sizeof asked), 0)
      << "what was sent, although the reply has overwritten it";
  EXPECT_EQ(entries[0].outputSize, 8u);
  int32_t status = 0;
  std::memcpy(&status, entries[0].output + 4, sizeof status);
  EXPECT_EQ(status, SIMULATOR_STATUS_NOT_SUPPORTED);
}

TEST_F(ModelControl, Log_KeepsTheLatestEntries) {
  for (unsigned i = 0; i < SIMULATOR_LOG_CAPACITY + 10; ++i) {
    request(kSimulatorInterfaceMarten, i + 1, {}, 0);
  }
  const auto entries = log();
  ASSERT_EQ(entries.size(), size_t{SIMULATOR_LOG_CAPACITY});
  EXPECT_EQ(entries.front().sequence, 11u);
  EXPECT_EQ(entries.front().requestCode, 11u);
  EXPECT_EQ(entries.back().sequence, SIMULATOR_LOG_CAPACITY + 10u);
  EXPECT_EQ(log(SIMULATOR_LOG_CAPACITY + 10).size(), 1u);
  EXPECT_TRUE(log(SIMULATOR_LOG_CAPACITY + 11).empty());
}

TEST_F(ModelControl, Log_GivesWhatThereIsRoomFor) {
  for (unsigned i = 0; i < 3; ++i) {
    request(kSimulatorInterfaceMarten, 1, {}, 0);
  }
  const uint64_t from = 1;
  const auto entry = static_cast<uint32_t>(sizeof(tSimulatorLogEntry));
  EXPECT_EQ(
      request(kSimulatorInterfaceControl, SIMULATOR_READ_LOG, from, 2 * entry + 1).bytes.size(),
      2 * entry);
  EXPECT_EQ(request(kSimulatorInterfaceControl, SIMULATOR_READ_LOG, from, entry - 1).windowsError,
            122u);
}

TEST_F(ModelControl, Log_ClearedCountsFromOneAgain) {
  request(kSimulatorInterfaceMarten, 1, {}, 0);
  control(SIMULATOR_CLEAR_LOG);
  EXPECT_TRUE(log().empty());
  request(kSimulatorInterfaceMarten, 1, {}, 0);
  EXPECT_EQ(log().at(0).sequence, 1u);
}

}  // namespace
}  // namespace nTests
