#include "simulator/model/sha256.h"
#include "tests/component/simulator/modeltest.h"

namespace nTests {
namespace {

constexpr auto kController = kSimulatorInterfaceController;
constexpr auto kMarten = kSimulatorInterfaceMarten;

class ModelFirmware : public ModelTest {
 protected:
  int32_t send(tSimulatorInterface kind, uint64_t payload, uint32_t size, int32_t status = 0) {
    const uint32_t code =
        kind == kMarten ? REQUEST_MARTEN_SEND_COMMAND : REQUEST_CONTROLLER_SEND_COMMAND;
    const tSendCommandRequest asked = {payload, size, status};
    return recordOf<tStatusReply>(request(kind, code, asked, 4)).driverStatus;
  }
  std::vector<tSimulatorPayload> firmware() {
    const tAnswer answer = control(SIMULATOR_READ_FIRMWARE, {},
                                   SIMULATOR_PAYLOAD_CAPACITY * sizeof(tSimulatorPayload));
    EXPECT_EQ(answer.windowsError, 0u);
    std::vector<tSimulatorPayload> payloads(answer.bytes.size() / sizeof(tSimulatorPayload));
    if (!payloads.empty()) {
      std::memcpy(payloads.data(), answer.bytes.data(), answer.bytes.size());
    }
    return payloads;
  }
  std::vector<uint8_t> hashOf(uint64_t payload, uint32_t size) const {
    tSha256 hash;
    sha256Start(&hash);
    sha256Add(&hash, memory.data() + payload, size);
    std::vector<uint8_t> result(SHA256_SIZE);
    sha256Finish(&hash, result.data());
    return result;
  }
  void fillMemory(size_t size) {
    memory.resize(size);
    for (size_t i = 0; i < size; ++i) {
      memory[i] = static_cast<uint8_t>(i * 7 + i / 251);
    }
  }
};

TEST_F(ModelFirmware, AtFirst_NoneWasReceived) {
  EXPECT_TRUE(firmware().empty());
}

TEST_F(ModelFirmware, Payload_IsKeptWithSizeHashAndStart) {
  fillMemory(1000);
  EXPECT_EQ(send(kController, 0x10, 300, 5), 0);
  const auto payloads = firmware();
  ASSERT_EQ(payloads.size(), 1u);
  EXPECT_EQ(payloads[0].interfaceKind, uint32_t{kController});
  EXPECT_EQ(payloads[0].number, 1u);
  EXPECT_EQ(payloads[0].process, kProcess);
  EXPECT_EQ(payloads[0].size, 300u);
  EXPECT_EQ(payloads[0].callerStatus, 5);
  EXPECT_EQ(std::vector<uint8_t>(payloads[0].sha256, payloads[0].sha256 + SIMULATOR_HASH_SIZE),
            hashOf(0x10, 300));
  EXPECT_EQ(std::memcmp(payloads[0].start, memory.data() + 0x10, SIMULATOR_PAYLOAD_START), 0);
}

TEST_F(ModelFirmware, ShortPayload_HasZerosAfterItsStart) {
  fillMemory(1000);
  EXPECT_EQ(send(kMarten, 0x10, 3), 0);
  const auto payloads = firmware();
  ASSERT_EQ(payloads.size(), 1u);
  EXPECT_EQ(std::memcmp(payloads[0].start, memory.data() + 0x10, 3), 0);
  EXPECT_EQ(payloads[0].start[3], 0);
}

TEST_F(ModelFirmware, PayloadLargerThanTheModelsOwnMemory_IsReadWhole) {
  for (const uint32_t size : {65535u, 65536u, 65537u, 200000u}) {
    fillMemory(size + 0x20);
    EXPECT_EQ(send(kMarten, 0x20, size), 0);
    const tSimulatorPayload latest = firmware().back();
    EXPECT_EQ(latest.size, size);
    EXPECT_EQ(std::vector<uint8_t>(latest.sha256, latest.sha256 + SIMULATOR_HASH_SIZE),
              hashOf(0x20, size));
  }
}

TEST_F(ModelFirmware, EmptyPayload_IsOne) {
  EXPECT_EQ(send(kController, 0, 0), 0);
  const auto payloads = firmware();
  ASSERT_EQ(payloads.size(), 1u);
  EXPECT_EQ(payloads[0].size, 0u);
  EXPECT_EQ(std::vector<uint8_t>(payloads[0].sha256, payloads[0].sha256 + SIMULATOR_HASH_SIZE),
            hashOf(0, 0));
}

TEST_F(ModelFirmware, PayloadThatCannotBeReadWhole_IsRefusedAndNotKept) {
  EXPECT_EQ(send(kController, 0, 1), SIMULATOR_STATUS_BAD_ADDRESS);
  EXPECT_EQ(send(kController, memory.size() - 9, 10), SIMULATOR_STATUS_BAD_ADDRESS);
  EXPECT_EQ(send(kController, 0x10, 0xFFFFFFFF), SIMULATOR_STATUS_BAD_ADDRESS)
      << "the first piece is there";
  EXPECT_TRUE(firmware().empty());
}

TEST_F(ModelFirmware, Interfaces_CountTheirOwn) {
  send(kController, 0x10, 1);
  send(kMarten, 0x10, 2);
  send(kController, 0x10, 3);
  const auto payloads = firmware();
  ASSERT_EQ(payloads.size(), 3u);
  EXPECT_EQ(payloads[1].number, 1u);
  EXPECT_EQ(payloads[1].interfaceKind, uint32_t{kMarten});
  EXPECT_EQ(payloads[2].number, 2u);
  EXPECT_EQ(payloads[2].interfaceKind, uint32_t{kController});
}

TEST_F(ModelFirmware, LatestPayloads_AreKept) {
  constexpr uint32_t kMore = 3;
  for (uint32_t i = 0; i < SIMULATOR_PAYLOAD_CAPACITY + kMore; ++i) {
    send(kMarten, 0x10, i);
  }
  const auto payloads = firmware();
  ASSERT_EQ(payloads.size(), size_t{SIMULATOR_PAYLOAD_CAPACITY});
  EXPECT_EQ(payloads.front().number, kMore + 1);
  EXPECT_EQ(payloads.front().size, kMore);
  EXPECT_EQ(payloads.back().number, SIMULATOR_PAYLOAD_CAPACITY + kMore);
}

TEST_F(ModelFirmware, ClearingOrReset_BeginsAgain) {
  for (const uint32_t code : {SIMULATOR_CLEAR_FIRMWARE, SIMULATOR_RESET}) {
    send(kMarten, 0x10, 1);
    send(kMarten, 0x10, 1);
    EXPECT_EQ(control(code).windowsError, 0u);
    EXPECT_TRUE(firmware().empty());
    send(kMarten, 0x10, 1);
    EXPECT_EQ(firmware().at(0).number, 1u);
    control(SIMULATOR_CLEAR_FIRMWARE);
  }
}

TEST_F(ModelFirmware, ControlRequestsOfAWrongSize_AreRefused) {
  const std::vector<uint8_t> oneByte(1);
  EXPECT_EQ(control(SIMULATOR_READ_FIRMWARE, oneByte, 200).windowsError, 87u);
  EXPECT_EQ(control(SIMULATOR_CLEAR_FIRMWARE, oneByte).windowsError, 87u);
  send(kMarten, 0x10, 1);
  EXPECT_EQ(control(SIMULATOR_READ_FIRMWARE, {}, sizeof(tSimulatorPayload) - 1).windowsError, 122u);
}

TEST_F(ModelFirmware, ScriptedRefusal_KeepsNothing) {
  tSimulatorScript script{};
  script.interfaceKind = kController;
  script.requestCode = REQUEST_CONTROLLER_SEND_COMMAND;
  script.times = 1;
  script.action = kSimulatorActionAnswerCode;
  script.driverStatus = -77;
  ASSERT_EQ(control(SIMULATOR_ADD_SCRIPT, script).windowsError, 0u);
  EXPECT_EQ(send(kController, 0x10, 8), -77);
  EXPECT_TRUE(firmware().empty());
  EXPECT_EQ(send(kController, 0x10, 8), 0);
}

}  // namespace
}  // namespace nTests
